// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"

#include "format.h"
#include "storageform.h"

#include <QCoreApplication>
#include <QDir>
#include <QSqlDriver>
#include <QSqlError>
#include <QHash>
#include <QSqlQuery>
#include <QSqlTableModel>
#include <QStringList>
#include <QVariant>

#include <optional>

#include <sqlite3.h>

Category::Category() : SNo(0) { }
Category::~Category() = default;

Mode::Mode() : SNo(0) { }
Mode::~Mode() = default;

Items::Items() : SNo(0), CategoryID(0), LastPrice(0.0f), UseFrequency(0) { }
Items::~Items() = default;

ItemSubstitutes::ItemSubstitutes() : SNo(0), ItemID(0), SubstituteID(0) { }
ItemSubstitutes::~ItemSubstitutes() = default;

HistoricLocation::HistoricLocation() : SNo(0), LocationLongitude(0.0f), LocationLatitude(0.0f) { }
HistoricLocation::~HistoricLocation() = default;

Entry::Entry()
    : SNo(0), CategoryID(0), Price(0.0f), EnableGeoLoc(false), GeoLocID(0), GeoLocLongit(0.0f), GeoLocLatit(0.0f),
      ItemID(0)
{
}
Entry::~Entry() = default;

PlaceSpending::PlaceSpending() : NumberOfEntries(0), Total(0.0f), Average(0.0f) { }
PlaceSpending::~PlaceSpending() = default;

CategorySpending::CategorySpending() : NumberOfDateTimes(0), Total(0.0f) { }
CategorySpending::~CategorySpending() = default;

RememberedPlaceSpending::RememberedPlaceSpending()
    : SNo(0), LocationLongitude(0.0f), LocationLatitude(0.0f), NumberOfEntries(0), Total(0.0f)
{
}
RememberedPlaceSpending::~RememberedPlaceSpending() = default;

namespace {

using Bindings = QList<QPair<QString, QVariant>>;

// Storage forms. Every value a statement binds goes through one of these, so
// files written by earlier versions and by this one look the same.

QVariant textValue(const QString &text)
{
    // A null string binds as SQL NULL, an empty one as ''.
    return text;
}

QVariant intValue(int value)
{
    return value;
}

QVariant floatValue(float value)
{
    // Bound as a float, not widened first: the column's real affinity stores
    // it, and the same float bound again compares equal to what was written.
    return QVariant::fromValue(value);
}

QVariant dateTimeValue(const QDateTime &when)
{
    return StorageForm::dateTime(when);
}

QVariant boolValue(bool value)
{
    return StorageForm::boolean(value);
}

QDateTime readDateTime(const QVariant &value)
{
    // A number in a date column is no date-time, whatever its digits say.
    if (value.typeId() != QMetaType::QString)
        return value.toDateTime();
    return StorageForm::readDateTime(value.toString());
}

// Bindings that several statements share, under the parameter names those
// statements use; every statement keeps its own text.

Bindings entryCategory(const QString &catName)
{
    return { { QStringLiteral(":catName"), textValue(catName) } };
}

Bindings countedCategory(const QString &catName)
{
    return { { QStringLiteral(":CatName"), textValue(catName) } };
}

Bindings givenDate(const QDateTime &dat)
{
    return { { QStringLiteral(":givenDate"), dateTimeValue(dat) } };
}

Bindings periodBounds(const QDateTime &startDate, const QDateTime &endDate)
{
    return { { QStringLiteral(":firstDate"), dateTimeValue(startDate) },
             { QStringLiteral(":endDate"), dateTimeValue(endDate) } };
}

Bindings itemKey(const QString &itemName, const QString &categoryName)
{
    return { { QStringLiteral(":IName"), textValue(itemName) }, { QStringLiteral(":id"), textValue(categoryName) } };
}

Bindings placeKey(const HistoricLocation &place)
{
    return { { QStringLiteral(":LocName"), textValue(place.LocationName) },
             { QStringLiteral(":loclong"), floatValue(place.LocationLongitude) },
             { QStringLiteral(":loclat"), floatValue(place.LocationLatitude) } };
}

// The texts of one list, each kept once. Entries repeat a few hundred item,
// category and place names over thousands of rows; sharing one string per
// distinct text, rather than holding one per row, keeps long lists (and the
// tables that show them, which keep the same strings) a good deal lighter.
class TextPool
{
public:
    QString shared(const QString &text)
    {
        // A null text (NULL in the file) and an empty one compare equal here
        // but are not the same value: neither is pooled.
        if (text.isEmpty())
            return text;
        const auto found = texts.constFind(text);
        if (found != texts.constEnd())
            return *found;
        texts.insert(text, text);
        return text;
    }

private:
    QHash<QString, QString> texts;
};

// Reads one entry row from anything that answers value(column) as Qt's
// SQLite driver would: a QSqlQuery, or a SqliteRow below.
template<typename Row> Entry *readEntry(const Row &query, TextPool &texts)
{
    auto *entry = new Entry;
    entry->SNo = query.value(0).toInt();
    entry->ItemName = texts.shared(query.value(1).toString());
    entry->CategoryName = texts.shared(query.value(2).toString());
    entry->CategoryID = query.value(3).toInt();
    entry->TransactDateTime = readDateTime(query.value(4));
    entry->Price = query.value(5).toFloat();
    entry->LocationText = texts.shared(query.value(6).toString());
    entry->EnableGeoLoc = query.value(7).toBool();
    entry->GeoLocID = query.value(8).toInt();
    entry->GeoLocLongit = query.value(9).toFloat();
    entry->GeoLocLatit = query.value(10).toFloat();
    entry->ItemID = query.value(11).toInt();
    return entry;
}

// One row of a statement run on the connection's own SQLite handle. Each
// column becomes the QVariant that Qt's driver would have made of it, so the
// record readers convert exactly as they do for a QSqlQuery.
class SqliteRow
{
public:
    explicit SqliteRow(sqlite3_stmt *statement) : statement(statement) { }

    QVariant value(int column) const
    {
        switch (sqlite3_column_type(statement, column)) {
        case SQLITE_INTEGER:
            return QVariant(qint64(sqlite3_column_int64(statement, column)));
        case SQLITE_FLOAT:
            return QVariant(sqlite3_column_double(statement, column));
        case SQLITE_NULL:
            return QVariant(QMetaType::fromType<QString>());
        case SQLITE_BLOB:
            return QVariant(QByteArray(static_cast<const char *>(sqlite3_column_blob(statement, column)),
                                       sqlite3_column_bytes(statement, column)));
        default: {
            const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
            return QVariant(QString::fromUtf8(text, sqlite3_column_bytes(statement, column)));
        }
        }
    }

private:
    sqlite3_stmt *statement;
};

Category *readCategory(const QSqlQuery &query)
{
    auto *category = new Category;
    category->SNo = query.value(0).toInt();
    category->CategoryName = query.value(1).toString();
    return category;
}

Mode *readMode(const QSqlQuery &query)
{
    auto *mode = new Mode;
    mode->SNo = query.value(0).toInt();
    mode->ModeName = query.value(1).toString();
    return mode;
}

Items *readItem(const QSqlQuery &query)
{
    auto *item = new Items;
    item->SNo = query.value(0).toInt();
    item->ItemName = query.value(1).toString();
    item->CategoryName = query.value(2).toString();
    item->CategoryID = query.value(3).toInt();
    item->LastPrice = query.value(4).toFloat();
    item->UseFrequency = query.value(5).toInt();
    return item;
}

ItemSubstitutes *readItemSubstitutes(const QSqlQuery &query)
{
    auto *substitutes = new ItemSubstitutes;
    substitutes->SNo = query.value(0).toInt();
    substitutes->ItemName = query.value(1).toString();
    substitutes->SubstituteName = query.value(2).toString();
    substitutes->ItemID = query.value(3).toInt();
    substitutes->SubstituteID = query.value(4).toInt();
    return substitutes;
}

HistoricLocation *readHistoricLocation(const QSqlQuery &query)
{
    auto *location = new HistoricLocation;
    location->SNo = query.value(0).toInt();
    location->LocationName = query.value(1).toString();
    location->LocationLongitude = query.value(2).toFloat();
    location->LocationLatitude = query.value(3).toFloat();
    location->ReverseGeoLocation = query.value(4).toString();
    location->CoordinateText = query.value(5).toString();
    return location;
}

PlaceSpending *readPlaceSpending(const QSqlQuery &query)
{
    auto *place = new PlaceSpending;
    place->LocationText = query.value(0).toString();
    place->NumberOfEntries = query.value(1).toInt();
    place->Total = query.value(2).toFloat();
    place->Average = query.value(3).toFloat();
    place->LastVisit = readDateTime(query.value(4));
    return place;
}

RememberedPlaceSpending *readRememberedPlaceSpending(const QSqlQuery &query)
{
    auto *place = new RememberedPlaceSpending;
    place->SNo = query.value(0).toInt();
    place->LocationName = query.value(1).toString();
    place->LocationLongitude = query.value(2).toFloat();
    place->LocationLatitude = query.value(3).toFloat();
    place->NumberOfEntries = query.value(4).toInt();
    place->Total = query.value(5).toFloat();
    return place;
}

const QString entryColumns = QStringLiteral("select SNo,ItemName,CategoryName,CategoryID,TransactDateTime,Price,"
                                            "LocationText,EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,ItemID "
                                            "from Entry");
const QString itemColumns =
    QStringLiteral("select SNo,ItemName,CategoryName,CategoryID,LastPrice,UseFrequency from Items");
const QString itemSubstitutesColumns =
    QStringLiteral("select SNo,ItemName,SubstituteName,ItemID,SubstitueID from ItemSubstitutes");
const QString historicLocationColumns =
    QStringLiteral("select SNo,LocationName,LocationLongitude,LocationLatitude,ReverseGeoLocation,CoordinateText from "
                   "HistoricLocation");

const QString countEntries = QStringLiteral("SELECT COUNT(ItemName) FROM Entry;");
const QString countItems = QStringLiteral("SELECT COUNT(ItemName) FROM Items;");
const QString countCategories = QStringLiteral("SELECT COUNT(CategoryName) FROM Category;");
const QString countModes = QStringLiteral("SELECT COUNT(ModeName) FROM Mode;");
const QString countItemSubstitutes = QStringLiteral("SELECT COUNT(ItemName) FROM ItemSubstitutes;");
const QString countHistoricLocations = QStringLiteral("SELECT COUNT(LocationName) FROM HistoricLocation;");

// Stores alive in this process: they share the default connection, and the
// last one to go closes it.
int liveStores = 0;

// Set (to anything) to read every list through Qt's driver, never on the
// SQLite handle underneath it.
const char noSqliteHandleVariable[] = "LEDGERLY_NO_SQLITE_HANDLE";

// Whether a statement failed because of the file (locked by another program,
// the disk full, unreadable) rather than because the file refused the data
// (a constraint, a missing table), judged by SQLite's primary result code.
bool isFileFailure(const QSqlError &error)
{
    bool isCode = false;
    const int code = error.nativeErrorCode().toInt(&isCode) & 0xff;
    if (!isCode)
        return false;
    switch (code) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_NOMEM:
    case SQLITE_READONLY:
    case SQLITE_INTERRUPT:
    case SQLITE_IOERR:
    case SQLITE_CORRUPT:
    case SQLITE_FULL:
    case SQLITE_CANTOPEN:
    case SQLITE_PROTOCOL:
    case SQLITE_NOTADB:
        return true;
    default:
        return false;
    }
}

