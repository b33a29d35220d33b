// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QDate>
#include <QString>

#include <optional>

// How long a budget runs before it starts again.
enum class BudgetPeriod { Month, Week, Year };

// A run of whole days, both ends included.
struct DateSpan
{
    QDate first;
    QDate last;

    bool contains(const QDate &day) const { return day >= first && day <= last; }
    qint64 days() const { return first.daysTo(last) + 1; }
};

// The calendar of budgets: which days a period covers and what its name
// is. A month (and a year) begins on the month start, a day from 1 to 28,
// so that one paid on the 25th can budget from payday to payday; a week
// runs from Monday to Sunday whatever the month start.
namespace BudgetPeriods {

constexpr int firstMonthStart = 1;
constexpr int lastMonthStart = 28;

bool isMonthStart(int day);

// The budget month holding `day`: from the month start on or before it to
// the day before the next month start.
DateSpan monthHolding(const QDate &day, int monthStart);
// The Monday to Sunday week holding `day`.
DateSpan weekHolding(const QDate &day);
// The budget year holding `day`: from the month start of the January on or
// before it to the day before the month start of the next January.
DateSpan yearHolding(const QDate &day, int monthStart);
DateSpan holding(BudgetPeriod period, const QDate &day, int monthStart);

// "month", "week", "year": the names the file and the command line use.
QString name(BudgetPeriod period);
std::optional<BudgetPeriod> fromName(const QString &name);

// The days of `span` up to and including `today`: 0 before it begins, all
// of them after it ends.
qint64 daysElapsed(const DateSpan &span, const QDate &today);

} // namespace BudgetPeriods
