// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "storeconnection.h"

#include "storeerrors.h"

#include <QCoreApplication>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <sqlite3.h>

namespace {

// Connections alive in this process: they share the default connection, and
// the last one to go closes it.
int liveConnections = 0;

// Set (to anything) to read every list through Qt's driver, never on the
// SQLite handle underneath it.
const char noSqliteHandleVariable[] = "LEDGERLY_NO_SQLITE_HANDLE";

QString tr(const char *text)
{
    return QCoreApplication::translate("DatabaseManager", text);
}

} // namespace

StoreConnection::StoreConnection()
{
    ++liveConnections;
}

StoreConnection::~StoreConnection()
{
    db = QSqlDatabase();
    if (--liveConnections == 0)
        QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
}

bool StoreConnection::open(const QString &fileName)
{
    file = fileName;
    openError.clear();
    locked = false;
    opened = false;

    const QString connection = QLatin1String(QSqlDatabase::defaultConnection);
    if (QSqlDatabase::contains(connection)) {
        // Another store lives: share its connection as it is. Closing it or
        // pointing it at another file would pull the rows out from under
        // every model that shows them.
        QSqlDatabase shared = QSqlDatabase::database(connection, false);
        if (shared.databaseName() != fileName) {
            openError = tr("The program already works on %1 and opens one database file at a time.")
                            .arg(shared.databaseName());
            return false;
        }
        db = shared;
        if (db.isOpen()) {
            handleUsable = driverRunsOurSqlite();
            return true;
        }
    } else {
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
        db.setDatabaseName(fileName);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(busyTimeout));
    }
    if (!db.open()) {
        openError = db.lastError().text();
        return false;
    }
    if (!probe()) {
        db.close();
        return false;
    }
    opened = true;

    // SQLite's own page cache (2 MB) is kept: a page reads the entry table
    // a few times, from the system's file cache, and a cache the size of ten
    // years of entries would only hold a second copy of them in memory (and
    // let each sort of a whole list grow to its size before it spills).
    handleUsable = driverRunsOurSqlite();
    return true;
}

bool StoreConnection::probe()
{
    // SQLite opens any file lazily; a file that is not a database fails only
    // at its first statement. Find out now, before anything is written, and
    // without waiting long on a file another program holds.
    setBusyTimeout(startUpBusyTimeout);
    QSqlQuery query(db);
    query.setForwardOnly(true);
    const bool read = query.exec(QStringLiteral("SELECT count(*) FROM sqlite_master"));
    if (!read) {
        openError = query.lastError().text();
        locked = StoreErrors::isBusy(query.lastError());
    }
    query.finish();
    setBusyTimeout(busyTimeout);
    return read;
}

bool StoreConnection::reopen()
{
    const QString options = db.connectOptions();
    db.close();
    db.setConnectOptions(options);
    if (!db.open()) {
        openError = db.lastError().text();
        return false;
    }
    handleUsable = driverRunsOurSqlite();
    return true;
}

void StoreConnection::setBusyTimeout(int milliseconds)
{
    if (!db.isOpen())
        return;
    QSqlQuery query(db);
    query.exec(QStringLiteral("PRAGMA busy_timeout = %1").arg(milliseconds));
}

bool StoreConnection::driverRunsOurSqlite()
{
    if (qEnvironmentVariableIsSet(noSqliteHandleVariable))
        return false;
    // The handle of Qt's driver may only be given to the SQLite library that
    // we link if the driver runs on that very library; a Qt built with its
    // own copy of SQLite hands out a handle of another library.
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("select sqlite_version(), sqlite_source_id()")) || !query.next())
        return false;
    return query.value(0).toString() == QLatin1String(sqlite3_libversion()) &&
        query.value(1).toString() == QLatin1String(sqlite3_sourceid());
}

sqlite3 *StoreConnection::sqliteHandle() const
{
    if (!usesSqliteHandle())
        return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(handle.constData());
}
