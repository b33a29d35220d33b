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
        // An index of the folded search texts by their runs of three
        // characters (SQLite's full-text trigram index), so that a search
        // for a text of three characters or more reads the few rows whose
        // texts hold all its runs instead of every row. It keeps no copy of
        // the texts (content='') and no positions (detail=none), about a
        // quarter of the entries' own size; the store checks each row it
        // gives with instr(), so the index only narrows. Triggers on
        // EntrySearch keep it: a folded row goes in, and the row's old
        // texts come out when they change, since a contentless index can
        // only forget what it is told it holds.
        { 4,
          QCoreApplication::translate("DatabaseManager", "the index of the search texts"),
          { QStringLiteral("CREATE VIRTUAL TABLE EntrySearchIndex USING fts5(Item, Category, Place, content='', "
                           "detail=none, columnsize=0, tokenize='trigram case_sensitive 1')"),
            QStringLiteral("INSERT INTO EntrySearchIndex (rowid, Item, Category, Place) SELECT SNo, Item, Category, "
                           "Place FROM EntrySearch WHERE Item IS NOT NULL"),
            QStringLiteral("CREATE TRIGGER EntrySearchIndexAdded AFTER INSERT ON EntrySearch WHEN new.Item IS NOT "
                           "NULL BEGIN INSERT INTO EntrySearchIndex (rowid, Item, Category, Place) VALUES (new.SNo, "
                           "new.Item, new.Category, new.Place); END"),
            QStringLiteral("CREATE TRIGGER EntrySearchIndexChanged AFTER UPDATE ON EntrySearch BEGIN "
                           "INSERT INTO EntrySearchIndex (EntrySearchIndex, rowid, Item, Category, Place) SELECT "
                           "'delete', old.SNo, old.Item, old.Category, old.Place WHERE old.Item IS NOT NULL; "
                           "INSERT INTO EntrySearchIndex (rowid, Item, Category, Place) SELECT new.SNo, new.Item, "
                           "new.Category, new.Place WHERE new.Item IS NOT NULL; END"),
            QStringLiteral("CREATE TRIGGER EntrySearchIndexRemoved AFTER DELETE ON EntrySearch WHEN old.Item IS NOT "
                           "NULL BEGIN INSERT INTO EntrySearchIndex (EntrySearchIndex, rowid, Item, Category, Place) "
                           "VALUES ('delete', old.SNo, old.Item, old.Category, old.Place); END") } },
        // Each entry's category, date-time and price once more, kept in the
        // order of category and date-time, so that what a category spent in
        // a budget's period is a read of its few rows: the check after each
        // new entry would otherwise read the whole Entry table, which the
        // store does not index (an index there would change the order in
        // which the described lists give entries of equal date-time). The
        // columns have Entry's types, so they compare exactly as Entry's do.
        // The triggers keep it for every writer, as EntrySearch's do.
        { 5,
          QCoreApplication::translate("DatabaseManager", "what each category spent by date"),
          { QStringLiteral("CREATE TABLE EntrySpending (CategoryName nvarchar(255) NOT NULL, TransactDateTime datetime "
                           "NOT NULL, SNo integer NOT NULL, Price float(50) NOT NULL, PRIMARY KEY (CategoryName, "
                           "TransactDateTime, SNo)) WITHOUT ROWID"),
            QStringLiteral("INSERT INTO EntrySpending (CategoryName, TransactDateTime, SNo, Price) SELECT "
                           "CategoryName, TransactDateTime, SNo, Price FROM Entry"),
            QStringLiteral("CREATE TRIGGER EntrySpendingAdded AFTER INSERT ON Entry BEGIN INSERT OR REPLACE INTO "
                           "EntrySpending (CategoryName, TransactDateTime, SNo, Price) VALUES (new.CategoryName, "
                           "new.TransactDateTime, new.SNo, new.Price); END"),
            QStringLiteral("CREATE TRIGGER EntrySpendingChanged AFTER UPDATE OF SNo, CategoryName, TransactDateTime, "
                           "Price ON Entry BEGIN DELETE FROM EntrySpending WHERE CategoryName = old.CategoryName AND "
                           "TransactDateTime = old.TransactDateTime AND SNo = old.SNo; INSERT OR REPLACE INTO "
                           "EntrySpending (CategoryName, TransactDateTime, SNo, Price) VALUES (new.CategoryName, "
                           "new.TransactDateTime, new.SNo, new.Price); END"),
            QStringLiteral("CREATE TRIGGER EntrySpendingRemoved AFTER DELETE ON Entry BEGIN DELETE FROM EntrySpending "
                           "WHERE CategoryName = old.CategoryName AND TransactDateTime = old.TransactDateTime AND SNo = "
                           "old.SNo; END") } },
    };
    return steps;
}

int Migrations::latestVersion()
{
    return all().isEmpty() ? 0 : all().constLast().version;
}
