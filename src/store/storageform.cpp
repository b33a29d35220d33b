// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "storageform.h"

QString StorageForm::dateTime(const QDateTime &when)
{
    if (!when.isValid())
        return QString();
    // Written digit by digit: an import binds one date per entry, and the
    // general formatter costs several times more. Years without four digits
    // go to it, so the result is the same.
    const QDate date = when.date();
    const QTime time = when.time();
    if (date.year() < 1000 || date.year() > 9999)
        return when.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
    char text[20];
    const auto put = [&text](int at, int value, int digits) {
        for (int i = digits - 1; i >= 0; --i, value /= 10)
            text[at + i] = char('0' + value % 10);
    };
    put(0, date.year(), 4);
    text[4] = '-';
    put(5, date.month(), 2);
    text[7] = '-';
    put(8, date.day(), 2);
    text[10] = 'T';
    put(11, time.hour(), 2);
    text[13] = ':';
    put(14, time.minute(), 2);
    text[16] = ':';
    put(17, time.second(), 2);
    return QString::fromLatin1(text, 19);
}

QDateTime StorageForm::readDateTime(const QString &text)
{
    // The file's own form is read digit by digit: lists of ten years of
    // entries read one per row, and the general ISO parser costs several
    // times more. Anything else goes to that parser, so the result is the same.
    const auto digits = [&text](int from, int count, int *out) {
        int number = 0;
        for (int i = from; i < from + count; ++i) {
            const QChar c = text.at(i);
            if (c < QLatin1Char('0') || c > QLatin1Char('9'))
                return false;
            number = number * 10 + (c.unicode() - '0');
        }
        *out = number;
        return true;
    };
    int year, month, day, hour, minute, second;
    if (text.size() == 19 && text.at(4) == QLatin1Char('-') && text.at(7) == QLatin1Char('-') &&
        text.at(10) == QLatin1Char('T') && text.at(13) == QLatin1Char(':') && text.at(16) == QLatin1Char(':') &&
        digits(0, 4, &year) && digits(5, 2, &month) && digits(8, 2, &day) && digits(11, 2, &hour) &&
        digits(14, 2, &minute) && digits(17, 2, &second)) {
        const QDate date(year, month, day);
        const QTime time(hour, minute, second);
        if (date.isValid() && time.isValid())
            return QDateTime(date, time);
    }
    return QDateTime::fromString(text, Qt::ISODateWithMs);
}

QString StorageForm::boolean(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QDateTime StorageForm::readDateTime(const QVariant &value)
{
    if (value.typeId() != QMetaType::QString)
        return value.toDateTime();
    return readDateTime(value.toString());
}
