// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QPair>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <functional>
#include <optional>
#include <unordered_map>
#include <utility>

class QSqlTableModel;

// Plain records, one per table row, field for field in column order. Records
// that DatabaseManager returns are allocated per call and owned by the caller.

class Category
{
public:
    Category();
    ~Category();

    int SNo;
    QString CategoryName;
};

class Mode
{
public:
    Mode();
    ~Mode();

    int SNo;
    QString ModeName;
};

class Items
{
public:
    Items();
    ~Items();

    int SNo;
    QString ItemName;
    QString CategoryName;
    int CategoryID;
    float LastPrice;
    int UseFrequency;
};

class ItemSubstitutes
{
public:
    ItemSubstitutes();
    ~ItemSubstitutes();

    int SNo;
    QString ItemName;
    QString SubstituteName;
    int ItemID;
    int SubstituteID; // stored in the column "SubstitueID"
};

class HistoricLocation
{
public:
    HistoricLocation();
    ~HistoricLocation();

    int SNo;
    QString LocationName;
    float LocationLongitude;
    float LocationLatitude;
    QString ReverseGeoLocation;
    QString CoordinateText;
};

class Entry
{
public:
    Entry();
    ~Entry();

    int SNo;
    QString ItemName;
    QString CategoryName;
    int CategoryID;
    QDateTime TransactDateTime;
    float Price;
    QString LocationText;
    bool EnableGeoLoc;
    int GeoLocID;
    float GeoLocLongit;
    float GeoLocLatit;
    int ItemID;
};

// What the entries at one place text add up to: a line of the places
// report, grouped from table Entry, not a row of a table of its own.
class PlaceSpending
{
public:
    PlaceSpending();
    ~PlaceSpending();

    QString LocationText;
    int NumberOfEntries;
    float Total;
    float Average;
    QDateTime LastVisit;
};

// What the entries of one category add up to: a line of the history page's
// per-category figures, grouped from table Entry.
class CategorySpending
{
public:
    CategorySpending();
    ~CategorySpending();

    QString CategoryName;
    // The distinct stored date-times of the category's entries, as
    // GetAllDistinctDatesOfEntriesOfCategory() lists them.
    int NumberOfDateTimes;
    // The prices added in single precision in the order that
    // GetAllEntriesOfCategory() lists the entries, so that the sum is the
    // very float that adding up that list gives.
    float Total;
};

// A remembered place (a HistoricLocation row) with what the entries that
// point at it (by GeoLocID) add up to.
class RememberedPlaceSpending
{
public:
    RememberedPlaceSpending();
    ~RememberedPlaceSpending();

    int SNo;
    QString LocationName;
    float LocationLongitude;
    float LocationLatitude;
    int NumberOfEntries;
    float Total;
};

// Owns the records of one list that the store returned and deletes them with
// itself; it reads like the list (range-for, size(), at(), list()). Made by
// owned(): `const auto entries = owned(store.GetAllEntries());`.
template<typename Record> class OwnedList
{
public:
    explicit OwnedList(QList<Record *> records) : records(std::move(records)) { }
    ~OwnedList() { qDeleteAll(records); }
    OwnedList(OwnedList &&other) noexcept : records(std::exchange(other.records, {})) { }
    OwnedList &operator=(OwnedList &&other) noexcept
    {
        records.swap(other.records);
        return *this;
    }
    OwnedList(const OwnedList &) = delete;
    OwnedList &operator=(const OwnedList &) = delete;

    const QList<Record *> &list() const { return records; }
    // Hands the records over to the caller, who then deletes them; the list
    // is left empty.
    QList<Record *> release() { return std::exchange(records, {}); }
    qsizetype size() const { return records.size(); }
    bool isEmpty() const { return records.isEmpty(); }
    Record *at(qsizetype i) const { return records.at(i); }
    Record *operator[](qsizetype i) const { return records.at(i); }
    auto begin() const { return records.cbegin(); }
    auto end() const { return records.cend(); }

private:
    QList<Record *> records;
};

template<typename Record> OwnedList<Record> owned(QList<Record *> records)
{
    return OwnedList<Record>(std::move(records));
}

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
struct sqlite3;

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
    bool DeleteItem(Items *t);
    int GetItemID(QString itemname, QString itemCategory);
    int GetItemID(Items *t);
    QString GetCategoryOfItem(QString itemName);
    Items *GetItemByItemID(int id);

    // Item substitutes
    bool AddItemSubstitutes(ItemSubstitutes *t);
    bool EditItemSubstitutes(ItemSubstitutes *old, ItemSubstitutes *newItem);
    bool DeleteItemSubstitutes(ItemSubstitutes *t);
    int GetItemSubstitutesID(QString itemname, QString subName);
    int GetItemSubstitutesID(ItemSubstitutes *t);
    ItemSubstitutes *GetItemSubstitutesByItemSubstitutesID(int id);

    // Remembered places
    bool AddHistoricLocation(HistoricLocation *loc);
    bool EditHistoricLocation(HistoricLocation *OldLoc, HistoricLocation *NewLoc);
    bool DeleteHistoricLocation(HistoricLocation *loc);
    int GetHistoricLocationID(HistoricLocation *loc);
    HistoricLocation *GetHistoricLocationByCoordinates(float longit, float latit);
    HistoricLocation *GetHistoricLocationByHistoricLocationID(int id);

    // Entries
    bool AddEntry(Entry *enteredEntry);
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

