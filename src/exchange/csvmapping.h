// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "qifformat.h"

#include <QChar>
#include <QString>
#include <QStringList>

#include <optional>

// How to read a bank's CSV: which column holds each field, and what the
// file does not say for itself (delimiter, encoding, date form, decimal
// separator, sign convention, direction marks, lines above the data). What
// is left unset is detected from the file. A mapping is written as the
// command line's options (--map date=Datum,item=Empfänger,amount=Betrag
// --delimiter ';' ...), which is also how a profile keeps it.
class CsvMapping
{
public:
    enum Field { Date, Item, Place, Category, Amount, Debit, Credit, Direction, FieldCount };

    // A column by its header text (compared case-insensitively, blanks
    // trimmed) or by its 1-based number.
    struct Column
    {
        QString name;
        int number = 0;

        bool isSet() const { return number > 0 || !name.isEmpty(); }
        bool operator==(const Column &other) const { return name == other.name && number == other.number; }
    };

    Column columns[FieldCount];
    // ',', ';', '\t' or '|'; null to detect.
    QChar delimiter;
    // Any name TextEncoding knows; empty to detect.
    QString encoding;
    // A Qt date format; empty to detect the date form.
    QString dateFormat;
    // Settles slashed dates whose day and month the file leaves open.
    std::optional<QifFormat::DateOrder> dateOrder;
    // '.' or ','; null to read each amount as QifFormat does.
    QChar decimal;
    // Lines before the first data row when columns are given by number.
    std::optional<int> skipLines;
    // Positive amounts are expenses (card statements).
    bool invert = false;
    // The direction column's values: with inMarks set, those are income and
    // every other value an expense; otherwise outMarks (or the default
    // ones) are expenses and every other value income.
    QStringList outMarks;
    QStringList inMarks;

    // "date", "item", "place", "category", "amount", "debit", "credit",
    // "direction".
    static QString fieldName(Field field);
    // D, DR, Debit, Debet, Af, S, Soll and -.
    static QStringList defaultOutMarks();

    bool operator==(const CsvMapping &other) const;
    bool operator!=(const CsvMapping &other) const { return !(*this == other); }

    // Whether any column is given by its header text: then the header line
    // is found by those names.
    bool hasNamedColumns() const;
    // Whether a direction cell holding `value` says the money went out.
    bool isOutMark(const QString &value) const;

    // Reads the text of --map ("date=Buchungstag,amount=3"), replacing the
    // columns; false with *error set when it names an unknown field, a field
    // twice, or no column.
    bool readMap(const QString &text, QString *error);
    // The text of --map for the columns set, fields in the order of Field.
    QString mapText() const;
    // Sets the option `name` (without its dashes: "delimiter", "decimal",
    // "skip-lines", "date-format", "date-order", "encoding", "out-marks",
    // "in-marks", "invert" with an empty value); false with *error set for a
    // value the option does not take.
    bool readOption(const QString &name, const QString &value, QString *error);
    // What is missing or contradictory for reading a file (no date column,
    // neither item nor place, no money column, ...); empty when complete.
    QString problem() const;

    // The options, as a command line would give them: --map first, then
    // the others that are set.
    QStringList arguments() const;
    // The options as one line of text, words quoted as a shell would need.
    QString text() const;
    // Reads what text() wrote; nothing, with *error set, for anything else.
    static std::optional<CsvMapping> fromText(const QString &text, QString *error = nullptr);
    // The option names that readOption() takes and whether each takes a value.
    static QStringList optionNames();
};