// Reads every row of an executed query; false when reading stopped on an
// error (a locked or damaged file) before the last row.
template<typename Read> bool readAllRows(QSqlQuery &query, Read read)
{
    while (query.next())
        read(query);
    return !query.lastError().isValid();
}

// What went wrong with a statement that run() or runText() was given: empty
// when the store never made its query (an unopened store fails silently).
QString failureText(const std::optional<QSqlQuery> &query)
{
    return query ? query->lastError().text() : QString();
}

// Whether two values of one column are the same to SQLite's DISTINCT: the
// same storage class (numbers of either kind count as one) and the same
// value, texts byte for byte.
bool sameStoredValue(const QVariant &a, const QVariant &b)
{
    if (a.isNull() || b.isNull())
        return a.isNull() && b.isNull();
    const auto isNumber = [](const QVariant &value) {
        return value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Double ||
            value.typeId() == QMetaType::Int;
    };
    if (isNumber(a) || isNumber(b)) {
        if (!isNumber(a) || !isNumber(b))
            return false;
        if (a.typeId() == QMetaType::Double || b.typeId() == QMetaType::Double)
            return a.toDouble() == b.toDouble();
        return a.toLongLong() == b.toLongLong();
    }
    if (a.typeId() != b.typeId())
        return false;
    if (a.typeId() == QMetaType::QString)
        return a.toString() == b.toString();
    return a.toByteArray() == b.toByteArray();
}

// How long a statement waits for a file that another program holds locked:
// the driver's own default, said here so that it is a decision of the store.
const int storeBusyTimeout = 5000;
// What a page's Save waits for the file: long enough for another program's
// ordinary write to finish, short enough that a file held locked does not
// freeze the page.
const int editsBusyTimeout = 500;

// The item catalogue's index while an import runs; see indexItemsForImport().
const QString importItemsIndex = QStringLiteral("ledgerly_import_items");

} // namespace

DatabaseManager::DatabaseManager(QObject *parent) : QObject(parent)
{
    ++liveStores;
    if (!setupDatabase(defaultFileName())) {
        // Too early to end anything: the event loop is not running yet, so
        // the program goes on with an unusable store whose queries all fail.
        if (QCoreApplication *application = QCoreApplication::instance())
            application->exit(0);
    }
}

DatabaseManager::~DatabaseManager()
{
    db = QSqlDatabase();
    if (--liveStores == 0)
        QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
}

QString DatabaseManager::defaultFileName()
{
    return QDir::homePath() + QDir::separator() + QStringLiteral("ledgerlydatabase.db");
}

bool DatabaseManager::isUsable() const
{
    return lastOpenError.isEmpty();
}

QString DatabaseManager::databaseFileName() const
{
    return fileName;
}

QString DatabaseManager::openError() const
{
    return lastOpenError;
}

bool DatabaseManager::setupDatabase(QString dbname)
{
    fileName = dbname;
    lastOpenError.clear();

    const QString connection = QLatin1String(QSqlDatabase::defaultConnection);
    if (QSqlDatabase::contains(connection)) {
        // Another store lives: share its connection as it is. Closing it or
        // pointing it at another file would pull the rows out from under
        // every model that shows them.
        QSqlDatabase shared = QSqlDatabase::database(connection, false);
        if (shared.databaseName() != dbname) {
            lastOpenError =
                tr("The program already works on %1 and opens one database file at a time.").arg(shared.databaseName());
            return false;
        }
        db = shared;
        if (db.isOpen()) {
            handleUsable = driverRunsOurSqlite();
            createTablesAndDefaultRows();
            return true;
        }
    } else {
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
        db.setDatabaseName(dbname);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(storeBusyTimeout));
    }
    if (!db.open()) {
        lastOpenError = db.lastError().text();
        return false;
    }

    // SQLite opens any file lazily; a file that is not a database fails only
    // at its first statement. Find out now, before anything is written.
    {
        QSqlQuery probe(db);
        probe.setForwardOnly(true);
        if (!probe.exec(QStringLiteral("SELECT count(*) FROM sqlite_master"))) {
            lastOpenError = probe.lastError().text();
        }
    }
    if (!lastOpenError.isEmpty()) {
        db.close();
        return false;
    }

    // SQLite's own page cache (2 MB) is kept: a page reads the entry table
    // a few times, from the system's file cache, and a cache the size of ten
    // years of entries would only hold a second copy of them in memory (and
    // let each sort of a whole list grow to its size before it spills).
    handleUsable = driverRunsOurSqlite();
    createTablesAndDefaultRows();
    return true;
}

bool DatabaseManager::driverRunsOurSqlite()
{
    if (qEnvironmentVariableIsSet(noSqliteHandleVariable))
        return false;
    // The handle of Qt's driver may only be given to the SQLite library that
    // we link if the driver runs on that very library; a Qt built with its
    // own copy of SQLite hands out a handle of another library.
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("select sqlite_version(), sqlite_source_id()")) || !query.next())
        return false;
    return query.value(0).toString() == QLatin1String(sqlite3_libversion()) &&
        query.value(1).toString() == QLatin1String(sqlite3_sourceid());
}

bool DatabaseManager::usesSqliteHandle() const
{
    return db.isOpen() && handleUsable;
}

void DatabaseManager::createTablesAndDefaultRows()
{
    createCategoryTable();
    createItemsTable();
    createModeTable();
    createHistoricLocationTable();
    createItemSubstitutesTable();
    createEntryTable();
    addDefaultCategories();
    addDefaultModes();
}

QSqlTableModel *DatabaseManager::createTableModel(const QString &table, QObject *parent)
{
    // An invalid connection would make the model fall back to the default
    // one, which belongs to another file.
    if (!db.isValid())
        return nullptr;
    auto *model = new QSqlTableModel(parent, db);
    model->setTable(table);
    model->setEditStrategy(QSqlTableModel::OnManualSubmit);
    model->select();
    return model;
}

