// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "sampleentries.h"

QDateTime at(int year, int month, int day, int hour, int minute, int second)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second));
}

Entry makeEntry(const QDateTime &when, const QString &item, const QString &category, float price, const QString &place,
                bool geo, float longitude, float latitude)
{
    Entry entry;
    entry.TransactDateTime = when;
    entry.ItemName = item;
    entry.CategoryName = category;
    entry.Price = price;
    entry.LocationText = place;
    entry.EnableGeoLoc = geo;
    entry.GeoLocLongit = longitude;
    entry.GeoLocLatit = latitude;
    return entry;
}
