// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "sqlitereader.h"

#include <QByteArray>

#include <algorithm>

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

StoredValue::StoredValue(const QVariant &value)
{
    if (value.isNull())
        return;
    switch (value.typeId()) {
    case QMetaType::LongLong:
    case QMetaType::Int:
        kind = Kind::Integer;
        integer = value.toLongLong();
        break;
    case QMetaType::Double:
        kind = Kind::Real;
        real = value.toDouble();
        break;
    case QMetaType::QByteArray:
        kind = Kind::Blob;
        bytes = value.toByteArray();
        break;
    default:
        kind = Kind::Text;
        bytes = value.toString().toUtf8();
        break;
    }
}

bool StoredValue::operator==(const StoredValue &other) const
{
    const auto isNumber = [](Kind kind) { return kind == Kind::Integer || kind == Kind::Real; };
    if (isNumber(kind) && isNumber(other.kind)) {
        if (kind == Kind::Integer && other.kind == Kind::Integer)
            return integer == other.integer;
        // Exactly, as SQLite compares an integer with a real: a long double
        // holds every 64-bit integer.
        const long double a = kind == Kind::Integer ? static_cast<long double>(integer) : real;
        const long double b = other.kind == Kind::Integer ? static_cast<long double>(other.integer) : other.real;
        return a == b;
    }
    if (kind != other.kind)
        return false;
    return kind == Kind::Null || bytes == other.bytes;
}

bool StoredValue::operator<(const StoredValue &other) const
{
    const auto rank = [](Kind kind) {
        switch (kind) {
        case Kind::Null:
            return 0;
        case Kind::Integer:
        case Kind::Real:
            return 1;
        case Kind::Text:
            return 2;
        case Kind::Blob:
            return 3;
        }
        return 0;
    };
    if (rank(kind) != rank(other.kind))
        return rank(kind) < rank(other.kind);
    switch (kind) {
    case Kind::Null:
        return false;
    case Kind::Integer:
    case Kind::Real:
        if (kind == Kind::Integer && other.kind == Kind::Integer)
            return integer < other.integer;
        // Exactly, as in operator==.
        return (kind == Kind::Integer ? static_cast<long double>(integer) : static_cast<long double>(real)) <
            (other.kind == Kind::Integer ? static_cast<long double>(other.integer)
                                         : static_cast<long double>(other.real));
    case Kind::Text:
    case Kind::Blob:
        // Byte for byte as unsigned bytes; a shorter text that begins the
        // other first.
        return std::lexicographical_compare(
            reinterpret_cast<const unsigned char *>(bytes.constData()),
            reinterpret_cast<const unsigned char *>(bytes.constData()) + bytes.size(),
            reinterpret_cast<const unsigned char *>(other.bytes.constData()),
            reinterpret_cast<const unsigned char *>(other.bytes.constData()) + other.bytes.size());
    }
    return false;
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

QByteArrayView SqliteRow::utf8(int column) const
{
    if (sqlite3_column_type(statement, column) != SQLITE_TEXT)
        return {};
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
    return QByteArrayView(text, sqlite3_column_bytes(statement, column));
}

StoredValue SqliteRow::stored(int column) const
{
    StoredValue value;
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        value.kind = StoredValue::Kind::Integer;
        value.integer = sqlite3_column_int64(statement, column);
        break;
    case SQLITE_FLOAT:
        value.kind = StoredValue::Kind::Real;
        value.real = sqlite3_column_double(statement, column);
        break;
    case SQLITE_TEXT:
        value.kind = StoredValue::Kind::Text;
        value.bytes = QByteArray(reinterpret_cast<const char *>(sqlite3_column_text(statement, column)),
                                 sqlite3_column_bytes(statement, column));
        break;
    case SQLITE_BLOB:
        value.kind = StoredValue::Kind::Blob;
        value.bytes = QByteArray(static_cast<const char *>(sqlite3_column_blob(statement, column)),
                                 sqlite3_column_bytes(statement, column));
        break;
    default:
        break;
    }
    return value;
}

bool SqliteRow::holds(int column, const StoredValue &value) const
{
    using Kind = StoredValue::Kind;
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_TEXT:
    case SQLITE_BLOB: {
        const bool text = sqlite3_column_type(statement, column) == SQLITE_TEXT;
        if (value.kind != (text ? Kind::Text : Kind::Blob))
            return false;
        const void *data = text ? static_cast<const void *>(sqlite3_column_text(statement, column))
                                : sqlite3_column_blob(statement, column);
        const int size = sqlite3_column_bytes(statement, column);
        return QByteArrayView(static_cast<const char *>(data), size) == QByteArrayView(value.bytes);
    }
    case SQLITE_NULL:
        return value.kind == Kind::Null;
    default:
        // Numbers are few bytes: kept and compared as numbers.
        return stored(column) == value;
    }
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
