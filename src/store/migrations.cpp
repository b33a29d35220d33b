// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "migrations.h"

#include <QCoreApplication>

const QList<Migration> &Migrations::all()
{
    // A new step goes at the end with the next number; a step that has been
    // released is never changed, since files out there carry its tables.
    static const QList<Migration> steps = {
        { 1,
          QStringLiteral("the record of imports"),
          { // One row per import that wrote entries: when, from which file
            // (its absolute path), how many.
            QStringLiteral("CREATE TABLE ImportLog ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL, ImportedAt "
                           "datetime NOT NULL, FileName text NOT NULL, EntryCount integer NOT NULL )"),
            // Every entry an import wrote, by the entry's SNo (never used
            // twice: the Entry table counts up), with what names its record
            // in its file, so that the same record is known again.
            QStringLiteral("CREATE TABLE ImportedEntry ( EntrySNo integer PRIMARY KEY NOT NULL, ImportSNo integer "
                           "NOT NULL, Fingerprint text NOT NULL )") } },
        { 2, QStringLiteral("budgets"),
          { QStringLiteral("CREATE TABLE Budget (CategoryName text PRIMARY KEY NOT NULL, "
                           "Amount real NOT NULL CHECK (Amount > 0 AND Amount <= 9999999.99), "
                           "Period text NOT NULL DEFAULT 'month' CHECK (Period IN ('month', 'week', 'year')))") } },
        // The texts that finding entries matches, folded (see EntrySearch),
        // one row per entry. The triggers keep a row for every entry and mark
        // it pending (no texts) whenever an entry is added or its texts
        // change, whoever writes the entry: the store, a table model or
        // another program. The store folds pending rows before it searches,
        // since folding needs Unicode tables that SQLite lacks. The entries
        // already there start out pending.
        { 3,
          QCoreApplication::translate("DatabaseManager", "the search texts of the entries"),
          { QStringLiteral("CREATE TABLE EntrySearch (SNo integer PRIMARY KEY NOT NULL, Item text, Category text, "
                           "Place text)"),
            QStringLiteral("INSERT INTO EntrySearch (SNo) SELECT SNo FROM Entry"),
            QStringLiteral("CREATE INDEX EntrySearchPending ON EntrySearch (SNo) WHERE Item IS NULL"),
            QStringLiteral("CREATE TRIGGER EntrySearchAdded AFTER INSERT ON Entry BEGIN "
                           "INSERT OR REPLACE INTO EntrySearch (SNo) VALUES (new.SNo); END"),
            QStringLiteral("CREATE TRIGGER EntrySearchChanged AFTER UPDATE OF SNo, ItemName, CategoryName, "
                           "LocationText ON Entry BEGIN DELETE FROM EntrySearch WHERE SNo = old.SNo; "
                           "INSERT OR REPLACE INTO EntrySearch (SNo) VALUES (new.SNo); END"),
            QStringLiteral("CREATE TRIGGER EntrySearchRemoved AFTER DELETE ON Entry BEGIN "
                           "DELETE FROM EntrySearch WHERE SNo = old.SNo; END") } },
        // Rent, bills and subscriptions that post themselves. NextIndex is
        // the number of occurrences already posted or skipped, and NextDate
        // that occurrence's day (NULL once none is left), kept with it so
        // that finding what is due is one look in the index. SNo counts up,
        // so the number of a removed one is never given again.
        { 4,
          QCoreApplication::translate("DatabaseManager", "the recurring expenses"),
          { QStringLiteral("CREATE TABLE RecurringExpense (SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL, "
                           "ItemName text NOT NULL, Price real NOT NULL CHECK (Price > 0 AND Price <= 9999999.99), "
                           "CategoryName text NOT NULL, LocationText text NOT NULL DEFAULT '', "
                           "EveryCount integer NOT NULL CHECK (EveryCount BETWEEN 1 AND 99), "
                           "EveryUnit text NOT NULL CHECK (EveryUnit IN ('d', 'w', 'm', 'y')), "
                           "FirstDate text NOT NULL, LastDate text, Times integer CHECK (Times IS NULL OR Times > 0), "
                           "Mode text NOT NULL DEFAULT 'auto' CHECK (Mode IN ('auto', 'confirm')), "
                           "NextIndex integer NOT NULL DEFAULT 0, NextDate text)"),
            QStringLiteral("CREATE INDEX RecurringExpenseNextDate ON RecurringExpense (NextDate)") } },
    };
    return steps;
}

int Migrations::latestVersion()
{
    return all().isEmpty() ? 0 : all().constLast().version;
}
