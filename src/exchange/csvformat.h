// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "entryfilecontents.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

class Entry;

// Entries as comma-separated values, for spreadsheets and other programs:
// UTF-8 without a byte-order mark, CRLF line ends, RFC 4180 quoting, and
// the first line
//
//     Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude
//
// then one line per entry. Dates are in the file's storage form, numbers
// in the shortest general form that reads back as the same float, and a
// text that a spreadsheet would run as a formula carries one extra leading
// apostrophe. Writing and reading are pure: bytes in, bytes or entries out.
class CsvFormat
{
public:
    // The first line, CRLF included.
    static QByteArray header();
    // Appends the line of one entry, CRLF included.
    static void appendLine(QByteArray &out, const Entry &entry);
    // The first line and one line per entry, in the order given.
    static QByteArray write(const QList<Entry *> &entries);

    // Reads a whole file. Columns are found by their names (in any order
    // and case; others are ignored); Date, Item, Category and Amount must be
    // there. Dates may also be yyyy-MM-dd or yyyy-MM-dd HH:mm:ss, lines may
    // end in LF, the last line needs no end, and an empty Longitude or
    // Latitude reads as 0.
    static EntryFileContents read(QByteArrayView bytes);

    // A float in the general format with the fewest significant digits, 6
    // to 9, that readNumber() turns back into the same float, with a point
    // as decimal separator: 0.1, 20, 1234567, 103.8488.
    static QByteArray number(float value);
    // A decimal number with an optional sign, point and exponent; false for
    // anything else, for infinity and not-a-number, and for a value beyond a
    // float's range.
    static bool readNumber(QByteArrayView text, float *value);

    // The text as a field: with one more leading apostrophe when it starts
    // with = + - @ or ', and in double quotes when it holds a comma, a
    // double quote, CR or LF.
    static QByteArray field(const QString &text);
    // The text a field stands for once its quotes are gone: one leading
    // apostrophe less when an apostrophe is followed by = + - @ or '.
    static QString fieldText(const QString &unquoted);

    // Whether the file name ends in .csv, in any case.
    static bool matches(const QString &fileName);
};
