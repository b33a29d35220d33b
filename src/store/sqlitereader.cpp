// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "sqlitereader.h"

#include <QByteArray>

#include <sqlite3.h>

QVariant SqliteRow::value(int column) const
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return QVariant(qint64(sqlite3_column_int64(statement, column)));
    case SQLITE_FLOAT:
        return QVariant(sqlite3_column_double(statement, column));
    case SQLITE_NULL:
        return QVariant(QMetaType::fromType<QString>());
    case SQLITE_BLOB:
        return QVariant(QByteArray(static_cast<const char *>(sqlite3_column_blob(statement, column)),
                                   sqlite3_column_bytes(statement, column)));
    default: {
        const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
        return QVariant(QString::fromUtf8(text, sqlite3_column_bytes(statement, column)));
    }
    }
}

// Integers and reals convert as their variants would (a plain C++
// conversion); texts, blobs and NULLs take the variant's way.
QString SqliteRow::toString(int column) const
{
    if (sqlite3_column_type(statement, column) != SQLITE_TEXT)
        return value(column).toString();
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
    return QString::fromUtf8(text, sqlite3_column_bytes(statement, column));
}

int SqliteRow::toInt(int column) const
{
    if (sqlite3_column_type(statement, column) != SQLITE_INTEGER)
        return value(column).toInt();
    return int(sqlite3_column_int64(statement, column));
}

float SqliteRow::toFloat(int column) const
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_FLOAT:
        return float(sqlite3_column_double(statement, column));
    case SQLITE_INTEGER:
        return float(sqlite3_column_int64(statement, column));
    default:
        return value(column).toFloat();
    }
}

bool SqliteRow::toBool(int column) const
{
    if (sqlite3_column_type(statement, column) != SQLITE_INTEGER)
        return value(column).toBool();
    return sqlite3_column_int64(statement, column) != 0;
}

bool SqliteRow::isText(int column) const
{
    return sqlite3_column_type(statement, column) == SQLITE_TEXT;
}

SqliteReader::SqliteReader(Statements &statements, std::function<sqlite3 *()> handle)
    : statements(statements), handle(std::move(handle))
{
}

SqliteReader::Prepared SqliteReader::prepare(const QString &statement, const Bindings &bindings,
                                             sqlite3_stmt **prepared)
{
    sqlite3 *connection = handle();
    if (!connection)
        return Prepared::NoHandle;
    const QByteArray statementText = statement.toUtf8();
    if (sqlite3_prepare_v2(connection, statementText.constData(), int(statementText.size()), prepared, nullptr) !=
        SQLITE_OK) {
        sqlite3_finalize(*prepared);
        *prepared = nullptr;
        return Prepared::Failed;
    }
    for (const auto &binding : bindings) {
        const int index = sqlite3_bind_parameter_index(*prepared, binding.first.toUtf8().constData());
        if (index == 0)
            continue;
        // Lists bind texts only (names and dates in their text form); a null
        // text binds as NULL, as the driver would bind it.
        if (binding.second.isNull()) {
            sqlite3_bind_null(*prepared, index);
        } else {
            const QByteArray text = binding.second.toString().toUtf8();
            sqlite3_bind_text(*prepared, index, text.constData(), int(text.size()), SQLITE_TRANSIENT);
        }
    }
    lastStep = SQLITE_OK;
    return Prepared::OnHandle;
}

bool SqliteReader::step(sqlite3_stmt *prepared)
{
    lastStep = sqlite3_step(prepared);
    return lastStep == SQLITE_ROW;
}

bool SqliteReader::finish(sqlite3_stmt *prepared)
{
    sqlite3_finalize(prepared);
    return lastStep == SQLITE_DONE;
}