bool DatabaseManager::runInTransaction(WriteKind kind, const std::function<bool()> &work, QString *failure)
{
    const auto fail = [failure](const QString &reason) {
        if (failure)
            *failure = reason;
        return false;
    };
    if (!db.isOpen())
        return fail(db.lastError().text().isEmpty() ? lastOpenError : db.lastError().text());
    if (inTransaction)
        return fail(tr("Another change to the database is under way."));

    // A page's Save waits only briefly for the file, at the start and at
    // the commit alike; the usual wait is back in force when it ends.
    struct BusyTimeout
    {
        DatabaseManager *store;
        bool brief;
        ~BusyTimeout()
        {
            if (brief)
                store->setBusyTimeout(storeBusyTimeout);
        }
    } busyTimeout { this, kind == WriteKind::Edits };
    if (busyTimeout.brief)
        setBusyTimeout(editsBusyTimeout);

    // IMMEDIATE takes the write lock now. Qt's own transaction() begins a
    // deferred one, which would only find a locked file at its first write,
    // after a table model had marked the rows before it as written.
    std::optional<QSqlQuery> begin;
    if (!runText(begin, QStringLiteral("BEGIN IMMEDIATE")))
        return fail(failureText(begin));

    const bool indexed = kind == WriteKind::Import && indexItemsForImport();
    inTransaction = true;
    bool worked = work();
    forgetPreparedStatements();
    inTransaction = false;
    if (indexed && worked) {
        std::optional<QSqlQuery> drop;
        if (!runText(drop, QStringLiteral("DROP INDEX ") + importItemsIndex)) {
            worked = false;
            if (failure)
                *failure = failureText(drop);
        }
    }

    if (worked) {
        std::optional<QSqlQuery> commit;
        if (runText(commit, QStringLiteral("COMMIT")))
            return true;
        // A failed COMMIT leaves the transaction open; nothing of it stays.
        const QString reason = failureText(commit);
        std::optional<QSqlQuery> rollback;
        runText(rollback, QStringLiteral("ROLLBACK"));
        return fail(reason);
    }
    std::optional<QSqlQuery> rollback;
    runText(rollback, QStringLiteral("ROLLBACK"));
    return false;
}

bool DatabaseManager::indexItemsForImport()
{
    // Every AddEntry looks its item up in the catalogue four times, and the
    // file has no index on it: ten years of items read whole for each entry
    // would make an import take minutes. The index lives only inside the
    // import's transaction (it is dropped before the commit, and a rollback
    // takes it away too), so the file keeps its schema. SQLite drops nothing
    // while another statement of the connection is still reading (a table
    // model that has not fetched all its rows); the import then runs without
    // the index, slower but the same.
    sqlite3 *handle = sqliteHandle();
    if (!handle)
        return false;
    for (sqlite3_stmt *statement = sqlite3_next_stmt(handle, nullptr); statement;
         statement = sqlite3_next_stmt(handle, statement)) {
        if (sqlite3_stmt_busy(statement))
            return false;
    }
    std::optional<QSqlQuery> create;
    return runText(create, QStringLiteral("CREATE INDEX %1 ON Items (ItemName, CategoryName)").arg(importItemsIndex));
}

void DatabaseManager::forgetPreparedStatements()
{
    for (auto &kept : preparedStatements)
        kept.second.finish();
    preparedStatements.clear();
}

