// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

// A second, independent connection on a database file, for tests that check
// what the program really wrote (or that prepare a file by hand).
class RawDatabase
{
public:
    explicit RawDatabase(const QString &fileName);
    ~RawDatabase();
    RawDatabase(const RawDatabase &) = delete;
    RawDatabase &operator=(const RawDatabase &) = delete;

    bool isOpen() const;
    bool exec(const QString &sql);
    // The first column of the first row, or an invalid variant.
    QVariant scalar(const QString &sql);
    // Every row the statement gives; when reading stops on an error, the
    // rows before it, and lastError() tells why.
    QList<QVariantList> rows(const QString &sql);
    // Every row of every table (sqlite_sequence included), as text, table by
    // table: two dumps are equal when nothing stored changed.
    QStringList dumpTables();
    QString lastError() const;
    QString connectionName() const;

    // Writes an entry row directly, in the file's storage forms. Returns the
    // new SNo or 0.
    int insertEntry(const QString &item, const QString &category, const QDateTime &when, double price,
                    const QString &location = QStringLiteral("Somewhere"), bool geo = false, double longitude = 103.0,
                    double latitude = 1.3);

private:
    QString name;
    QString error;
};
