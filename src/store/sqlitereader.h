// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "statements.h"

#include <QByteArrayView>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <functional>

struct sqlite3;
struct sqlite3_stmt;

// A column's value as SQLite holds it, kept to compare later rows with as
// DISTINCT and GROUP BY compare: NULL only with NULL, numbers of either
// kind by value, texts and blobs byte for byte.
class StoredValue
{
public:
    StoredValue() = default;
    // The value Qt's driver made of a column.
    explicit StoredValue(const QVariant &value);

    bool operator==(const StoredValue &other) const;
    bool operator!=(const StoredValue &other) const { return !(*this == other); }
    // Sorted as SQLite sorts a column of the BINARY collation: NULL first,
    // then numbers by value, texts byte for byte, blobs likewise.
    bool operator<(const StoredValue &other) const;

private:
    friend class SqliteRow;
    enum class Kind : char { Null, Integer, Real, Text, Blob };

    Kind kind = Kind::Null;
    qint64 integer = 0;
    double real = 0;
    QByteArray bytes;
};

// One row of a statement run on the connection's own SQLite handle. Each
// column becomes the QVariant that Qt's driver would have made of it, so
// that what reads a QSqlQuery reads this alike.
class SqliteRow
{
public:
    explicit SqliteRow(sqlite3_stmt *statement) : statement(statement) { }
    QVariant value(int column) const;
    // What value(column).toString(), toInt(), toFloat() and toBool() give,
    // without a variant made and dropped for each: a list of ten years
    // reads a dozen columns of every row.
    QString toString(int column) const;
    int toInt(int column) const;
    float toFloat(int column) const;
    bool toBool(int column) const;
    bool isText(int column) const;
    // The bytes of a text column as SQLite holds them (UTF-8), valid until
    // the next row; empty for any other column.
    QByteArrayView utf8(int column) const;
    // The column's value, kept; and whether it equals a value kept before,
    // without keeping it (no copy of a text made for each row).
    StoredValue stored(int column) const;
    bool holds(int column, const StoredValue &value) const;

private:
    sqlite3_stmt *statement;
};

// Reads the rows of long lists (the entry lists that reports read, up to
// ten years of rows at a time) on the SQLite handle underneath Qt's driver
// where that is safe, and through the driver otherwise. Qt's driver caches
// every row as a list of variants and converts every text to UTF-16 inside
// SQLite before handing it over; reading the same statement on the handle
// costs about half as much.
// The same for a row Qt's driver read.
inline QString stringAt(const QSqlQuery &row, int column)
{
    return row.value(column).toString();
}
inline int intAt(const QSqlQuery &row, int column)
{
    return row.value(column).toInt();
}
inline float floatAt(const QSqlQuery &row, int column)
{
    return row.value(column).toFloat();
}
inline bool boolAt(const QSqlQuery &row, int column)
{
    return row.value(column).toBool();
}
inline StoredValue storedAt(const QSqlQuery &row, int column)
{
    return StoredValue(row.value(column));
}
inline bool holdsAt(const QSqlQuery &row, int column, const StoredValue &value)
{
    return StoredValue(row.value(column)) == value;
}
inline StoredValue storedAt(const SqliteRow &row, int column)
{
    return row.stored(column);
}
inline bool holdsAt(const SqliteRow &row, int column, const StoredValue &value)
{
    return row.holds(column, value);
}
inline QString stringAt(const SqliteRow &row, int column)
{
    return row.toString(column);
}
inline int intAt(const SqliteRow &row, int column)
{
    return row.toInt(column);
}
inline float floatAt(const SqliteRow &row, int column)
{
    return row.toFloat(column);
}
inline bool boolAt(const SqliteRow &row, int column)
{
    return row.toBool(column);
}

class SqliteReader
{
    Q_DISABLE_COPY(SqliteReader)

public:
    // `handle` gives the handle to read on, or null to read through
    // `statements`; both outlive this object.
    SqliteReader(Statements &statements, std::function<sqlite3 *()> handle);

    // Hands each row to `visit`, as a QSqlQuery or as a SqliteRow, both of
    // which answer value(column). False when the statement could not run or
    // reading stopped before the last row.
    template<typename Visit> bool readRows(const QString &statement, const Bindings &bindings, Visit visit)
    {
        sqlite3_stmt *prepared = nullptr;
        switch (prepare(statement, bindings, &prepared)) {
        case Prepared::OnHandle: {
            const SqliteRow row(prepared);
            while (step(prepared))
                visit(row);
            return finish(prepared);
        }
        case Prepared::Failed:
            return false;
        case Prepared::NoHandle:
            break;
        }
        std::optional<QSqlQuery> query;
        if (!statements.run(query, statement, bindings))
            return false;
        while (query->next())
            visit(std::as_const(*query));
        return !query->lastError().isValid();
    }

private:
    enum class Prepared { OnHandle, NoHandle, Failed };
    Prepared prepare(const QString &statement, const Bindings &bindings, sqlite3_stmt **prepared);
    // Moves to the next row; false at the end or on an error.
    bool step(sqlite3_stmt *prepared);
    // Frees the statement; whether its last step reached the end.
    bool finish(sqlite3_stmt *prepared);

    Statements &statements;
    std::function<sqlite3 *()> handle;
    int lastStep = 0;
};
