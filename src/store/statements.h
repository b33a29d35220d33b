// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QList>
#include <QPair>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <initializer_list>
#include <optional>
#include <unordered_map>

// Named parameters and the values bound to them, already in their storage
// forms (see StorageForm).
using Bindings = QList<QPair<QString, QVariant>>;

// How the store's statements run on its one connection: prepared, bound and
// read front to back. Every failure shows in a return value only. While a
// write of several statements is watched (see watchWrites()), the first
// statement that fails because of the file (locked, full, unreadable) makes
// every later one fail at once, so that a write never waits on a broken
// file twice.
class Statements
{
    Q_DISABLE_COPY(Statements)

public:
    // `connection` is the store's, and outlives this object.
    explicit Statements(const QSqlDatabase &connection);
    ~Statements();

    bool isOpen() const;

    // Runs `statement` on a forward-only query made into `query`, prepared
    // and bound. When the connection is not open no query is made at all,
    // so that an unopened store fails without a word.
    bool run(std::optional<QSqlQuery> &query, const QString &statement, const Bindings &bindings = {});
    // Runs a finished statement text as it is, without binding anything.
    bool runText(std::optional<QSqlQuery> &query, const QString &statement);
    // Runs a finished statement text whose rows nobody reads; *failure
    // (when given) holds SQLite's reason when it fails.
    bool runText(const QString &statement, QString *failure = nullptr);
    // Runs a bound statement whose rows nobody reads.
    bool execute(const QString &statement, const Bindings &bindings = {});
    // Column 0 of the first row, or 0 / an empty string.
    bool runCount(const QString &statement, const Bindings &bindings, int *count);
    int count(const QString &statement, const Bindings &bindings = {});
    int firstId(const QString &statement, const Bindings &bindings);
    QString firstText(const QString &statement, const Bindings &bindings);
    // The values of the first row, each column as an int; false when the
    // statement fails or has no row.
    bool firstInts(const QString &statement, const Bindings &bindings, std::initializer_list<int *> columns);

    // The records of every row, each made by `read` from the query; an empty
    // list when the statement fails or reading stops before the last row (a
    // list cut short would pass for all of them).
    template<typename Record, typename Read>
    QList<Record *> records(const QString &statement, const Bindings &bindings, Read read)
    {
        QList<Record *> list;
        std::optional<QSqlQuery> query;
        if (!run(query, statement, bindings))
            return list;
        while (query->next())
            list.append(read(*query));
        if (query->lastError().isValid()) {
            qDeleteAll(list);
            list.clear();
        }
        return list;
    }

    // While kept, each statement text is prepared once and its query kept
    // for the next run of the same text: an import runs the same dozen
    // statements for every entry, and preparing them is most of the cost.
    // A kept query holds its statement open, so they are let go (false)
    // before the transaction around them ends.
    void keepPrepared(bool keep);

    // Watches the statements of one write for a failure of the file; the
    // second call ends the watch and tells whether one failed.
    void watchWrites();
    bool endWatchAndTellFailure();
    // SQLite's reason for the last failure of the file that a watch saw.
    QString lastFileFailure() const { return fileFailure; }

private:
    QSqlQuery *bound(std::optional<QSqlQuery> &fresh, const QString &statement, const Bindings &bindings);
    bool executeBound(QSqlQuery *query);
    void noteFailure(bool executed, const QSqlQuery &query);

    const QSqlDatabase &db;
    bool watching = false;
    bool writeFailed = false;
    QString fileFailure;
    bool keeping = false;
    std::unordered_map<QString, QSqlQuery> prepared;
};
