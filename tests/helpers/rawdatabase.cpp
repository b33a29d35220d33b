// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "rawdatabase.h"

#include "storageform.h"

#include <QAtomicInt>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace {
QAtomicInt connectionCounter;
}

RawDatabase::RawDatabase(const QString &fileName)
    : name(QStringLiteral("raw_test_connection_%1").arg(connectionCounter.fetchAndAddRelaxed(1)))
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    db.setDatabaseName(fileName);
    if (!db.open())
        error = db.lastError().text();
}

RawDatabase::~RawDatabase()
{
    {
        QSqlDatabase db = QSqlDatabase::database(name, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

bool RawDatabase::isOpen() const
{
    return QSqlDatabase::database(name, false).isOpen();
}

bool RawDatabase::exec(const QString &sql)
{
    QSqlQuery query(QSqlDatabase::database(name, false));
    if (!query.exec(sql)) {
        error = query.lastError().text();
        return false;
    }
    return true;
}

QVariant RawDatabase::scalar(const QString &sql)
{
    QSqlQuery query(QSqlDatabase::database(name, false));
    if (!query.exec(sql)) {
        error = query.lastError().text();
        return {};
    }
    return query.next() ? query.value(0) : QVariant();
}

QList<QVariantList> RawDatabase::rows(const QString &sql)
{
    QList<QVariantList> result;
    QSqlQuery query(QSqlDatabase::database(name, false));
    query.setForwardOnly(true);
    if (!query.exec(sql)) {
        error = query.lastError().text();
        return result;
    }
    while (query.next()) {
        QVariantList row;
        const int columns = query.record().count();
        for (int i = 0; i < columns; ++i)
            row.append(query.value(i));
        result.append(row);
    }
    // A read that stopped on an error keeps the rows read before it.
    if (query.lastError().isValid())
        error = query.lastError().text();
    return result;
}

QStringList RawDatabase::dumpTables()
{
    QStringList dump;
    const QList<QVariantList> tables =
        rows(QStringLiteral("SELECT name, sql FROM sqlite_master WHERE type = 'table' ORDER BY name"));
    for (const QVariantList &table : tables) {
        const QString name = table.at(0).toString();
        // A table without rowids gives its rows in the order of its key.
        const QString order = table.at(1).toString().contains(QLatin1String("WITHOUT ROWID"), Qt::CaseInsensitive)
            ? QString()
            : QStringLiteral(" ORDER BY rowid");
        for (const QVariantList &row : rows(QStringLiteral("SELECT * FROM \"%1\"%2").arg(name, order))) {
            QStringList cells;
            for (const QVariant &cell : row)
                cells.append(cell.isNull() ? QStringLiteral("NULL") : cell.toString());
            dump.append(name + QLatin1Char('|') + cells.join(QLatin1Char('|')));
        }
    }
    return dump;
}

QString RawDatabase::lastError() const
{
    return error;
}

QString RawDatabase::connectionName() const
{
    return name;
}

int RawDatabase::insertEntry(const QString &item, const QString &category, const QDateTime &when, double price,
                             const QString &location, bool geo, double longitude, double latitude)
{
    QSqlQuery query(QSqlDatabase::database(name, false));
    query.prepare(QStringLiteral(
        "INSERT INTO Entry (ItemName,CategoryName,CategoryID,TransactDateTime,Price,LocationText,EnableGeoLoc,"
        "GeoLocID,GeoLocLongit,GeoLocLatit,ItemID) VALUES (?, ?, "
        "coalesce((select SNo from Category where CategoryName = ?), 0), ?, ?, ?, ?, 0, ?, ?, 0)"));
    query.addBindValue(item);
    query.addBindValue(category);
    query.addBindValue(category);
    query.addBindValue(StorageForm::dateTime(when));
    query.addBindValue(price);
    query.addBindValue(location);
    query.addBindValue(StorageForm::boolean(geo));
    query.addBindValue(longitude);
    query.addBindValue(latitude);
    if (!query.exec()) {
        error = query.lastError().text();
        return 0;
    }
    return query.lastInsertId().toInt();
}
