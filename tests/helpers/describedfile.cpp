// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "describedfile.h"

#include "migrations.h"
#include "rawdatabase.h"

#include <QRegularExpression>

const QList<QPair<QString, QString>> &describedCreateStatements()
{
    static const QList<QPair<QString, QString>> statements = {
        { QStringLiteral("Category"),
          QStringLiteral("CREATE TABLE Category (SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, CategoryName  "
                         "nvarchar(255) NOT NULL UNIQUE )") },
        { QStringLiteral("Items"),
          QStringLiteral("CREATE TABLE Items ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, ItemName "
                         "nvarchar(255) NOT NULL, CategoryName  nvarchar(255) NOT NULL, CategoryID integer NOT NULL, "
                         "LastPrice float(50), UseFrequency  integer )") },
        { QStringLiteral("Mode"),
          QStringLiteral("CREATE TABLE Mode ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, ModeName  "
                         "nvarchar(255) NOT NULL )") },
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
    return statements;
}

bool makeDescribedFile(const QString &fileName)
{
    RawDatabase raw(fileName);
    for (const auto &table : describedCreateStatements()) {
        if (!raw.exec(table.second))
            return false;
    }
    return true;
}

QStringList migrationObjectNames(const QString &type)
{
    const QRegularExpression create(QStringLiteral("^CREATE (?:UNIQUE )?%1 (?:IF NOT EXISTS )?(\\w+)").arg(type),
                                    QRegularExpression::CaseInsensitiveOption);
    // A full-text table is a table of sqlite_master, and SQLite keeps its
    // index in tables beside it: always _data, _idx and _config, _docsize
    // unless columnsize=0, _content unless content='' or a table's.
    const QRegularExpression virtualTable(
        QStringLiteral("^CREATE VIRTUAL TABLE (\\w+) USING fts5\\((.*)\\)$"), QRegularExpression::CaseInsensitiveOption);
    QStringList names;
    for (const Migration &step : Migrations::all()) {
        for (const QString &statement : step.statements) {
            const QRegularExpressionMatch match = create.match(statement);
            if (match.hasMatch())
                names << match.captured(1);
            const QRegularExpressionMatch fullText = virtualTable.match(statement);
            if (fullText.hasMatch() && type.compare(QLatin1String("table"), Qt::CaseInsensitive) == 0) {
                const QString name = fullText.captured(1);
                const QString options = fullText.captured(2);
                names << name << name + QStringLiteral("_data") << name + QStringLiteral("_idx")
                      << name + QStringLiteral("_config");
                if (!options.contains(QLatin1String("columnsize=0")))
                    names << name + QStringLiteral("_docsize");
                if (!options.contains(QLatin1String("content=")))
                    names << name + QStringLiteral("_content");
            }
        }
    }
    names.sort();
    return names;
}
