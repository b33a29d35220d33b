#pragma once

#include <QDateTime>
#include <QObject>
#include <QSqlDatabase>
#include <QString>

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

// The expense store: owns the SQLite connection (registered under Qt's
// default connection name) and every SQL statement of the program. Failures
// show only in return values; nothing is logged.
class DatabaseManager : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(DatabaseManager)

public:
    explicit DatabaseManager(QObject *parent);
    ~DatabaseManager() override;

    int GetTotalNumberOfEntries();

    // Whether the database file could be opened and read at start-up; when
    // it could not, openError() says which file and why.
    bool isUsable() const;
    QString databaseFileName() const;
    QString openError() const;

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

    bool createTableIfMissing(const QString &table, const QString &createStatement);
    void addDefaultNames(const QStringList &names, const QString &countStatement, const QString &insertStatement);

    QSqlDatabase db;
    QString fileName;
    QString lastOpenError;
};
