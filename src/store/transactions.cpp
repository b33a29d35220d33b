// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "transactions.h"

#include "statements.h"
#include "storeconnection.h"

#include <QCoreApplication>
#include <QStringList>

#include <sqlite3.h>

namespace {

// The item catalogue's index while an import runs; see indexItemsForImport().
const QString importItemsIndex = QStringLiteral("ledgerly_import_items");

} // namespace

Transactions::Transactions(StoreConnection &connection, Statements &statements)
    : connection(connection), statements(statements)
{
}

void Transactions::undo(const QStringList &undoing)
{
    for (const QString &statement : undoing) {
        if (statements.runText(statement))
            continue;
        // Some failures (a full disk, an I/O error) make SQLite roll the
        // whole transaction back itself; then there is nothing left to end.
        sqlite3 *handle = connection.sqliteHandle();
        if (handle && sqlite3_get_autocommit(handle))
            return;
        // SQLite could not end what it began: the connection would stay
        // inside it, and every later write would join it unseen. A closed
        // connection ends it for good (SQLite rolls back what was not
        // committed).
        connection.reopen();
        return;
    }
}

bool Transactions::write(const std::function<bool()> &work)
{
    if (active && activeKind == Kind::Import) {
        // A failed write ends the import, and the import's rollback takes
        // every write back: a savepoint around each would only cost.
        statements.watchWrites();
        const bool result = work();
        return !statements.endWatchAndTellFailure() && result;
    }
    // A savepoint, not BEGIN, so that a write may also run inside a
    // transaction of its caller's.
    if (!statements.runText(QStringLiteral("SAVEPOINT ledgerly_write")))
        return false;
    statements.watchWrites();
    const bool result = work();
    const bool failed = statements.endWatchAndTellFailure();
    // Releasing the outermost savepoint commits, which can fail in turn (the
    // disk full, readers holding the file).
    if (!failed && statements.runText(QStringLiteral("RELEASE ledgerly_write")))
        return result;
    undo({ QStringLiteral("ROLLBACK TO ledgerly_write"), QStringLiteral("RELEASE ledgerly_write") });
    return false;
}

bool Transactions::run(Kind kind, const std::function<bool()> &work, QString *failure)
{
    const auto fail = [failure](const QString &reason) {
        if (failure)
            *failure = reason;
        return false;
    };
    if (!connection.isOpen())
        return fail(connection.database().lastError().text().isEmpty() ? connection.error()
                                                                       : connection.database().lastError().text());
    if (active)
        return fail(QCoreApplication::translate("DatabaseManager", "Another change to the database is under way."));

    // A page's Save waits only briefly for the file, at the start and at
    // the commit alike; the usual wait is back in force when it ends.
    struct BusyTimeout
    {
        StoreConnection &connection;
        bool brief;
        ~BusyTimeout()
        {
            if (brief)
                connection.setBusyTimeout(StoreConnection::busyTimeout);
        }
    } busyTimeout { connection, kind == Kind::Edits };
    if (busyTimeout.brief)
        connection.setBusyTimeout(StoreConnection::editsBusyTimeout);

    // IMMEDIATE takes the write lock now. Qt's own transaction() begins a
    // deferred one, which would only find a locked file at its first write,
    // after a table model had marked the rows before it as written.
    QString reason;
    if (!statements.runText(QStringLiteral("BEGIN IMMEDIATE"), &reason))
        return fail(reason);

    const bool indexed = kind == Kind::Import && indexItemsForImport();
    active = true;
    activeKind = kind;
    statements.keepPrepared(true);
    bool worked = work();
    statements.keepPrepared(false);
    active = false;
    if (indexed && worked && !statements.runText(QStringLiteral("DROP INDEX ") + importItemsIndex, &reason)) {
        worked = false;
        if (failure)
            *failure = reason;
    }

    if (worked) {
        if (statements.runText(QStringLiteral("COMMIT"), &reason))
            return true;
        // A failed COMMIT leaves the transaction open; nothing of it stays.
        undo({ QStringLiteral("ROLLBACK") });
        return fail(reason);
    }
    undo({ QStringLiteral("ROLLBACK") });
    return false;
}

bool Transactions::indexItemsForImport()
{
    // Every AddEntry looks its item up in the catalogue four times, and the
    // file has no index on it: ten years of items read whole for each entry
    // would make an import take minutes. The index lives only inside the
    // import's transaction (it is dropped before the commit, and a rollback
    // takes it away too), so the file keeps its schema. SQLite drops nothing
    // while another statement of the connection is still reading (a table
    // model that has not fetched all its rows); the import then runs without
    // the index, slower but the same.
    sqlite3 *handle = connection.sqliteHandle();
    if (!handle)
        return false;
    for (sqlite3_stmt *statement = sqlite3_next_stmt(handle, nullptr); statement;
         statement = sqlite3_next_stmt(handle, statement)) {
        if (sqlite3_stmt_busy(statement))
            return false;
    }
    return statements.runText(QStringLiteral("CREATE INDEX %1 ON Items (ItemName, CategoryName)").arg(importItemsIndex));
}
