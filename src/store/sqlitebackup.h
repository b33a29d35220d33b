// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QElapsedTimer>
#include <QString>

#include <functional>
#include <memory>

struct sqlite3;
struct sqlite3_backup;

// A page-for-page copy of a database at one moment, made with SQLite's
// online backup: the copy opens as the same database. It goes in steps, so
// that a progress dialog can move and cancel, or the event loop can run in
// between; the source is locked only while a step runs, and a step that
// finds the database changed by another connection starts the copy again.
class SqliteBackup
{
    Q_DISABLE_COPY(SqliteBackup)

public:
    // How long a copy waits in all for a source that another program holds
    // locked before it gives up with SQLite's reason.
    static const int busyLimit = 10000;

    // Copies from `source`, an open connection, into `destination`, a file
    // that is new or empty.
    SqliteBackup(sqlite3 *source, const QString &destination);
    // Copies the database file `sourceFile` on a read-only connection of
    // the copy's own.
    SqliteBackup(const QString &sourceFile, const QString &destination);
    ~SqliteBackup();

    enum class Step {
        More, // pages are left to copy
        Busy, // the source is locked: try again a little later
        Done, // the copy is complete
        Failed, // no complete copy can be made: see failure()
    };
    Step step(int pages = 1024);
    // Whether a copy that found its source busy has waited its limit.
    bool waitedTooLong() const;
    qint64 pagesCopied() const;
    qint64 pagesInAll() const;
    QString failure() const { return reason; }

    // Hears how many pages are copied of how many, after every step and
    // every wait for a busy source, and stops the copy by returning false.
    using Progress = std::function<bool(qint64 done, qint64 total)>;
    // Runs the whole copy here and now, waiting 20 ms before each retry of a
    // busy source. False with the reason in *failure (when given) when no
    // complete copy was made; the destination is then the caller's to
    // remove.
    bool run(const Progress &progress, QString *failure);

private:
    void start(sqlite3 *source, const QString &destination);
    Step fail(const QString &why);

    sqlite3 *ownSource = nullptr;
    sqlite3 *target = nullptr;
    sqlite3_backup *backup = nullptr;
    QString reason;
    qint64 copied = 0;
    qint64 inAll = 0;
    QElapsedTimer sinceStart;
};
