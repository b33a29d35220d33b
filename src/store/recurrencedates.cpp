// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "recurrencedates.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>
#include <limits>

namespace {

// A count of months or years beyond what QDate takes is past its range.
constexpr qint64 largestMonths = 12LL * 1000000;

} // namespace

bool RecurrenceDates::isAcceptable(const Recurrence &every)
{
    return every.count >= 1 && every.count <= largestCount;
}

QDate RecurrenceDates::occurrence(const QDate &first, const Recurrence &every, qint64 index)
{
    if (!first.isValid() || index < 0 || !isAcceptable(every))
        return QDate();
    const qint64 steps = index * every.count;
    switch (every.unit) {
    case RecurrenceUnit::Day:
        return first.addDays(steps);
    case RecurrenceUnit::Week:
        return first.addDays(steps * 7);
    case RecurrenceUnit::Month:
        return steps > largestMonths ? QDate() : first.addMonths(int(steps));
    case RecurrenceUnit::Year:
        return steps * 12 > largestMonths ? QDate() : first.addYears(int(steps));
    }
    return QDate();
}

bool RecurrenceDates::exists(const QDate &first, const Recurrence &every, const RecurrenceEnd &end, qint64 index)
{
    if (index < 0 || (end.times > 0 && index >= end.times))
        return false;
    const QDate day = occurrence(first, every, index);
    return day.isValid() && (!end.until.isValid() || day <= end.until);
}

qint64 RecurrenceDates::firstIndexAfter(const QDate &first, const Recurrence &every, const QDate &day)
{
    if (!first.isValid() || !day.isValid() || day < first || !isAcceptable(every))
        return 0;
    // A guess from the calendar, then a step or two either way: the dates
    // only ever grow with the index.
    qint64 guess = 0;
    const qint64 months = qint64(day.year() - first.year()) * 12 + day.month() - first.month();
    switch (every.unit) {
    case RecurrenceUnit::Day:
        guess = first.daysTo(day) / every.count;
        break;
    case RecurrenceUnit::Week:
        guess = first.daysTo(day) / (7 * every.count);
        break;
    case RecurrenceUnit::Month:
        guess = months / every.count;
        break;
    case RecurrenceUnit::Year:
        guess = months / (12 * every.count);
        break;
    }
    qint64 index = std::max<qint64>(0, guess - 1);
    while (index > 0 && occurrence(first, every, index) > day)
        --index;
    while (true) {
        const QDate next = occurrence(first, every, index);
        if (!next.isValid() || next > day)
            return index;
        ++index;
    }
}

std::optional<qint64> RecurrenceDates::left(const QDate &first, const Recurrence &every, const RecurrenceEnd &end,
                                            qint64 index)
{
    if (end.isOpen())
        return std::nullopt;
    qint64 after = std::numeric_limits<qint64>::max();
    if (end.times > 0)
        after = end.times;
    if (end.until.isValid())
        after = std::min(after, firstIndexAfter(first, every, end.until));
    return std::max<qint64>(0, after - std::max<qint64>(0, index));
}

std::optional<Recurrence> RecurrenceDates::fromText(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,9})([dwmy])$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    Recurrence every;
    every.count = match.captured(1).toInt();
    switch (match.captured(2).at(0).toLatin1()) {
    case 'd':
        every.unit = RecurrenceUnit::Day;
        break;
    case 'w':
        every.unit = RecurrenceUnit::Week;
        break;
    case 'm':
        every.unit = RecurrenceUnit::Month;
        break;
    default:
        every.unit = RecurrenceUnit::Year;
        break;
    }
    return every;
}

QString RecurrenceDates::text(const Recurrence &every)
{
    const char *letters = "dwmy";
    return QString::number(every.count) + QLatin1Char(letters[int(every.unit)]);
}

QString RecurrenceDates::told(const Recurrence &every)
{
    const bool one = every.count == 1;
    const char *unit = nullptr;
    switch (every.unit) {
    case RecurrenceUnit::Day:
        unit = one ? QT_TRANSLATE_NOOP("RecurrenceDates", "%1 day") : QT_TRANSLATE_NOOP("RecurrenceDates", "%1 days");
        break;
    case RecurrenceUnit::Week:
        unit = one ? QT_TRANSLATE_NOOP("RecurrenceDates", "%1 week") : QT_TRANSLATE_NOOP("RecurrenceDates", "%1 weeks");
        break;
    case RecurrenceUnit::Month:
        unit =
            one ? QT_TRANSLATE_NOOP("RecurrenceDates", "%1 month") : QT_TRANSLATE_NOOP("RecurrenceDates", "%1 months");
        break;
    case RecurrenceUnit::Year:
        unit = one ? QT_TRANSLATE_NOOP("RecurrenceDates", "%1 year") : QT_TRANSLATE_NOOP("RecurrenceDates", "%1 years");
        break;
    }
    return QCoreApplication::translate("RecurrenceDates", unit).arg(every.count);
}
