// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "records.h"
#include "statements.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <functional>
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
    // Newest first keeps entries of the same date-time in the order of the
    // table; the last added first puts the higher SNo first among them.
    enum class Order { NewestFirst, CheapestFirst, NewestFirstLastAddedFirst } order = Order::NewestFirst;

    // The parts of a search, each left out when empty or unset. The texts
    // are folded (see EntrySearch::fold) and found as a part of the folded
    // item, category or place (`text`) or of the folded place (`place`);
    // days are compared by the date part, amounts to the cent.
    QString foldedText;
    QString foldedPlace;
    QDate firstDay;
    QDate lastDay;
    std::optional<qint64> minimumCents;
    std::optional<qint64> maximumCents;

    // A window of the list: `limit` entries (all when 0) after the first
    // `offset` of them, in the list's order.
    int limit = 0;
    int offset = 0;

    static EntryFilter ofCategory(const QString &name);
    EntryFilter &at(const QDateTime &when);
    EntryFilter &between(const QDateTime &from, const QDateTime &to);
    EntryFilter &cheapestFirst();
};

// An entry as a table of entries and its sums read it: its texts, price and
// stored date-time, without the rest of its record, and without a local
// date-time made of it unless asked for. Making one costs the time zone's
// rules for every row of ten years; a table shows a screenful of them.
struct EntryLine
{
    QString ItemName;
    QString CategoryName;
    QString LocationText;
    float Price = 0;
    // The date and time of a date-time stored in the file's own form;
    // invalid for any other, whose date-time `other` then holds.
    QDate storedDate;
    QTime storedTime;
    QDateTime other;
    // The date-time the entry's record holds (Entry::TransactDateTime).
    QDateTime dateTime() const
    {
        return storedDate.isValid() ? QDateTime(storedDate, storedTime) : other;
    }
    // Its day, as dateTime().date() gives it, without the date-time made: a
    // local date-time keeps the date it is made of, even one that falls
    // into a gap of the zone's offsets (Qt makes that one invalid, with
    // that date).
    QDate day() const { return storedDate.isValid() ? storedDate : other.date(); }
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
    // Hands each row of the same list to `visit`, in order, as a record
    // that lives for the call only: for callers that condense a long list
    // as it is read rather than hold it. False when reading failed or
    // stopped before the last row; the rows visited until then were read.
    bool visit(const EntryFilter &filter, const std::function<void(const Entry &)> &visit);
    // The same rows as lines (see EntryLine), with the same outcome.
    bool visitLines(const EntryFilter &filter, const std::function<void(const EntryLine &)> &visit);
    int count(const EntryFilter &filter);
    // How many entries the filter takes (its window aside) and the sum of
    // their prices; false when the file cannot be read.
    bool totals(const EntryFilter &filter, int *count, double *total);

    // The column list of an entry row, as every entry reader expects it.
    static const QString &columns();

    // What the search texts' trigram index is asked for the folded texts
    // given: every run of three characters of each, quoted, all required
    // ("caf" AND "afe" for "cafe"); empty when no text has three.
    static QString trigramQuery(const QStringList &texts);

private:
    // The statement of a list, its bindings added to *bindings.
    static QString statement(const EntryFilter &filter, Bindings *bindings);
    static QString where(const EntryFilter &filter, Bindings *bindings);

    Statements &statements;
    SqliteReader &reader;
};
