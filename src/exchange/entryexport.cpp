// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "entryexport.h"

#include "csvformat.h"
#include "qifformat.h"

#include <QCoreApplication>
#include <QSaveFile>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("EntryExport", text);
}

} // namespace

EntryExport::Outcome EntryExport::write(DatabaseManager &store, const QString &fileName,
                                        const DatabaseManager::Progress &progress)
{
    // A file of another kind is refused before any entry is read.
    if (!CsvFormat::matches(fileName) && !QifFormat::matches(fileName))
        return write(QList<Entry *>(), fileName, progress);
    const auto entries = owned(store.GetAllEntries());
    return write(entries.list(), fileName, progress);
}

EntryExport::Outcome EntryExport::write(const QList<Entry *> &entries, const QString &fileName,
                                        const DatabaseManager::Progress &progress)
{
    Outcome outcome;
    const bool csv = CsvFormat::matches(fileName);
    if (!csv && !QifFormat::matches(fileName)) {
        outcome.failure = tr("%1 is neither a .csv nor a .qif file").arg(fileName);
        return outcome;
    }

    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        outcome.failure = tr("%1 cannot be written: %2").arg(fileName, file.errorString());
        return outcome;
    }
    // Written in pieces, so that progress can be told and the memory held
    // stays small whatever the number of entries.
    QByteArray chunk = csv ? CsvFormat::header() : QifFormat::header();
    const qsizetype total = entries.size();
    for (qsizetype done = 0; done < total; ++done) {
        if (csv)
            CsvFormat::appendLine(chunk, *entries.at(done));
        else
            QifFormat::appendRecord(chunk, *entries.at(done));
        if ((done + 1) % 1024 == 0 || done + 1 == total) {
            file.write(chunk);
            chunk.clear();
            if (progress && !progress(done + 1, total)) {
                file.cancelWriting();
                outcome.failure = tr("the export was cancelled");
                return outcome;
            }
        }
    }
    if (!chunk.isEmpty())
        file.write(chunk);
    if (!file.commit()) {
        outcome.failure = tr("%1 cannot be written: %2").arg(fileName, file.errorString());
        return outcome;
    }
    outcome.written = true;
    outcome.exported = int(total);
    return outcome;
}

QString EntryExport::summary(const QString &fileName, int exported)
{
    return exported == 1 ? tr("Exported 1 entry to %1").arg(fileName)
                         : tr("Exported %1 entries to %2").arg(QString::number(exported), fileName);
}
