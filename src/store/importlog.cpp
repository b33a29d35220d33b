// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "importlog.h"

#include "databasemanager.h"
#include "statements.h"
#include "storageform.h"

#include <QSqlQuery>

ImportLog::ImportLog(DatabaseManager &store) : store(store) { }

QList<ImportLog::Import> ImportLog::imports()
{
    QList<Import> list;
    std::optional<QSqlQuery> query;
    if (!store.statementRunner().run(
            query, QStringLiteral("SELECT SNo, ImportedAt, FileName, EntryCount FROM ImportLog ORDER BY SNo DESC")))
        return list;
    while (query->next())
        list.append({ query->value(0).toInt(), StorageForm::readDateTime(query->value(1)), query->value(2).toString(),
                      query->value(3).toInt() });
    return list;
}

QSet<QString> ImportLog::knownFingerprints()
{
    QSet<QString> known;
    std::optional<QSqlQuery> query;
    // An entry deleted by hand since is no longer there to be a duplicate of.
    if (!store.statementRunner().run(query, QStringLiteral("SELECT i.Fingerprint FROM ImportedEntry i JOIN Entry e ON "
                                                           "e.SNo = i.EntrySNo")))
        return known;
    while (query->next())
        known.insert(query->value(0).toString());
    return known;
}

int ImportLog::lastEntryId()
{
    return store.statementRunner().count(QStringLiteral("SELECT last_insert_rowid()"));
}

int ImportLog::record(const QString &fileName, const QDateTime &when, const QList<int> &entryIds,
                      const QStringList &fingerprints)
{
    Statements &statements = store.statementRunner();
    if (!statements.execute(QStringLiteral("INSERT INTO ImportLog (ImportedAt, FileName, EntryCount) VALUES "
                                           "(:at, :file, :count)"),
                            { { QStringLiteral(":at"), StorageForm::dateTime(when) },
                              { QStringLiteral(":file"), fileName },
                              { QStringLiteral(":count"), int(entryIds.size()) } }))
        return 0;
    const int id = lastEntryId();
    if (id <= 0)
        return 0;
    for (qsizetype i = 0; i < entryIds.size(); ++i) {
        if (!statements.execute(QStringLiteral("INSERT INTO ImportedEntry (EntrySNo, ImportSNo, Fingerprint) VALUES "
                                               "(:entry, :import, :fingerprint)"),
                                { { QStringLiteral(":entry"), entryIds.at(i) },
                                  { QStringLiteral(":import"), id },
                                  { QStringLiteral(":fingerprint"), fingerprints.at(i) } }))
            return 0;
    }
    return id;
}

std::optional<int> ImportLog::undo(int id, QString *failure)
{
    Statements &statements = store.statementRunner();
    const Bindings import = { { QStringLiteral(":import"), id } };
    if (statements.count(QStringLiteral("SELECT COUNT(*) FROM ImportLog WHERE SNo = :import"), import) != 1) {
        if (failure)
            failure->clear();
        return std::nullopt;
    }
    int removed = 0;
    QString reason;
    const bool done = store.runInTransaction(
        DatabaseManager::WriteKind::Edits,
        [&] {
            removed = statements.count(QStringLiteral("SELECT COUNT(*) FROM Entry WHERE SNo IN (SELECT EntrySNo FROM "
                                                      "ImportedEntry WHERE ImportSNo = :import)"),
                                       import);
            return statements.execute(QStringLiteral("DELETE FROM Entry WHERE SNo IN (SELECT EntrySNo FROM "
                                                     "ImportedEntry WHERE ImportSNo = :import)"),
                                      import) &&
                statements.execute(QStringLiteral("DELETE FROM ImportedEntry WHERE ImportSNo = :import"), import) &&
                statements.execute(QStringLiteral("DELETE FROM ImportLog WHERE SNo = :import"), import);
        },
        &reason);
    if (!done) {
        if (failure)
            *failure = reason.isEmpty() ? QStringLiteral("the entries could not be removed") : reason;
        return std::nullopt;
    }
    return removed;
}
