// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QString>

class QDate;
class QDateTime;

// How numbers and dates read everywhere in Ledgerly: numbers in the general
// format with six significant digits (12.5, 7, 1.23457e+06), dates in the
// default text form (Sun Nov 15 2026, Sun Nov 15 13:08:59 2026).
class Format
{
public:
    static QString number(double value);
    static QString date(const QDate &date);
    static QString dateTime(const QDateTime &dateTime);
};
