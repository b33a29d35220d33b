// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QString>

#include <functional>

class Statements;
class StoreConnection;

// How the store's writes hold together: a write of several statements that
// is stored whole or not at all, and transactions around many writes. Every
// ROLLBACK, ROLLBACK TO and RELEASE is checked; one that fails closes and
// reopens the connection rather than leave a transaction open that later
// writes would silently join.
class Transactions
{
    Q_DISABLE_COPY(Transactions)

public:
    // Both outlive this object.
    Transactions(StoreConnection &connection, Statements &statements);

    // Runs `statements` as one write: when the file fails (locked, full, the
    // program killed) none of them is stored, and the first such failure
    // ends the work without waiting on the file again. A refusal of the
    // data itself keeps the steps before it. Runs inside a transaction of
    // the caller's as well (a savepoint); inside an import, whose every
    // failure takes the whole import back, without one. `statements`
    // returns the result.
    bool write(const std::function<bool()> &statements);

    // What a transaction is for, which decides how it runs.
    enum class Kind {
        // A page's Save: the lock is waited for only briefly.
        Edits,
        // Many writes at once: the store's usual wait for the lock, and the
        // item catalogue indexed while it runs.
        Import,
    };
    // See DatabaseManager::runInTransaction().
    bool run(Kind kind, const std::function<bool()> &work, QString *failure);
    bool inTransaction() const { return active; }

private:
    // Ends a transaction or savepoint with `statement` (ROLLBACK or
    // ROLLBACK TO and RELEASE); reopens the connection when it fails.
    void undo(const QStringList &statements);
    bool indexItemsForImport();

    StoreConnection &connection;
    Statements &statements;
    bool active = false;
    Kind activeKind = Kind::Edits;
};
