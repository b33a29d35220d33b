// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "databasemanager.h"

#include <QDateTime>
#include <QString>

// Consistent copies of the database file, made while the program has it
// open: by hand into a file of the user's choice, and automatically, once
// a day at start-up, into a directory that keeps the newest seven. A copy
// appears whole or not at all.
class Backup
{
public:
    enum class Existing { Keep, Replace };

    struct Outcome
    {
        bool written = false;
        QString fileName;
        QString failure;
    };

    // Copies the store's database into `fileName`. An existing file there is
    // replaced only when asked to; the database file itself never is.
    // `progress` hears the pages copied so far and in all, and cancels by
    // returning false.
    static Outcome write(DatabaseManager &store, const QString &fileName, Existing existing,
                         const DatabaseManager::Progress &progress = {});

    // How many automatic backups are kept.
    static const int kept = 7;
    // backups/ in the application's data directory
    // (QStandardPaths::AppDataLocation).
    static QString automaticDirectory();
    // The name of the automatic backup written at `when`:
    // ledgerlydatabase-2026-11-15-130859.db.
    static QString automaticFileName(const QDateTime &when);
    // When the newest automatic backup in `directory` was written a day or
    // more before `now`, or there is none, writes one (making the directory
    // if need be) and removes all but the newest `kept`. Outcome::written is
    // false without a failure when none was due. Files that are not
    // automatic backups are left alone.
    static Outcome writeAutomatic(DatabaseManager &store, const QString &directory,
                                  const QDateTime &now = QDateTime::currentDateTime());
    // Whether an automatic backup is due in `directory` at `now`: none
    // there yet, or the newest a day or more old (or from the future: the
    // clock was set back).
    static bool automaticIsDue(const QString &directory, const QDateTime &now);
    // Removes all but the newest `kept` automatic backups in `directory`.
    static void keepNewestAutomatic(const QString &directory);
};
