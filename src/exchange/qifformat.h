// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "entryfilecontents.h"

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
// It reads the records of !Type:Cash, !Type:Bank and !Type:CCard sections;
// other sections are skipped and counted, and so are income (a positive
// amount) and transfers (a category in brackets). Writing and reading are
// pure: bytes in, bytes or entries out.
class QifFormat
{
public:
    enum class DateOrder { MonthFirst, DayFirst };

    // The section header, CRLF included.
    static QByteArray header();
    // Appends the record of one entry, CRLF line ends.
    static void appendRecord(QByteArray &out, const Entry &entry);
    // The header and one record per entry, in the order given.
    static QByteArray write(const QList<Entry *> &entries);

    // Reads a whole file: UTF-8, or Latin-1 when it is not UTF-8. Which of
    // day and month comes first in dates with slashes is read from the
    // whole file (a number above 12 decides); where no date decides it,
    // `openOrder` does, and the contents name the first date that it
    // decided (EntryFileContents::openDate).
    static EntryFileContents read(QByteArrayView bytes, DateOrder openOrder = DateOrder::MonthFirst);

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
