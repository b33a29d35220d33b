// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QSqlDatabase>
#include <QString>

struct sqlite3;

// The store's one connection to the database file, registered under Qt's
// default connection name so that the pages' table models share it. The
// first connection of a process opens the file; one made while another
// lives shares it, and one made while another lives on a different file is
// refused, so that no model ever loses the file it shows. The last one to
// go closes the connection.
class StoreConnection
{
    Q_DISABLE_COPY(StoreConnection)

public:
    // How long a statement waits for a file that another program holds
    // locked: the driver's own default, said here so that it is a decision
    // of the store.
    static const int busyTimeout = 5000;
    // What a page's Save waits for the file: long enough for another
    // program's ordinary write to finish, short enough that a file held
    // locked does not freeze the page.
    static const int editsBusyTimeout = 500;
    // What the start-up waits for a file another program holds, so that the
    // window is on screen at once whatever the other program does.
    static const int startUpBusyTimeout = 1000;

    StoreConnection();
    ~StoreConnection();

    // Opens (or shares) the connection on `fileName` and finds out whether
    // the file reads as a database. False with the reason in error() when
    // it does not; lockedByAnotherProgram() then tells whether it failed
    // only because another program holds the file.
    bool open(const QString &fileName);
    // Closes and opens the connection again on the same file: the one way
    // out of a transaction that SQLite could not roll back.
    bool reopen();
    // Closes a connection that this object opened.
    void close() { db.close(); }

    // The connection, valid for as long as this object lives.
    const QSqlDatabase &database() const { return db; }
    bool isOpen() const { return db.isOpen(); }
    QString fileName() const { return file; }
    QString error() const { return openError; }
    bool lockedByAnotherProgram() const { return locked; }
    // Whether open() opened the file itself rather than sharing the
    // connection of a store that already lives.
    bool openedHere() const { return opened; }

    // Sets how long statements wait for a file another program holds.
    void setBusyTimeout(int milliseconds);

    // Whether lists may be read on the SQLite handle of Qt's driver: only
    // where the driver runs on the SQLite library that Ledgerly links, and
    // never with LEDGERLY_NO_SQLITE_HANDLE set.
    bool usesSqliteHandle() const { return db.isOpen() && handleUsable; }
    // That handle, or null when there is none to use.
    sqlite3 *sqliteHandle() const;

private:
    bool probe();
    bool driverRunsOurSqlite();

    QSqlDatabase db;
    QString file;
    QString openError;
    bool locked = false;
    bool opened = false;
    bool handleUsable = false;
};
