// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "csvmapping.h"
#include "entryfilecontents.h"

#include <QByteArrayView>
#include <QChar>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

// Reads a bank's or a money app's CSV through a CsvMapping: the expenses
// become entries, income and zero amounts are skipped and counted, and so
// are the rows that are no transactions (empty lines, rows without a date
// that reads: balances, totals, pending lines). Whatever the mapping leaves
// open (delimiter, encoding, date form) is detected from the file. Pure:
// bytes in, entries out.
class MappedCsvReader
{
public:
    // What the reader made out of the file, for showing it before an import.
    struct Layout
    {
        QChar delimiter;
        QString encoding;
        // How the dates were read: "dd.MM.yyyy"-like forms, or the format
        // the mapping gave; empty when no date read.
        QString dateForm;
        // ',' or '.' when the amounts show which one is their decimal
        // separator; null when they do not.
        QChar decimal;
        // The line (from 1) of the header; 0 without one.
        int headerLine = 0;
        // The header's names, or "1", "2", ... without a header.
        QStringList columns;
        // The first rows after the header, as cells.
        QList<QStringList> rows;
    };

    // Whether the first line names the columns of Ledgerly's own CSV (Date,
    // Item, Category and Amount), or the file is empty: then CsvFormat reads
    // it, as it always has.
    static bool isLedgerlyCsv(QByteArrayView bytes);
    // The file's column names as its header line gives them, found without
    // any mapping: the first line with as many fields as most lines.
    static QStringList columnNames(QByteArrayView bytes);

    // Reads the whole file; `layout`, when given, tells what was detected,
    // with the first `rows` rows.
    static EntryFileContents read(QByteArrayView bytes, const CsvMapping &mapping, Layout *layout = nullptr,
                                  int rows = 20);

    // The delimiter of `text` by the detection rule: of ',', ';', tab and
    // '|', the one whose most common field count (above one), over the
    // lines from `fromLine` (from 0) on, is shared by the most lines; on a
    // tie the first of ';', tab, ',' and '|'.
    static QChar detectDelimiter(QStringView text, int fromLine = 0);

    // An amount cell as banks write it, currency signs and codes around the
    // number ignored: (12.34) and 12.34- are negative; a trailing CR marks
    // money in and DR money out. `decimal` forces the decimal separator.
    struct Amount
    {
        double value = 0;
        enum Mark { None, In, Out } mark = None;
    };
    static std::optional<Amount> readAmount(QStringView cell, QChar decimal = QChar());
};
