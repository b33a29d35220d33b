#include "databasemanager.h"

#include <QCoreApplication>
#include <QDir>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

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

namespace {

// Runs a count statement on the default connection; 0 when it fails or gives
// no row.
int countWithName(const QString &statement, const QString &name)
{
    QSqlQuery query;
    query.setForwardOnly(true);
    query.prepare(statement);
    query.bindValue(QStringLiteral(":id"), name);
    if (query.exec() && query.next())
        return query.value(0).toInt();
    return 0;
}

} // namespace

DatabaseManager::DatabaseManager(QObject *parent) : QObject(parent)
{
    const QString path = QDir::homePath() + QDir::separator() + QStringLiteral("ledgerlydatabase.db");
    if (!setupDatabase(path)) {
        // Too early to end anything: the event loop is not running yet, so
        // the program goes on with an unusable store whose queries all fail.
        QCoreApplication::instance()->exit(0);
    }
}

DatabaseManager::~DatabaseManager() = default;

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

    // One store per program; a store made after an earlier one (as tests do)
    // takes the default connection over instead of registering it twice.
    if (QSqlDatabase::contains(QLatin1String(QSqlDatabase::defaultConnection))) {
        db = QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false);
        db.close();
    } else {
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    }
    db.setDatabaseName(dbname);
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

    createCategoryTable();
    createItemsTable();
    createModeTable();
    createHistoricLocationTable();
    createItemSubstitutesTable();
    createEntryTable();
    addDefaultCategories();
    addDefaultModes();
    return true;
}

bool DatabaseManager::createTableIfMissing(const QString &table, const QString &createStatement)
{
    // Exact, case-sensitive: a table "entry" does not count as "Entry", and
    // the create statement that SQLite then refuses is ignored.
    const QStringList tables = db.tables(QSql::Tables);
    if (tables.contains(table, Qt::CaseSensitive))
        return true;
    QSqlQuery query(db);
    query.exec(createStatement);
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

void DatabaseManager::addDefaultNames(const QStringList &names, const QString &countStatement,
                                      const QString &insertStatement)
{
    for (const QString &name : names) {
        // Exactly one copy counts as present: a mode name stored twice gets
        // a third copy, as it always has.
        if (countWithName(countStatement, name) == 1)
            continue;
        QSqlQuery insert;
        insert.prepare(insertStatement);
        insert.bindValue(QStringLiteral(":name"), name);
        insert.exec();
    }
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
    addDefaultNames(names, QStringLiteral("SELECT COUNT(CategoryName) FROM Category WHERE CategoryName = :id"),
                    QStringLiteral("INSERT INTO Category (CategoryName) VALUES (:name)"));
}

void DatabaseManager::addDefaultModes()
{
    static const QStringList names = {
        QStringLiteral("Default"),
        QStringLiteral("Money Saving"),
        QStringLiteral("Time Saving"),
    };
    addDefaultNames(names, QStringLiteral("SELECT COUNT(ModeName) FROM Mode WHERE ModeName = :id"),
                    QStringLiteral("INSERT INTO Mode (ModeName) VALUES (:name)"));
}

int DatabaseManager::GetTotalNumberOfEntries()
{
    if (!db.isOpen())
        return 0;
    QSqlQuery query;
    query.setForwardOnly(true);
    query.exec(QStringLiteral("SELECT COUNT(ItemName) FROM Entry;"));
    if (query.next())
        return query.value(0).toInt();
    return 0;
}
