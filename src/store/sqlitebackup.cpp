// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "sqlitebackup.h"

#include <QCoreApplication>
#include <QFile>

#include <sqlite3.h>

SqliteBackup::SqliteBackup(sqlite3 *source, const QString &destination)
{
    start(source, destination);
}

SqliteBackup::SqliteBackup(const QString &sourceFile, const QString &destination)
{
    const QByteArray name = QFile::encodeName(sourceFile);
    // Read-only, and never made: a missing file is a failure, not a new
    // empty database.
    if (sqlite3_open_v2(name.constData(), &ownSource, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        fail(QString::fromUtf8(sqlite3_errmsg(ownSource)));
        return;
    }
    start(ownSource, destination);
}

SqliteBackup::~SqliteBackup()
{
    if (backup)
        sqlite3_backup_finish(backup);
    sqlite3_close(target);
    sqlite3_close(ownSource);
}

void SqliteBackup::start(sqlite3 *source, const QString &destination)
{
    sinceStart.start();
    const QByteArray targetName = QFile::encodeName(destination);
    if (sqlite3_open_v2(targetName.constData(), &target, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
        SQLITE_OK) {
        fail(QString::fromUtf8(sqlite3_errmsg(target)));
        return;
    }
    backup = sqlite3_backup_init(target, "main", source, "main");
    if (!backup)
        fail(QString::fromUtf8(sqlite3_errmsg(target)));
}

SqliteBackup::Step SqliteBackup::fail(const QString &why)
{
    if (reason.isEmpty())
        reason = why;
    return Step::Failed;
}

SqliteBackup::Step SqliteBackup::step(int pages)
{
    if (!backup)
        return fail(reason);
    const int stepped = sqlite3_backup_step(backup, pages);
    // Read now: a finished copy frees what holds them.
    copied = sqlite3_backup_pagecount(backup) - sqlite3_backup_remaining(backup);
    inAll = sqlite3_backup_pagecount(backup);
    switch (stepped) {
    case SQLITE_OK:
        return Step::More;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return waitedTooLong() ? fail(QString::fromUtf8(sqlite3_errstr(stepped))) : Step::Busy;
    case SQLITE_DONE: {
        sqlite3_backup_finish(backup);
        backup = nullptr;
        // Finishing writes the last pages; it can fail in turn.
        if (sqlite3_errcode(target) != SQLITE_OK)
            return fail(QString::fromUtf8(sqlite3_errmsg(target)));
        return Step::Done;
    }
    default:
        sqlite3_backup_finish(backup);
        backup = nullptr;
        return fail(QString::fromUtf8(sqlite3_errstr(stepped)));
    }
}

bool SqliteBackup::waitedTooLong() const
{
    return sinceStart.isValid() && sinceStart.elapsed() >= busyLimit;
}

qint64 SqliteBackup::pagesCopied() const
{
    return copied;
}

qint64 SqliteBackup::pagesInAll() const
{
    return inAll;
}

bool SqliteBackup::run(const Progress &progress, QString *failure)
{
    Step stepped;
    do {
        stepped = step();
        if (stepped == Step::Busy)
            sqlite3_sleep(20);
        if (stepped != Step::Failed && progress && !progress(copied, inAll)) {
            reason = QCoreApplication::translate("DatabaseManager", "The backup was cancelled.");
            stepped = Step::Failed;
        }
    } while (stepped == Step::More || stepped == Step::Busy);
    if (stepped == Step::Done)
        return true;
    if (failure)
        *failure = reason;
    return false;
}
