// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QByteArrayView>
#include <QDateTime>
#include <QStringView>
#include <QString>
#include <QVariant>

// The forms in which the database file keeps the values that Qt's SQLite
// driver would write differently. The store binds through these, and so do
// the entry table's editors, the tests and the benchmarks, so that every
// writer of the file agrees with every date comparison the store makes.
class StorageForm
{
public:
    // yyyy-MM-ddTHH:mm:ss in whole seconds; a null text for an invalid
    // date-time. Qt 6's driver would add milliseconds, and the store's date
    // comparisons are text comparisons.
    static QString dateTime(const QDateTime &when);

    // A stored date-time: the file's own form, and any other ISO 8601 form
    // (milliseconds, a zone, 24:00) as Qt's general parser reads it; invalid
    // when the text is no date-time at all.
    static QDateTime readDateTime(const QString &text);
    // The date and time of a text in the file's own form, read without
    // making a local date-time of them; false for any other text, or one
    // that names no day or time (which readDateTime() gives to the general
    // parser).
    static bool readOwnForm(QStringView text, QDate *date, QTime *time);
    static bool readOwnForm(QByteArrayView utf8, QDate *date, QTime *time);
    // A value read from a date column: as above for a text; a number there
    // is no date-time, whatever its digits say.
    static QDateTime readDateTime(const QVariant &value);

    // "true" or "false": the driver would write 1 or 0, and the file has
    // always held the texts, which QVariant::toBool reads back.
    static QString boolean(bool value);
};
