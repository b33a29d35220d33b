// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "schema.h"

#include "statements.h"
#include "storeconnection.h"
#include "storeerrors.h"

#include <QCoreApplication>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("DatabaseManager", text);
}

struct Table
{
    QString name;
    QString createStatement;
};

const QList<Table> &describedTables()
{
    static const QList<Table> tables = {
        { QStringLiteral("Category"),
          QStringLiteral("CREATE TABLE Category (SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL "
                         "UNIQUE, CategoryName  nvarchar(255) NOT NULL UNIQUE )") },
        { QStringLiteral("Items"),
          QStringLiteral("CREATE TABLE Items ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, ItemName "
                         "nvarchar(255) NOT NULL, CategoryName  nvarchar(255) NOT NULL, CategoryID integer NOT NULL, "
                         "LastPrice float(50), UseFrequency  integer )") },
        { QStringLiteral("Mode"),
          QStringLiteral("CREATE TABLE Mode ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL "
                         "UNIQUE, ModeName  nvarchar(255) NOT NULL )") },
        { QStringLiteral("HistoricLocation"),
          QStringLiteral("CREATE TABLE HistoricLocation ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, "
                         "LocationName nvarchar(255) NOT NULL UNIQUE, LocationLongitude   float(50) NOT NULL, "
                         "LocationLatitude    float(50) NOT NULL, ReverseGeoLocation  nvarchar(255), CoordinateText "
                         "nvarchar(255) )") },
        { QStringLiteral("ItemSubstitutes"),
          QStringLiteral("CREATE TABLE ItemSubstitutes ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, "
                         "ItemName nvarchar(255) NOT NULL, SubstituteName  nvarchar(255) NOT NULL, ItemID integer NOT "
                         "NULL, SubstitueID integer NOT NULL )") },
        { QStringLiteral("Entry"),
          QStringLiteral("CREATE TABLE Entry ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, ItemName "
                         "nvarchar(255) NOT NULL, CategoryName nvarchar(255) NOT NULL, CategoryID integer NOT NULL, "
                         "TransactDateTime  datetime NOT NULL, Price float(50) NOT NULL, LocationText nvarchar(255), "
                         "EnableGeoLoc boolean NOT NULL, GeoLocID integer, GeoLocLongit float(50), GeoLocLatit "
                         "float(50), ItemID integer NOT NULL )") },
    };
    return tables;
}

const QStringList defaultCategories = {
    QStringLiteral("Food"),
    QStringLiteral("Drinks"),
    QStringLiteral("Automobile - Fuel"),
    QStringLiteral("Automobile - Lease"),
    QStringLiteral("Automobile - Maintainence"),
    QStringLiteral("Automobile - Other"),
    QStringLiteral("Clothing"),
    QStringLiteral("Entertainment - Dining"),
    QStringLiteral("Entertainment - Movies"),
    QStringLiteral("Entertainment - Recreation"),
    QStringLiteral("Entertainment - Sports"),
    QStringLiteral("Entertainment - Other"),
    QStringLiteral("Groceries"),
    QStringLiteral("Gifts"),
    QStringLiteral("Household"),
    QStringLiteral("Insurance - Life"),
    QStringLiteral("Insurance - Health"),
    QStringLiteral("Insurance - Travel"),
    QStringLiteral("Insurance - Home"),
    QStringLiteral("Insurance - Other"),
    QStringLiteral("Loan - Auto"),
    QStringLiteral("Loan - Home"),
    QStringLiteral("Loan - Student"),
    QStringLiteral("Loan - Other"),
    QStringLiteral("Medical Expense"),
    QStringLiteral("Dental Expense"),
    QStringLiteral("Personal Care"),
    QStringLiteral("Mortgage"),
    QStringLiteral("Phone"),
    QStringLiteral("Retirement Savings"),
    QStringLiteral("Rent"),
    QStringLiteral("Subscriptions"),
    QStringLiteral("Taxes"),
    QStringLiteral("Utilities - Cable"),
    QStringLiteral("Utilities - Gas/Electric/Water"),
    QStringLiteral("Utilities - Internet Access"),
    QStringLiteral("Others"),
};

const QStringList defaultModes = {
    QStringLiteral("Default"),
    QStringLiteral("Money Saving"),
    QStringLiteral("Time Saving"),
};

