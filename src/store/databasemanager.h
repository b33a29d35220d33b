// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPair>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

#include "records.h"
#include "statements.h"

class QSqlTableModel;

// The expense store: owns the SQLite connection (registered under Qt's
// default connection name) and every SQL statement of the program. Failures
// show only in return values (false, 0, an empty string, a null record, an
// empty list, a null date-time); nothing is logged.
//
// Ownership: records passed in stay the caller's and are only read. Every
// record that an operation returns, alone or inside a QList, is allocated for
// that call and belongs to the caller: wrap a list in owned(), a single
// record in a std::unique_ptr. The store keeps no pointer to either.
//
// The connection: the first store of a process opens it on
// defaultFileName(); a store made while another lives shares it, and one
// made while another lives on a different file (HOME changed in between) is
// refused and unusable, so that no model ever loses the file it shows. The
// last store to go closes the connection; table models made by the store
// must go before it.
class EntryQuery;
struct EntryFilter;
struct EntryLine;
class SqliteReader;
class Statements;
class StoreConnection;
class Transactions;

class DatabaseManager : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(DatabaseManager)

public:
    explicit DatabaseManager(QObject *parent);
    ~DatabaseManager() override;

    // Categories
    bool AddCategory(QString CName);
    bool EditCategory(QString OldName, QString NewName);
    int GetCategoryID(QString Name);
    QString GetCategoryNameByCategoryID(int id);

    // Modes
    bool AddMode(QString CName);
    bool EditMode(QString OldName, QString NewName);
    int GetModeID(QString Name);

    // Item catalogue
    bool AddItem(Items *t);
    bool EditItem(Items *old, Items *newItem);
    // Fills its statement's text with the values unquoted, as it always
    // has, so that anything but a bare number makes SQLite refuse it: it
    // deletes nothing in practice. Nothing calls it, and nothing may; every
    // deletion the program makes binds its values, by SNo or by key.
    bool DeleteItem(Items *t);
    int GetItemID(QString itemname, QString itemCategory);
    int GetItemID(Items *t);
    QString GetCategoryOfItem(QString itemName);
    Items *GetItemByItemID(int id);

    // Item substitutes
    bool AddItemSubstitutes(ItemSubstitutes *t);
    bool EditItemSubstitutes(ItemSubstitutes *old, ItemSubstitutes *newItem);
    // Fills its statement's text with the values unquoted, as it always
    // has, so that anything but a bare number makes SQLite refuse it: it
    // deletes nothing in practice. Nothing calls it, and nothing may; every
    // deletion the program makes binds its values, by SNo or by key.
    bool DeleteItemSubstitutes(ItemSubstitutes *t);
    int GetItemSubstitutesID(QString itemname, QString subName);
    int GetItemSubstitutesID(ItemSubstitutes *t);
    ItemSubstitutes *GetItemSubstitutesByItemSubstitutesID(int id);

    // Remembered places
    bool AddHistoricLocation(HistoricLocation *loc);
    bool EditHistoricLocation(HistoricLocation *OldLoc, HistoricLocation *NewLoc);
    // Fills its statement's text with the values unquoted, as it always
    // has, so that anything but a bare number makes SQLite refuse it: it
    // deletes nothing in practice. Nothing calls it, and nothing may; every
    // deletion the program makes binds its values, by SNo or by key.
    bool DeleteHistoricLocation(HistoricLocation *loc);
    int GetHistoricLocationID(HistoricLocation *loc);
    HistoricLocation *GetHistoricLocationByCoordinates(float longit, float latit);
    HistoricLocation *GetHistoricLocationByHistoricLocationID(int id);

    // Entries
    bool AddEntry(Entry *enteredEntry);
    // Fills its statement's text with the values unquoted, as it always
    // has, so that anything but a bare number makes SQLite refuse it: it
    // deletes nothing in practice. Nothing calls it, and nothing may; every
    // deletion the program makes binds its values, by SNo or by key.
    bool DeleteEntry(Entry *ent);
    int GetEntryID(Entry *en);

    // Entry lists, newest first or cheapest first; period bounds are inclusive
    // and compared with the whole stored date-time.
    QList<Entry *> GetAllEntries();
    QList<Entry *> GetAllEntriesOrderByPrice();
    QList<Entry *> GetAllEntriesOfCategory(QString catName);
    QList<Entry *> GetAllEntriesOfCategoryOrderByPrice(QString catName);
    QList<Entry *> GetAllEntriesOnDate(QDateTime dat);
    QList<Entry *> GetAllEntriesOnDateOrderByPrice(QDateTime dat);
    QList<Entry *> GetAllEntriesOfCategoryOnDate(QString catName, QDateTime dat);
    QList<Entry *> GetAllEntriesOfCategoryOnDateOrderByPrice(QString catName, QDateTime dat);
    QList<Entry *> GetAllEntriesBetweenDates(QDateTime startDate, QDateTime endDate);
    QList<Entry *> GetAllEntriesBetweenDatesOrderByPrice(QDateTime startDate, QDateTime endDate);
    QList<Entry *> GetAllEntriesOfCategoryBetweenDates(QString catName, QDateTime startDate, QDateTime endDate);
    QList<Entry *> GetAllEntriesOfCategoryBetweenDatesOrderByPrice(QString catName, QDateTime startDate,
                                                                   QDateTime endDate);

    // Any list the one entry query makes, for the store's own classes
    // (see EntrySearch).
    QList<Entry *> entryList(const EntryFilter &filter);
    // The same list handed over one row at a time, each record living for
    // the call only (see EntryQuery::visit): for a page that keeps a compact
    // form of ten years of entries rather than the records themselves.
    bool visitEntries(const EntryFilter &filter, const std::function<void(const Entry &)> &visit);
    // The same rows as lines (see EntryLine): what an entry table shows and
    // sums, without a local date-time made for every row.
    bool visitEntryLines(const EntryFilter &filter, const std::function<void(const EntryLine &)> &visit);
    // The number of entries a filter takes and the sum of their prices.
    bool entryTotals(const EntryFilter &filter, int *count, double *total);

    // Other lists
    QList<Category *> GetAllCategories();
    QList<Mode *> GetAllModes();
    QList<Items *> GetAllItems();
    QList<Items *> GetItemsOfParticularCategory(QString CatName);
    // The least used items first: the sort is ascending on purpose.
    QList<Items *> GetTopNFrequentlyUsedItems(int num);
    QList<Items *> GetTopNFrequentlyUsedItemsOfCategory(int num, QString CatName);
    QList<ItemSubstitutes *> GetAllItemSubstitutes();
    QList<ItemSubstitutes *> GetItemSubstitutesOfParticularItem(QString ItName);
    QList<HistoricLocation *> GetAllHistoricLocation();
    QList<QString> GetListOfAllDistinctCategoriesOfAllEntries();
    QList<QDateTime> GetAllDistinctDatesOfEntriesOfCategory(QString catName);

    // The item catalogue as the new-entry page offers it: each item name
    // once, whatever its categories. UseFrequency is the sum over the name's
    // rows; SNo, CategoryName, CategoryID and LastPrice are those of its most
    // used row (of rows used equally often, the newest). The most used names
    // come first; of names used equally often, the newest, which is the one
    // whose newest row was added last (the highest SNo).
    QList<Items *> GetItemCatalogue();
    // Every place text that entries use, once, with the number, sum, average
    // and newest date of its entries; the largest sum first. Entries without
    // a place text count under the empty text.
    QList<PlaceSpending *> GetSpendingPerPlace();
    // Every remembered place that at least one entry points at, with the
    // number and sum of those entries; the largest sum first.
    QList<RememberedPlaceSpending *> GetSpendingPerRememberedPlace();
    // Every category name that entries use, with the number of distinct
    // date-times and the sum of prices of its entries, from one read of the
    // table (see CategorySpending); in the order the names are first met
    // newest first.
    QList<CategorySpending *> GetSpendingPerCategory();

    // Counts
    int GetTotalNumberOfEntries();
    int GetNumberOfEntriesOfCategory(QString catName);
    int GetNumberOfEntriesOnDate(QDateTime dat);
    int GetNumberOfEntriesBetweenDates(QDateTime startDate, QDateTime endDate);
    int GetNumberOfEntriesOfCategoryOnDate(QString catName, QDateTime dat);
    int GetNumberOfEntriesOfCategoryBetweenDate(QString catName, QDateTime startDate, QDateTime endDate);
    int GetNumberOfCategories();
    int GetNumberOfModes();
    int GetTotalNumberOfItems();
    int GetTotalNumberOfItemsOfCategory(QString CatName);
    int GetTotalNumberOfItemSubstitutes();
    int GetTotalNumberOfItemSubstitutesOfItem(QString ItName);
    int GetNumberOfHistoricLocations();

    // Date bounds, null when there is no entry to report
    QDateTime GetDateOfFirstEntry();
    QDateTime GetDateOfLastEntry();
    QDateTime GetDateOfFirstEntryOfCategory(QString catName);
    QDateTime GetDateOfLastEntryOfCategory(QString catName);

    // Whether the database file could be opened and read at start-up; when
    // it could not, openError() says which file and why.
    bool isUsable() const;
    QString databaseFileName() const;
    QString openError() const;
    // Whether entry lists are read on the SQLite handle of Qt's driver, which
    // is done only where the driver runs on the SQLite library that Ledgerly
    // links, and never with LEDGERLY_NO_SQLITE_HANDLE set; otherwise every
    // list is read through Qt's driver.
    bool usesSqliteHandle() const;

    // Tells whether the file's rows may have changed between two calls: the
    // changes made through the store's connection (which the pages' table
    // models share) and the commits of other connections to the file. Equal
    // versions mean nothing was written in between; nullopt means the store
    // cannot tell (no usable connection), which must count as changed.
    using ContentVersion = std::pair<qint64, qint64>;
    std::optional<ContentVersion> contentVersion();

    // ~/ledgerlydatabase.db: the file every store of the program opens.
    static QString defaultFileName();

    // A model of one table of the file as it is stored, selected, that
    // keeps edits until they are submitted; it belongs to `parent`. Null
    // when the store has no connection (a refused store).
    QSqlTableModel *createTableModel(const QString &table, QObject *parent);

    // What a write transaction is for, which decides how it runs.
    enum class WriteKind {
        // A page's Save: the lock is waited for only briefly, so that a file
        // another program holds does not freeze the page.
        Edits,
        // Many AddEntry calls at once: the store's usual wait for the lock.
        Import,
    };
    // Runs `work` inside one transaction on the store's connection: what it
    // wrote is stored when it returns true, nothing at all when it returns
    // false or the file cannot take the writes. The write lock is taken
    // before `work` starts, so a file held by another program fails here
    // rather than half-way. True when the transaction was committed; else
    // *failure (when given) holds SQLite's reason, unless `work` itself
    // returned false, whose reason is its own to give.
    bool runInTransaction(WriteKind kind, const std::function<bool()> &work, QString *failure = nullptr);

    // Copies the database as it stands at one moment, page for page, into
    // `destination`, a file that is new or empty; the copy opens as the same
    // database. Other parts of the program may hold statements open on the
    // store's connection meanwhile (not so where lists are read through
    // Qt's driver, see usesSqliteHandle(): the copy is then VACUUM INTO's). `progress` (when given) hears how many
    // pages are copied of how many, and stops the copy by returning false.
    // False with SQLite's reason in *failure (when given) when no complete
    // copy was made; the destination is then left to the caller to remove.
    using Progress = std::function<bool(qint64 done, qint64 total)>;
    bool backUpTo(const QString &destination, const Progress &progress = {}, QString *failure = nullptr);

    // Empty when the file takes writes; else why it does not (read-only, a
    // full disk, a step of its schema that could not be applied), to be told
    // once at start-up. The store stays usable for reading.
    QString writeProblem() const;
    // Whether the file could not be opened only because another program
    // held it locked at start-up.
    bool isHeldByAnotherProgram() const;

    // The statements of the store's connection, for the store's own classes
    // that keep tables of their own in the file.
    Statements &statementRunner();

