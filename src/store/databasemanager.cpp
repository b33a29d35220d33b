// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"

#include "entryquery.h"
#include "format.h"
#include "schema.h"
#include "sqlitebackup.h"
#include "sqlitereader.h"
#include "statements.h"
#include "storageform.h"
#include "storeconnection.h"
#include "transactions.h"

#include <QCoreApplication>
#include <QDir>
#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlTableModel>
#include <QStringList>
#include <QVariant>

#include <algorithm>
#include <optional>
#include <vector>

namespace {

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
    return StorageForm::readDateTime(value);
}

// Bindings that several statements share, under the parameter names those
// statements use; every statement keeps its own text.

Bindings entryCategory(const QString &catName)
{
    return { { QStringLiteral(":catName"), textValue(catName) } };
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

const QString itemColumns =
    QStringLiteral("select SNo,ItemName,CategoryName,CategoryID,LastPrice,UseFrequency from Items");
const QString itemSubstitutesColumns =
    QStringLiteral("select SNo,ItemName,SubstituteName,ItemID,SubstitueID from ItemSubstitutes");
const QString historicLocationColumns =
    QStringLiteral("select SNo,LocationName,LocationLongitude,LocationLatitude,ReverseGeoLocation,CoordinateText from "
                   "HistoricLocation");

const QString countItems = QStringLiteral("SELECT COUNT(ItemName) FROM Items;");
const QString countCategories = QStringLiteral("SELECT COUNT(CategoryName) FROM Category;");
const QString countModes = QStringLiteral("SELECT COUNT(ModeName) FROM Mode;");
const QString countItemSubstitutes = QStringLiteral("SELECT COUNT(ItemName) FROM ItemSubstitutes;");
const QString countHistoricLocations = QStringLiteral("SELECT COUNT(LocationName) FROM HistoricLocation;");

// Reads every row of an executed query; false when reading stopped on an
// error (a locked or damaged file) before the last row.
template<typename Read> bool readAllRows(QSqlQuery &query, Read read)
{
    while (query.next())
        read(query);
    return !query.lastError().isValid();
}

} // namespace

DatabaseManager::DatabaseManager(QObject *parent)
    : QObject(parent), connection(std::make_unique<StoreConnection>()),
      statements(std::make_unique<Statements>(connection->database())),
      transactions(std::make_unique<Transactions>(*connection, *statements)),
      reader(std::make_unique<SqliteReader>(*statements, [this] { return connection->sqliteHandle(); })),
      entries(std::make_unique<EntryQuery>(*statements, *reader))
{
    if (!setupDatabase(defaultFileName())) {
        // Too early to end anything: the event loop is not running yet, so
        // the program goes on with an unusable store whose queries all fail.
        if (QCoreApplication *application = QCoreApplication::instance())
            application->exit(0);
    }
}

DatabaseManager::~DatabaseManager() = default;

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
    return connection->fileName();
}

QString DatabaseManager::openError() const
{
    return lastOpenError;
}

QString DatabaseManager::writeProblem() const
{
    return lastWriteProblem;
}

bool DatabaseManager::isHeldByAnotherProgram() const
{
    return connection->lockedByAnotherProgram();
}

bool DatabaseManager::setupDatabase(QString dbname)
{
    lastOpenError.clear();
    lastWriteProblem.clear();
    if (!connection->open(dbname)) {
        lastOpenError = connection->error();
        return false;
    }
    // A connection that another store opened is shared as it is, and only
    // the store that opened it tries the file for writing.
    const Schema::Outcome prepared = Schema::prepare(*connection, *statements, connection->openedHere());
    if (!prepared.refusal.isEmpty()) {
        // The file stays exactly as it is: nothing of this Ledgerly's may
        // touch what a newer one wrote.
        lastOpenError = prepared.refusal;
        if (connection->openedHere())
            connection->close();
        return false;
    }
    lastWriteProblem = prepared.writeProblem;
    return true;
}

