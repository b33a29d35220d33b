// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "format.h"

#include <QDate>
#include <QDateTime>

QString Format::number(double value)
{
    return QString::number(value, 'g', 6);
}

QString Format::date(const QDate &date)
{
    return date.toString(Qt::TextDate);
}

QString Format::dateTime(const QDateTime &dateTime)
{
    return dateTime.toString(Qt::TextDate);
}