private:
    bool setupDatabase(QString dbname);
    bool createCategoryTable();
    bool createItemsTable();
    bool createModeTable();
    bool createHistoricLocationTable();
    bool createItemSubstitutesTable();
    bool createEntryTable();
    void addDefaultCategories();
    void addDefaultModes();
    void createTablesAndDefaultRows();

    bool createTableIfMissing(const QString &table, const QString &createStatement);
    // The one way a name is added (a category, a mode, a default row) and
    // renamed; the statements differ, the rules do not.
    bool addNameIfMissing(const QString &name, const QString &countStatement, const QString &insertStatement);
    bool renameIfStoredOnce(const QString &oldName, const QString &newName, const QString &countStatement,
                            const QString &updateStatement);
    void setBusyTimeout(int milliseconds);
    bool driverRunsOurSqlite();

    // A write of several statements that succeeds or fails as one: between
    // beginWrite() and endWrite(), the first statement that fails because of
    // the file makes every later one fail at once, and endWrite() then
    // undoes them all. endWrite() returns `result` when the work was kept.
    bool beginWrite();
    bool endWrite(bool result);
    void noteFailure(bool executed, const QSqlQuery &query);
    // AddEntry's statements, inside its write.
    bool writeEntry(const Entry *enteredEntry);

    // Named parameters and the values bound to them, already in their
    // storage forms (see the *Value helpers in the .cpp).
    using Bindings = QList<QPair<QString, QVariant>>;

    // The one way statements run: on a forward-only query made into `query`
    // on the store's connection, prepared and bound. When the connection is
    // not open no query is made at all, so an unopened store fails silently.
    bool run(std::optional<QSqlQuery> &query, const QString &statement, const Bindings &bindings = {});
    // A bound statement ready to execute, for the helpers that read at most
    // its first row: inside runInTransaction() the query kept for its text,
    // prepared once; otherwise `fresh`, prepared now. Null when it cannot be
    // prepared. A caller reads what it needs before the same text runs again.
    QSqlQuery *bound(std::optional<QSqlQuery> &fresh, const QString &statement, const Bindings &bindings);
    // Executes what bound() gave (false for null), noting a failure of the
    // file as run() does.
    bool executeBound(QSqlQuery *query);
    // Runs a bound statement whose rows nobody reads.
    bool execute(const QString &statement, const Bindings &bindings);
    // Runs a finished statement text as it is, without binding anything.
    bool runText(std::optional<QSqlQuery> &query, const QString &statement);
    // Runs a count statement; *count is column 0 of the first row, or 0.
    bool runCount(const QString &statement, const Bindings &bindings, int *count);
    int count(const QString &statement, const Bindings &bindings = {});
    int firstId(const QString &statement, const Bindings &bindings);
    QString firstText(const QString &statement, const Bindings &bindings);
    QDateTime entryDateBound(const QString &statement, const Bindings &bindings = {});
    QList<Entry *> entryList(const QString &clause, const Bindings &bindings = {});
    // Runs a statement and hands each row to `visit`, as a QSqlQuery or, on
    // the connection's own handle where it can be used, as a row of that
    // handle that answers value() alike. False when the statement could not
    // run or reading stopped before the last row.
    template<typename Visit> bool readRows(const QString &statement, const Bindings &bindings, Visit visit);
    // The connection's own SQLite handle, or null when there is none to use.
    sqlite3 *sqliteHandle() const;
    QList<Items *> itemList(const QString &statement, const Bindings &bindings = {});
    QList<ItemSubstitutes *> itemSubstitutesList(const QString &statement, const Bindings &bindings = {});
    QList<HistoricLocation *> historicLocationList(const QString &statement, const Bindings &bindings = {});
    template<typename Record, typename Read>
    QList<Record *> recordList(const QString &statement, const Bindings &bindings, Read read);

    bool indexItemsForImport();
    void forgetPreparedStatements();

    QSqlDatabase db;
    QString fileName;
    QString lastOpenError;
    bool handleUsable = false;
    bool writing = false;
    bool writeFailed = false;
    // Inside a transaction, the queries of the statements run so far, by
    // statement text: an import runs the same dozen statements for every
    // entry, and preparing them is most of the cost of each. A prepared
    // query holds its statement open, so they are let go before the
    // transaction ends; outside one every statement is prepared afresh and
    // none keeps the file's read lock between calls.
    std::unordered_map<QString, QSqlQuery> preparedStatements;
    bool inTransaction = false;
};