bool DatabaseManager::usesSqliteHandle() const
{
    return connection->usesSqliteHandle();
}

Statements &DatabaseManager::statementRunner()
{
    return *statements;
}

QSqlTableModel *DatabaseManager::createTableModel(const QString &table, QObject *parent)
{
    // An invalid connection would make the model fall back to the default
    // one, which belongs to another file.
    if (!connection->database().isValid())
        return nullptr;
    auto *model = new QSqlTableModel(parent, connection->database());
    model->setTable(table);
    model->setEditStrategy(QSqlTableModel::OnManualSubmit);
    model->select();
    return model;
}

bool DatabaseManager::runInTransaction(WriteKind kind, const std::function<bool()> &work, QString *failure)
{
    // An import looks the same few categories up for every entry it adds;
    // they are kept while it runs. Only AddCategory and EditCategory change
    // the table meanwhile (the transaction holds the file), and both forget
    // what was kept.
    const bool import = kind == WriteKind::Import;
    categoryIds.clear();
    keepingCategoryIds = import;
    const bool done = transactions->run(import ? Transactions::Kind::Import : Transactions::Kind::Edits, work, failure);
    keepingCategoryIds = false;
    categoryIds.clear();
    return done;
}

bool DatabaseManager::backUpTo(const QString &destination, const Progress &progress, QString *failure)
{
    const auto fail = [failure](const QString &reason) {
        if (failure)
            *failure = reason;
        return false;
    };
    if (!connection->isOpen())
        return fail(lastOpenError.isEmpty() ? tr("The database is not open.") : lastOpenError);
    sqlite3 *source = connection->sqliteHandle();
    if (!source) {
        // Without a handle of the SQLite we link, Qt's driver makes the copy
        // with VACUUM INTO, in one step; SQLite refuses that while another
        // statement of the connection is still reading.
        if (progress && !progress(0, 1))
            return fail(tr("The backup was cancelled."));
        std::optional<QSqlQuery> vacuum;
        if (!statements->run(vacuum, QStringLiteral("VACUUM INTO :file"),
                             { { QStringLiteral(":file"), textValue(destination) } }))
            return fail(vacuum ? vacuum->lastError().text() : QString());
        if (progress)
            progress(1, 1);
        return true;
    }
    // SQLite's online backup copies the pages under a read lock, so the copy
    // is the database at one moment; unlike VACUUM INTO it runs while other
    // statements of this connection are open (a table model still reading
    // its rows), and copies pages as they are rather than rebuilding them.
    return SqliteBackup(source, destination).run(progress, failure);
}

bool DatabaseManager::renameIfStoredOnce(const QString &oldName, const QString &newName, const QString &countStatement,
                                         const QString &updateStatement)
{
    int found = 0;
    const bool counted = statements->runCount(countStatement, { { QStringLiteral(":id"), textValue(oldName) } }, &found);
    if (found == 0)
        return false;
    // A name stored more than once is left alone, and that counts as success.
    if (found != 1)
        return counted;
    std::optional<QSqlQuery> query;
    return statements->run(query, updateStatement,
               { { QStringLiteral(":newname"), textValue(newName) }, { QStringLiteral(":old"), textValue(oldName) } });
}

QDateTime DatabaseManager::entryDateBound(const QString &statement, const Bindings &bindings)
{
    // The whole table is asked even for a category's bound; an empty table
    // answers without running the statement. Whether a first row exists,
    // not how many rows: a count reads every row.
    QDateTime bound;
    if (statements->count(QStringLiteral("select exists (select 1 from Entry)"), {}) > 0) {
        std::optional<QSqlQuery> query;
        if (statements->run(query, statement, bindings) && query->next())
            bound = readDateTime(query->value(0));
    }
    return bound;
}

QList<Items *> DatabaseManager::itemList(const QString &statement, const Bindings &bindings)
{
    return statements->records<Items>(statement, bindings, readItem);
}

