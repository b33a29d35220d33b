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

namespace {

char16_t unitOf(QChar c)
{
    return c.unicode();
}

char16_t unitOf(char c)
{
    return char16_t(static_cast<unsigned char>(c));
}

// The file's own form, yyyy-MM-ddTHH:mm:ss, read digit by digit from
// characters of any width.
template<typename Text> bool readOwnFormOf(const Text &text, QDate *date, QTime *time)
{
    const auto at = [&text](int i) { return unitOf(text[i]); };
    const auto digits = [&](int from, int count, int *out) {
        int number = 0;
        for (int i = from; i < from + count; ++i) {
            const char16_t c = at(i);
            if (c < u'0' || c > u'9')
                return false;
            number = number * 10 + (c - u'0');
        }
        *out = number;
        return true;
    };
    int year, month, day, hour, minute, second;
    if (text.size() != 19 || at(4) != u'-' || at(7) != u'-' || at(10) != u'T' || at(13) != u':' ||
        at(16) != u':' || !digits(0, 4, &year) || !digits(5, 2, &month) || !digits(8, 2, &day) ||
        !digits(11, 2, &hour) || !digits(14, 2, &minute) || !digits(17, 2, &second))
        return false;
    *date = QDate(year, month, day);
    *time = QTime(hour, minute, second);
    return date->isValid() && time->isValid();
}

} // namespace

bool StorageForm::readOwnForm(QStringView text, QDate *date, QTime *time)
{
    return readOwnFormOf(text, date, time);
}

bool StorageForm::readOwnForm(QByteArrayView utf8, QDate *date, QTime *time)
{
    // A byte of a longer UTF-8 sequence is no digit and no separator.
    return readOwnFormOf(utf8, date, time);
}

QDateTime StorageForm::readDateTime(const QString &text)
{
    // The file's own form is read digit by digit: lists of ten years of
    // entries read one per row, and the general ISO parser costs several
    // times more. Anything else goes to that parser, so the result is the same.
    QDate date;
    QTime time;
    if (readOwnForm(QStringView(text), &date, &time))
        return QDateTime(date, time);
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
