// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QDate>
#include <QList>
#include <QString>

#include <optional>

// The step of a recurring expense: every `count` days, weeks, months or
// years.
enum class RecurrenceUnit { Day, Week, Month, Year };

struct Recurrence
{
    int count = 1;
    RecurrenceUnit unit = RecurrenceUnit::Month;

    bool operator==(const Recurrence &other) const { return count == other.count && unit == other.unit; }
    bool operator!=(const Recurrence &other) const { return !(*this == other); }
};

// Where a recurrence stops: on a last day (included), after a number of
// occurrences in all, or never (a null day and no count).
struct RecurrenceEnd
{
    QDate until;
    int times = 0;

    bool isOpen() const { return !until.isValid() && times <= 0; }
};

// The calendar of recurring expenses. Occurrence k is the first day plus k
// steps, always counted from the first day: a monthly expense from 31 Jan
// falls on 28 Feb (29 in a leap year) and on 31 Mar again, and a yearly one
// from 29 Feb on 28 Feb in other years. QDate's addMonths and addYears clamp
// to the month's last day, which is exactly that.
namespace RecurrenceDates {

constexpr int largestCount = 99;

bool isAcceptable(const Recurrence &every);

// Occurrence `index` (0 is the first day); invalid beyond QDate's range.
QDate occurrence(const QDate &first, const Recurrence &every, qint64 index);
// Whether occurrence `index` happens at all under `end`.
bool exists(const QDate &first, const Recurrence &every, const RecurrenceEnd &end, qint64 index);
// The first occurrence after `day`, by its index.
qint64 firstIndexAfter(const QDate &first, const Recurrence &every, const QDate &day);
// How many occurrences from `index` on are still to come; nothing for an
// open end.
std::optional<qint64> left(const QDate &first, const Recurrence &every, const RecurrenceEnd &end, qint64 index);

// "10d", "2w", "1m", "1y": the form the command line reads and lists. A
// text of digits and a unit letter reads whatever its count (0 and 100
// read, and isAcceptable() refuses them); anything else does not.
std::optional<Recurrence> fromText(const QString &text);
QString text(const Recurrence &every);
// "1 month", "2 weeks": the unit singular for one, plural otherwise.
QString told(const Recurrence &every);

} // namespace RecurrenceDates