QList<ItemSubstitutes *> DatabaseManager::itemSubstitutesList(const QString &statement, const Bindings &bindings)
{
    return statements->records<ItemSubstitutes>(statement, bindings, readItemSubstitutes);
}

QList<HistoricLocation *> DatabaseManager::historicLocationList(const QString &statement, const Bindings &bindings)
{
    return statements->records<HistoricLocation>(statement, bindings, readHistoricLocation);
}

// Categories

bool DatabaseManager::AddCategory(QString CName)
{
    categoryIds.clear();
    return Schema::addNameIfMissing(*statements, CName, QStringLiteral("SELECT COUNT(CategoryName) FROM Category WHERE CategoryName = :id"),
                            QStringLiteral("INSERT INTO Category (CategoryName) VALUES (:name)"));
}

bool DatabaseManager::EditCategory(QString OldName, QString NewName)
{
    categoryIds.clear();
    // Only the Category row is renamed: entries and items keep the old name,
    // and their CategoryID still points at this row.
    return renameIfStoredOnce(OldName, NewName,
                              QStringLiteral("SELECT COUNT(CategoryName) FROM Category WHERE CategoryName = :id"),
                              QStringLiteral("UPDATE Category SET CategoryName = :newname where CategoryName = :old"));
}

int DatabaseManager::GetCategoryID(QString Name)
{
    if (keepingCategoryIds) {
        if (const auto kept = categoryIds.constFind(Name); kept != categoryIds.cend())
            return *kept;
    }
    const int id = statements->firstId(
        QStringLiteral("select SNo,CategoryName from Category where CategoryName=:CName order by SNo limit 1"),
        { { QStringLiteral(":CName"), textValue(Name) } });
    if (keepingCategoryIds)
        categoryIds.insert(Name, id);
    return id;
}

QString DatabaseManager::GetCategoryNameByCategoryID(int id)
{
    return statements->firstText(QStringLiteral("select CategoryName from Category where SNo=:sno"),
                     { { QStringLiteral(":sno"), intValue(id) } });
}

// Modes

bool DatabaseManager::AddMode(QString CName)
{
    // Mode names are not unique: a name stored twice gets a third copy.
    return Schema::addNameIfMissing(*statements, CName, QStringLiteral("SELECT COUNT(ModeName) FROM Mode WHERE ModeName = :id"),
                            QStringLiteral("INSERT INTO Mode (ModeName) VALUES (:name);"));
}

bool DatabaseManager::EditMode(QString OldName, QString NewName)
{
    return renameIfStoredOnce(OldName, NewName, QStringLiteral("SELECT COUNT(ModeName) FROM Mode WHERE ModeName = :id"),
                              QStringLiteral("UPDATE Mode SET ModeName = :newname where ModeName = :old"));
}

int DatabaseManager::GetModeID(QString Name)
{
    return statements->firstId(QStringLiteral("select SNo from Mode where ModeName=:CName"),
                   { { QStringLiteral(":CName"), textValue(Name) } });
}

// Item catalogue

