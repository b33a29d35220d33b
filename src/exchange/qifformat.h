// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "entryfilecontents.h"
#include "textencoding.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QDate>
#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

class Entry;

// Entries in the Quicken Interchange Format that desktop finance programs
// read and write. Ledgerly writes one !Type:Cash section, a record per
// entry:
//
//     D03/15/2024     the date, month first
//     T-2.5           the amount as an expense, negative (three decimals
//                     get a fourth, 1.1250, not to read as thousands)
//     PCorner Shop    the place
//     MBread          the item
//     LFood           the category
//     ^
//
// It reads the records of !Type:Cash, !Type:Bank and !Type:CCard sections,
// a split record (S, E, $ lines) as one entry per expense split; other
// sections are skipped and counted, and so are income (a positive amount),
// zero amounts and transfers (a category in brackets). Writing and reading
// are pure: bytes in, bytes or entries out.
class QifFormat
{
public:
    enum class DateOrder { MonthFirst, DayFirst, YearFirst };

    // The section header, CRLF included.
    static QByteArray header();
    // Appends the record of one entry, CRLF line ends.
    static void appendRecord(QByteArray &out, const Entry &entry);
    // The header and one record per entry, in the order given.
    static QByteArray write(const QList<Entry *> &entries);

    // Reads a whole file, in `encoding`, or else in the one TextEncoding
    // detects. A date is three numbers with blanks anywhere, separated by
    // '/', '.', '-' or an apostrophe before the year, or yyyyMMdd; a
    // four-digit first number is the year. Which of day and month comes
    // first is read from the whole file (a number above 12 decides); where
    // no date decides it, dotted dates read day first and the others month
    // first, and the contents name the first date that could be either
    // (EntryFileContents::openDate). `order`, when given, wins over the
    // file; YearFirst reads every date with a two-digit first number as
    // yy/MM/dd.
    static EntryFileContents read(QByteArrayView bytes, std::optional<DateOrder> order = std::nullopt,
                                  std::optional<TextEncoding::Kind> encoding = std::nullopt);

    // The year of a two-digit year `yy`: the one ending in it that lies
    // from 80 years before to 19 years after `currentYear` (this year when
    // 0). After an apostrophe, Quicken's mark, a short year is 2000 + yy
    // instead.
    static int twoDigitYear(int yy, int currentYear = 0);
    // "mdy", "dmy" or "ymd", as the command line names the orders.
    static QString orderName(DateOrder order);

    // An amount as finance programs write it: a sign, digits and
    // separators. The decimal separator is the last '.' or ',' followed by
    // one or two digits at the end (or by more than three: 103.8488);
    // every other '.', ',', blank or '\'' groups thousands, so 1,234.56,
    // 1.234,56, 1'234.5 and 1.234 are 1234.56, 1234.56, 1234.5 and 1234.
    // Nothing for anything else.
    static std::optional<double> readAmount(QStringView text);

    // Whether the file name ends in .qif, in any case.
    static bool matches(const QString &fileName);
};