// Creates the described tables that are missing and adds the missing
// default rows. Exact, case-sensitive: a table "entry" does not count as
// "Entry", and the create statement that SQLite then refuses is ignored, as
// is a default row the file refuses; a failure of the file itself is not.
void createTablesAndDefaultRows(StoreConnection &connection, Statements &statements)
{
    const QStringList tables = connection.database().tables(QSql::Tables);
    for (const Table &table : describedTables()) {
        if (!tables.contains(table.name, Qt::CaseSensitive))
            statements.runText(table.createStatement);
    }
    for (const QString &name : defaultCategories)
        Schema::addNameIfMissing(statements, name,
                                 QStringLiteral("SELECT COUNT(CategoryName) FROM Category WHERE CategoryName = :id"),
                                 QStringLiteral("INSERT INTO Category (CategoryName) VALUES (:name)"));
    // The same as AddMode but for the insert's text, which has never ended
    // in a semicolon here.
    for (const QString &name : defaultModes)
        Schema::addNameIfMissing(statements, name,
                                 QStringLiteral("SELECT COUNT(ModeName) FROM Mode WHERE ModeName = :id"),
                                 QStringLiteral("INSERT INTO Mode (ModeName) VALUES (:name)"));
}

// Whether the file takes a write, found out without changing it: the
// version is written again inside a transaction that is rolled back, which
// needs the journal and the write lock as any write does. Empty when it
// does (or when another program holds the file just now, which says
// nothing about the file); else SQLite's reason.
QString writeProblem(StoreConnection &connection, Statements &statements, int version)
{
    connection.setBusyTimeout(StoreConnection::startUpBusyTimeout);
    QString problem;
    std::optional<QSqlQuery> begin;
    if (!statements.runText(begin, QStringLiteral("BEGIN IMMEDIATE"))) {
        if (!begin || !StoreErrors::isBusy(begin->lastError()))
            problem = begin ? begin->lastError().text() : QString();
    } else {
        std::optional<QSqlQuery> write;
        if (!statements.runText(write, QStringLiteral("PRAGMA user_version = %1").arg(version)))
            problem = write->lastError().text();
        statements.runText(QStringLiteral("ROLLBACK"));
    }
    connection.setBusyTimeout(StoreConnection::busyTimeout);
    return problem;
}

} // namespace

bool Schema::addNameIfMissing(Statements &statements, const QString &name, const QString &countStatement,
                              const QString &insertStatement)
{
    if (statements.count(countStatement, { { QStringLiteral(":id"), name } }) == 1)
        return true;
    std::optional<QSqlQuery> insert;
    return statements.run(insert, insertStatement, { { QStringLiteral(":name"), name } });
}

int Schema::version(Statements &statements)
{
    std::optional<QSqlQuery> query;
    if (!statements.runText(query, QStringLiteral("PRAGMA user_version")) || !query->next())
        return -1;
    return query->value(0).toInt();
}

bool Schema::upgrade(Statements &statements, const QList<Migration> &steps, QString *failure)
{
    const int from = version(statements);
    if (from < 0) {
        *failure = tr("The version of the file cannot be read.");
        return false;
    }
    for (const Migration &step : steps) {
        if (step.version <= from)
            continue;
        QString reason;
        bool done = statements.runText(QStringLiteral("BEGIN IMMEDIATE"), &reason);
        if (done) {
            for (const QString &statement : step.statements) {
                done = statements.runText(statement, &reason);
                if (!done)
                    break;
            }
            done = done && statements.runText(QStringLiteral("PRAGMA user_version = %1").arg(step.version), &reason) &&
                statements.runText(QStringLiteral("COMMIT"), &reason);
            if (!done)
                statements.runText(QStringLiteral("ROLLBACK"));
        }
        if (!done) {
            *failure = tr("%1 (%2)").arg(reason, step.purpose);
            return false;
        }
    }
    return true;
}

Schema::Outcome Schema::prepare(StoreConnection &connection, Statements &statements, bool opened)
{
    Outcome outcome;
    const QString file = connection.fileName();
    const int found = version(statements);
    if (found > Migrations::latestVersion()) {
        outcome.refusal = tr("%1 was written by a newer version of Ledgerly (its version %2; this Ledgerly knows "
                             "versions up to %3). Use that version of Ledgerly with it.")
                              .arg(file)
                              .arg(found)
                              .arg(Migrations::latestVersion());
        return outcome;
    }

    statements.watchWrites();
    createTablesAndDefaultRows(connection, statements);
    if (statements.endWatchAndTellFailure()) {
        outcome.writeProblem = statements.lastFileFailure();
        return outcome;
    }

    QString failure;
    if (!upgrade(statements, Migrations::all(), &failure)) {
        outcome.writeProblem = tr("Ledgerly could not bring %1 up to date: %2").arg(file, failure);
        return outcome;
    }
    if (opened)
        outcome.writeProblem = writeProblem(connection, statements, qMax(found, Migrations::latestVersion()));
    return outcome;
}