bool DatabaseManager::AddItem(Items *t)
{
    const Bindings item = itemKey(t->ItemName, t->CategoryName);
    const int known =
        statements->count(QStringLiteral("SELECT COUNT(ItemName) FROM Items WHERE ItemName=:IName and CategoryName = :id"), item);
    if (known > 0) {
        const int frequency = statements->firstId(
            QStringLiteral("select UseFrequency from Items where ItemName=:IName and CategoryName = :id "), item);
        // The record's own frequency and CategoryID play no part: each use
        // counts one, and the row keeps the category number it was made with.
        return statements->execute(
            QStringLiteral("UPDATE Items SET UseFrequency = :fval, LastPrice= :lastP where ItemName=:IName and "
                           "CategoryName = :id"),
            item +
                Bindings { { QStringLiteral(":fval"), intValue(frequency + 1) },
                           { QStringLiteral(":lastP"), floatValue(t->LastPrice) } });
    }
    const int categoryId = GetCategoryID(t->CategoryName);
    return statements->execute(QStringLiteral("INSERT INTO Items (ItemName,CategoryName,CategoryID,LastPrice,UseFrequency) VALUES "
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
    return statements->run(query,
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
    return statements->runText(query,
                   QStringLiteral("delete from Items where ItemName= %1 and CategoryName = %2")
                       .arg(t->ItemName)
                       .arg(t->CategoryName));
}

int DatabaseManager::GetItemID(QString itemname, QString itemCategory)
{
    return statements->firstId(QStringLiteral("select SNo from Items where ItemName=:IName and CategoryName = :id "),
                   itemKey(itemname, itemCategory));
}

int DatabaseManager::GetItemID(Items *t)
{
    return statements->firstId(QStringLiteral("select SNo from Items where ItemName=:IName and CategoryName = :id and "
                                  "UseFrequency = :freq and LastPrice = :lPrice "),
                   itemKey(t->ItemName, t->CategoryName) +
                       Bindings { { QStringLiteral(":freq"), intValue(t->UseFrequency) },
                                  { QStringLiteral(":lPrice"), floatValue(t->LastPrice) } });
}

QString DatabaseManager::GetCategoryOfItem(QString itemName)
{
    return statements->firstText(QStringLiteral("select CategoryName from Items where ItemName=:IName"),
                     { { QStringLiteral(":IName"), textValue(itemName) } });
}

Items *DatabaseManager::GetItemByItemID(int id)
{
    std::optional<QSqlQuery> query;
    if (statements->run(query, itemColumns + QStringLiteral(" where SNo=:sno"), { { QStringLiteral(":sno"), intValue(id) } }) &&
        query->next())
        return readItem(*query);
    return nullptr;
}

// Item substitutes

bool DatabaseManager::AddItemSubstitutes(ItemSubstitutes *t)
{
    const int present = statements->count(QStringLiteral("SELECT COUNT(ItemName) FROM ItemSubstitutes WHERE ItemName=:IName and "
                                             "SubstituteName = :id"),
                              { { QStringLiteral(":IName"), textValue(t->ItemName) },
                                { QStringLiteral(":id"), textValue(t->SubstituteName) } });
    if (present != 0)
        return true;
    // The numbers always come from the catalogue, never from the record.
    const int itemId = GetItemID(t->ItemName, GetCategoryOfItem(t->ItemName));
    const int substituteId = GetItemID(t->SubstituteName, GetCategoryOfItem(t->SubstituteName));
    std::optional<QSqlQuery> query;
    return statements->run(query,
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
    return statements->run(query,
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
    return statements->runText(query,
                   QStringLiteral("delete from ItemSubstitutes where ItemName= %1 and SubstituteName = %2")
                       .arg(t->ItemName)
                       .arg(t->SubstituteName));
}

int DatabaseManager::GetItemSubstitutesID(QString itemname, QString subName)
{
    return statements->firstId(
        QStringLiteral("select SNo from ItemSubstitutes where ItemName=:IName and SubstituteName = :SubName"),
        { { QStringLiteral(":IName"), textValue(itemname) }, { QStringLiteral(":SubName"), textValue(subName) } });
}

int DatabaseManager::GetItemSubstitutesID(ItemSubstitutes *t)
{
    return statements->firstId(QStringLiteral("select SNo from ItemSubstitutes where ItemName=:IName and SubstituteName = "
                                  ":SubName and ItemID = :ItID and SubstitueID = :SubID "),
                   { { QStringLiteral(":IName"), textValue(t->ItemName) },
                     { QStringLiteral(":SubName"), textValue(t->SubstituteName) },
                     { QStringLiteral(":ItID"), intValue(t->ItemID) },
                     { QStringLiteral(":SubID"), intValue(t->SubstituteID) } });
}

ItemSubstitutes *DatabaseManager::GetItemSubstitutesByItemSubstitutesID(int id)
{
    std::optional<QSqlQuery> query;
    if (statements->run(query, itemSubstitutesColumns + QStringLiteral(" where SNo=:sno"),
            { { QStringLiteral(":sno"), intValue(id) } }) &&
        query->next())
        return readItemSubstitutes(*query);
    return nullptr;
}

// Remembered places

bool DatabaseManager::AddHistoricLocation(HistoricLocation *loc)
{
    const int present = statements->count(QStringLiteral("SELECT COUNT(LocationName) FROM HistoricLocation WHERE "
                                             "LocationName=:LocName and LocationLongitude = :loclong and "
                                             "LocationLatitude = :loclat"),
                              placeKey(*loc));
    if (present != 0)
        return true;
    return statements->execute(QStringLiteral("INSERT INTO HistoricLocation "
                                  "(LocationName,LocationLongitude,LocationLatitude,ReverseGeoLocation,CoordinateText) "
                                  "VALUES (:LocName,:loclong,:loclat,:RevGeo, :CoorTex);"),
                   placeKey(*loc) +
                       Bindings { { QStringLiteral(":RevGeo"), textValue(loc->ReverseGeoLocation) },
                                  { QStringLiteral(":CoorTex"), textValue(loc->CoordinateText) } });
}

bool DatabaseManager::EditHistoricLocation(HistoricLocation *OldLoc, HistoricLocation *NewLoc)
{
    std::optional<QSqlQuery> query;
    return statements->run(query,
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
    return statements->runText(query,
                   QStringLiteral("delete from HistoricLocation where LocationName= %1 and LocationLongitude "
                                  "= %2 and LocationLatitude = %3")
                       .arg(loc->LocationName)
                       .arg(Format::number(loc->LocationLongitude))
                       .arg(Format::number(loc->LocationLatitude)));
}

int DatabaseManager::GetHistoricLocationID(HistoricLocation *loc)
{
    return statements->firstId(QStringLiteral("select SNo from HistoricLocation where LocationName=:LocName and "
                                  "LocationLongitude = :loclong and LocationLatitude = :loclat "),
                   placeKey(*loc));
}

HistoricLocation *DatabaseManager::GetHistoricLocationByCoordinates(float longit, float latit)
{
    std::optional<QSqlQuery> query;
    if (statements->run(query,
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
    if (statements->run(query, historicLocationColumns + QStringLiteral(" where SNo=:sno"),
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
    return transactions->write([&] { return writeEntry(enteredEntry); });
}

int DatabaseManager::addItemOfEntry(const Items &item)
{
    // What AddItem() and then GetItemID() do, with one lookup of the item
    // instead of four: an import runs this for every entry. The first row
    // found gives the number and the count, as theirs does; every row of
    // the name and category is updated, as theirs is.
    const Bindings key = itemKey(item.ItemName, item.CategoryName);
    int itemId = 0;
    int frequency = 0;
    if (statements->firstInts(QStringLiteral("SELECT SNo, UseFrequency FROM Items WHERE ItemName=:IName and "
                                             "CategoryName = :id"),
                              key, { &itemId, &frequency })) {
        const bool updated = statements->execute(
            QStringLiteral("UPDATE Items SET UseFrequency = :fval, LastPrice= :lastP where ItemName=:IName and "
                           "CategoryName = :id"),
            key +
                Bindings { { QStringLiteral(":fval"), intValue(frequency + 1) },
                           { QStringLiteral(":lastP"), floatValue(item.LastPrice) } });
        return updated ? itemId : 0;
    }
    // No row: a failed lookup is no reason to add the item twice, so the
    // same check AddItem() makes decides.
    Items added = item;
    return AddItem(&added) ? GetItemID(item.ItemName, item.CategoryName) : 0;
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
    entry.ItemID = addItemOfEntry(item);
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

    return statements->execute(QStringLiteral("INSERT INTO Entry "
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
    return statements->runText(query,
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
    return statements->firstId(QStringLiteral("select SNo from Entry where ItemName= :ItName and CategoryName = :CatName and "
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
    return entries->list({});
}

QList<Entry *> DatabaseManager::entryList(const EntryFilter &filter)
{
    return entries->list(filter);
}

bool DatabaseManager::visitEntries(const EntryFilter &filter, const std::function<void(const Entry &)> &visit)
{
    return entries->visit(filter, visit);
}

bool DatabaseManager::visitEntryLines(const EntryFilter &filter,
                                      const std::function<void(const EntryLine &)> &visit)
{
    return entries->visitLines(filter, visit);
}

bool DatabaseManager::entryTotals(const EntryFilter &filter, int *count, double *total)
{
    return entries->totals(filter, count, total);
}

QList<Entry *> DatabaseManager::GetAllEntriesOrderByPrice()
{
    return entries->list(EntryFilter().cheapestFirst());
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategory(QString catName)
{
    return entries->list(EntryFilter::ofCategory(catName));
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategoryOrderByPrice(QString catName)
{
    return entries->list(EntryFilter::ofCategory(catName).cheapestFirst());
}

QList<Entry *> DatabaseManager::GetAllEntriesOnDate(QDateTime dat)
{
    return entries->list(EntryFilter().at(dat));
}

QList<Entry *> DatabaseManager::GetAllEntriesOnDateOrderByPrice(QDateTime dat)
{
    return entries->list(EntryFilter().at(dat).cheapestFirst());
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategoryOnDate(QString catName, QDateTime dat)
{
    return entries->list(EntryFilter::ofCategory(catName).at(dat));
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategoryOnDateOrderByPrice(QString catName, QDateTime dat)
{
    return entries->list(EntryFilter::ofCategory(catName).at(dat).cheapestFirst());
}

QList<Entry *> DatabaseManager::GetAllEntriesBetweenDates(QDateTime startDate, QDateTime endDate)
{
    return entries->list(EntryFilter().between(startDate, endDate));
}

QList<Entry *> DatabaseManager::GetAllEntriesBetweenDatesOrderByPrice(QDateTime startDate, QDateTime endDate)
{
    return entries->list(EntryFilter().between(startDate, endDate).cheapestFirst());
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategoryBetweenDates(QString catName, QDateTime startDate,
                                                                    QDateTime endDate)
{
    return entries->list(EntryFilter::ofCategory(catName).between(startDate, endDate));
}

QList<Entry *> DatabaseManager::GetAllEntriesOfCategoryBetweenDatesOrderByPrice(QString catName, QDateTime startDate,
                                                                                QDateTime endDate)
{
    return entries->list(EntryFilter::ofCategory(catName).between(startDate, endDate).cheapestFirst());
}

// Other lists

QList<Category *> DatabaseManager::GetAllCategories()
{
    return statements->records<Category>(QStringLiteral("select SNo,CategoryName from Category"), {},
                                readCategory);
}

QList<Mode *> DatabaseManager::GetAllModes()
{
    return statements->records<Mode>(QStringLiteral("select SNo, ModeName from Mode"), {}, readMode);
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
    if (!statements->run(query, QStringLiteral("select distinct CategoryName from Entry")))
        return names;
    if (!readAllRows(*query, [&](const QSqlQuery &row) { names.append(row.value(0).toString()); }))
        names.clear();
    return names;
}

QList<QDateTime> DatabaseManager::GetAllDistinctDatesOfEntriesOfCategory(QString catName)
{
    QList<QDateTime> dates;
    std::optional<QSqlQuery> query;
    if (!statements->run(query,
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
    return statements->records<Items>(
        QStringLiteral("select Items.SNo,Items.ItemName,CategoryName,CategoryID,LastPrice,NameUses from (select "
                       "sum(coalesce(UseFrequency, 0)) as NameUses,max(SNo) as NewestRow,max(max(coalesce("
                       "UseFrequency, 0), 0) * 2147483648 + SNo) as MostUsedKey from Items group by ItemName) join "
                       "Items on Items.SNo = MostUsedKey % 2147483648 order by NameUses desc, NewestRow desc"),
        {}, readItem);
}

QList<PlaceSpending *> DatabaseManager::GetSpendingPerPlace()
{
    return statements->records<PlaceSpending>(
        QStringLiteral("select coalesce(LocationText, '') as Place,count(*),sum(Price),avg(Price),"
                       "max(TransactDateTime) from Entry group by Place order by sum(Price) desc, Place"),
        {}, readPlaceSpending);
}

QList<RememberedPlaceSpending *> DatabaseManager::GetSpendingPerRememberedPlace()
{
    // The place's number is its row's key, so SQLite looks each entry's
    // place up instead of scanning the places once per entry.
    return statements->records<RememberedPlaceSpending>(
        QStringLiteral("select HistoricLocation.SNo,LocationName,LocationLongitude,LocationLatitude,"
                       "count(Entry.SNo),sum(Price) from Entry join HistoricLocation on Entry.GeoLocID = "
                       "HistoricLocation.SNo group by HistoricLocation.SNo order by sum(Price) desc, "
                       "HistoricLocation.SNo"),
        {}, readRememberedPlaceSpending);
}

QList<CategorySpending *> DatabaseManager::GetSpendingPerCategory()
{
    // Read from the spending table along its key (category, date-time,
    // number), backwards, rather than from the entries sorted by date-time:
    // no sort of the whole table, and narrow rows. Each category's rows then
    // come newest first, as its own list has them, except that the rows of
    // one date-time come with the highest number first, where the list keeps
    // them in table order, the lowest first. Each run of equal date-times is
    // therefore kept until it ends and added in reverse, so that the sum is
    // the very float that adding up the list gives. Equal date-times are
    // equal keys to SQLite, as to DISTINCT: each run is one date-time. Rows
    // are compared as SQLite holds them: no text is made of a row that does
    // not start a category or a run.
    struct Met
    {
        CategorySpending *category;
        // The category's newest date-time and the lowest number at it:
        // where the newest-first list of all entries meets the category.
        StoredValue newest;
        int lowestNumberAtNewest;
    };
    std::vector<Met> met;
    QHash<QString, std::size_t> indexOf;
    std::size_t current = 0;
    bool inNewestRun = false;
    StoredValue categoryName;
    StoredValue runDateTime;
    std::vector<float> run;
    const auto endRun = [&] {
        CategorySpending *category = met[current].category;
        for (auto price = run.rbegin(); price != run.rend(); ++price)
            category->Total += *price;
        run.clear();
    };
    const auto add = [&](const auto &row) {
        if (met.empty() || !holdsAt(row, 0, categoryName)) {
            if (!met.empty())
                endRun();
            categoryName = storedAt(row, 0);
            runDateTime = storedAt(row, 1);
            const QString name = stringAt(row, 0);
            // Names that differ only in bytes that are no UTF-8 read as one
            // text: one category, as before, met where the newer meets it.
            const auto found = indexOf.constFind(name);
            if (found == indexOf.constEnd()) {
                auto *category = new CategorySpending;
                category->CategoryName = name;
                category->NumberOfDateTimes = 0;
                current = met.size();
                indexOf.insert(name, current);
                met.push_back({ category, runDateTime, 0 });
                inNewestRun = true;
            } else {
                current = *found;
                inNewestRun = met[current].newest < runDateTime;
                if (inNewestRun)
                    met[current].newest = runDateTime;
            }
            ++met[current].category->NumberOfDateTimes;
        } else if (!holdsAt(row, 1, runDateTime)) {
            endRun();
            ++met[current].category->NumberOfDateTimes;
            runDateTime = storedAt(row, 1);
            inNewestRun = false;
        }
        // Numbers come highest first: the last one of the run is the lowest.
        if (inNewestRun)
            met[current].lowestNumberAtNewest = intAt(row, 3);
        run.push_back(floatAt(row, 2));
    };
    const bool read = reader->readRows(QStringLiteral("select CategoryName,TransactDateTime,Price,SNo from "
                                                      "EntrySpending order by CategoryName desc, "
                                                      "TransactDateTime desc, SNo desc"),
                                       {}, add);
    if (!met.empty())
        endRun();
    if (!read) {
        for (const Met &found : met)
            delete found.category;
        return {};
    }

    // In the order the names are first met newest first.
    std::stable_sort(met.begin(), met.end(), [](const Met &a, const Met &b) {
        if (a.newest != b.newest)
            return b.newest < a.newest;
        return a.lowestNumberAtNewest < b.lowestNumberAtNewest;
    });
    QList<CategorySpending *> categories;
    categories.reserve(qsizetype(met.size()));
    for (const Met &found : met)
        categories.append(found.category);
    return categories;
}

std::optional<DatabaseManager::ContentVersion> DatabaseManager::contentVersion()
{
    // total_changes() counts every row this connection has written, kept or
    // rolled back; data_version moves with every commit of another
    // connection. Neither moves otherwise, so equal pairs mean equal rows.
    std::optional<QSqlQuery> query;
    if (!statements->run(query, QStringLiteral("select total_changes(), data_version from pragma_data_version")) ||
        !query->next())
        return std::nullopt;
    return ContentVersion(query->value(0).toLongLong(), query->value(1).toLongLong());
}

// Counts

int DatabaseManager::GetTotalNumberOfEntries()
{
    return entries->count({});
}

int DatabaseManager::GetNumberOfEntriesOfCategory(QString catName)
{
    return entries->count(EntryFilter::ofCategory(catName));
}

int DatabaseManager::GetNumberOfEntriesOnDate(QDateTime dat)
{
    return entries->count(EntryFilter().at(dat));
}

int DatabaseManager::GetNumberOfEntriesBetweenDates(QDateTime startDate, QDateTime endDate)
{
    return entries->count(EntryFilter().between(startDate, endDate));
}

int DatabaseManager::GetNumberOfEntriesOfCategoryOnDate(QString catName, QDateTime dat)
{
    return entries->count(EntryFilter::ofCategory(catName).at(dat));
}

int DatabaseManager::GetNumberOfEntriesOfCategoryBetweenDate(QString catName, QDateTime startDate, QDateTime endDate)
{
    return entries->count(EntryFilter::ofCategory(catName).between(startDate, endDate));
}

int DatabaseManager::GetNumberOfCategories()
{
    return statements->count(countCategories);
}

int DatabaseManager::GetNumberOfModes()
{
    return statements->count(countModes);
}

int DatabaseManager::GetTotalNumberOfItems()
{
    return statements->count(countItems);
}

int DatabaseManager::GetTotalNumberOfItemsOfCategory(QString CatName)
{
    return statements->count(QStringLiteral("SELECT COUNT(ItemName) FROM Items where CategoryName=:CName;"),
                 { { QStringLiteral(":CName"), textValue(CatName) } });
}

int DatabaseManager::GetTotalNumberOfItemSubstitutes()
{
    return statements->count(countItemSubstitutes);
}

int DatabaseManager::GetTotalNumberOfItemSubstitutesOfItem(QString ItName)
{
    return statements->count(QStringLiteral("SELECT COUNT(ItemName) FROM ItemSubstitutes where ItemName=:IName;"),
                 { { QStringLiteral(":IName"), textValue(ItName) } });
}

int DatabaseManager::GetNumberOfHistoricLocations()
{
    return statements->count(countHistoricLocations);
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
