// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "records.h"

#include <QByteArrayView>
#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

// What an exchange file (CSV or QIF) holds, as its reader made it out from
// the file's bytes alone: the entries it would add, with the line each
// begins on; the records it leaves out on purpose; and the problems that
// refuse the file as a whole. Nothing here touches the database.
class EntryFileContents
{
public:
    struct LineEntry
    {
        int line = 0;
        Entry entry;
        // What names the record in its file beyond its values, when the
        // file gives that (an OFX account and transaction id); empty when
        // the entry's own date, amount, item and place must do.
        QString sourceId;
        // What an import remembers the record by (see
        // EntryImport::recognise()); empty until then.
        QString fingerprint;
    };
    // Line 0 stands for the file as a whole.
    struct Problem
    {
        int line = 0;
        QString text;
    };

    QList<LineEntry> entries;
    QList<Problem> problems;

    // QIF records that are not expenses, and records of sections that hold no
    // transactions (accounts, categories, investments).
    int skippedIncome = 0;
    int skippedTransfers = 0;
    int skippedZeroAmounts = 0;
    // Set by the import, not the reader: records an earlier import wrote.
    int skippedDuplicates = 0;
    int skippedOtherSections = 0;
    // Rows of a bank's CSV that are no transactions: empty lines, and rows
    // whose date is empty or does not read (balances, totals, pending).
    int skippedNotTransactions = 0;
    // Set by the import, not the reader: entries that a rule gave their
    // category (see EntryImport::categorise()).
    int categorisedByRules = 0;

    // The text encoding the file was read in (TextEncoding's name), and
    // the order its dates were read in ("mdy", "dmy", "ymd"; empty where
    // the format leaves no choice).
    QString encoding;
    QString dateOrder;

    // Set by the QIF reader when some date reads differently with the day or
    // the month first and no date of the file decides which: the first such
    // date as written, its line, and the two dates it can be. The file was
    // read with the order asked for (month first unless told otherwise).
    QString openDate;
    int openDateLine = 0;
    QDate openDateMonthFirst;
    QDate openDateDayFirst;

    // A file with any problem writes nothing.
    bool isAcceptable() const { return problems.isEmpty(); }
    int skipped() const;

    void addProblem(int line, const QString &text);
    // Refuses bytes that are not text: a NUL byte anywhere, or, when
    // `utf8Only`, bytes that are not UTF-8. The problem names the line.
    // True when the bytes are text.
    bool acceptText(QByteArrayView bytes, bool utf8Only);
    // The line (from 1) that the byte at `offset` stands on; LF, CRLF and a
    // lone CR each end a line.
    static int lineAt(QByteArrayView bytes, qsizetype offset);

    // "skipped 34 (income 30, transfers 2, zero amounts 1, already
    // imported 1, not transactions 3)", naming only the reasons that skipped any, or
    // "skipped 0".
    QString skippedSummary() const;
    // The reasons of that summary, "income 30", "transfers 2", ...
    QStringList skippedReasons() const;
    // The problems, one a line as "line 7: text", or "FILE:7: text" when
    // `fileName` is given (a whole-file problem without its line), at most
    // `limit` of them, then one line that counts the rest.
    QStringList problemLines(const QString &fileName = QString(), int limit = 20) const;
};
