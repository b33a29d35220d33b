// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "budgetperiod.h"

#include <algorithm>

bool BudgetPeriods::isMonthStart(int day)
{
    return day >= firstMonthStart && day <= lastMonthStart;
}

DateSpan BudgetPeriods::monthHolding(const QDate &day, int monthStart)
{
    // A start of at most 28 exists in every month, February included.
    QDate first(day.year(), day.month(), monthStart);
    if (day < first)
        first = first.addMonths(-1);
    return { first, first.addMonths(1).addDays(-1) };
}

DateSpan BudgetPeriods::weekHolding(const QDate &day)
{
    const QDate monday = day.addDays(1 - day.dayOfWeek());
    return { monday, monday.addDays(6) };
}

DateSpan BudgetPeriods::yearHolding(const QDate &day, int monthStart)
{
    QDate first(day.year(), 1, monthStart);
    if (day < first)
        first = first.addYears(-1);
    return { first, first.addYears(1).addDays(-1) };
}

DateSpan BudgetPeriods::holding(BudgetPeriod period, const QDate &day, int monthStart)
{
    switch (period) {
    case BudgetPeriod::Week:
        return weekHolding(day);
    case BudgetPeriod::Year:
        return yearHolding(day, monthStart);
    case BudgetPeriod::Month:
        break;
    }
    return monthHolding(day, monthStart);
}

QString BudgetPeriods::name(BudgetPeriod period)
{
    switch (period) {
    case BudgetPeriod::Week:
        return QStringLiteral("week");
    case BudgetPeriod::Year:
        return QStringLiteral("year");
    case BudgetPeriod::Month:
        break;
    }
    return QStringLiteral("month");
}

std::optional<BudgetPeriod> BudgetPeriods::fromName(const QString &name)
{
    for (BudgetPeriod period : { BudgetPeriod::Month, BudgetPeriod::Week, BudgetPeriod::Year })
        if (name == BudgetPeriods::name(period))
            return period;
    return std::nullopt;
}

qint64 BudgetPeriods::daysElapsed(const DateSpan &span, const QDate &today)
{
    return std::clamp<qint64>(span.first.daysTo(today) + 1, 0, span.days());
}
