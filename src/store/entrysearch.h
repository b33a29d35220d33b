// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "entryquery.h"
#include "records.h"

#include <QDate>
#include <QString>

#include <optional>

class DatabaseManager;

// What a search asks for. Every part is optional (empty or unset) and all
// given parts must hold.
struct SearchFilter
{
    // A part of the item, the category or the place, in any case and with
    // or without accents: "cafe" finds "Café", "CAFÉ" and "Cafeteria".
    QString text;
    // The category's exact name.
    std::optional<QString> category;
    // A part of the place, matched as the text is.
    QString place;
    // By the date part, both days included.
    QDate from;
    QDate to;
    // To the cent, both included.
    std::optional<double> minimum;
    std::optional<double> maximum;

    bool operator==(const SearchFilter &other) const;
};

// Finds entries by a SearchFilter, newest first (and the last added first
// among entries of the same date-time), with their number and total. The
// store's search texts (table EntrySearch) are brought up to date first.
class EntrySearch
{
public:
    // The store outlives this object.
    explicit EntrySearch(DatabaseManager &store);

    struct Result
    {
        OwnedList<Entry> entries;
        int count = 0;
        double total = 0;
    };
    Result find(const SearchFilter &filter);

    // How many entries the filter finds and their total, without reading
    // them: a page shows these before its rows.
    struct Totals
    {
        int count = 0;
        double total = 0;
    };
    Totals totals(const SearchFilter &filter);
    // `limit` of the entries the filter finds, after the first `offset`, in
    // the order of find().
    OwnedList<Entry> page(const SearchFilter &filter, int offset, int limit);

    // Folds the search texts of the entries added or changed since the last
    // search. False when the file takes no writes (a search then misses
    // the texts of those entries).
    bool bringTextsUpToDate();

    // "3 entries, total 61.25", "1 entry, total 3.50": the total with two
    // decimals and a point.
    static QString summary(const Result &result);
    static QString summary(const Totals &totals);

    // A text as searches compare it: decomposed, without its combining
    // marks (accents), case-folded.
    static QString fold(const QString &text);
    // An amount in whole cents, rounded.
    static qint64 cents(double amount);

private:
    // The store's filter for a search, with the search texts brought up to
    // date when it has texts.
    EntryFilter query(const SearchFilter &filter);

    DatabaseManager &store;
};