bool DatabaseManager::backUpTo(const QString &destination, const Progress &progress, QString *failure)
{
    const auto fail = [failure](const QString &reason) {
        if (failure)
            *failure = reason;
        return false;
    };
    if (!db.isOpen())
        return fail(lastOpenError.isEmpty() ? tr("The database is not open.") : lastOpenError);
    sqlite3 *source = sqliteHandle();
    if (!source) {
        // Without a handle of the SQLite we link, Qt's driver makes the copy
        // with VACUUM INTO, in one step; SQLite refuses that while another
        // statement of the connection is still reading.
        if (progress && !progress(0, 1))
            return fail(tr("The backup was cancelled."));
        std::optional<QSqlQuery> vacuum;
        if (!run(vacuum, QStringLiteral("VACUUM INTO :file"), { { QStringLiteral(":file"), textValue(destination) } }))
            return fail(failureText(vacuum));
        if (progress)
            progress(1, 1);
        return true;
    }

    // SQLite's online backup copies the pages under a read lock, so the copy
    // is the database at one moment; unlike VACUUM INTO it runs while other
    // statements of this connection are open (a table model still reading
    // its rows), and copies pages as they are rather than rebuilding them.
    sqlite3 *target = nullptr;
    const QByteArray targetName = destination.toUtf8();
    if (sqlite3_open_v2(targetName.constData(), &target, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
        SQLITE_OK) {
        const QString reason = QString::fromUtf8(sqlite3_errmsg(target));
        sqlite3_close(target);
        return fail(reason);
    }
    sqlite3_backup *backup = sqlite3_backup_init(target, "main", source, "main");
    if (!backup) {
        const QString reason = QString::fromUtf8(sqlite3_errmsg(target));
        sqlite3_close(target);
        return fail(reason);
    }
    // Steps of 1024 pages (4 MB) let a progress dialog move and cancel; the
    // source is locked only while a step runs, and a step that finds the
    // database changed by another connection starts the copy again.
    int step = SQLITE_OK;
    bool stopped = false;
    do {
        step = sqlite3_backup_step(backup, 1024);
        if (step == SQLITE_BUSY || step == SQLITE_LOCKED)
            sqlite3_sleep(20);
        else if (progress && (step == SQLITE_OK || step == SQLITE_DONE))
            stopped = !progress(sqlite3_backup_pagecount(backup) - sqlite3_backup_remaining(backup),
                                sqlite3_backup_pagecount(backup));
    } while (!stopped && (step == SQLITE_OK || step == SQLITE_BUSY || step == SQLITE_LOCKED));
    sqlite3_backup_finish(backup);
    const int finished = sqlite3_errcode(target);
    const QString reason = QString::fromUtf8(sqlite3_errmsg(target));
    sqlite3_close(target);
    if (stopped)
        return fail(tr("The backup was cancelled."));
    if (step != SQLITE_DONE || finished != SQLITE_OK)
        return fail(step == SQLITE_DONE ? reason : QString::fromUtf8(sqlite3_errstr(step)));
    return true;
}

void DatabaseManager::setBusyTimeout(int milliseconds)
{
    std::optional<QSqlQuery> query;
    runText(query, QStringLiteral("PRAGMA busy_timeout = %1").arg(milliseconds));
}

bool DatabaseManager::createTableIfMissing(const QString &table, const QString &createStatement)
{
    // Exact, case-sensitive: a table "entry" does not count as "Entry", and
    // the create statement that SQLite then refuses is ignored.
    const QStringList tables = db.tables(QSql::Tables);
    if (tables.contains(table, Qt::CaseSensitive))
        return true;
    std::optional<QSqlQuery> query;
    runText(query, createStatement);
    return true;
}

bool DatabaseManager::createCategoryTable()
{
    return createTableIfMissing(QStringLiteral("Category"),
                                QStringLiteral("CREATE TABLE Category (SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL "
                                               "UNIQUE, CategoryName  nvarchar(255) NOT NULL UNIQUE )"));
}

bool DatabaseManager::createItemsTable()
{
    return createTableIfMissing(
        QStringLiteral("Items"),
        QStringLiteral("CREATE TABLE Items ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, ItemName "
                       "nvarchar(255) NOT NULL, CategoryName  nvarchar(255) NOT NULL, CategoryID integer NOT NULL, "
                       "LastPrice float(50), UseFrequency  integer )"));
}

bool DatabaseManager::createModeTable()
{
    return createTableIfMissing(QStringLiteral("Mode"),
                                QStringLiteral("CREATE TABLE Mode ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL "
                                               "UNIQUE, ModeName  nvarchar(255) NOT NULL )"));
}

bool DatabaseManager::createHistoricLocationTable()
{
    return createTableIfMissing(
        QStringLiteral("HistoricLocation"),
        QStringLiteral("CREATE TABLE HistoricLocation ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, "
                       "LocationName nvarchar(255) NOT NULL UNIQUE, LocationLongitude   float(50) NOT NULL, "
                       "LocationLatitude    float(50) NOT NULL, ReverseGeoLocation  nvarchar(255), CoordinateText "
                       "nvarchar(255) )"));
}

bool DatabaseManager::createItemSubstitutesTable()
{
    return createTableIfMissing(
        QStringLiteral("ItemSubstitutes"),
        QStringLiteral("CREATE TABLE ItemSubstitutes ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, "
                       "ItemName nvarchar(255) NOT NULL, SubstituteName  nvarchar(255) NOT NULL, ItemID integer NOT "
                       "NULL, SubstitueID integer NOT NULL )"));
}

bool DatabaseManager::createEntryTable()
{
    return createTableIfMissing(
        QStringLiteral("Entry"),
        QStringLiteral("CREATE TABLE Entry ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, ItemName "
                       "nvarchar(255) NOT NULL, CategoryName nvarchar(255) NOT NULL, CategoryID integer NOT NULL, "
                       "TransactDateTime  datetime NOT NULL, Price float(50) NOT NULL, LocationText nvarchar(255), "
                       "EnableGeoLoc boolean NOT NULL, GeoLocID integer, GeoLocLongit float(50), GeoLocLatit "
                       "float(50), ItemID integer NOT NULL )"));
}

bool DatabaseManager::addNameIfMissing(const QString &name, const QString &countStatement,
                                       const QString &insertStatement)
{
    // Exactly one copy counts as present; anything else is an insert, which
    // a unique name refuses if the name is there after all, and which gives
    // a mode name stored twice a third copy, as it always has.
    if (count(countStatement, { { QStringLiteral(":id"), textValue(name) } }) == 1)
        return true;
    std::optional<QSqlQuery> insert;
    return run(insert, insertStatement, { { QStringLiteral(":name"), textValue(name) } });
}

bool DatabaseManager::renameIfStoredOnce(const QString &oldName, const QString &newName, const QString &countStatement,
                                         const QString &updateStatement)
{
    int found = 0;
    const bool counted = runCount(countStatement, { { QStringLiteral(":id"), textValue(oldName) } }, &found);
    if (found == 0)
        return false;
    // A name stored more than once is left alone, and that counts as success.
    if (found != 1)
        return counted;
    std::optional<QSqlQuery> query;
    return run(query, updateStatement,
               { { QStringLiteral(":newname"), textValue(newName) }, { QStringLiteral(":old"), textValue(oldName) } });
}

void DatabaseManager::addDefaultCategories()
{
    static const QStringList names = {
        QStringLiteral("Food"),
        QStringLiteral("Drinks"),
        QStringLiteral("Automobile - Fuel"),
        QStringLiteral("Automobile - Lease"),
        QStringLiteral("Automobile - Maintainence"),
        QStringLiteral("Automobile - Other"),
        QStringLiteral("Clothing"),
        QStringLiteral("Entertainment - Dining"),
        QStringLiteral("Entertainment - Movies"),
        QStringLiteral("Entertainment - Recreation"),
        QStringLiteral("Entertainment - Sports"),
        QStringLiteral("Entertainment - Other"),
        QStringLiteral("Groceries"),
        QStringLiteral("Gifts"),
        QStringLiteral("Household"),
        QStringLiteral("Insurance - Life"),
        QStringLiteral("Insurance - Health"),
        QStringLiteral("Insurance - Travel"),
        QStringLiteral("Insurance - Home"),
        QStringLiteral("Insurance - Other"),
        QStringLiteral("Loan - Auto"),
        QStringLiteral("Loan - Home"),
        QStringLiteral("Loan - Student"),
        QStringLiteral("Loan - Other"),
        QStringLiteral("Medical Expense"),
        QStringLiteral("Dental Expense"),
        QStringLiteral("Personal Care"),
        QStringLiteral("Mortgage"),
        QStringLiteral("Phone"),
        QStringLiteral("Retirement Savings"),
        QStringLiteral("Rent"),
        QStringLiteral("Subscriptions"),
        QStringLiteral("Taxes"),
        QStringLiteral("Utilities - Cable"),
        QStringLiteral("Utilities - Gas/Electric/Water"),
        QStringLiteral("Utilities - Internet Access"),
        QStringLiteral("Others"),
    };
    for (const QString &name : names)
        AddCategory(name);
}

void DatabaseManager::addDefaultModes()
{
    static const QStringList names = {
        QStringLiteral("Default"),
        QStringLiteral("Money Saving"),
        QStringLiteral("Time Saving"),
    };
    // The same as AddMode but for the insert's text, which has never ended
    // in a semicolon here.
    for (const QString &name : names)
        addNameIfMissing(name, QStringLiteral("SELECT COUNT(ModeName) FROM Mode WHERE ModeName = :id"),
                         QStringLiteral("INSERT INTO Mode (ModeName) VALUES (:name)"));
}

// Statement helpers

bool DatabaseManager::run(std::optional<QSqlQuery> &query, const QString &statement, const Bindings &bindings)
{
    // Checked before any query exists: Qt warns about statements on a closed
    // connection, and an unopened store is meant to fail without a word. The
    // query is made here and only here: every QSqlQuery makes a result of
    // the driver, so one made beforehand only to be replaced costs a second.
    if (!db.isOpen() || writeFailed)
        return false;
    QSqlQuery &made = query.emplace(db);
    // Results are read once, front to back; a scrollable query would keep a
    // second copy of every row.
    made.setForwardOnly(true);
    bool executed = false;
    if (bindings.isEmpty()) {
        executed = made.exec(statement);
    } else if (made.prepare(statement)) {
        for (const auto &binding : bindings)
            made.bindValue(binding.first, binding.second);
        executed = made.exec();
    }
    noteFailure(executed, made);
    return executed;
}

QSqlQuery *DatabaseManager::bound(std::optional<QSqlQuery> &fresh, const QString &statement, const Bindings &bindings)
{
    if (!db.isOpen() || writeFailed)
        return nullptr;
    QSqlQuery *query = nullptr;
    if (inTransaction) {
        auto kept = preparedStatements.find(statement);
        if (kept == preparedStatements.end()) {
            QSqlQuery prepared(db);
            prepared.setForwardOnly(true);
            if (!prepared.prepare(statement)) {
                noteFailure(false, prepared);
                return nullptr;
            }
            kept = preparedStatements.emplace(statement, std::move(prepared)).first;
        }
        query = &kept->second;
    } else {
        query = &fresh.emplace(db);
        query->setForwardOnly(true);
        if (!query->prepare(statement)) {
            noteFailure(false, *query);
            return nullptr;
        }
    }
    for (const auto &binding : bindings)
        query->bindValue(binding.first, binding.second);
    return query;
}

bool DatabaseManager::executeBound(QSqlQuery *query)
{
    if (!query)
        return false;
    const bool executed = query->exec();
    noteFailure(executed, *query);
    return executed;
}

bool DatabaseManager::execute(const QString &statement, const Bindings &bindings)
{
    std::optional<QSqlQuery> fresh;
    return executeBound(bound(fresh, statement, bindings));
}

bool DatabaseManager::runText(std::optional<QSqlQuery> &query, const QString &statement)
{
    if (!db.isOpen() || writeFailed)
        return false;
    QSqlQuery &made = query.emplace(db);
    made.setForwardOnly(true);
    const bool executed = made.exec(statement);
    noteFailure(executed, made);
    return executed;
}

void DatabaseManager::noteFailure(bool executed, const QSqlQuery &query)
{
    if (!executed && writing && isFileFailure(query.lastError()))
        writeFailed = true;
}

bool DatabaseManager::beginWrite()
{
    // A savepoint, not BEGIN, so that a write may also run inside a
    // transaction of its caller's.
    std::optional<QSqlQuery> query;
    if (!runText(query, QStringLiteral("SAVEPOINT ledgerly_write")))
        return false;
    writing = true;
    writeFailed = false;
    return true;
}

bool DatabaseManager::endWrite(bool result)
{
    writing = false;
    const bool failed = std::exchange(writeFailed, false);
    std::optional<QSqlQuery> query;
    // Releasing the outermost savepoint commits, which can fail in turn (the
    // disk full, readers holding the file).
    if (!failed && runText(query, QStringLiteral("RELEASE ledgerly_write")))
        return result;
    runText(query, QStringLiteral("ROLLBACK TO ledgerly_write"));
    runText(query, QStringLiteral("RELEASE ledgerly_write"));
    return false;
}

bool DatabaseManager::runCount(const QString &statement, const Bindings &bindings, int *count)
{
    std::optional<QSqlQuery> fresh;
    QSqlQuery *query = bound(fresh, statement, bindings);
    const bool executed = executeBound(query);
    *count = executed && query->next() ? query->value(0).toInt() : 0;
    return executed;
}

int DatabaseManager::count(const QString &statement, const Bindings &bindings)
{
    int rows = 0;
    runCount(statement, bindings, &rows);
    return rows;
}

int DatabaseManager::firstId(const QString &statement, const Bindings &bindings)
{
    std::optional<QSqlQuery> fresh;
    QSqlQuery *query = bound(fresh, statement, bindings);
    if (executeBound(query) && query->next())
        return query->value(0).toInt();
    return 0;
}

QString DatabaseManager::firstText(const QString &statement, const Bindings &bindings)
{
    std::optional<QSqlQuery> fresh;
    QSqlQuery *query = bound(fresh, statement, bindings);
    if (executeBound(query) && query->next())
        return query->value(0).toString();
    return QString();
}

QDateTime DatabaseManager::entryDateBound(const QString &statement, const Bindings &bindings)
{
    // The whole table is counted even for a category's bound; an empty table
    // answers without running the statement.
    QDateTime bound;
    if (count(countEntries) > 0) {
        std::optional<QSqlQuery> query;
        if (run(query, statement, bindings) && query->next())
            bound = readDateTime(query->value(0));
    }
    return bound;
}

template<typename Record, typename Read>
QList<Record *> DatabaseManager::recordList(const QString &statement, const Bindings &bindings, Read read)
{
    // The list grows with the rows it gets. Counting the whole table first,
    // as lists of rows once did, decided nothing (the list is built the same
    // way whatever the number says) and sized a list of a few rows for the
    // whole table; it is not run, and the lists are the same without it.
    QList<Record *> records;
    std::optional<QSqlQuery> query;
    if (!run(query, statement, bindings))
        return records;
    // A list cut short by a failed read is no list: the rows read so far
    // would pass for all of them.
    if (!readAllRows(*query, [&](const QSqlQuery &row) { records.append(read(row)); })) {
        qDeleteAll(records);
        records.clear();
    }
    return records;
}

template<typename Visit> bool DatabaseManager::readRows(const QString &statement, const Bindings &bindings, Visit visit)
{
    sqlite3 *handle = sqliteHandle();
    if (!handle) {
        std::optional<QSqlQuery> query;
        return run(query, statement, bindings) && readAllRows(*query, visit);
    }

    // Entry lists are what reports read, up to ten years of rows at a time.
    // Qt's driver caches every row as a list of variants and converts every
    // text to UTF-16 inside SQLite before handing it over; reading the same
    // statement on the connection's own handle costs about half as much.
    const QByteArray statementText = statement.toUtf8();
    sqlite3_stmt *prepared = nullptr;
    if (sqlite3_prepare_v2(handle, statementText.constData(), int(statementText.size()), &prepared, nullptr) !=
        SQLITE_OK) {
        sqlite3_finalize(prepared);
        return false;
    }
    for (const auto &binding : bindings) {
        const int index = sqlite3_bind_parameter_index(prepared, binding.first.toUtf8().constData());
        if (index == 0)
            continue;
        // Entry lists bind texts only (names and dates in their text form); a
        // null text binds as NULL, as the driver would bind it.
        if (binding.second.isNull()) {
            sqlite3_bind_null(prepared, index);
        } else {
            const QByteArray text = binding.second.toString().toUtf8();
            sqlite3_bind_text(prepared, index, text.constData(), int(text.size()), SQLITE_TRANSIENT);
        }
    }
    const SqliteRow row(prepared);
    int stepped;
    while ((stepped = sqlite3_step(prepared)) == SQLITE_ROW)
        visit(row);
    sqlite3_finalize(prepared);
    return stepped == SQLITE_DONE;
}

QList<Entry *> DatabaseManager::entryList(const QString &clause, const Bindings &bindings)
{
    // The list grows with the rows it gets, without the whole-table count
    // (see recordList()).
    QList<Entry *> records;
    // A list cut short by a failed read is no list.
    TextPool texts;
    if (!readRows(entryColumns + clause, bindings,
                  [&](const auto &row) { records.append(readEntry(row, texts)); })) {
        qDeleteAll(records);
        records.clear();
    }
    return records;
}

sqlite3 *DatabaseManager::sqliteHandle() const
{
    if (!usesSqliteHandle())
        return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(handle.constData());
}

QList<Items *> DatabaseManager::itemList(const QString &statement, const Bindings &bindings)
{
    return recordList<Items>(statement, bindings, readItem);
}

QList<ItemSubstitutes *> DatabaseManager::itemSubstitutesList(const QString &statement, const Bindings &bindings)
{
    return recordList<ItemSubstitutes>(statement, bindings, readItemSubstitutes);
}

QList<HistoricLocation *> DatabaseManager::historicLocationList(const QString &statement, const Bindings &bindings)
{
    return recordList<HistoricLocation>(statement, bindings, readHistoricLocation);
}

// Categories

bool DatabaseManager::AddCategory(QString CName)
{
    return addNameIfMissing(CName, QStringLiteral("SELECT COUNT(CategoryName) FROM Category WHERE CategoryName = :id"),
                            QStringLiteral("INSERT INTO Category (CategoryName) VALUES (:name)"));
}

bool DatabaseManager::EditCategory(QString OldName, QString NewName)
{
    // Only the Category row is renamed: entries and items keep the old name,
    // and their CategoryID still points at this row.
    return renameIfStoredOnce(OldName, NewName,
                              QStringLiteral("SELECT COUNT(CategoryName) FROM Category WHERE CategoryName = :id"),
                              QStringLiteral("UPDATE Category SET CategoryName = :newname where CategoryName = :old"));
}

int DatabaseManager::GetCategoryID(QString Name)
{
    return firstId(
        QStringLiteral("select SNo,CategoryName from Category where CategoryName=:CName order by SNo limit 1"),
        { { QStringLiteral(":CName"), textValue(Name) } });
}

QString DatabaseManager::GetCategoryNameByCategoryID(int id)
{
    return firstText(QStringLiteral("select CategoryName from Category where SNo=:sno"),
                     { { QStringLiteral(":sno"), intValue(id) } });
}

// Modes

bool DatabaseManager::AddMode(QString CName)
{
    // Mode names are not unique: a name stored twice gets a third copy.
    return addNameIfMissing(CName, QStringLiteral("SELECT COUNT(ModeName) FROM Mode WHERE ModeName = :id"),
                            QStringLiteral("INSERT INTO Mode (ModeName) VALUES (:name);"));
}

bool DatabaseManager::EditMode(QString OldName, QString NewName)
{
    return renameIfStoredOnce(OldName, NewName, QStringLiteral("SELECT COUNT(ModeName) FROM Mode WHERE ModeName = :id"),
                              QStringLiteral("UPDATE Mode SET ModeName = :newname where ModeName = :old"));
}

int DatabaseManager::GetModeID(QString Name)
{
    return firstId(QStringLiteral("select SNo from Mode where ModeName=:CName"),
                   { { QStringLiteral(":CName"), textValue(Name) } });
}

// Item catalogue

bool DatabaseManager::AddItem(Items *t)
{
    const Bindings item = itemKey(t->ItemName, t->CategoryName);
    const int known =
        count(QStringLiteral("SELECT COUNT(ItemName) FROM Items WHERE ItemName=:IName and CategoryName = :id"), item);
    if (known > 0) {
        const int frequency = firstId(
            QStringLiteral("select UseFrequency from Items where ItemName=:IName and CategoryName = :id "), item);
        // The record's own frequency and CategoryID play no part: each use
        // counts one, and the row keeps the category number it was made with.
        return execute(
            QStringLiteral("UPDATE Items SET UseFrequency = :fval, LastPrice= :lastP where ItemName=:IName and "
                           "CategoryName = :id"),
            item +
                Bindings { { QStringLiteral(":fval"), intValue(frequency + 1) },
                           { QStringLiteral(":lastP"), floatValue(t->LastPrice) } });
    }
    const int categoryId = GetCategoryID(t->CategoryName);
    return execute(QStringLiteral("INSERT INTO Items (ItemName,CategoryName,CategoryID,LastPrice,UseFrequency) VALUES "
                                  "(:IName,:CatName,:CatID,:LPrice,:UseFreq);"),
                   { { QStringLiteral(":IName"), textValue(t->ItemName) },
                     { QStringLiteral(":CatName"), textValue(t->CategoryName) },
                     { QStringLiteral(":CatID"), intValue(categoryId) },
                     { QStringLiteral(":LPrice"), floatValue(t->LastPrice) },
                     { QStringLiteral(":UseFreq"), intValue(1) } });
}

bool DatabaseManager::EditItem(Items *old, Items *newItem)
{
    // The category number is looked up from the new name, not taken from
    // the record.
    const int categoryId = GetCategoryID(newItem->CategoryName);
    std::optional<QSqlQuery> query;
    return run(query,
               QStringLiteral("UPDATE Items SET ItemName=:IName, CategoryName=:CatName, CategoryID=:CatID, "
                              "LastPrice=:LPrice, UseFrequency = :UseFreq where ItemName=:IOldName and CategoryName = "
                              ":oldCat"),
               { { QStringLiteral(":IName"), textValue(newItem->ItemName) },
                 { QStringLiteral(":CatName"), textValue(newItem->CategoryName) },
                 { QStringLiteral(":CatID"), intValue(categoryId) },
                 { QStringLiteral(":LPrice"), floatValue(newItem->LastPrice) },
                 { QStringLiteral(":UseFreq"), intValue(newItem->UseFrequency) },
                 { QStringLiteral(":IOldName"), textValue(old->ItemName) },
                 { QStringLiteral(":oldCat"), textValue(old->CategoryName) } });
}

// The delete statements put their values into the text unquoted, as they
// always have: anything but a bare number makes SQLite refuse the statement,
// so they delete nothing in practice. No page offers deletion.

bool DatabaseManager::DeleteItem(Items *t)
{
    std::optional<QSqlQuery> query;
    return runText(query,
                   QStringLiteral("delete from Items where ItemName= %1 and CategoryName = %2")
                       .arg(t->ItemName)
                       .arg(t->CategoryName));
}

int DatabaseManager::GetItemID(QString itemname, QString itemCategory)
{
    return firstId(QStringLiteral("select SNo from Items where ItemName=:IName and CategoryName = :id "),
                   itemKey(itemname, itemCategory));
}

int DatabaseManager::GetItemID(Items *t)
{
    return firstId(QStringLiteral("select SNo from Items where ItemName=:IName and CategoryName = :id and "
                                  "UseFrequency = :freq and LastPrice = :lPrice "),
                   itemKey(t->ItemName, t->CategoryName) +
                       Bindings { { QStringLiteral(":freq"), intValue(t->UseFrequency) },
                                  { QStringLiteral(":lPrice"), floatValue(t->LastPrice) } });
}

QString DatabaseManager::GetCategoryOfItem(QString itemName)
{
    return firstText(QStringLiteral("select CategoryName from Items where ItemName=:IName"),
                     { { QStringLiteral(":IName"), textValue(itemName) } });
}

Items *DatabaseManager::GetItemByItemID(int id)
{
    std::optional<QSqlQuery> query;
    if (run(query, itemColumns + QStringLiteral(" where SNo=:sno"), { { QStringLiteral(":sno"), intValue(id) } }) &&
        query->next())
        return readItem(*query);
    return nullptr;
}

// Item substitutes

bool DatabaseManager::AddItemSubstitutes(ItemSubstitutes *t)
{
    const int present = count(QStringLiteral("SELECT COUNT(ItemName) FROM ItemSubstitutes WHERE ItemName=:IName and "
                                             "SubstituteName = :id"),
                              { { QStringLiteral(":IName"), textValue(t->ItemName) },
                                { QStringLiteral(":id"), textValue(t->SubstituteName) } });
    if (present != 0)
        return true;
    // The numbers always come from the catalogue, never from the record.
    const int itemId = GetItemID(t->ItemName, GetCategoryOfItem(t->ItemName));
    const int substituteId = GetItemID(t->SubstituteName, GetCategoryOfItem(t->SubstituteName));
    std::optional<QSqlQuery> query;
    return run(query,
               QStringLiteral("INSERT INTO ItemSubstitutes (ItemName,SubstituteName,ItemID,SubstitueID) VALUES "
                              "(:IName,:SubName,:ItID,:SubID)"),
               { { QStringLiteral(":IName"), textValue(t->ItemName) },
                 { QStringLiteral(":SubName"), textValue(t->SubstituteName) },
                 { QStringLiteral(":ItID"), intValue(itemId) },
                 { QStringLiteral(":SubID"), intValue(substituteId) } });
}

bool DatabaseManager::EditItemSubstitutes(ItemSubstitutes *old, ItemSubstitutes *newItem)
{
    const int itemId = GetItemID(newItem->ItemName, GetCategoryOfItem(newItem->ItemName));
    const int substituteId = GetItemID(newItem->SubstituteName, GetCategoryOfItem(newItem->SubstituteName));
    std::optional<QSqlQuery> query;
    return run(query,
               QStringLiteral("UPDATE ItemSubstitutes SET ItemName=:IName, SubstituteName=:SubName, ItemID=:ItID, "
                              "SubstitueID=:SubID where ItemName=:IOldName and SubstituteName = :oldSub"),
               { { QStringLiteral(":IName"), textValue(newItem->ItemName) },
                 { QStringLiteral(":SubName"), textValue(newItem->SubstituteName) },
                 { QStringLiteral(":ItID"), intValue(itemId) },
                 { QStringLiteral(":SubID"), intValue(substituteId) },
                 { QStringLiteral(":IOldName"), textValue(old->ItemName) },
                 { QStringLiteral(":oldSub"), textValue(old->SubstituteName) } });
}

bool DatabaseManager::DeleteItemSubstitutes(ItemSubstitutes *t)
{
    std::optional<QSqlQuery> query;
    return runText(query,
                   QStringLiteral("delete from ItemSubstitutes where ItemName= %1 and SubstituteName = %2")
                       .arg(t->ItemName)
                       .arg(t->SubstituteName));
}

int DatabaseManager::GetItemSubstitutesID(QString itemname, QString subName)
{
    return firstId(
        QStringLiteral("select SNo from ItemSubstitutes where ItemName=:IName and SubstituteName = :SubName"),
        { { QStringLiteral(":IName"), textValue(itemname) }, { QStringLiteral(":SubName"), textValue(subName) } });
}

int DatabaseManager::GetItemSubstitutesID(ItemSubstitutes *t)
{
    return firstId(QStringLiteral("select SNo from ItemSubstitutes where ItemName=:IName and SubstituteName = "
                                  ":SubName and ItemID = :ItID and SubstitueID = :SubID "),
                   { { QStringLiteral(":IName"), textValue(t->ItemName) },
                     { QStringLiteral(":SubName"), textValue(t->SubstituteName) },
                     { QStringLiteral(":ItID"), intValue(t->ItemID) },
                     { QStringLiteral(":SubID"), intValue(t->SubstituteID) } });
}

ItemSubstitutes *DatabaseManager::GetItemSubstitutesByItemSubstitutesID(int id)
{
    std::optional<QSqlQuery> query;
    if (run(query, itemSubstitutesColumns + QStringLiteral(" where SNo=:sno"),
            { { QStringLiteral(":sno"), intValue(id) } }) &&
        query->next())
        return readItemSubstitutes(*query);
    return nullptr;
}

// Remembered places

bool DatabaseManager::AddHistoricLocation(HistoricLocation *loc)
{
    const int present = count(QStringLiteral("SELECT COUNT(LocationName) FROM HistoricLocation WHERE "
                                             "LocationName=:LocName and LocationLongitude = :loclong and "
                                             "LocationLatitude = :loclat"),
                              placeKey(*loc));
    if (present != 0)
        return true;
    return execute(QStringLiteral("INSERT INTO HistoricLocation "
                                  "(LocationName,LocationLongitude,LocationLatitude,ReverseGeoLocation,CoordinateText) "
                                  "VALUES (:LocName,:loclong,:loclat,:RevGeo, :CoorTex);"),
                   placeKey(*loc) +
                       Bindings { { QStringLiteral(":RevGeo"), textValue(loc->ReverseGeoLocation) },
                                  { QStringLiteral(":CoorTex"), textValue(loc->CoordinateText) } });
}

bool DatabaseManager::EditHistoricLocation(HistoricLocation *OldLoc, HistoricLocation *NewLoc)
{
    std::optional<QSqlQuery> query;
    return run(query,
               QStringLiteral("UPDATE HistoricLocation SET LocationName=:LocName, LocationLongitude=:loclong, "
                              "LocationLatitude=:loclat, ReverseGeoLocation=:RevGeo, CoordinateText= :CoorTex where "
                              "LocationName=:OldLocName and LocationLongitude=:Oldloclong and "
                              "LocationLatitude=:Oldloclat"),
               placeKey(*NewLoc) +
                   Bindings { { QStringLiteral(":RevGeo"), textValue(NewLoc->ReverseGeoLocation) },
                              { QStringLiteral(":CoorTex"), textValue(NewLoc->CoordinateText) },
                              { QStringLiteral(":OldLocName"), textValue(OldLoc->LocationName) },
                              { QStringLiteral(":Oldloclong"), floatValue(OldLoc->LocationLongitude) },
                              { QStringLiteral(":Oldloclat"), floatValue(OldLoc->LocationLatitude) } });
}

bool DatabaseManager::DeleteHistoricLocation(HistoricLocation *loc)
{
    std::optional<QSqlQuery> query;
    return runText(query,
                   QStringLiteral("delete from HistoricLocation where LocationName= %1 and LocationLongitude "
                                  "= %2 and LocationLatitude = %3")
                       .arg(loc->LocationName)
                       .arg(Format::number(loc->LocationLongitude))
                       .arg(Format::number(loc->LocationLatitude)));
}

int DatabaseManager::GetHistoricLocationID(HistoricLocation *loc)
{
    return firstId(QStringLiteral("select SNo from HistoricLocation where LocationName=:LocName and "
                                  "LocationLongitude = :loclong and LocationLatitude = :loclat "),
                   placeKey(*loc));
}

HistoricLocation *DatabaseManager::GetHistoricLocationByCoordinates(float longit, float latit)
{
    std::optional<QSqlQuery> query;
    if (run(query,
            historicLocationColumns +
                QStringLiteral(" where LocationLongitude=:loclongit and LocationLatitude = :loclatit "),
            { { QStringLiteral(":loclongit"), floatValue(longit) },
              { QStringLiteral(":loclatit"), floatValue(latit) } }) &&
        query->next())
        return readHistoricLocation(*query);
    return nullptr;
}

HistoricLocation *DatabaseManager::GetHistoricLocationByHistoricLocationID(int id)
{
    std::optional<QSqlQuery> query;
    if (run(query, historicLocationColumns + QStringLiteral(" where SNo=:sno"),
            { { QStringLiteral(":sno"), intValue(id) } }) &&
        query->next())
        return readHistoricLocation(*query);
    return nullptr;
}

// Entries

bool DatabaseManager::AddEntry(Entry *enteredEntry)
{
    // The catalogue row, the place and the entry row are written as one:
    // when the file fails (locked, full, the program killed) none of them
    // is, and the first such failure ends the work without waiting on the
    // file again. A refusal of the data itself keeps the steps before it, as
    // it always has (an entry without a date still counts in the catalogue).
    if (!beginWrite())
        return false;
    return endWrite(writeEntry(enteredEntry));
}

bool DatabaseManager::writeEntry(const Entry *enteredEntry)
{
    // The caller's record is only read; its numbers are recomputed here.
    Entry entry;
    entry.CategoryName = enteredEntry->CategoryName;
    entry.ItemName = enteredEntry->ItemName;
    entry.Price = enteredEntry->Price;
    entry.LocationText = enteredEntry->LocationText;
    entry.EnableGeoLoc = enteredEntry->EnableGeoLoc;
    entry.TransactDateTime = enteredEntry->TransactDateTime;
    // Without a geolocation the row still carries the coordinates the caller
    // gave (the new-entry page's fallback position) and no place number.
    entry.GeoLocID = 0;
    entry.GeoLocLongit = enteredEntry->GeoLocLongit;
    entry.GeoLocLatit = enteredEntry->GeoLocLatit;

    Items item;
    item.ItemName = entry.ItemName;
    item.CategoryName = entry.CategoryName;
    item.LastPrice = entry.Price;
    // One lookup serves the item and the entry: nothing in between writes
    // to the category table.
    const int categoryId = GetCategoryID(entry.CategoryName);
    item.CategoryID = categoryId;
    item.UseFrequency = 1;
    entry.ItemID = AddItem(&item) ? GetItemID(entry.ItemName, entry.CategoryName) : 0;
    entry.CategoryID = categoryId;

    if (entry.EnableGeoLoc) {
        HistoricLocation place;
        place.LocationLongitude = enteredEntry->GeoLocLongit;
        place.LocationLatitude = enteredEntry->GeoLocLatit;
        place.LocationName = entry.LocationText;
        place.ReverseGeoLocation = QLatin1String("");
        // A negative coordinate doubles the separator ("-3.5-40.25"); the
        // text has always been written this way.
        place.CoordinateText = QStringLiteral("%1-%2").arg(Format::number(place.LocationLongitude),
                                                           Format::number(place.LocationLatitude));
        // A known name with other coordinates cannot be added (names are
        // unique): the entry then keeps its own coordinates and place 0.
        entry.GeoLocID = AddHistoricLocation(&place) ? GetHistoricLocationID(&place) : 0;
        entry.GeoLocLatit = place.LocationLatitude;
        entry.GeoLocLongit = place.LocationLongitude;
    }

    return execute(QStringLiteral("INSERT INTO Entry "
                                  "(ItemName,CategoryName,CategoryID,TransactDateTime,Price,LocationText,EnableGeoLoc,"
                                  "GeoLocID,GeoLocLongit,GeoLocLatit,ItemID) VALUES "
                                  "(:ItName,:CatName,:CatID,:TransDate,:pri,:LocTex,:EnabGeo,:GLocID,:LocLong,:LocLat,:"
                                  "ItID)"),
                   { { QStringLiteral(":ItName"), textValue(entry.ItemName) },
                     { QStringLiteral(":CatName"), textValue(entry.CategoryName) },
                     { QStringLiteral(":CatID"), intValue(entry.CategoryID) },
                     { QStringLiteral(":TransDate"), dateTimeValue(entry.TransactDateTime) },
                     { QStringLiteral(":pri"), floatValue(entry.Price) },
                     { QStringLiteral(":LocTex"), textValue(entry.LocationText) },
                     { QStringLiteral(":EnabGeo"), boolValue(entry.EnableGeoLoc) },
                     { QStringLiteral(":GLocID"), intValue(entry.GeoLocID) },
                     { QStringLiteral(":LocLong"), floatValue(entry.GeoLocLongit) },
                     { QStringLiteral(":LocLat"), floatValue(entry.GeoLocLatit) },
                     { QStringLiteral(":ItID"), intValue(entry.ItemID) } });
}

bool DatabaseManager::DeleteEntry(Entry *ent)
{
    // The date goes in as its unquoted text form, which is never valid SQL:
    // this statement fails for every entry and deletes nothing.
    std::optional<QSqlQuery> query;
    return runText(query,
                   QStringLiteral("delete from Entry where ItemName= %1 and CategoryName = %2 and "
                                  "TransactDateTime = %3 and Price = %4 and LocationText = %5")
                       .arg(ent->ItemName)
                       .arg(ent->CategoryName)
                       .arg(ent->TransactDateTime.toString(Qt::TextDate))
                       .arg(Format::number(ent->Price))
                       .arg(ent->LocationText));
}

int DatabaseManager::GetEntryID(Entry *en)
{
    return firstId(QStringLiteral("select SNo from Entry where ItemName= :ItName and CategoryName = :CatName and "
                                  "TransactDateTime = :TransDate and Price = :pri and LocationText = :LocTex "),
                   { { QStringLiteral(":ItName"), textValue(en->ItemName) },
                     { QStringLiteral(":CatName"), textValue(en->CategoryName) },
                     { QStringLiteral(":TransDate"), dateTimeValue(en->TransactDateTime) },
                     { QStringLiteral(":pri"), floatValue(en->Price) },
                     { QStringLiteral(":LocTex"), textValue(en->LocationText) } });
}

// Entry lists

QList<Entry *> DatabaseManager::GetAllEntries()
{
    return entryList(QStringLiteral(" order by TransactDateTime desc"));
}

QList<Entry *> DatabaseManager::GetAllEntriesOrderByPrice()
{
    return entryList(QStringLiteral(" order by Price"));
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategory(QString catName)
{
    return entryList(QStringLiteral(" where CategoryName = :catName order by TransactDateTime desc "),
                     entryCategory(catName));
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategoryOrderByPrice(QString catName)
{
    return entryList(QStringLiteral(" where CategoryName = :catName order by Price "), entryCategory(catName));
}

QList<Entry *> DatabaseManager::GetAllEntriesOnDate(QDateTime dat)
{
    return entryList(QStringLiteral(" where TransactDateTime = :givenDate order by TransactDateTime desc "),
                     givenDate(dat));
}

QList<Entry *> DatabaseManager::GetAllEntriesOnDateOrderByPrice(QDateTime dat)
{
    return entryList(QStringLiteral(" where TransactDateTime = :givenDate order by Price "), givenDate(dat));
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategoryOnDate(QString catName, QDateTime dat)
{
    return entryList(
        QStringLiteral(
            " where CategoryName = :catName and TransactDateTime = :givenDate order by TransactDateTime desc "),
        entryCategory(catName) + givenDate(dat));
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategoryOnDateOrderByPrice(QString catName, QDateTime dat)
{
    return entryList(QStringLiteral(" where CategoryName = :catName and TransactDateTime = :givenDate order by Price"),
                     entryCategory(catName) + givenDate(dat));
}

QList<Entry *> DatabaseManager::GetAllEntriesBetweenDates(QDateTime startDate, QDateTime endDate)
{
    return entryList(QStringLiteral(" where TransactDateTime >= :firstDate and TransactDateTime <= :endDate order by "
                                    "TransactDateTime desc"),
                     periodBounds(startDate, endDate));
}

QList<Entry *> DatabaseManager::GetAllEntriesBetweenDatesOrderByPrice(QDateTime startDate, QDateTime endDate)
{
    return entryList(
        QStringLiteral(" where TransactDateTime >= :firstDate and TransactDateTime <= :endDate order by Price"),
        periodBounds(startDate, endDate));
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategoryBetweenDates(QString catName, QDateTime startDate,
                                                                    QDateTime endDate)
{
    return entryList(QStringLiteral(" where CategoryName = :catName and TransactDateTime >= :firstDate and "
                                    "TransactDateTime <= :endDate order by TransactDateTime desc"),
                     entryCategory(catName) + periodBounds(startDate, endDate));
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategoryBetweenDatesOrderByPrice(QString catName, QDateTime startDate,
                                                                                QDateTime endDate)
{
    return entryList(QStringLiteral(" where CategoryName = :catName and TransactDateTime >= :firstDate and "
                                    "TransactDateTime <= :endDate order by Price"),
                     entryCategory(catName) + periodBounds(startDate, endDate));
}

// Other lists

QList<Category *> DatabaseManager::GetAllCategories()
{
    return recordList<Category>(QStringLiteral("select SNo,CategoryName from Category"), {},
                                readCategory);
}

QList<Mode *> DatabaseManager::GetAllModes()
{
    return recordList<Mode>(QStringLiteral("select SNo, ModeName from Mode"), {}, readMode);
}

QList<Items *> DatabaseManager::GetAllItems()
{
    return itemList(itemColumns);
}

QList<Items *> DatabaseManager::GetItemsOfParticularCategory(QString CatName)
{
    return itemList(itemColumns + QStringLiteral(" where CategoryName=:CName"),
                    { { QStringLiteral(":CName"), textValue(CatName) } });
}

QList<Items *> DatabaseManager::GetTopNFrequentlyUsedItems(int num)
{
    // Ascending, as it has always been; a negative limit means no limit.
    return itemList(itemColumns + QStringLiteral(" order by UseFrequency limit :number"),
                    { { QStringLiteral(":number"), intValue(num) } });
}

QList<Items *> DatabaseManager::GetTopNFrequentlyUsedItemsOfCategory(int num, QString CatName)
{
    return itemList(itemColumns + QStringLiteral(" where CategoryName=:CName order by UseFrequency limit :number"),
                    { { QStringLiteral(":CName"), textValue(CatName) }, { QStringLiteral(":number"), intValue(num) } });
}

QList<ItemSubstitutes *> DatabaseManager::GetAllItemSubstitutes()
{
    return itemSubstitutesList(itemSubstitutesColumns);
}

QList<ItemSubstitutes *> DatabaseManager::GetItemSubstitutesOfParticularItem(QString ItName)
{
    return itemSubstitutesList(itemSubstitutesColumns + QStringLiteral(" where ItemName=:IName"),
                               { { QStringLiteral(":IName"), textValue(ItName) } });
}

QList<HistoricLocation *> DatabaseManager::GetAllHistoricLocation()
{
    return historicLocationList(historicLocationColumns);
}

QList<QString> DatabaseManager::GetListOfAllDistinctCategoriesOfAllEntries()
{
    QList<QString> names;
    std::optional<QSqlQuery> query;
    if (!run(query, QStringLiteral("select distinct CategoryName from Entry")))
        return names;
    if (!readAllRows(*query, [&](const QSqlQuery &row) { names.append(row.value(0).toString()); }))
        names.clear();
    return names;
}

QList<QDateTime> DatabaseManager::GetAllDistinctDatesOfEntriesOfCategory(QString catName)
{
    QList<QDateTime> dates;
    std::optional<QSqlQuery> query;
    if (!run(query,
             QStringLiteral("select distinct TransactDateTime,CategoryName from Entry where CategoryName = :catName "
                            "order by TransactDateTime desc "),
             entryCategory(catName)))
        return dates;
    if (!readAllRows(*query, [&](const QSqlQuery &row) { dates.append(readDateTime(row.value(0))); }))
        dates.clear();
    return dates;
}

QList<Items *> DatabaseManager::GetItemCatalogue()
{
    // One grouping of the catalogue by name. The row that speaks for a name
    // is found by its key: the use count times 2^31 plus the row number, so
    // that the largest key is the most used row and, among rows used equally
    // often, the newest. Both parts fit below 2^31, the key below 2^63.
    return recordList<Items>(
        QStringLiteral("select Items.SNo,Items.ItemName,CategoryName,CategoryID,LastPrice,NameUses from (select "
                       "sum(coalesce(UseFrequency, 0)) as NameUses,max(SNo) as NewestRow,max(max(coalesce("
                       "UseFrequency, 0), 0) * 2147483648 + SNo) as MostUsedKey from Items group by ItemName) join "
                       "Items on Items.SNo = MostUsedKey % 2147483648 order by NameUses desc, NewestRow desc"),
        {}, readItem);
}

QList<PlaceSpending *> DatabaseManager::GetSpendingPerPlace()
{
    return recordList<PlaceSpending>(
        QStringLiteral("select coalesce(LocationText, '') as Place,count(*),sum(Price),avg(Price),"
                       "max(TransactDateTime) from Entry group by Place order by sum(Price) desc, Place"),
        {}, readPlaceSpending);
}

QList<RememberedPlaceSpending *> DatabaseManager::GetSpendingPerRememberedPlace()
{
    // The place's number is its row's key, so SQLite looks each entry's
    // place up instead of scanning the places once per entry.
    return recordList<RememberedPlaceSpending>(
        QStringLiteral("select HistoricLocation.SNo,LocationName,LocationLongitude,LocationLatitude,"
                       "count(Entry.SNo),sum(Price) from Entry join HistoricLocation on Entry.GeoLocID = "
                       "HistoricLocation.SNo group by HistoricLocation.SNo order by sum(Price) desc, "
                       "HistoricLocation.SNo"),
        {}, readRememberedPlaceSpending);
}

QList<CategorySpending *> DatabaseManager::GetSpendingPerCategory()
{
    // Sorted as GetAllEntriesOfCategory() sorts, over the whole table: the
    // sort keeps rows of equal date-times in table order, with or without a
    // filter, so each category's rows come in the very order of its own list
    // and its prices are added in that order. Equal date-times come together,
    // so a category's distinct date-times are counted as it goes.
    QList<CategorySpending *> categories;
    QHash<QString, qsizetype> indexOf;
    QList<QVariant> lastDateTime;
    const bool read = readRows(
        QStringLiteral("select CategoryName,TransactDateTime,Price from Entry order by TransactDateTime desc"), {},
        [&](const auto &row) {
            const QString name = row.value(0).toString();
            auto found = indexOf.constFind(name);
            const QVariant dateTime = row.value(1);
            CategorySpending *category;
            if (found == indexOf.constEnd()) {
                indexOf.insert(name, categories.size());
                category = new CategorySpending;
                category->CategoryName = name;
                category->NumberOfDateTimes = 1;
                categories.append(category);
                lastDateTime.append(dateTime);
            } else {
                category = categories.at(*found);
                QVariant &last = lastDateTime[*found];
                if (!sameStoredValue(last, dateTime)) {
                    ++category->NumberOfDateTimes;
                    last = dateTime;
                }
            }
            category->Total += row.value(2).toFloat();
        });
    if (!read) {
        qDeleteAll(categories);
        categories.clear();
    }
    return categories;
}

std::optional<DatabaseManager::ContentVersion> DatabaseManager::contentVersion()
{
    // total_changes() counts every row this connection has written, kept or
    // rolled back; data_version moves with every commit of another
    // connection. Neither moves otherwise, so equal pairs mean equal rows.
    std::optional<QSqlQuery> query;
    if (!run(query, QStringLiteral("select total_changes(), data_version from pragma_data_version")) ||
        !query->next())
        return std::nullopt;
    return ContentVersion(query->value(0).toLongLong(), query->value(1).toLongLong());
}

// Counts

int DatabaseManager::GetTotalNumberOfEntries()
{
    return count(countEntries);
}

int DatabaseManager::GetNumberOfEntriesOfCategory(QString catName)
{
    return count(QStringLiteral("SELECT COUNT(ItemName) FROM Entry where CategoryName=:CatName;"),
                 countedCategory(catName));
}

int DatabaseManager::GetNumberOfEntriesOnDate(QDateTime dat)
{
    return count(QStringLiteral("SELECT COUNT(ItemName) FROM Entry where TransactDateTime = :givenDate;"),
                 givenDate(dat));
}

int DatabaseManager::GetNumberOfEntriesBetweenDates(QDateTime startDate, QDateTime endDate)
{
    return count(QStringLiteral("SELECT COUNT(ItemName) FROM Entry where TransactDateTime >= :firstDate and "
                                "TransactDateTime <= :endDate;"),
                 periodBounds(startDate, endDate));
}

int DatabaseManager::GetNumberOfEntriesOfCategoryOnDate(QString catName, QDateTime dat)
{
    return count(QStringLiteral("SELECT COUNT(ItemName) FROM Entry where CategoryName=:CatName and TransactDateTime = "
                                ":givenDate;"),
                 countedCategory(catName) + givenDate(dat));
}

int DatabaseManager::GetNumberOfEntriesOfCategoryBetweenDate(QString catName, QDateTime startDate, QDateTime endDate)
{
    return count(QStringLiteral("SELECT COUNT(ItemName) FROM Entry where CategoryName=:CatName and TransactDateTime >= "
                                ":firstDate and TransactDateTime <= :endDate;"),
                 countedCategory(catName) + periodBounds(startDate, endDate));
}

int DatabaseManager::GetNumberOfCategories()
{
    return count(countCategories);
}

int DatabaseManager::GetNumberOfModes()
{
    return count(countModes);
}

int DatabaseManager::GetTotalNumberOfItems()
{
    return count(countItems);
}

int DatabaseManager::GetTotalNumberOfItemsOfCategory(QString CatName)
{
    return count(QStringLiteral("SELECT COUNT(ItemName) FROM Items where CategoryName=:CName;"),
                 { { QStringLiteral(":CName"), textValue(CatName) } });
}

int DatabaseManager::GetTotalNumberOfItemSubstitutes()
{
    return count(countItemSubstitutes);
}

int DatabaseManager::GetTotalNumberOfItemSubstitutesOfItem(QString ItName)
{
    return count(QStringLiteral("SELECT COUNT(ItemName) FROM ItemSubstitutes where ItemName=:IName;"),
                 { { QStringLiteral(":IName"), textValue(ItName) } });
}

int DatabaseManager::GetNumberOfHistoricLocations()
{
    return count(countHistoricLocations);
}

// Date bounds

QDateTime DatabaseManager::GetDateOfFirstEntry()
{
    return entryDateBound(QStringLiteral("select TransactDateTime from Entry order by TransactDateTime asc limit 1"));
}

QDateTime DatabaseManager::GetDateOfLastEntry()
{
    return entryDateBound(QStringLiteral("select TransactDateTime from Entry order by TransactDateTime desc limit 1"));
}

QDateTime DatabaseManager::GetDateOfFirstEntryOfCategory(QString catName)
{
    return entryDateBound(QStringLiteral("select TransactDateTime,CategoryName from Entry where CategoryName= "
                                         ":catName order by TransactDateTime asc limit 1"),
                          entryCategory(catName));
}

QDateTime DatabaseManager::GetDateOfLastEntryOfCategory(QString catName)
{
    return entryDateBound(QStringLiteral("select TransactDateTime,CategoryName from Entry where CategoryName= "
                                         ":catName order by TransactDateTime desc limit 1"),
                          entryCategory(catName));
}
