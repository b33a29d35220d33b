// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "records.h"
#include "statements.h"

#include <QDateTime>
#include <QString>

#include <optional>

class SqliteReader;

// Which entries a list or a count is of: all of them, or those of one
// category, at one stored date-time or between two (both included, compared
// with the whole stored date-time), newest or cheapest first.
struct EntryFilter
{
    std::optional<QString> category;
    enum class Dates { Any, At, Between } dates = Dates::Any;
    QDateTime first;
    QDateTime last;
    enum class Order { NewestFirst, CheapestFirst } order = Order::NewestFirst;

    static EntryFilter ofCategory(const QString &name);
    EntryFilter &at(const QDateTime &when);
    EntryFilter &between(const QDateTime &from, const QDateTime &to);
    EntryFilter &cheapestFirst();
};

// The one query behind every entry list and count of the store.
class EntryQuery
{
    Q_DISABLE_COPY(EntryQuery)

public:
    // Both outlive this object.
    EntryQuery(Statements &statements, SqliteReader &reader);

    // Records allocated for the caller; an empty list when reading fails or
    // stops before the last row.
    QList<Entry *> list(const EntryFilter &filter);
    int count(const EntryFilter &filter);

    // The column list of an entry row, as every entry reader expects it.
    static const QString &columns();

private:
    static QString where(const EntryFilter &filter, Bindings *bindings);

    Statements &statements;
    SqliteReader &reader;
};