private:
    bool setupDatabase(QString dbname);
    bool renameIfStoredOnce(const QString &oldName, const QString &newName, const QString &countStatement,
                            const QString &updateStatement);
    // AddEntry's statements, inside its write.
    bool writeEntry(const Entry *enteredEntry);
    // The catalogue's part of writeEntry(): the item's number, 0 on failure.
    int addItemOfEntry(const Items &item);
    QDateTime entryDateBound(const QString &statement, const Bindings &bindings = {});
    QList<Items *> itemList(const QString &statement, const Bindings &bindings = {});
    QList<ItemSubstitutes *> itemSubstitutesList(const QString &statement, const Bindings &bindings = {});
    QList<HistoricLocation *> historicLocationList(const QString &statement, const Bindings &bindings = {});

    // The connection and what runs on it, each of its own concern; declared
    // in the order they depend on each other, so that they go in reverse.
    std::unique_ptr<StoreConnection> connection;
    std::unique_ptr<Statements> statements;
    std::unique_ptr<Transactions> transactions;
    std::unique_ptr<SqliteReader> reader;
    std::unique_ptr<EntryQuery> entries;
    QString lastOpenError;
    QString lastWriteProblem;
    // GetCategoryID's answers, kept while an import runs.
    QHash<QString, int> categoryIds;
    bool keepingCategoryIds = false;
};
