// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "migrations.h"
#include "describedfile.h"
#include "entryquery.h"
#include "migrations.h"
#include "rawdatabase.h"
#include "storageform.h"
#include "sampleentries.h"
#include "temphome.h"
#include "testsupport.h"
#include "tiedentries.h"

#include <QDir>
#include <QElapsedTimer>
#include <QHash>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlTableModel>
#include <QScopeGuard>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>
#include <unistd.h>

namespace {

template<typename Record> QStringList itemNames(const OwnedList<Record> &records)
{
    QStringList names;
    for (const Record *record : records)
        names.append(record->ItemName);
    return names;
}

const QStringList defaultCategories = {
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

const QStringList defaultModes = { QStringLiteral("Default"), QStringLiteral("Money Saving"),
                                   QStringLiteral("Time Saving") };


Items makeItem(const QString &name, const QString &category, float lastPrice, int useFrequency = 1)
{
    Items item;
    item.ItemName = name;
    item.CategoryName = category;
    item.LastPrice = lastPrice;
    item.UseFrequency = useFrequency;
    return item;
}

HistoricLocation makePlace(const QString &name, float longitude, float latitude)
{
    HistoricLocation place;
    place.LocationName = name;
    place.LocationLongitude = longitude;
    place.LocationLatitude = latitude;
    place.ReverseGeoLocation = QLatin1String("");
    place.CoordinateText = QStringLiteral("%1-%2").arg(longitude).arg(latitude);
    return place;
}

QStringList column(const QList<QVariantList> &rows, int index)
{
    QStringList values;
    for (const QVariantList &row : rows)
        values.append(row.at(index).toString());
    return values;
}

} // namespace

class tst_DatabaseManager : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TempHome> home;

    std::unique_ptr<DatabaseManager> startStore() { return std::make_unique<DatabaseManager>(nullptr); }
    void addSampleEntries(DatabaseManager &store);

private slots:
    void init();
    void cleanup();

    // Records
    void aFreshEntryHasGeolocationOffEmptyTextsAndAnInvalidDate();
    void itemSubstitutesKeepTheirSubstituteIdThroughTheMisspelledColumn();

    // File, schema and default rows
    void aNewHomeGetsExactlyTheSixTablesWithTheirCreateStatements();
    void aNewHomeGetsTheDefaultCategoriesNumberedInOrder();
    void aFileOfTheSixTablesGetsTheRecordOfImportsAndKeepsItsRows();
    void aNewHomeGetsTheDefaultModesNumberedInOrder();
    void startingAgainOnTheSameFileChangesNothing();
    void aRenamedDefaultCategoryComesBackWithTheNextFreeNumber();
    void aDroppedEntryTableComesBackEmptyWhileTheOthersKeepTheirRows();
    void aTableNamedInLowerCaseIsNotTakenForTheEntryTable();
    void aModeStoredTwiceGetsAThirdCopyAtTheNextStart();
    void aFileOfRandomBytesMakesAnUnusableStoreAndStaysUntouched();
    void aHomeThatCannotBeWrittenMakesAnUnusableStore();
    void anUnopenedStoreAnswersEveryOperationWithItsFailureValue();

    // The connection
    void aSecondStoreOnTheSameFileSharesTheConnectionAndKeepsModelsWorking();
    void aStoreAskedForAnotherFileWhileOneLivesIsRefusedAndChangesNothing();
    void theLastStoreToGoClosesTheConnectionSoTheNextOpensItsOwnHome();
    void tableModelsShowAndEditTheStoredRowsUntilSubmitted();
    void aLockedFileFailsAnEditsTransactionSoonBeforeItsWorkRuns();
    void theStoreRunsWithoutAnyGuiLibrary();

    // Transactions and backups
    void aTransactionStoresEverythingItsWorkWrote();
    void aTransactionWhoseWorkFailsStoresNothing();
    void aCommitThatCannotGetTheFileStoresNothingAndSaysWhy();
    void anImportTransactionIndexesTheCatalogueOnlyWhileItRuns();
    void anImportTransactionBesideAnUnfinishedReadRunsWithoutTheIndex();
    void statementsRepeatedInATransactionGiveTheSameResultsAsOutside();
    void anImportFindsCategoriesAddedOrRenamedWhileItRuns();
    void aBackupWhileAModelHoldsAStatementOpenEqualsTheFile();
    void aCancelledBackupSaysSoAndCopiesNothingMore();
    void aBackupEqualsTheFileWithOrWithoutTheSqliteHandle();

    // Storage forms
    void theStoreWritesDatesBooleansAndFloatsInTheirStorageForms();
    void theCoordinateTextJoinsLongitudeAndLatitudeWithADash_data();
    void theCoordinateTextJoinsLongitudeAndLatitudeWithADash();
    void aFileWrittenInTheStorageFormsReadsBackFieldForField();
    void hardTextRoundTripsThroughAddEntry_data();
    void hardTextRoundTripsThroughAddEntry();

    // Writes and identifier lookups
    void entriesKeepOneCatalogueRowPerItemAndCategory();
    void anEntryInAnUnknownCategoryIsStoredWithCategoryIdZero();
    void anEntryWithoutGeolocationLeavesThePlacesUntouched();
    void anEntryWithoutGeolocationKeepsTheCallersCoordinatesAndPlaceZero();
    void twoEntriesAtTheSamePlaceShareOnePlaceRow();
    void anEntryAtAKnownPlaceNameWithOtherCoordinatesGetsPlaceZero();
    void addingAnExistingCategoryReturnsTrueAndAddsNothing();
    void editingAnUnknownCategoryFails();
    void renamingACategoryToANameInUseFails();
    void renamingACategoryLeavesItsEntriesUnderTheOldName();
    void anUnknownCategoryHasIdZero();
    void deletingAnOrdinaryEntryFailsAndKeepsTheRow();
    void deleteStatementsTakeTheirValuesUnquoted_data();
    void deleteStatementsTakeTheirValuesUnquoted();
    void anEntryWithoutItemOrCategoryNameIsRefusedBeforeTheCatalogueChanges_data();
    void anEntryWithoutItemOrCategoryNameIsRefusedBeforeTheCatalogueChanges();
    void anEntryWithoutDateUpdatesItsCatalogueRowButIsRefused();
    void aPlaceIsStoredWithAnEmptyReverseGeolocation();
    void aModeIsAddedOnceAndRenamedOnlyWhenStoredOnce();
    void editingAnItemTakesTheCategoryNumberFromTheNewName();
    void itemLookupsMatchNameCategoryFrequencyAndExactPrice();
    void substituteNumbersComeFromTheCatalogue();
    void placesCanBeEditedAndFoundByCoordinatesOrNumber();
    void anEntryIsFoundByItsFields();

    // Queries and counts
    void anEmptyEntryTableGivesEmptyListsZeroCountsAndNullDates();
    void periodBoundsIncludeAnEntryAtExactlyTheirTime_data();
    void periodBoundsIncludeAnEntryAtExactlyTheirTime();
    void aDateThatDiffersOnlyInTimeOfDayFindsNoEntry();
    void entryListsFilterAndSort_data();
    void entryListsFilterAndSort();
    void visitingEntriesHandsOverTheListsRowsFieldForFieldInOrder();
    void countsFollowTheirFilters_data();
    void countsFollowTheirFilters();
    void dateBoundsAreTheOldestAndNewestStoredDates();
    void topNItemsAreTheLeastUsedOnesInAscendingOrder();
    void topNLimitsFollowSqlite_data();
    void topNLimitsFollowSqlite();
    void itemListsFilterByCategory();
    void distinctCategoriesOfEntriesIncludeRenamedOnesAndSkipUnusedOnes();
    void distinctDatesTellApartTwoTimesOfTheSameDay();
    void entriesOfEqualPriceKeepTheirStoredOrder();
    void datesStoredInOtherIsoFormsReadBackAsTheGeneralParserReadsThem_data();
    void datesStoredInOtherIsoFormsReadBackAsTheGeneralParserReadsThem();
    void entryListsAreReadOnTheSqliteHandleOnlyWhereThatIsSafe();
    void aListCutShortByADamagedFileIsEmpty();
    void spendingPerCategoryIsWhatEachCategorysOwnListsAddUpTo();
    void spendingPerCategoryComesInTheOrderTheNewestFirstListMeetsTheNames();
    void datesAreFilteredAsSqliteComparesTheStoredValues();
    void entryLinesAgreeWithTheRecordsWhateverTheStoredForm();
    void entryLinesKnowTheLocalDayAcrossChangesOfOffset_data();
    void entryLinesKnowTheLocalDayAcrossChangesOfOffset();
    void theContentVersionMovesWithEveryWriteAndOnlyThen();

    // A file in trouble
    void aKilledWriterLeavesAWholeFileWithEveryConfirmedEntryOnce();
    void aFullFileRefusesAnEntryWholeAndTakesItOnceThereIsRoom();
    void aLockedFileFailsAnEntryAfterOneWaitAndLeavesNothingHalfWritten();
    void anEntryAddedInsideACallersTransactionGoesWithIt();

    // The catalogue and the places at work
    void theCatalogueListsEachNameOnceTheMostUsedFirstWithItsMostUsedRow();
    void catalogueNamesUsedEquallyOftenComeNewestFirst();
    void spendingPerPlaceSumsTheEntriesOfEachPlaceTextLargestFirst();
    void spendingPerRememberedPlaceCountsOnlyTheEntriesThatPointAtIt();
};

void tst_DatabaseManager::init()
{
    home = std::make_unique<TempHome>();
    QVERIFY(home->isValid());
}

void tst_DatabaseManager::cleanup()
{
    home.reset();
}

void tst_DatabaseManager::addSampleEntries(DatabaseManager &store)
{
    const QList<Entry> entries = {
        makeEntry(at(2026, 1, 10, 8, 0), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 3.0f, QStringLiteral("Market")),
        makeEntry(at(2026, 1, 10, 8, 0), QStringLiteral("Bread"), QStringLiteral("Food"), 2.0f, QStringLiteral("Market")),
        makeEntry(at(2026, 2, 5, 12, 0), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.5f, QStringLiteral("Market")),
        makeEntry(at(2026, 3, 1, 18, 30), QStringLiteral("Cake"), QStringLiteral("Food"), 5.0f, QStringLiteral("Market")),
        makeEntry(at(2026, 3, 20, 9, 15), QStringLiteral("Juice"), QStringLiteral("Drinks"), 4.0f, QStringLiteral("Market")),
    };
    for (Entry entry : entries)
        QVERIFY(store.AddEntry(&entry));
}

// Records

void tst_DatabaseManager::aFreshEntryHasGeolocationOffEmptyTextsAndAnInvalidDate()
{
    const Entry entry;
    QCOMPARE(entry.EnableGeoLoc, false);
    QVERIFY(entry.ItemName.isEmpty());
    QVERIFY(entry.CategoryName.isEmpty());
    QVERIFY(entry.LocationText.isEmpty());
    QVERIFY(entry.ItemName.isNull());
    QVERIFY(!entry.TransactDateTime.isValid());
    QVERIFY(entry.TransactDateTime.isNull());
}

void tst_DatabaseManager::itemSubstitutesKeepTheirSubstituteIdThroughTheMisspelledColumn()
{
    auto store = startStore();
    Items butter = makeItem(QStringLiteral("Butter"), QStringLiteral("Groceries"), 2.0f);
    Items margarine = makeItem(QStringLiteral("Margarine"), QStringLiteral("Groceries"), 1.0f);
    QVERIFY(store->AddItem(&butter));
    QVERIFY(store->AddItem(&margarine));

    ItemSubstitutes pairing;
    pairing.ItemName = butter.ItemName;
    pairing.SubstituteName = margarine.ItemName;
    QVERIFY(store->AddItemSubstitutes(&pairing));

    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select SubstitueID from ItemSubstitutes")).toInt(), 2);

    const int id = store->GetItemSubstitutesID(pairing.ItemName, pairing.SubstituteName);
    QCOMPARE(id, 1);
    std::unique_ptr<ItemSubstitutes> back(store->GetItemSubstitutesByItemSubstitutesID(id));
    QVERIFY(back);
    QCOMPARE(back->ItemID, 1);
    QCOMPARE(back->SubstituteID, 2);
    const auto all = owned(store->GetAllItemSubstitutes());
    QCOMPARE(all.size(), 1);
    QCOMPARE(all[0]->SubstituteID, 2);
}

// File, schema and default rows

void tst_DatabaseManager::aNewHomeGetsExactlyTheSixTablesWithTheirCreateStatements()
{
    auto store = startStore();
    QVERIFY(store->isUsable());
    QVERIFY(QFile::exists(home->databasePath()));

    RawDatabase raw(home->databasePath());
    const QList<QVariantList> rows = raw.rows(
        QStringLiteral("select name, sql from sqlite_master where type = 'table' and name <> 'sqlite_sequence'"));
    // The six described tables as described, and beside them exactly what
    // the store's migrations add.
    QCOMPARE(rows.size(), describedCreateStatements().size() + migrationObjectNames(QStringLiteral("table")).size());
    for (const auto &table : describedCreateStatements()) {
        const QList<QVariantList> matching = raw.rows(
            QStringLiteral("select sql from sqlite_master where type = 'table' and name = '%1'").arg(table.first));
        QCOMPARE(matching.size(), 1);
        QCOMPARE(matching.first().first().toString(), table.second);
    }
    for (const QString &type : { QStringLiteral("table"), QStringLiteral("index"), QStringLiteral("trigger") }) {
        QStringList added;
        const QString names = QStringLiteral("select name from sqlite_master where type = '%1' and sql is not null "
                                             "and name not in ('Category', 'Items', 'Mode', 'HistoricLocation', "
                                             "'ItemSubstitutes', 'Entry', 'sqlite_sequence') order by name")
                                  .arg(type);
        for (const QVariantList &row : raw.rows(names))
            added << row.at(0).toString();
        QCOMPARE(added, migrationObjectNames(type));
    }
}

void tst_DatabaseManager::aFileOfTheSixTablesGetsTheRecordOfImportsAndKeepsItsRows()
{
    {
        // A file as the described statements make it: version 0.
        RawDatabase raw(home->databasePath());
        for (const auto &table : describedCreateStatements())
            QVERIFY2(raw.exec(table.second), qPrintable(raw.lastError()));
        QVERIFY(raw.insertEntry(QStringLiteral("Tea"), QStringLiteral("Drinks"), QDateTime(QDate(2024, 1, 2), QTime()),
                                2.5) > 0);
        QCOMPARE(raw.scalar(QStringLiteral("PRAGMA user_version")).toInt(), 0);
    }
    auto store = startStore();
    QVERIFY(store->isUsable());
    QCOMPARE(store->writeProblem(), QString());
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("PRAGMA user_version")).toInt(), Migrations::latestVersion());
    QVERIFY(Migrations::latestVersion() >= 1);
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Entry where ItemName = 'Tea'")).toInt(), 1);
    // The new tables take their rows.
    QVERIFY2(raw.exec(QStringLiteral("INSERT INTO ImportLog (ImportedAt, FileName, EntryCount) VALUES "
                                     "('2024-01-02T10:00:00', '/tmp/bank.qif', 1)")),
             qPrintable(raw.lastError()));
    QVERIFY2(raw.exec(QStringLiteral("INSERT INTO ImportedEntry (EntrySNo, ImportSNo, Fingerprint) VALUES (1, 1, 'f')")),
             qPrintable(raw.lastError()));
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from ImportedEntry join ImportLog on ImportLog.SNo = "
                                       "ImportedEntry.ImportSNo")).toInt(), 1);
}

void tst_DatabaseManager::aNewHomeGetsTheDefaultCategoriesNumberedInOrder()
{
    auto store = startStore();
    RawDatabase raw(home->databasePath());
    const QList<QVariantList> rows = raw.rows(QStringLiteral("select SNo, CategoryName from Category order by SNo"));
    QCOMPARE(column(rows, 1), defaultCategories);
    for (int i = 0; i < rows.size(); ++i)
        QCOMPARE(rows.at(i).at(0).toInt(), i + 1);

    const auto categories = owned(store->GetAllCategories());
    QCOMPARE(categories.size(), 37);
    for (int i = 0; i < categories.size(); ++i) {
        QCOMPARE(categories[i]->SNo, i + 1);
        QCOMPARE(categories[i]->CategoryName, defaultCategories.at(i));
    }
    QCOMPARE(store->GetNumberOfCategories(), 37);
}

void tst_DatabaseManager::aNewHomeGetsTheDefaultModesNumberedInOrder()
{
    auto store = startStore();
    const auto modes = owned(store->GetAllModes());
    QCOMPARE(modes.size(), 3);
    for (int i = 0; i < modes.size(); ++i) {
        QCOMPARE(modes[i]->SNo, i + 1);
        QCOMPARE(modes[i]->ModeName, defaultModes.at(i));
    }
    QCOMPARE(store->GetNumberOfModes(), 3);
    QCOMPARE(store->GetModeID(QStringLiteral("Time Saving")), 3);
}

void tst_DatabaseManager::startingAgainOnTheSameFileChangesNothing()
{
    QStringList before;
    {
        auto store = startStore();
        addSampleEntries(*store);
        HistoricLocation place = makePlace(QStringLiteral("Harbour"), 1.5f, 2.5f);
        QVERIFY(store->AddHistoricLocation(&place));
        RawDatabase raw(home->databasePath());
        before = raw.dumpTables();
    }
    // Categories, modes, entries, items, the place, the numbering of those
    // five tables in sqlite_sequence, the search row and the spending row
    // of each entry, and the three rows a full-text index holds before
    // any text is in it (its version in _config, its totals and its
    // structure in _data): no entry is in it before a search folds its
    // texts.
    QCOMPARE(before.size(), 37 + 3 + 5 + 5 + 1 + 5 + 5 + 5 + 3);

    auto again = startStore();
    QVERIFY(again->isUsable());
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.dumpTables(), before);
}

void tst_DatabaseManager::aRenamedDefaultCategoryComesBackWithTheNextFreeNumber()
{
    {
        auto store = startStore();
        QVERIFY(store->EditCategory(QStringLiteral("Food"), QStringLiteral("Meals")));
        QCOMPARE(store->GetCategoryID(QStringLiteral("Food")), 0);
    }
    auto store = startStore();
    QCOMPARE(store->GetCategoryID(QStringLiteral("Meals")), 1);
    QCOMPARE(store->GetCategoryID(QStringLiteral("Food")), 38);
    QCOMPARE(store->GetNumberOfCategories(), 38);
}

void tst_DatabaseManager::aDroppedEntryTableComesBackEmptyWhileTheOthersKeepTheirRows()
{
    {
        auto store = startStore();
        addSampleEntries(*store);
        QVERIFY(store->AddCategory(QStringLiteral("Pets")));
    }
    {
        RawDatabase raw(home->databasePath());
        QVERIFY2(raw.exec(QStringLiteral("DROP TABLE Entry")), qPrintable(raw.lastError()));
    }
    auto store = startStore();
    QCOMPARE(store->GetTotalNumberOfEntries(), 0);
    QVERIFY(owned(store->GetAllEntries()).isEmpty());
    QCOMPARE(store->GetTotalNumberOfItems(), 5);
    QCOMPARE(store->GetNumberOfCategories(), 38);
    QCOMPARE(store->GetNumberOfModes(), 3);

    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select sql from sqlite_master where name = 'Entry'")).toString(),
             describedCreateStatements().last().second);
    Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&entry));
    QCOMPARE(store->GetTotalNumberOfEntries(), 1);
}

void tst_DatabaseManager::aTableNamedInLowerCaseIsNotTakenForTheEntryTable()
{
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.exec(QStringLiteral("CREATE TABLE entry (Note text)")));
        QVERIFY(raw.exec(QStringLiteral("INSERT INTO entry (Note) VALUES ('kept')")));
    }
    auto store = startStore();
    QVERIFY(store->isUsable());

    RawDatabase raw(home->databasePath());
    // The create statement for "Entry" ran and was refused: the lower-case
    // table is still the only one of that name, untouched.
    const QList<QVariantList> rows =
        raw.rows(QStringLiteral("select name, sql from sqlite_master where lower(name) = 'entry'"));
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().at(0).toString(), QStringLiteral("entry"));
    QCOMPARE(rows.first().at(1).toString(), QStringLiteral("CREATE TABLE entry (Note text)"));
    QCOMPARE(raw.scalar(QStringLiteral("select Note from entry")).toString(), QStringLiteral("kept"));

    // The rest of the file was set up as usual; entry operations fail.
    QCOMPARE(store->GetNumberOfCategories(), 37);
    QCOMPARE(store->GetNumberOfModes(), 3);
    Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f, QStringLiteral("Market"));
    QVERIFY(!store->AddEntry(&entry));
    QCOMPARE(store->GetTotalNumberOfEntries(), 0);
    QVERIFY(owned(store->GetAllEntries()).isEmpty());
}

void tst_DatabaseManager::aModeStoredTwiceGetsAThirdCopyAtTheNextStart()
{
    startStore().reset();
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.exec(QStringLiteral("INSERT INTO Mode (ModeName) VALUES ('Default')")));
    }
    auto store = startStore();
    RawDatabase raw(home->databasePath());
    const QList<QVariantList> rows = raw.rows(QStringLiteral("select SNo, ModeName from Mode order by SNo"));
    QCOMPARE(column(rows, 1),
             QStringList({ QStringLiteral("Default"), QStringLiteral("Money Saving"), QStringLiteral("Time Saving"),
                           QStringLiteral("Default"), QStringLiteral("Default") }));
    QCOMPARE(column(rows, 0), QStringList({ "1", "2", "3", "4", "5" }));
}

void tst_DatabaseManager::aFileOfRandomBytesMakesAnUnusableStoreAndStaysUntouched()
{
    QByteArray bytes(8192, Qt::Uninitialized);
    QRandomGenerator generator(20261115);
    for (char &byte : bytes)
        byte = char(generator.bounded(256));
    {
        QFile file(home->databasePath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    auto store = startStore();
    QVERIFY(!store->isUsable());
    QVERIFY(!store->openError().isEmpty());
    QCOMPARE(store->databaseFileName(), home->databasePath());
    QVERIFY(owned(store->GetAllEntries()).isEmpty());
    QVERIFY(owned(store->GetAllCategories()).isEmpty());
    QVERIFY(owned(store->GetAllModes()).isEmpty());
    QCOMPARE(store->GetTotalNumberOfEntries(), 0);
    QCOMPARE(store->GetNumberOfCategories(), 0);
    Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f, QStringLiteral("Market"));
    QVERIFY(!store->AddEntry(&entry));
    QVERIFY(!store->AddCategory(QStringLiteral("Pets")));
    store.reset();

    QFile file(home->databasePath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), bytes);
}

void tst_DatabaseManager::aHomeThatCannotBeWrittenMakesAnUnusableStore()
{
    // Permissions do not stop root, but nothing can create a file in /proc.
    QString unwritable = QStringLiteral("/proc");
    if (geteuid() != 0) {
        unwritable = home->filePath(QStringLiteral("locked"));
        QVERIFY(QDir().mkdir(unwritable));
        QVERIFY(QFile::setPermissions(unwritable,
                                      QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup |
                                          QFile::ReadOther | QFile::ExeOther));
    }
    qputenv("HOME", QFile::encodeName(unwritable));

    auto store = startStore();
    QVERIFY(!store->isUsable());
    QVERIFY(!store->openError().isEmpty());
    QVERIFY(!QFile::exists(unwritable + QStringLiteral("/ledgerlydatabase.db")));
    QVERIFY(owned(store->GetAllCategories()).isEmpty());
    QCOMPARE(store->GetNumberOfModes(), 0);
    QVERIFY(!store->AddCategory(QStringLiteral("Pets")));

    if (unwritable != QLatin1String("/proc"))
        QFile::setPermissions(unwritable, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void tst_DatabaseManager::anUnopenedStoreAnswersEveryOperationWithItsFailureValue()
{
    qputenv("HOME", QFile::encodeName(home->filePath(QStringLiteral("no/such/directory"))));
    auto store = startStore();
    QVERIFY(!store->isUsable());

    Items item = makeItem(QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.5f);
    ItemSubstitutes pairing;
    pairing.ItemName = QStringLiteral("Coffee");
    pairing.SubstituteName = QStringLiteral("Tea");
    HistoricLocation place = makePlace(QStringLiteral("Harbour"), 1.5f, 2.5f);
    Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.5f, QStringLiteral("Market"));
    const QDateTime day = at(2026, 4, 1);
    const QDateTime later = at(2026, 5, 1);
    const QString drinks = QStringLiteral("Drinks");

    // Writes: false
    QVERIFY(!store->AddCategory(QStringLiteral("Pets")));
    QVERIFY(!store->EditCategory(drinks, QStringLiteral("Beverages")));
    QVERIFY(!store->AddMode(QStringLiteral("Lazy")));
    QVERIFY(!store->EditMode(QStringLiteral("Default"), QStringLiteral("Lazy")));
    QVERIFY(!store->AddItem(&item));
    QVERIFY(!store->EditItem(&item, &item));
    QVERIFY(!store->DeleteItem(&item));
    QVERIFY(!store->AddItemSubstitutes(&pairing));
    QVERIFY(!store->EditItemSubstitutes(&pairing, &pairing));
    QVERIFY(!store->DeleteItemSubstitutes(&pairing));
    QVERIFY(!store->AddHistoricLocation(&place));
    QVERIFY(!store->EditHistoricLocation(&place, &place));
    QVERIFY(!store->DeleteHistoricLocation(&place));
    QVERIFY(!store->AddEntry(&entry));
    QVERIFY(!store->DeleteEntry(&entry));

    // Identifier lookups: 0; text lookups: empty; record lookups: null
    QCOMPARE(store->GetCategoryID(drinks), 0);
    QCOMPARE(store->GetModeID(QStringLiteral("Default")), 0);
    QCOMPARE(store->GetItemID(QStringLiteral("Coffee"), drinks), 0);
    QCOMPARE(store->GetItemID(&item), 0);
    QCOMPARE(store->GetItemSubstitutesID(QStringLiteral("Coffee"), QStringLiteral("Tea")), 0);
    QCOMPARE(store->GetItemSubstitutesID(&pairing), 0);
    QCOMPARE(store->GetHistoricLocationID(&place), 0);
    QCOMPARE(store->GetEntryID(&entry), 0);
    QCOMPARE(store->GetCategoryNameByCategoryID(1), QString());
    QCOMPARE(store->GetCategoryOfItem(QStringLiteral("Coffee")), QString());
    QCOMPARE(store->GetItemByItemID(1), nullptr);
    QCOMPARE(store->GetItemSubstitutesByItemSubstitutesID(1), nullptr);
    QCOMPARE(store->GetHistoricLocationByCoordinates(1.5f, 2.5f), nullptr);
    QCOMPARE(store->GetHistoricLocationByHistoricLocationID(1), nullptr);

    // Lists: empty
    QVERIFY(owned(store->GetAllEntries()).isEmpty());
    QVERIFY(owned(store->GetAllEntriesOrderByPrice()).isEmpty());
    QVERIFY(owned(store->GetAllEntriesOfCategory(drinks)).isEmpty());
    QVERIFY(owned(store->GetAllEntriesOfCategoryOrderByPrice(drinks)).isEmpty());
    QVERIFY(owned(store->GetAllEntriesOnDate(day)).isEmpty());
    QVERIFY(owned(store->GetAllEntriesOnDateOrderByPrice(day)).isEmpty());
    QVERIFY(owned(store->GetAllEntriesOfCategoryOnDate(drinks, day)).isEmpty());
    QVERIFY(owned(store->GetAllEntriesOfCategoryOnDateOrderByPrice(drinks, day)).isEmpty());
    QVERIFY(owned(store->GetAllEntriesBetweenDates(day, later)).isEmpty());
    QVERIFY(owned(store->GetAllEntriesBetweenDatesOrderByPrice(day, later)).isEmpty());
    QVERIFY(owned(store->GetAllEntriesOfCategoryBetweenDates(drinks, day, later)).isEmpty());
    QVERIFY(owned(store->GetAllEntriesOfCategoryBetweenDatesOrderByPrice(drinks, day, later)).isEmpty());
    QVERIFY(owned(store->GetAllCategories()).isEmpty());
    QVERIFY(owned(store->GetAllModes()).isEmpty());
    QVERIFY(owned(store->GetAllItems()).isEmpty());
    QVERIFY(owned(store->GetItemsOfParticularCategory(drinks)).isEmpty());
    QVERIFY(owned(store->GetTopNFrequentlyUsedItems(5)).isEmpty());
    QVERIFY(owned(store->GetTopNFrequentlyUsedItemsOfCategory(5, drinks)).isEmpty());
    QVERIFY(owned(store->GetAllItemSubstitutes()).isEmpty());
    QVERIFY(owned(store->GetItemSubstitutesOfParticularItem(QStringLiteral("Coffee"))).isEmpty());
    QVERIFY(owned(store->GetAllHistoricLocation()).isEmpty());
    QVERIFY(store->GetListOfAllDistinctCategoriesOfAllEntries().isEmpty());
    QVERIFY(store->GetAllDistinctDatesOfEntriesOfCategory(drinks).isEmpty());
    QVERIFY(owned(store->GetItemCatalogue()).isEmpty());
    QVERIFY(owned(store->GetSpendingPerPlace()).isEmpty());
    QVERIFY(owned(store->GetSpendingPerRememberedPlace()).isEmpty());

    // Counts: 0
    QCOMPARE(store->GetTotalNumberOfEntries(), 0);
    QCOMPARE(store->GetNumberOfEntriesOfCategory(drinks), 0);
    QCOMPARE(store->GetNumberOfEntriesOnDate(day), 0);
    QCOMPARE(store->GetNumberOfEntriesBetweenDates(day, later), 0);
    QCOMPARE(store->GetNumberOfEntriesOfCategoryOnDate(drinks, day), 0);
    QCOMPARE(store->GetNumberOfEntriesOfCategoryBetweenDate(drinks, day, later), 0);
    QCOMPARE(store->GetNumberOfCategories(), 0);
    QCOMPARE(store->GetNumberOfModes(), 0);
    QCOMPARE(store->GetTotalNumberOfItems(), 0);
    QCOMPARE(store->GetTotalNumberOfItemsOfCategory(drinks), 0);
    QCOMPARE(store->GetTotalNumberOfItemSubstitutes(), 0);
    QCOMPARE(store->GetTotalNumberOfItemSubstitutesOfItem(QStringLiteral("Coffee")), 0);
    QCOMPARE(store->GetNumberOfHistoricLocations(), 0);

    // Date bounds: null
    QVERIFY(store->GetDateOfFirstEntry().isNull());
    QVERIFY(store->GetDateOfLastEntry().isNull());
    QVERIFY(store->GetDateOfFirstEntryOfCategory(drinks).isNull());
    QVERIFY(store->GetDateOfLastEntryOfCategory(drinks).isNull());

    QVERIFY(!QFile::exists(home->filePath(QStringLiteral("no"))));
}

// The connection

namespace {

QString connectionFile()
{
    return QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false).databaseName();
}

int connectionBusyTimeout()
{
    QSqlQuery query(QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false));
    return query.exec(QStringLiteral("PRAGMA busy_timeout")) && query.next() ? query.value(0).toInt() : -1;
}

} // namespace

void tst_DatabaseManager::aSecondStoreOnTheSameFileSharesTheConnectionAndKeepsModelsWorking()
{
    auto first = startStore();
    std::unique_ptr<QSqlTableModel> model(first->createTableModel(QStringLiteral("Entry"), nullptr));
    QVERIFY(model);
    QCOMPARE(model->rowCount(), 0);
    {
        auto second = startStore();
        QVERIFY(second->isUsable());
        QCOMPARE(QSqlDatabase::connectionNames(), QStringList { QLatin1String(QSqlDatabase::defaultConnection) });
        Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.5f, QStringLiteral("Market"));
        QVERIFY(second->AddEntry(&entry));
        QVERIFY(model->select());
        QCOMPARE(model->rowCount(), 1);
    }
    // The second store went; the first store and the model go on.
    QCOMPARE(connectionFile(), home->databasePath());
    QCOMPARE(first->GetTotalNumberOfEntries(), 1);
    QVERIFY(model->select());
    QCOMPARE(model->index(0, 1).data().toString(), QStringLiteral("Tea"));
}

void tst_DatabaseManager::aStoreAskedForAnotherFileWhileOneLivesIsRefusedAndChangesNothing()
{
    auto first = startStore();
    std::unique_ptr<QSqlTableModel> model(first->createTableModel(QStringLiteral("Category"), nullptr));
    QCOMPARE(model->rowCount(), 37);

    TempHome elsewhere;
    auto second = startStore();
    runPendingEventsAndClearQuit();
    QVERIFY(!second->isUsable());
    QCOMPARE(second->databaseFileName(), elsewhere.databasePath());
    QVERIFY2(second->openError().contains(home->databasePath()), qPrintable(second->openError()));
    QVERIFY(!second->AddCategory(QStringLiteral("Pets")));
    QCOMPARE(second->GetNumberOfCategories(), 0);
    QCOMPARE(second->createTableModel(QStringLiteral("Category"), nullptr), nullptr);
    QVERIFY(!QFile::exists(elsewhere.databasePath()));

    // The first store keeps its file, and its model keeps showing it.
    QCOMPARE(connectionFile(), home->databasePath());
    QVERIFY(first->AddCategory(QStringLiteral("Garden")));
    QVERIFY(model->select());
    QCOMPARE(model->rowCount(), 38);
}

void tst_DatabaseManager::theLastStoreToGoClosesTheConnectionSoTheNextOpensItsOwnHome()
{
    {
        auto store = startStore();
        QVERIFY(store->AddCategory(QStringLiteral("Garden")));
    }
    QVERIFY(!QSqlDatabase::contains(QLatin1String(QSqlDatabase::defaultConnection)));

    TempHome next;
    auto store = startStore();
    QVERIFY(store->isUsable());
    QCOMPARE(connectionFile(), next.databasePath());
    QCOMPARE(store->GetNumberOfCategories(), 37);
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Category")).toInt(), 38);
}

void tst_DatabaseManager::tableModelsShowAndEditTheStoredRowsUntilSubmitted()
{
    auto store = startStore();
    addSampleEntries(*store);
    std::unique_ptr<QSqlTableModel> model(store->createTableModel(QStringLiteral("Entry"), nullptr));
    QCOMPARE(model->tableName(), QStringLiteral("Entry"));
    QCOMPARE(model->editStrategy(), QSqlTableModel::OnManualSubmit);
    QCOMPARE(model->rowCount(), 5);
    QCOMPARE(model->index(0, 1).data().toString(), QStringLiteral("Coffee"));

    QVERIFY(model->setData(model->index(0, 1), QStringLiteral("Espresso")));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select ItemName from Entry where SNo = 1")).toString(),
             QStringLiteral("Coffee"));
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Edits, [&] { return model->submitAll(); }));
    QCOMPARE(raw.scalar(QStringLiteral("select ItemName from Entry where SNo = 1")).toString(),
             QStringLiteral("Espresso"));
    QVERIFY(!model->isDirty());
}

void tst_DatabaseManager::aLockedFileFailsAnEditsTransactionSoonBeforeItsWorkRuns()
{
    auto store = startStore();
    addSampleEntries(*store);
    // The store waits five seconds for a locked file, the driver's own wait.
    QCOMPARE(connectionBusyTimeout(), 5000);
    std::unique_ptr<QSqlTableModel> model(store->createTableModel(QStringLiteral("Entry"), nullptr));
    QVERIFY(model->setData(model->index(0, 5), 7.25f));
    QVERIFY(model->setData(model->index(1, 5), 8.5f));

    RawDatabase raw(home->databasePath());
    QVERIFY(raw.exec(QStringLiteral("BEGIN EXCLUSIVE")));
    QElapsedTimer submitting;
    submitting.start();
    bool ran = false;
    QString failure;
    QVERIFY(!store->runInTransaction(
        DatabaseManager::WriteKind::Edits,
        [&] {
            ran = true;
            return model->submitAll();
        },
        &failure));
    // The write lock is taken first, so the models are never reached; a
    // page's Save waits far less than the store's own wait, which is back in
    // force afterwards.
    QVERIFY(!ran);
    QVERIFY2(submitting.elapsed() < 2500, qPrintable(QString::number(submitting.elapsed())));
    QCOMPARE(connectionBusyTimeout(), 5000);
    QVERIFY2(failure.contains(QStringLiteral("database is locked")), qPrintable(failure));
    QVERIFY(model->isDirty());
    QVERIFY(raw.exec(QStringLiteral("ROLLBACK")));

    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Edits, [&] { return model->submitAll(); }));
    QVERIFY(!model->isDirty());
    QCOMPARE(raw.scalar(QStringLiteral("select Price from Entry where SNo = 1")).toFloat(), 7.25f);
    QCOMPARE(raw.scalar(QStringLiteral("select Price from Entry where SNo = 2")).toFloat(), 8.5f);
}

void tst_DatabaseManager::theStoreRunsWithoutAnyGuiLibrary()
{
    // Everything the store does, from opening the file to a table model.
    auto store = startStore();
    addSampleEntries(*store);
    QCOMPARE(owned(store->GetAllEntries()).size(), 5);
    std::unique_ptr<QSqlTableModel> model(store->createTableModel(QStringLiteral("Entry"), nullptr));
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Edits, [&] { return model->submitAll(); }));
    QVERIFY(store->backUpTo(home->filePath(QStringLiteral("copy.db"))));
    QCOMPARE(loadedGuiLibraries(), QStringList());
}

// Transactions and backups

void tst_DatabaseManager::aTransactionStoresEverythingItsWorkWrote()
{
    auto store = startStore();
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Import, [&] {
        Entry first = makeEntry(at(2026, 1, 10, 8, 0), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 3.0f, QStringLiteral("Market"));
        Entry second = makeEntry(at(2026, 1, 11, 8, 0), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 3.5f, QStringLiteral("Market"));
        return store->AddCategory(QStringLiteral("Pets")) && store->AddEntry(&first) && store->AddEntry(&second);
    }));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Entry")).toInt(), 2);
    QCOMPARE(raw.rows(QStringLiteral("select ItemName, UseFrequency, LastPrice from Items")),
             QList<QVariantList>({ { QStringLiteral("Coffee"), 2, 3.5 } }));
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Category where CategoryName = 'Pets'")).toInt(), 1);
    // Nothing of the transaction's own making stays in the file: only the
    // migrations' indexes are there.
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from sqlite_master where type = 'index' and sql is not null"))
                 .toInt(),
             migrationObjectNames(QStringLiteral("index")).size());
}

void tst_DatabaseManager::aTransactionWhoseWorkFailsStoresNothing()
{
    auto store = startStore();
    addSampleEntries(*store);
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    QString failure = QStringLiteral("the work's own reason");
    QVERIFY(!store->runInTransaction(
        DatabaseManager::WriteKind::Import,
        [&] {
            Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Cake"), QStringLiteral("Sweets"), 6.0f, QStringLiteral("Bakery"), true, 10.0f, 20.0f);
            return store->AddCategory(QStringLiteral("Sweets")) && store->AddEntry(&entry) && false;
        },
        &failure));
    QCOMPARE(failure, QStringLiteral("the work's own reason"));
    QCOMPARE(raw.dumpTables(), before);
    // The store goes on as before, outside any transaction.
    Entry after = makeEntry(at(2026, 4, 2), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&after));
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Entry")).toInt(), 6);
}

void tst_DatabaseManager::aCommitThatCannotGetTheFileStoresNothingAndSaysWhy()
{
    auto store = startStore();
    addSampleEntries(*store);
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    // Another program in the middle of reading: the store may write its
    // journal, but not put the changes into the file.
    QVERIFY(raw.exec(QStringLiteral("BEGIN")));
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Entry")).toInt(), 5);
    QString failure;
    QVERIFY(!store->runInTransaction(
        DatabaseManager::WriteKind::Edits,
        [&] {
            Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Cake"), QStringLiteral("Food"), 6.0f, QStringLiteral("Market"));
            return store->AddEntry(&entry);
        },
        &failure));
    QVERIFY2(failure.contains(QStringLiteral("database is locked")), qPrintable(failure));
    QVERIFY(raw.exec(QStringLiteral("COMMIT")));
    QCOMPARE(raw.dumpTables(), before);
    QCOMPARE(store->GetTotalNumberOfEntries(), 5);
}

void tst_DatabaseManager::anImportTransactionIndexesTheCatalogueOnlyWhileItRuns()
{
    auto store = startStore();
    // Indexes of our own making: the ones SQLite makes for UNIQUE columns
    // have no statement.
    const QString indexes = QStringLiteral("select count(*) from sqlite_master where type = 'index' and tbl_name = "
                                           "'Items' and sql is not null");
    int during = -1;
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Import, [&] {
        QSqlQuery query(QSqlDatabase::database());
        during = query.exec(indexes) && query.next() ? query.value(0).toInt() : -1;
        return true;
    }));
    QCOMPARE(during, 1);
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Edits, [&] {
        QSqlQuery query(QSqlDatabase::database());
        during = query.exec(indexes) && query.next() ? query.value(0).toInt() : -1;
        return true;
    }));
    QCOMPARE(during, 0);
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(indexes).toInt(), 0);
    QCOMPARE(raw.scalar(QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
}

void tst_DatabaseManager::anImportTransactionBesideAnUnfinishedReadRunsWithoutTheIndex()
{
    auto store = startStore();
    // More rows than a table model reads at first: its statement stays open.
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Import, [&] {
        for (int i = 0; i < 600; ++i) {
            Entry entry = makeEntry(at(2026, 1, 1).addSecs(i * 60), QStringLiteral("Item %1").arg(i % 7), QStringLiteral("Food"), 1.0f + i, QStringLiteral("Market"));
            if (!store->AddEntry(&entry))
                return false;
        }
        return true;
    }));
    std::unique_ptr<QSqlTableModel> model(store->createTableModel(QStringLiteral("Entry"), nullptr));
    QVERIFY(model->canFetchMore());

    int during = -1;
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Import, [&] {
        QSqlQuery query(QSqlDatabase::database());
        during = query.exec(QStringLiteral("select count(*) from sqlite_master where type = 'index' and tbl_name = "
                                           "'Items' and sql is not null")) &&
                query.next()
            ? query.value(0).toInt()
            : -1;
        Entry entry = makeEntry(at(2026, 6, 1), QStringLiteral("Item 3"), QStringLiteral("Food"), 2.0f, QStringLiteral("Market"));
        return store->AddEntry(&entry);
    }));
    QCOMPARE(during, 0);
    QCOMPARE(store->GetTotalNumberOfEntries(), 601);
    // The model goes on reading the rows it had not fetched yet.
    while (model->canFetchMore())
        model->fetchMore();
    QVERIFY2(model->rowCount() >= 600, qPrintable(QString::number(model->rowCount())));
}

void tst_DatabaseManager::statementsRepeatedInATransactionGiveTheSameResultsAsOutside()
{
    // The same entries, once one by one and once in a transaction that
    // prepares each statement once: the two files hold the same rows.
    const auto addAll = [](DatabaseManager &store) {
        for (int i = 0; i < 40; ++i) {
            Entry entry =
                makeEntry(at(2026, 1, 1).addDays(i), QStringLiteral("Item %1").arg(i % 5), i % 2 ? QStringLiteral("Food") : QStringLiteral("Unknown"), 1.5f * i, QStringLiteral("Place %1").arg(i % 3), i % 3 == 0, 10.0f + i % 3, 20.0f);
            if (!store.AddEntry(&entry))
                return false;
        }
        return true;
    };
    QStringList outside;
    {
        auto store = startStore();
        QVERIFY(addAll(*store));
        RawDatabase raw(home->databasePath());
        outside = raw.dumpTables();
    }
    home.reset();
    home = std::make_unique<TempHome>();
    auto store = startStore();
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Import, [&] { return addAll(*store); }));
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.dumpTables(), outside);
    // Five items in two categories, each pair used four times.
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Items")).toInt(), 10);
    QCOMPARE(raw.scalar(QStringLiteral("select min(UseFrequency) from Items")).toInt(), 4);
}

void tst_DatabaseManager::anImportFindsCategoriesAddedOrRenamedWhileItRuns()
{
    // An import keeps the categories' numbers it looked up; a category
    // added or renamed meanwhile is found by its new name only.
    auto store = startStore();
    int missing = -1;
    int added = -1;
    int oldName = -1;
    int newName = -1;
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Import, [&] {
        missing = store->GetCategoryID(QStringLiteral("Pets"));
        if (!store->AddCategory(QStringLiteral("Pets")))
            return false;
        added = store->GetCategoryID(QStringLiteral("Pets"));
        if (!store->EditCategory(QStringLiteral("Pets"), QStringLiteral("Animals")))
            return false;
        oldName = store->GetCategoryID(QStringLiteral("Pets"));
        newName = store->GetCategoryID(QStringLiteral("Animals"));
        return true;
    }));
    RawDatabase raw(home->databasePath());
    const int stored = raw.scalar(QStringLiteral("select SNo from Category where CategoryName = 'Animals'")).toInt();
    QVERIFY(stored > 0);
    QCOMPARE(missing, 0);
    QCOMPARE(added, stored);
    QCOMPARE(oldName, 0);
    QCOMPARE(newName, stored);
}

void tst_DatabaseManager::aBackupWhileAModelHoldsAStatementOpenEqualsTheFile()
{
    auto store = startStore();
    QVERIFY(store->runInTransaction(DatabaseManager::WriteKind::Import, [&] {
        for (int i = 0; i < 700; ++i) {
            Entry entry =
                makeEntry(at(2026, 1, 1).addSecs(i * 600), QStringLiteral("Item %1").arg(i % 11), QStringLiteral("Food"), 0.5f + i, QStringLiteral("Shop"), i % 2, 1.0f, 2.0f);
            if (!store->AddEntry(&entry))
                return false;
        }
        return true;
    }));
    // A page's table model that has read only its first rows keeps its
    // statement open on the store's connection.
    std::unique_ptr<QSqlTableModel> model(store->createTableModel(QStringLiteral("Entry"), nullptr));
    QVERIFY(model->canFetchMore());

    const QString copy = home->filePath(QStringLiteral("copy.db"));
    QList<qint64> steps;
    QString failure;
    QVERIFY2(store->backUpTo(
                 copy,
                 [&](qint64 done, qint64 total) {
                     steps.append(done);
                     return done <= total;
                 },
                 &failure),
             qPrintable(failure));
    QVERIFY(!steps.isEmpty());

    RawDatabase source(home->databasePath());
    RawDatabase backup(copy);
    QCOMPARE(backup.scalar(QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
    QCOMPARE(backup.dumpTables(), source.dumpTables());
    QCOMPARE(backup.scalar(QStringLiteral("select count(*) from Entry")).toInt(), 700);
    QCOMPARE(model->rowCount(), 256);
}

void tst_DatabaseManager::aBackupEqualsTheFileWithOrWithoutTheSqliteHandle()
{
    // Run twice by ctest: on the handle, and through Qt's driver alone.
    auto store = startStore();
    addSampleEntries(*store);
    const QString copy = home->filePath(QStringLiteral("copy.db"));
    QString failure;
    QList<qint64> told;
    QVERIFY2(store->backUpTo(
                 copy,
                 [&](qint64 done, qint64 total) {
                     told.append(total - done);
                     return true;
                 },
                 &failure),
             qPrintable(failure));
    QCOMPARE(told.constLast(), 0);
    RawDatabase backup(copy);
    QCOMPARE(backup.scalar(QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
    RawDatabase source(home->databasePath());
    QCOMPARE(backup.dumpTables(), source.dumpTables());
    QCOMPARE(backup.scalar(QStringLiteral("select count(*) from Entry")).toInt(), 5);
}

void tst_DatabaseManager::aCancelledBackupSaysSoAndCopiesNothingMore()
{
    auto store = startStore();
    addSampleEntries(*store);
    QString failure;
    QVERIFY(!store->backUpTo(
        home->filePath(QStringLiteral("copy.db")), [](qint64, qint64) { return false; }, &failure));
    QCOMPARE(failure, QStringLiteral("The backup was cancelled."));
}

// Storage forms

void tst_DatabaseManager::theStoreWritesDatesBooleansAndFloatsInTheirStorageForms()
{
    auto store = startStore();
    Entry plain = makeEntry(QDate(2026, 11, 15).startOfDay(), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.5f, QStringLiteral("Market"));
    Entry located = makeEntry(at(2026, 11, 16, 13, 8, 59), QStringLiteral("Bread"), QStringLiteral("Food"), 0.1f, QStringLiteral("Harbour"), true, -3.5f, 40.25f);
    QVERIFY(store->AddEntry(&plain));
    QVERIFY(store->AddEntry(&located));

    RawDatabase raw(home->databasePath());
    const QList<QVariantList> rows = raw.rows(
        QStringLiteral("select TransactDateTime, typeof(TransactDateTime), EnableGeoLoc, typeof(EnableGeoLoc), "
                       "typeof(Price), typeof(GeoLocLongit), typeof(GeoLocLatit) from Entry order by SNo"));
    QCOMPARE(rows.size(), 2);
    QCOMPARE(rows.at(0).at(0).toString(), QStringLiteral("2026-11-15T00:00:00"));
    QCOMPARE(rows.at(1).at(0).toString(), QStringLiteral("2026-11-16T13:08:59"));
    QCOMPARE(rows.at(0).at(2).toString(), QStringLiteral("false"));
    QCOMPARE(rows.at(1).at(2).toString(), QStringLiteral("true"));
    for (const QVariantList &row : rows) {
        QCOMPARE(row.at(1).toString(), QStringLiteral("text"));
        QCOMPARE(row.at(3).toString(), QStringLiteral("text"));
        QCOMPARE(row.at(4).toString(), QStringLiteral("real"));
        QCOMPARE(row.at(5).toString(), QStringLiteral("real"));
        QCOMPARE(row.at(6).toString(), QStringLiteral("real"));
    }
    QCOMPARE(raw.scalar(QStringLiteral("select Price from Entry where SNo = 2")).toFloat(), 0.1f);
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Items where typeof(LastPrice) = 'real'")).toInt(), 2);
    QCOMPARE(raw.scalar(QStringLiteral("select typeof(LocationLongitude) || typeof(LocationLatitude) from "
                                       "HistoricLocation"))
                 .toString(),
             QStringLiteral("realreal"));
}

void tst_DatabaseManager::theCoordinateTextJoinsLongitudeAndLatitudeWithADash_data()
{
    QTest::addColumn<float>("longitude");
    QTest::addColumn<float>("latitude");
    QTest::addColumn<QString>("text");
    QTest::newRow("negative longitude doubles nothing but leads") << -3.5f << 40.25f << QStringLiteral("-3.5-40.25");
    QTest::newRow("six significant digits") << 103.8488f << 1.35214f << QStringLiteral("103.849-1.35214");
    QTest::newRow("negative latitude doubles the dash") << 151.2f << -33.87f << QStringLiteral("151.2--33.87");
    QTest::newRow("whole numbers") << 7.0f << 0.0f << QStringLiteral("7-0");
}

void tst_DatabaseManager::theCoordinateTextJoinsLongitudeAndLatitudeWithADash()
{
    QFETCH(float, longitude);
    QFETCH(float, latitude);
    QFETCH(QString, text);
    auto store = startStore();
    Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.5f, QStringLiteral("Somewhere"), true, longitude, latitude);
    QVERIFY(store->AddEntry(&entry));
    const auto places = owned(store->GetAllHistoricLocation());
    QCOMPARE(places.size(), 1);
    QCOMPARE(places[0]->CoordinateText, text);
    QCOMPARE(places[0]->LocationLongitude, longitude);
    QCOMPARE(places[0]->LocationLatitude, latitude);
}

void tst_DatabaseManager::aFileWrittenInTheStorageFormsReadsBackFieldForField()
{
    startStore().reset();
    const QDateTime when = at(2019, 6, 30, 21, 45, 7);
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"), when, 3.75, QStringLiteral("Cafe"),
                                true, -0.1275, 51.5072));
        QVERIFY(raw.insertEntry(QStringLiteral("Bread"), QStringLiteral("Food"), at(2019, 6, 29), 1.2));
        QCOMPARE(raw.scalar(QStringLiteral("select TransactDateTime from Entry where SNo = 1")).toString(),
                 QStringLiteral("2019-06-30T21:45:07"));
    }
    auto store = startStore();

    const auto all = owned(store->GetAllEntries());
    QCOMPARE(all.size(), 2);
    const Entry *coffee = all[0];
    QCOMPARE(coffee->SNo, 1);
    QCOMPARE(coffee->ItemName, QStringLiteral("Coffee"));
    QCOMPARE(coffee->CategoryName, QStringLiteral("Drinks"));
    QCOMPARE(coffee->CategoryID, 2);
    QCOMPARE(coffee->TransactDateTime, when);
    QCOMPARE(coffee->Price, 3.75f);
    QCOMPARE(coffee->LocationText, QStringLiteral("Cafe"));
    QCOMPARE(coffee->EnableGeoLoc, true);
    QCOMPARE(coffee->GeoLocID, 0);
    QCOMPARE(coffee->GeoLocLongit, -0.1275f);
    QCOMPARE(coffee->GeoLocLatit, 51.5072f);
    QCOMPARE(coffee->ItemID, 0);
    const Entry *bread = all[1];
    QCOMPARE(bread->TransactDateTime, at(2019, 6, 29));
    QCOMPARE(bread->EnableGeoLoc, false);
    QCOMPARE(bread->Price, 1.2f);
    QCOMPARE(bread->GeoLocLongit, 103.0f);
    QCOMPARE(bread->GeoLocLatit, 1.3f);

    const auto ofCategory = owned(store->GetAllEntriesOfCategory(QStringLiteral("Drinks")));
    QCOMPARE(itemNames(ofCategory), QStringList { QStringLiteral("Coffee") });
    const auto onDate = owned(store->GetAllEntriesOnDate(when));
    QCOMPARE(itemNames(onDate), QStringList { QStringLiteral("Coffee") });
    const auto between = owned(store->GetAllEntriesBetweenDates(at(2019, 6, 1), at(2019, 6, 30, 23, 59, 59)));
    QCOMPARE(itemNames(between), QStringList({ QStringLiteral("Coffee"), QStringLiteral("Bread") }));
    const auto byPrice = owned(store->GetAllEntriesOrderByPrice());
    QCOMPARE(itemNames(byPrice), QStringList({ QStringLiteral("Bread"), QStringLiteral("Coffee") }));
    QCOMPARE(store->GetAllDistinctDatesOfEntriesOfCategory(QStringLiteral("Drinks")), QList<QDateTime> { when });
    QCOMPARE(store->GetDateOfLastEntry(), when);
    QCOMPARE(store->GetDateOfFirstEntry(), at(2019, 6, 29));
    QCOMPARE(store->GetNumberOfEntriesOnDate(when), 1);
    Entry lookup = makeEntry(when, QStringLiteral("Coffee"), QStringLiteral("Drinks"), 3.75f, QStringLiteral("Cafe"));
    QCOMPARE(store->GetEntryID(&lookup), 1);
}

void tst_DatabaseManager::hardTextRoundTripsThroughAddEntry_data()
{
    QTest::addColumn<QString>("text");
    for (const auto &hostile : hostileTexts())
        QTest::newRow(qPrintable(hostile.first)) << hostile.second;
    QTest::newRow("quotes and apostrophes") << QStringLiteral("It's \"quoted\"; ' or '1'='1");
    QTest::newRow("accents and quotes") << QStringLiteral("Café \"Zürich\"");
    QTest::newRow("Japanese") << QStringLiteral("日本");
    QTest::newRow("rich text") << QStringLiteral("<b>bold</b>");
    QString long1000;
    for (int i = 0; i < 100; ++i)
        long1000 += QStringLiteral("%1bcdefghi").arg(i % 10);
    QTest::newRow("1,000 characters") << long1000;
}

void tst_DatabaseManager::hardTextRoundTripsThroughAddEntry()
{
    QFETCH(QString, text);
    auto store = startStore();
    Entry entry = makeEntry(at(2026, 4, 1, 12), text, QStringLiteral("Food"), 9.99f, text, true, 10.5f, 20.25f);
    QVERIFY(store->AddEntry(&entry));
    // The same text as the category, too.
    Entry inItsOwnCategory = makeEntry(at(2026, 4, 2, 12), text, text, 1.5f, text);
    QVERIFY(store->AddEntry(&inItsOwnCategory));

    const auto all = owned(store->GetAllEntries());
    QCOMPARE(all.size(), 2);
    QCOMPARE(all[1]->ItemName.size(), text.size());
    QCOMPARE(all[1]->ItemName, text);
    QCOMPARE(all[1]->LocationText, text);
    QCOMPARE(all[1]->Price, 9.99f);
    QCOMPARE(all[0]->CategoryName, text);
    QCOMPARE(owned(store->GetAllEntriesOfCategory(text)).size(), 1);
    const auto places = owned(store->GetAllHistoricLocation());
    QCOMPARE(places.size(), 1);
    QCOMPARE(places[0]->LocationName, text);
    QCOMPARE(store->GetItemID(text, QStringLiteral("Food")), 1);
    QCOMPARE(store->GetItemID(text, text), 2);
    QCOMPARE(store->GetCategoryOfItem(text), QStringLiteral("Food"));

    // Every table is still in place, as created.
    RawDatabase raw(home->databasePath());
    for (const auto &table : describedCreateStatements())
        QCOMPARE(
            raw.scalar(QStringLiteral("SELECT sql FROM sqlite_master WHERE name = '%1'").arg(table.first)).toString(),
            table.second);
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Entry")).toInt(), 2);
}

// Writes and identifier lookups

void tst_DatabaseManager::entriesKeepOneCatalogueRowPerItemAndCategory()
{
    auto store = startStore();
    Entry first = makeEntry(at(2026, 4, 2), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.5f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&first));
    {
        const auto items = owned(store->GetAllItems());
        QCOMPARE(items.size(), 1);
        QCOMPARE(items[0]->UseFrequency, 1);
        QCOMPARE(items[0]->LastPrice, 2.5f);
        QCOMPARE(items[0]->CategoryID, 2);
    }
    // An older date still sets the last price: it is the last one entered.
    Entry second = makeEntry(at(2026, 4, 1), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 3.0f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&second));
    {
        const auto items = owned(store->GetAllItems());
        QCOMPARE(items.size(), 1);
        QCOMPARE(items[0]->UseFrequency, 2);
        QCOMPARE(items[0]->LastPrice, 3.0f);
    }
    Entry food = makeEntry(at(2026, 4, 3), QStringLiteral("Coffee"), QStringLiteral("Food"), 4.0f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&food));
    const auto items = owned(store->GetAllItems());
    QCOMPARE(items.size(), 2);
    QCOMPARE(items[1]->CategoryName, QStringLiteral("Food"));
    QCOMPARE(items[1]->UseFrequency, 1);

    const auto entries = owned(store->GetAllEntriesOrderByPrice());
    QCOMPARE(entries.size(), 3);
    QCOMPARE(entries[0]->ItemID, 1);
    QCOMPARE(entries[1]->ItemID, 1);
    QCOMPARE(entries[2]->ItemID, 2);
    QCOMPARE(entries[2]->CategoryID, 1);
}

void tst_DatabaseManager::anEntryInAnUnknownCategoryIsStoredWithCategoryIdZero()
{
    auto store = startStore();
    Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Bone"), QStringLiteral("Pets"), 1.0f, QStringLiteral("Market"));
    entry.CategoryID = 17;
    QVERIFY(store->AddEntry(&entry));

    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select CategoryID from Entry")).toInt(), 0);
    QCOMPARE(raw.scalar(QStringLiteral("select CategoryID from Items")).toInt(), 0);
    QCOMPARE(raw.scalar(QStringLiteral("select ItemID from Entry")).toInt(), 1);
}

void tst_DatabaseManager::anEntryWithoutGeolocationLeavesThePlacesUntouched()
{
    auto store = startStore();
    HistoricLocation known = makePlace(QStringLiteral("Market"), 103.0f, 1.3f);
    QVERIFY(store->AddHistoricLocation(&known));
    RawDatabase raw(home->databasePath());
    const QList<QVariantList> before = raw.rows(QStringLiteral("select * from HistoricLocation"));

    Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f, QStringLiteral("Elsewhere"), false, 5.0f, 6.0f);
    QVERIFY(store->AddEntry(&entry));
    QCOMPARE(raw.rows(QStringLiteral("select * from HistoricLocation")), before);
    QCOMPARE(store->GetNumberOfHistoricLocations(), 1);
}

void tst_DatabaseManager::anEntryWithoutGeolocationKeepsTheCallersCoordinatesAndPlaceZero()
{
    auto store = startStore();
    Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f, QStringLiteral("Market"));
    entry.GeoLocID = 9;
    QVERIFY(store->AddEntry(&entry));

    RawDatabase raw(home->databasePath());
    const QList<QVariantList> rows =
        raw.rows(QStringLiteral("select GeoLocID, GeoLocLongit, GeoLocLatit, EnableGeoLoc from Entry"));
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().at(0).toInt(), 0);
    QCOMPARE(rows.first().at(1).toFloat(), 103.0f);
    QCOMPARE(rows.first().at(2).toFloat(), 1.3f);
    QCOMPARE(rows.first().at(3).toString(), QStringLiteral("false"));
    QCOMPARE(store->GetNumberOfHistoricLocations(), 0);
}

void tst_DatabaseManager::twoEntriesAtTheSamePlaceShareOnePlaceRow()
{
    auto store = startStore();
    Entry first = makeEntry(at(2026, 4, 1), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f, QStringLiteral("Harbour"), true, 103.8488f, 1.2903f);
    Entry second = makeEntry(at(2026, 4, 2), QStringLiteral("Cake"), QStringLiteral("Food"), 2.0f, QStringLiteral("Harbour"), true, 103.8488f, 1.2903f);
    QVERIFY(store->AddEntry(&first));
    QVERIFY(store->AddEntry(&second));

    QCOMPARE(store->GetNumberOfHistoricLocations(), 1);
    const auto entries = owned(store->GetAllEntries());
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries[0]->GeoLocID, 1);
    QCOMPARE(entries[1]->GeoLocID, 1);
    QCOMPARE(entries[0]->GeoLocLongit, 103.8488f);
    QCOMPARE(entries[0]->GeoLocLatit, 1.2903f);
}

void tst_DatabaseManager::anEntryAtAKnownPlaceNameWithOtherCoordinatesGetsPlaceZero()
{
    auto store = startStore();
    Entry first = makeEntry(at(2026, 4, 1), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f, QStringLiteral("Harbour"), true, 10.0f, 20.0f);
    Entry moved = makeEntry(at(2026, 4, 2), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f, QStringLiteral("Harbour"), true, 11.0f, 21.0f);
    QVERIFY(store->AddEntry(&first));
    QVERIFY(store->AddEntry(&moved));

    QCOMPARE(store->GetNumberOfHistoricLocations(), 1);
    const auto entries = owned(store->GetAllEntries());
    QCOMPARE(entries[0]->GeoLocID, 0);
    QCOMPARE(entries[0]->GeoLocLongit, 11.0f);
    QCOMPARE(entries[0]->GeoLocLatit, 21.0f);
    QCOMPARE(entries[1]->GeoLocID, 1);
}

void tst_DatabaseManager::addingAnExistingCategoryReturnsTrueAndAddsNothing()
{
    auto store = startStore();
    QVERIFY(store->AddCategory(QStringLiteral("Drinks")));
    QCOMPARE(store->GetNumberOfCategories(), 37);
    QVERIFY(store->AddCategory(QStringLiteral("Pets")));
    QCOMPARE(store->GetNumberOfCategories(), 38);
    QCOMPARE(store->GetCategoryID(QStringLiteral("Pets")), 38);
    QCOMPARE(store->GetCategoryNameByCategoryID(38), QStringLiteral("Pets"));
}

void tst_DatabaseManager::editingAnUnknownCategoryFails()
{
    auto store = startStore();
    QVERIFY(!store->EditCategory(QStringLiteral("Pets"), QStringLiteral("Animals")));
    QCOMPARE(store->GetCategoryID(QStringLiteral("Animals")), 0);
    QCOMPARE(store->GetNumberOfCategories(), 37);
}

void tst_DatabaseManager::renamingACategoryToANameInUseFails()
{
    auto store = startStore();
    QVERIFY(!store->EditCategory(QStringLiteral("Food"), QStringLiteral("Drinks")));
    QCOMPARE(store->GetCategoryNameByCategoryID(1), QStringLiteral("Food"));
    QCOMPARE(store->GetCategoryID(QStringLiteral("Drinks")), 2);
}

void tst_DatabaseManager::renamingACategoryLeavesItsEntriesUnderTheOldName()
{
    auto store = startStore();
    Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Bread"), QStringLiteral("Food"), 1.0f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&entry));
    QVERIFY(store->EditCategory(QStringLiteral("Food"), QStringLiteral("Meals")));

    QCOMPARE(store->GetCategoryNameByCategoryID(1), QStringLiteral("Meals"));
    QCOMPARE(store->GetNumberOfEntriesOfCategory(QStringLiteral("Meals")), 0);
    const auto entries = owned(store->GetAllEntriesOfCategory(QStringLiteral("Food")));
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries[0]->CategoryID, 1);
    QCOMPARE(store->GetCategoryOfItem(QStringLiteral("Bread")), QStringLiteral("Food"));
}

void tst_DatabaseManager::anUnknownCategoryHasIdZero()
{
    auto store = startStore();
    QCOMPARE(store->GetCategoryID(QStringLiteral("No such category")), 0);
    QCOMPARE(store->GetCategoryID(QStringLiteral("food")), 0);
    QCOMPARE(store->GetCategoryID(QStringLiteral("Others")), 37);
}

void tst_DatabaseManager::deletingAnOrdinaryEntryFailsAndKeepsTheRow()
{
    auto store = startStore();
    Entry entry = makeEntry(at(2026, 4, 1, 14, 30), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.5f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&entry));
    QVERIFY(!store->DeleteEntry(&entry));
    QCOMPARE(store->GetTotalNumberOfEntries(), 1);
    QCOMPARE(store->GetEntryID(&entry), 1);
}

void tst_DatabaseManager::deleteStatementsTakeTheirValuesUnquoted_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("deleted");
    QTest::newRow("a word is read as a column name") << QStringLiteral("Harbour") << false;
    QTest::newRow("a bare number matches the text") << QStringLiteral("42") << true;
}

void tst_DatabaseManager::deleteStatementsTakeTheirValuesUnquoted()
{
    QFETCH(QString, name);
    QFETCH(bool, deleted);
    auto store = startStore();

    HistoricLocation place = makePlace(name, 1.5f, 2.5f);
    QVERIFY(store->AddHistoricLocation(&place));
    QCOMPARE(store->DeleteHistoricLocation(&place), deleted);
    QCOMPARE(store->GetNumberOfHistoricLocations(), deleted ? 0 : 1);

    Items item = makeItem(name, QStringLiteral("7"), 1.0f);
    QVERIFY(store->AddItem(&item));
    QCOMPARE(store->DeleteItem(&item), deleted);
    QCOMPARE(store->GetTotalNumberOfItems(), deleted ? 0 : 1);

    Items substitute = makeItem(QStringLiteral("99"), QStringLiteral("7"), 1.0f);
    QVERIFY(store->AddItem(&substitute));
    ItemSubstitutes pairing;
    pairing.ItemName = name;
    pairing.SubstituteName = substitute.ItemName;
    QVERIFY(store->AddItemSubstitutes(&pairing));
    QCOMPARE(store->DeleteItemSubstitutes(&pairing), deleted);
    QCOMPARE(store->GetTotalNumberOfItemSubstitutes(), deleted ? 0 : 1);
}

void tst_DatabaseManager::anEntryWithoutItemOrCategoryNameIsRefusedBeforeTheCatalogueChanges_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("category");
    QTest::newRow("null item name") << QString() << QStringLiteral("Drinks");
    QTest::newRow("null category name") << QStringLiteral("Coffee") << QString();
}

void tst_DatabaseManager::anEntryWithoutItemOrCategoryNameIsRefusedBeforeTheCatalogueChanges()
{
    QFETCH(QString, item);
    QFETCH(QString, category);
    auto store = startStore();
    Entry entry = makeEntry(at(2026, 4, 1), item, category, 2.5f, QStringLiteral("Market"));
    QVERIFY(!store->AddEntry(&entry));
    QCOMPARE(store->GetTotalNumberOfItems(), 0);
    QCOMPARE(store->GetTotalNumberOfEntries(), 0);

    // An empty text is not a null one: it is stored.
    Entry empty = makeEntry(at(2026, 4, 1), item.isNull() ? QLatin1String("") : item, category.isNull() ? QLatin1String("") : category, 2.5f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&empty));
    QCOMPARE(store->GetTotalNumberOfEntries(), 1);
}

void tst_DatabaseManager::anEntryWithoutDateUpdatesItsCatalogueRowButIsRefused()
{
    auto store = startStore();
    Entry dated = makeEntry(at(2026, 4, 1), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.5f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&dated));
    Entry undated = makeEntry(QDateTime(), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 3.5f, QStringLiteral("Market"));
    QVERIFY(!store->AddEntry(&undated));

    QCOMPARE(store->GetTotalNumberOfEntries(), 1);
    std::unique_ptr<Items> item(store->GetItemByItemID(1));
    QVERIFY(item);
    QCOMPARE(item->UseFrequency, 2);
    QCOMPARE(item->LastPrice, 3.5f);
}

void tst_DatabaseManager::aPlaceIsStoredWithAnEmptyReverseGeolocation()
{
    auto store = startStore();
    Entry entry = makeEntry(at(2026, 4, 1), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f, QStringLiteral("Harbour"), true, 1.5f, 2.5f);
    QVERIFY(store->AddEntry(&entry));
    RawDatabase raw(home->databasePath());
    const QList<QVariantList> rows =
        raw.rows(QStringLiteral("select ReverseGeoLocation is null, ReverseGeoLocation from HistoricLocation"));
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().at(0).toInt(), 0);
    QCOMPARE(rows.first().at(1).toString(), QString());
}

void tst_DatabaseManager::aModeIsAddedOnceAndRenamedOnlyWhenStoredOnce()
{
    auto store = startStore();
    QVERIFY(store->AddMode(QStringLiteral("Default")));
    QCOMPARE(store->GetNumberOfModes(), 3);
    QVERIFY(store->AddMode(QStringLiteral("Lazy")));
    QCOMPARE(store->GetModeID(QStringLiteral("Lazy")), 4);
    QVERIFY(store->EditMode(QStringLiteral("Lazy"), QStringLiteral("Relaxed")));
    QCOMPARE(store->GetModeID(QStringLiteral("Relaxed")), 4);
    QVERIFY(!store->EditMode(QStringLiteral("Lazy"), QStringLiteral("Other")));

    // A name stored twice is left alone, and that counts as success.
    RawDatabase raw(home->databasePath());
    QVERIFY(raw.exec(QStringLiteral("INSERT INTO Mode (ModeName) VALUES ('Relaxed')")));
    QVERIFY(store->EditMode(QStringLiteral("Relaxed"), QStringLiteral("Calm")));
    QCOMPARE(store->GetModeID(QStringLiteral("Calm")), 0);
    QVERIFY(store->AddMode(QStringLiteral("Relaxed")));
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from Mode where ModeName = 'Relaxed'")).toInt(), 3);
}

void tst_DatabaseManager::editingAnItemTakesTheCategoryNumberFromTheNewName()
{
    auto store = startStore();
    Items old = makeItem(QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.5f);
    QVERIFY(store->AddItem(&old));
    Items changed = makeItem(QStringLiteral("Espresso"), QStringLiteral("Food"), 3.25f, 7);
    changed.CategoryID = 30;
    QVERIFY(store->EditItem(&old, &changed));

    std::unique_ptr<Items> item(store->GetItemByItemID(1));
    QVERIFY(item);
    QCOMPARE(item->ItemName, QStringLiteral("Espresso"));
    QCOMPARE(item->CategoryName, QStringLiteral("Food"));
    QCOMPARE(item->CategoryID, 1);
    QCOMPARE(item->LastPrice, 3.25f);
    QCOMPARE(item->UseFrequency, 7);
    // No row matches any more, and that is still a successful statement.
    QVERIFY(store->EditItem(&old, &changed));
    QCOMPARE(store->GetItemByItemID(2), nullptr);
}

void tst_DatabaseManager::itemLookupsMatchNameCategoryFrequencyAndExactPrice()
{
    auto store = startStore();
    Items item = makeItem(QStringLiteral("Coffee"), QStringLiteral("Drinks"), 0.1f, 5);
    QVERIFY(store->AddItem(&item));
    QCOMPARE(store->GetItemID(QStringLiteral("Coffee"), QStringLiteral("Drinks")), 1);
    QCOMPARE(store->GetItemID(QStringLiteral("Coffee"), QStringLiteral("Food")), 0);

    // A new item always starts at frequency 1, whatever the record said.
    Items lookup = makeItem(QStringLiteral("Coffee"), QStringLiteral("Drinks"), 0.1f, 1);
    QCOMPARE(store->GetItemID(&lookup), 1);
    lookup.UseFrequency = 5;
    QCOMPARE(store->GetItemID(&lookup), 0);
    lookup.UseFrequency = 1;
    lookup.LastPrice = 0.1000001f;
    QCOMPARE(store->GetItemID(&lookup), 0);
}

void tst_DatabaseManager::substituteNumbersComeFromTheCatalogue()
{
    auto store = startStore();
    Items tea = makeItem(QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f);
    Items coffee = makeItem(QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.0f);
    QVERIFY(store->AddItem(&tea));
    QVERIFY(store->AddItem(&coffee));

    ItemSubstitutes pairing;
    pairing.ItemName = QStringLiteral("Tea");
    pairing.SubstituteName = QStringLiteral("Mate");
    pairing.ItemID = 40;
    pairing.SubstituteID = 41;
    QVERIFY(store->AddItemSubstitutes(&pairing));
    QVERIFY(store->AddItemSubstitutes(&pairing));
    QCOMPARE(store->GetTotalNumberOfItemSubstitutes(), 1);

    pairing.ItemID = 1;
    pairing.SubstituteID = 0;
    QCOMPARE(store->GetItemSubstitutesID(&pairing), 1);

    ItemSubstitutes changed;
    changed.ItemName = QStringLiteral("Tea");
    changed.SubstituteName = QStringLiteral("Coffee");
    QVERIFY(store->EditItemSubstitutes(&pairing, &changed));
    const auto ofTea = owned(store->GetItemSubstitutesOfParticularItem(QStringLiteral("Tea")));
    QCOMPARE(ofTea.size(), 1);
    QCOMPARE(ofTea[0]->SubstituteName, QStringLiteral("Coffee"));
    QCOMPARE(ofTea[0]->ItemID, 1);
    QCOMPARE(ofTea[0]->SubstituteID, 2);
    QCOMPARE(store->GetTotalNumberOfItemSubstitutesOfItem(QStringLiteral("Tea")), 1);
    QCOMPARE(store->GetTotalNumberOfItemSubstitutesOfItem(QStringLiteral("Coffee")), 0);
}

void tst_DatabaseManager::placesCanBeEditedAndFoundByCoordinatesOrNumber()
{
    auto store = startStore();
    HistoricLocation place = makePlace(QStringLiteral("Harbour"), 103.8488f, 1.2903f);
    QVERIFY(store->AddHistoricLocation(&place));
    QVERIFY(store->AddHistoricLocation(&place));
    QCOMPARE(store->GetNumberOfHistoricLocations(), 1);
    QCOMPARE(store->GetHistoricLocationID(&place), 1);

    HistoricLocation moved = makePlace(QStringLiteral("Pier"), -3.5f, 40.25f);
    QVERIFY(store->EditHistoricLocation(&place, &moved));
    QCOMPARE(store->GetHistoricLocationID(&place), 0);

    std::unique_ptr<HistoricLocation> byCoordinates(store->GetHistoricLocationByCoordinates(-3.5f, 40.25f));
    QVERIFY(byCoordinates);
    QCOMPARE(byCoordinates->SNo, 1);
    QCOMPARE(byCoordinates->LocationName, QStringLiteral("Pier"));
    QCOMPARE(byCoordinates->CoordinateText, QStringLiteral("-3.5-40.25"));
    std::unique_ptr<HistoricLocation> byNumber(store->GetHistoricLocationByHistoricLocationID(1));
    QVERIFY(byNumber);
    QCOMPARE(byNumber->LocationLongitude, -3.5f);
    QCOMPARE(byNumber->LocationLatitude, 40.25f);
    QCOMPARE(store->GetHistoricLocationByCoordinates(103.8488f, 1.2903f), nullptr);
    QCOMPARE(store->GetHistoricLocationByHistoricLocationID(2), nullptr);
}

void tst_DatabaseManager::anEntryIsFoundByItsFields()
{
    auto store = startStore();
    addSampleEntries(*store);
    Entry cake = makeEntry(at(2026, 3, 1, 18, 30), QStringLiteral("Cake"), QStringLiteral("Food"), 5.0f, QStringLiteral("Market"));
    QCOMPARE(store->GetEntryID(&cake), 4);
    cake.TransactDateTime = at(2026, 3, 1, 18, 31);
    QCOMPARE(store->GetEntryID(&cake), 0);
}

// Queries and counts

void tst_DatabaseManager::anEmptyEntryTableGivesEmptyListsZeroCountsAndNullDates()
{
    auto store = startStore();
    QVERIFY(store->isUsable());
    QVERIFY(owned(store->GetAllEntries()).isEmpty());
    QCOMPARE(store->GetTotalNumberOfEntries(), 0);
    QVERIFY(store->GetDateOfFirstEntry().isNull());
    QVERIFY(store->GetDateOfLastEntry().isNull());
    QVERIFY(store->GetDateOfFirstEntryOfCategory(QStringLiteral("Food")).isNull());
    QVERIFY(store->GetListOfAllDistinctCategoriesOfAllEntries().isEmpty());
}

void tst_DatabaseManager::periodBoundsIncludeAnEntryAtExactlyTheirTime_data()
{
    QTest::addColumn<QDateTime>("start");
    QTest::addColumn<QDateTime>("end");
    QTest::addColumn<bool>("found");
    const QDateTime stored = at(2026, 5, 12, 14, 30);
    QTest::newRow("both bounds at the stored time") << stored << stored << true;
    QTest::newRow("start at the stored time") << stored << at(2026, 5, 31) << true;
    QTest::newRow("end at the stored time") << at(2026, 5, 1) << stored << true;
    QTest::newRow("the day, ending before its time") << at(2026, 5, 12) << at(2026, 5, 12, 14, 29, 59) << false;
    QTest::newRow("the day, starting after its time")
        << at(2026, 5, 12, 14, 30, 1) << at(2026, 5, 12, 23, 59, 59) << false;
}

void tst_DatabaseManager::periodBoundsIncludeAnEntryAtExactlyTheirTime()
{
    QFETCH(QDateTime, start);
    QFETCH(QDateTime, end);
    QFETCH(bool, found);
    auto store = startStore();
    Entry entry = makeEntry(at(2026, 5, 12, 14, 30), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.5f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&entry));

    QCOMPARE(owned(store->GetAllEntriesBetweenDates(start, end)).size(), found ? 1 : 0);
    QCOMPARE(owned(store->GetAllEntriesOfCategoryBetweenDates(QStringLiteral("Drinks"), start, end)).size(),
             found ? 1 : 0);
    QCOMPARE(store->GetNumberOfEntriesBetweenDates(start, end), found ? 1 : 0);
}

void tst_DatabaseManager::aDateThatDiffersOnlyInTimeOfDayFindsNoEntry()
{
    auto store = startStore();
    Entry entry = makeEntry(at(2026, 5, 12, 14, 30), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.5f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&entry));
    QVERIFY(owned(store->GetAllEntriesOnDate(at(2026, 5, 12))).isEmpty());
    QVERIFY(owned(store->GetAllEntriesOfCategoryOnDate(QStringLiteral("Drinks"), at(2026, 5, 12))).isEmpty());
    QCOMPARE(store->GetNumberOfEntriesOnDate(at(2026, 5, 12)), 0);
    QCOMPARE(owned(store->GetAllEntriesOnDate(at(2026, 5, 12, 14, 30))).size(), 1);
}

void tst_DatabaseManager::entryListsFilterAndSort_data()
{
    // Sample: Coffee (Drinks, Jan 10 08:00, 3), Bread (Food, Jan 10 08:00, 2),
    // Tea (Drinks, Feb 5, 1.5), Cake (Food, Mar 1, 5), Juice (Drinks, Mar 20, 4).
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QStringList>("items");
    QTest::newRow("all, newest first") << "GetAllEntries" << QStringList { "Juice", "Cake", "Tea", "Coffee", "Bread" };
    QTest::newRow("all, cheapest first") << "GetAllEntriesOrderByPrice"
                                         << QStringList { "Tea", "Bread", "Coffee", "Juice", "Cake" };
    QTest::newRow("category, newest first") << "GetAllEntriesOfCategory" << QStringList { "Juice", "Tea", "Coffee" };
    QTest::newRow("category, cheapest first")
        << "GetAllEntriesOfCategoryOrderByPrice" << QStringList { "Tea", "Coffee", "Juice" };
    QTest::newRow("on date, cheapest first") << "GetAllEntriesOnDateOrderByPrice" << QStringList { "Bread", "Coffee" };
    QTest::newRow("category on date") << "GetAllEntriesOfCategoryOnDate" << QStringList { "Coffee" };
    QTest::newRow("category on date, by price")
        << "GetAllEntriesOfCategoryOnDateOrderByPrice" << QStringList { "Coffee" };
    QTest::newRow("period, newest first") << "GetAllEntriesBetweenDates" << QStringList { "Cake", "Tea" };
    QTest::newRow("period, cheapest first") << "GetAllEntriesBetweenDatesOrderByPrice" << QStringList { "Tea", "Cake" };
    QTest::newRow("category in period") << "GetAllEntriesOfCategoryBetweenDates" << QStringList { "Juice", "Tea" };
    QTest::newRow("category in period, by price")
        << "GetAllEntriesOfCategoryBetweenDatesOrderByPrice" << QStringList { "Tea", "Juice" };
}

void tst_DatabaseManager::entryListsFilterAndSort()
{
    QFETCH(QString, operation);
    QFETCH(QStringList, items);
    auto store = startStore();
    addSampleEntries(*store);

    const QString drinks = QStringLiteral("Drinks");
    const QDateTime day = at(2026, 1, 10, 8, 0);
    const QDateTime from = at(2026, 2, 1);
    const QDateTime to = at(2026, 3, 1, 18, 30);
    const QDateTime toLater = at(2026, 3, 31);
    const QHash<QString, std::function<QList<Entry *>()>> operations = {
        { "GetAllEntries", [&] { return store->GetAllEntries(); } },
        { "GetAllEntriesOrderByPrice", [&] { return store->GetAllEntriesOrderByPrice(); } },
        { "GetAllEntriesOfCategory", [&] { return store->GetAllEntriesOfCategory(drinks); } },
        { "GetAllEntriesOfCategoryOrderByPrice", [&] { return store->GetAllEntriesOfCategoryOrderByPrice(drinks); } },
        { "GetAllEntriesOnDateOrderByPrice", [&] { return store->GetAllEntriesOnDateOrderByPrice(day); } },
        { "GetAllEntriesOfCategoryOnDate", [&] { return store->GetAllEntriesOfCategoryOnDate(drinks, day); } },
        { "GetAllEntriesOfCategoryOnDateOrderByPrice",
          [&] { return store->GetAllEntriesOfCategoryOnDateOrderByPrice(drinks, day); } },
        { "GetAllEntriesBetweenDates", [&] { return store->GetAllEntriesBetweenDates(from, to); } },
        { "GetAllEntriesBetweenDatesOrderByPrice",
          [&] { return store->GetAllEntriesBetweenDatesOrderByPrice(from, to); } },
        { "GetAllEntriesOfCategoryBetweenDates",
          [&] { return store->GetAllEntriesOfCategoryBetweenDates(drinks, from, toLater); } },
        { "GetAllEntriesOfCategoryBetweenDatesOrderByPrice",
          [&] { return store->GetAllEntriesOfCategoryBetweenDatesOrderByPrice(drinks, from, toLater); } },
    };
    QVERIFY(operations.contains(operation));
    const auto entries = owned(operations.value(operation)());
    QCOMPARE(itemNames(entries), items);
}

void tst_DatabaseManager::countsFollowTheirFilters_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("expected");
    QTest::newRow("all entries") << "GetTotalNumberOfEntries" << 5;
    QTest::newRow("entries of a category") << "GetNumberOfEntriesOfCategory" << 3;
    QTest::newRow("entries on a date-time") << "GetNumberOfEntriesOnDate" << 2;
    QTest::newRow("entries in a period") << "GetNumberOfEntriesBetweenDates" << 2;
    QTest::newRow("entries of a category on a date-time") << "GetNumberOfEntriesOfCategoryOnDate" << 1;
    QTest::newRow("entries of a category in a period") << "GetNumberOfEntriesOfCategoryBetweenDate" << 1;
    QTest::newRow("categories") << "GetNumberOfCategories" << 37;
    QTest::newRow("modes") << "GetNumberOfModes" << 3;
    QTest::newRow("items") << "GetTotalNumberOfItems" << 5;
    QTest::newRow("items of a category") << "GetTotalNumberOfItemsOfCategory" << 3;
    QTest::newRow("places") << "GetNumberOfHistoricLocations" << 0;
}

void tst_DatabaseManager::countsFollowTheirFilters()
{
    QFETCH(QString, operation);
    QFETCH(int, expected);
    auto store = startStore();
    addSampleEntries(*store);

    const QString drinks = QStringLiteral("Drinks");
    const QDateTime day = at(2026, 1, 10, 8, 0);
    const QDateTime from = at(2026, 2, 1);
    const QDateTime to = at(2026, 3, 1, 18, 30);
    const QHash<QString, std::function<int()>> operations = {
        { "GetTotalNumberOfEntries", [&] { return store->GetTotalNumberOfEntries(); } },
        { "GetNumberOfEntriesOfCategory", [&] { return store->GetNumberOfEntriesOfCategory(drinks); } },
        { "GetNumberOfEntriesOnDate", [&] { return store->GetNumberOfEntriesOnDate(day); } },
        { "GetNumberOfEntriesBetweenDates", [&] { return store->GetNumberOfEntriesBetweenDates(from, to); } },
        { "GetNumberOfEntriesOfCategoryOnDate",
          [&] { return store->GetNumberOfEntriesOfCategoryOnDate(drinks, day); } },
        { "GetNumberOfEntriesOfCategoryBetweenDate",
          [&] { return store->GetNumberOfEntriesOfCategoryBetweenDate(drinks, from, to); } },
        { "GetNumberOfCategories", [&] { return store->GetNumberOfCategories(); } },
        { "GetNumberOfModes", [&] { return store->GetNumberOfModes(); } },
        { "GetTotalNumberOfItems", [&] { return store->GetTotalNumberOfItems(); } },
        { "GetTotalNumberOfItemsOfCategory", [&] { return store->GetTotalNumberOfItemsOfCategory(drinks); } },
        { "GetNumberOfHistoricLocations", [&] { return store->GetNumberOfHistoricLocations(); } },
    };
    QVERIFY(operations.contains(operation));
    QCOMPARE(operations.value(operation)(), expected);
}

void tst_DatabaseManager::dateBoundsAreTheOldestAndNewestStoredDates()
{
    auto store = startStore();
    addSampleEntries(*store);
    QCOMPARE(store->GetDateOfFirstEntry(), at(2026, 1, 10, 8, 0));
    QCOMPARE(store->GetDateOfLastEntry(), at(2026, 3, 20, 9, 15));
    QCOMPARE(store->GetDateOfFirstEntryOfCategory(QStringLiteral("Food")), at(2026, 1, 10, 8, 0));
    QCOMPARE(store->GetDateOfLastEntryOfCategory(QStringLiteral("Food")), at(2026, 3, 1, 18, 30));
    QVERIFY(store->GetDateOfLastEntryOfCategory(QStringLiteral("Rent")).isNull());
}

void tst_DatabaseManager::topNItemsAreTheLeastUsedOnesInAscendingOrder()
{
    auto store = startStore();
    const QList<QPair<QString, int>> uses = { { QStringLiteral("Often"), 5 },
                                              { QStringLiteral("Once"), 1 },
                                              { QStringLiteral("Sometimes"), 3 } };
    for (const auto &use : uses) {
        for (int i = 0; i < use.second; ++i) {
            Entry entry = makeEntry(at(2026, 4, 1 + i), use.first, QStringLiteral("Food"), 1.0f, QStringLiteral("Market"));
            QVERIFY(store->AddEntry(&entry));
        }
    }
    const auto top = owned(store->GetTopNFrequentlyUsedItems(2));
    QCOMPARE(itemNames(top), QStringList({ QStringLiteral("Once"), QStringLiteral("Sometimes") }));
    QCOMPARE(top[0]->UseFrequency, 1);
    QCOMPARE(top[1]->UseFrequency, 3);
    const auto ofFood = owned(store->GetTopNFrequentlyUsedItemsOfCategory(1, QStringLiteral("Food")));
    QCOMPARE(itemNames(ofFood), QStringList { QStringLiteral("Once") });
    QVERIFY(owned(store->GetTopNFrequentlyUsedItemsOfCategory(3, QStringLiteral("Drinks"))).isEmpty());
}

void tst_DatabaseManager::topNLimitsFollowSqlite_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("expected");
    QTest::newRow("zero gives nothing") << 0 << 0;
    QTest::newRow("negative gives every item") << -1 << 3;
    QTest::newRow("more than there are gives every item") << 10 << 3;
}

void tst_DatabaseManager::topNLimitsFollowSqlite()
{
    QFETCH(int, limit);
    QFETCH(int, expected);
    auto store = startStore();
    for (const QString &name : { QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C") }) {
        Items item = makeItem(name, QStringLiteral("Food"), 1.0f);
        QVERIFY(store->AddItem(&item));
    }
    QCOMPARE(owned(store->GetTopNFrequentlyUsedItems(limit)).size(), expected);
    QCOMPARE(owned(store->GetTopNFrequentlyUsedItemsOfCategory(limit, QStringLiteral("Food"))).size(), expected);
}

void tst_DatabaseManager::itemListsFilterByCategory()
{
    auto store = startStore();
    addSampleEntries(*store);
    const auto food = owned(store->GetItemsOfParticularCategory(QStringLiteral("Food")));
    QCOMPARE(itemNames(food), QStringList({ QStringLiteral("Bread"), QStringLiteral("Cake") }));
    QCOMPARE(food[1]->CategoryID, 1);
    QCOMPARE(food[1]->LastPrice, 5.0f);
    QVERIFY(owned(store->GetItemsOfParticularCategory(QStringLiteral("Rent"))).isEmpty());
    QCOMPARE(store->GetTotalNumberOfItemsOfCategory(QStringLiteral("Food")), 2);
}

void tst_DatabaseManager::distinctCategoriesOfEntriesIncludeRenamedOnesAndSkipUnusedOnes()
{
    auto store = startStore();
    addSampleEntries(*store);
    QVERIFY(store->EditCategory(QStringLiteral("Drinks"), QStringLiteral("Beverages")));

    QStringList names = store->GetListOfAllDistinctCategoriesOfAllEntries();
    names.sort();
    QCOMPARE(names, QStringList({ QStringLiteral("Drinks"), QStringLiteral("Food") }));
}

void tst_DatabaseManager::distinctDatesTellApartTwoTimesOfTheSameDay()
{
    auto store = startStore();
    Entry morning = makeEntry(at(2026, 4, 1, 8), QStringLiteral("Coffee"), QStringLiteral("Drinks"), 2.0f, QStringLiteral("Market"));
    Entry evening = makeEntry(at(2026, 4, 1, 20), QStringLiteral("Wine"), QStringLiteral("Drinks"), 9.0f, QStringLiteral("Market"));
    Entry again = makeEntry(at(2026, 4, 1, 8), QStringLiteral("Tea"), QStringLiteral("Drinks"), 1.0f, QStringLiteral("Market"));
    Entry other = makeEntry(at(2026, 4, 2), QStringLiteral("Bread"), QStringLiteral("Food"), 1.0f, QStringLiteral("Market"));
    for (Entry *entry : { &morning, &evening, &again, &other })
        QVERIFY(store->AddEntry(entry));

    QCOMPARE(store->GetAllDistinctDatesOfEntriesOfCategory(QStringLiteral("Drinks")),
             QList<QDateTime>({ at(2026, 4, 1, 20), at(2026, 4, 1, 8) }));
}

void tst_DatabaseManager::entriesOfEqualPriceKeepTheirStoredOrder()
{
    auto store = startStore();
    const QStringList names = { QStringLiteral("First"), QStringLiteral("Second"), QStringLiteral("Third") };
    for (int i = 0; i < names.size(); ++i) {
        Entry entry = makeEntry(at(2026, 4, 1 + i), names.at(i), QStringLiteral("Food"), 2.0f, QStringLiteral("Market"));
        QVERIFY(store->AddEntry(&entry));
    }
    Entry cheap = makeEntry(at(2026, 4, 9), QStringLiteral("Cheap"), QStringLiteral("Food"), 1.0f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&cheap));

    const auto byPrice = owned(store->GetAllEntriesOrderByPrice());
    QCOMPARE(itemNames(byPrice),
             QStringList({ QStringLiteral("Cheap"), QStringLiteral("First"), QStringLiteral("Second"),
                           QStringLiteral("Third") }));
}

void tst_DatabaseManager::datesStoredInOtherIsoFormsReadBackAsTheGeneralParserReadsThem_data()
{
    QTest::addColumn<QString>("stored");
    QTest::newRow("the file's own form") << QStringLiteral("2026-11-15T08:30:05");
    QTest::newRow("with milliseconds") << QStringLiteral("2026-11-15T08:30:05.250");
    QTest::newRow("midnight as 24:00") << QStringLiteral("2026-11-14T24:00:00");
    QTest::newRow("a month that does not exist") << QStringLiteral("2026-13-15T08:30:05");
    QTest::newRow("a leap day") << QStringLiteral("2028-02-29T23:59:59");
}

void tst_DatabaseManager::datesStoredInOtherIsoFormsReadBackAsTheGeneralParserReadsThem()
{
    QFETCH(QString, stored);
    auto store = startStore();
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.exec(QStringLiteral("INSERT INTO Entry (ItemName,CategoryName,CategoryID,TransactDateTime,Price,"
                                        "LocationText,EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,ItemID) "
                                        "VALUES ('Tea','Drinks',2,'%1',1.5,'Home','false',0,103.0,1.3,0)")
                             .arg(stored)));
    }
    const auto entries = owned(store->GetAllEntries());
    QCOMPARE(entries.size(), 1);
    const QDateTime expected = QVariant(stored).toDateTime();
    QCOMPARE(entries[0]->TransactDateTime.isValid(), expected.isValid());
    if (expected.isValid())
        QCOMPARE(entries[0]->TransactDateTime, expected);
}

void tst_DatabaseManager::entryListsAreReadOnTheSqliteHandleOnlyWhereThatIsSafe()
{
    // Debian's Qt runs its driver on the system's SQLite, which Ledgerly
    // links too; the variable forces every list through Qt's driver, and
    // this very file runs a second time under ctest with it set.
    auto store = startStore();
    QCOMPARE(store->usesSqliteHandle(), !qEnvironmentVariableIsSet("LEDGERLY_NO_SQLITE_HANDLE"));
    addSampleEntries(*store);
    QCOMPARE(itemNames(owned(store->GetAllEntries())),
             QStringList({ QStringLiteral("Juice"), QStringLiteral("Cake"), QStringLiteral("Tea"),
                           QStringLiteral("Coffee"), QStringLiteral("Bread") }));
}

namespace {

// Overwrites the last leaf page of a table's tree with garbage: rows in
// the earlier leaves still read, and a scan fails once it reaches that one.
bool damageLastLeafOf(const QString &fileName, const QString &table)
{
    int page = 0;
    int pageSize = 0;
    {
        RawDatabase raw(fileName);
        page =
            raw.scalar(
                   QStringLiteral("SELECT max(pageno) FROM dbstat WHERE name = '%1' AND pagetype = 'leaf'").arg(table))
                .toInt();
        pageSize = raw.scalar(QStringLiteral("PRAGMA page_size")).toInt();
    }
    QFile file(fileName);
    if (page < 2 || pageSize <= 0 || !file.open(QIODevice::ReadWrite) || !file.seek(qint64(page - 1) * pageSize))
        return false;
    return file.write(QByteArray(pageSize, '\xff')) == pageSize;
}

} // namespace

void tst_DatabaseManager::visitingEntriesHandsOverTheListsRowsFieldForFieldInOrder()
{
    auto store = startStore();
    addSampleEntries(*store);
    const QString drinks = QStringLiteral("Drinks");
    const QDateTime from = at(2026, 2, 1);
    const QDateTime to = at(2026, 3, 31);

    const QList<std::pair<EntryFilter, QStringList>> cases = {
        { EntryFilter(), { "Juice", "Cake", "Tea", "Coffee", "Bread" } },
        { EntryFilter().between(from, to), { "Juice", "Cake", "Tea" } },
        { EntryFilter::ofCategory(drinks).between(from, to), { "Juice", "Tea" } },
    };
    for (const auto &[filter, items] : cases) {
        const auto list = owned(store->entryList(filter));
        QCOMPARE(itemNames(list), items);
        QList<Entry> visited;
        QVERIFY(store->visitEntries(filter, [&](const Entry &entry) { visited.append(entry); }));
        QCOMPARE(visited.size(), list.size());
        for (int i = 0; i < visited.size(); ++i) {
            const Entry &seen = visited.at(i);
            const Entry *listed = list.list().at(i);
            QCOMPARE(seen.SNo, listed->SNo);
            QCOMPARE(seen.ItemName, listed->ItemName);
            QCOMPARE(seen.CategoryName, listed->CategoryName);
            QCOMPARE(seen.CategoryID, listed->CategoryID);
            QCOMPARE(seen.TransactDateTime, listed->TransactDateTime);
            QCOMPARE(seen.Price, listed->Price);
            QCOMPARE(seen.LocationText, listed->LocationText);
            QCOMPARE(seen.EnableGeoLoc, listed->EnableGeoLoc);
            QCOMPARE(seen.GeoLocID, listed->GeoLocID);
            QCOMPARE(seen.GeoLocLongit, listed->GeoLocLongit);
            QCOMPARE(seen.GeoLocLatit, listed->GeoLocLatit);
            QCOMPARE(seen.ItemID, listed->ItemID);
        }
    }
    // No row, nothing handed over, and the read itself went well.
    int calls = 0;
    QVERIFY(store->visitEntries(EntryFilter::ofCategory(QStringLiteral("Nothing")), [&](const Entry &) { ++calls; }));
    QCOMPARE(calls, 0);
}

void tst_DatabaseManager::aListCutShortByADamagedFileIsEmpty()
{
    {
        auto store = startStore();
        RawDatabase raw(home->databasePath());
        // Enough rows for several leaf pages each.
        QVERIFY(
            raw.exec(QStringLiteral("INSERT INTO Items (ItemName,CategoryName,CategoryID,LastPrice,UseFrequency) "
                                    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000) "
                                    "SELECT printf('Item %04d %s', i, hex(zeroblob(20))), 'Food', 1, 1.5, 1 FROM n")));
        QVERIFY(raw.exec(QStringLiteral(
            "INSERT INTO Entry (ItemName,CategoryName,CategoryID,TransactDateTime,Price,LocationText,EnableGeoLoc,"
            "GeoLocID,GeoLocLongit,GeoLocLatit,ItemID) "
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000) "
            "SELECT printf('Entry %04d', i), 'Food', 1, '2026-01-01T12:00:00', 2.5, 'Market', 'false', 0, 103.0, "
            "1.3, i FROM n")));
        QCOMPARE(owned(store->GetAllItems()).size(), 2000);
        QCOMPARE(owned(store->GetAllEntries()).size(), 2000);
    }
    QVERIFY(damageLastLeafOf(home->databasePath(), QStringLiteral("Items")));
    QVERIFY(damageLastLeafOf(home->databasePath(), QStringLiteral("Entry")));

    {
        // A plain scan gets the first rows, then fails: the damage is part-way.
        RawDatabase raw(home->databasePath());
        const int itemsRead = int(raw.rows(QStringLiteral("SELECT SNo, ItemName FROM Items")).size());
        QVERIFY2(raw.lastError().contains(QStringLiteral("malformed")), qPrintable(raw.lastError()));
        QVERIFY2(itemsRead > 0 && itemsRead < 2000, qPrintable(QString::number(itemsRead)));
        const int entriesRead = int(raw.rows(QStringLiteral("SELECT SNo, ItemName FROM Entry")).size());
        QVERIFY2(entriesRead > 0 && entriesRead < 2000, qPrintable(QString::number(entriesRead)));
    }

    auto store = startStore();
    QVERIFY(store->isUsable());
    QCOMPARE(owned(store->GetAllItems()).size(), 0);
    QCOMPARE(owned(store->GetItemsOfParticularCategory(QStringLiteral("Food"))).size(), 0);
    QCOMPARE(owned(store->GetAllEntries()).size(), 0);
    QCOMPARE(owned(store->GetAllEntriesOrderByPrice()).size(), 0);
    QCOMPARE(owned(store->GetAllEntriesOfCategory(QStringLiteral("Food"))).size(), 0);
    // A visit of the rows says it stopped short, after the rows before the
    // damage.
    int visited = 0;
    QVERIFY(!store->visitEntries(EntryFilter(), [&](const Entry &) { ++visited; }));
    QVERIFY2(visited < 2000, qPrintable(QString::number(visited)));
    int lines = 0;
    QVERIFY(!store->visitEntryLines(EntryFilter(), [&](const EntryLine &) { ++lines; }));
    QCOMPARE(lines, visited);
    QCOMPARE(store->GetListOfAllDistinctCategoriesOfAllEntries(), QList<QString>());
    QCOMPARE(store->GetAllDistinctDatesOfEntriesOfCategory(QStringLiteral("Food")), QList<QDateTime>());
    // The lists of the tables left whole still read.
    QCOMPARE(owned(store->GetAllCategories()).size(), defaultCategories.size());
}

void tst_DatabaseManager::spendingPerCategoryIsWhatEachCategorysOwnListsAddUpTo()
{
    auto store = startStore();
    QVERIFY(writeEntriesWithTiedDateTimes(home->databasePath()));

    const QList<QString> names = store->GetListOfAllDistinctCategoriesOfAllEntries();
    QCOMPARE(names.size(), 16);
    const auto spending = owned(store->GetSpendingPerCategory());
    QCOMPARE(spending.size(), names.size());
    QHash<QString, const CategorySpending *> byName;
    for (const CategorySpending *category : spending)
        byName.insert(category->CategoryName, category);

    int tiesThatMatter = 0;
    for (const QString &name : names) {
        const CategorySpending *category = byName.value(name);
        QVERIFY2(category, qPrintable(name));
        // The number of distinct stored date-times, as the category's own
        // list of them has it: the two forms of one moment count twice.
        QCOMPARE(category->NumberOfDateTimes, int(store->GetAllDistinctDatesOfEntriesOfCategory(name).size()));
        // The sum of the category's own list, added in its order.
        const auto entries = owned(store->GetAllEntriesOfCategory(name));
        float listed = 0;
        for (const Entry *entry : entries)
            listed += entry->Price;
        QCOMPARE(bitsOf(category->Total), bitsOf(listed));

        // The data would catch a sum that took the entries of one date-time
        // in another order: added with each run of equal date-times
        // reversed, the sum differs for some category.
        QList<const Entry *> reordered;
        for (qsizetype begin = 0; begin < entries.size();) {
            qsizetype end = begin + 1;
            while (end < entries.size() && entries[end]->TransactDateTime == entries[begin]->TransactDateTime)
                ++end;
            for (qsizetype i = end; i > begin; --i)
                reordered.append(entries[i - 1]);
            begin = end;
        }
        float runsReversed = 0;
        for (const Entry *entry : std::as_const(reordered))
            runsReversed += entry->Price;
        if (bitsOf(runsReversed) != bitsOf(listed))
            ++tiesThatMatter;
    }
    QVERIFY(tiesThatMatter > 0);
    QCOMPARE(byName.value(QStringLiteral("Drinks"))->NumberOfDateTimes, 2);
}

void tst_DatabaseManager::spendingPerCategoryComesInTheOrderTheNewestFirstListMeetsTheNames()
{
    // Fifteen categories over twenty date-times: many categories share
    // their newest date-time, and which of them comes first is decided by
    // the order of the rows at it.
    auto store = startStore();
    QVERIFY(writeEntriesWithTiedDateTimes(home->databasePath()));
    const auto namesAsListed = [&store] {
        QStringList met;
        for (const Entry *entry : owned(store->GetAllEntries())) {
            if (!met.contains(entry->CategoryName))
                met.append(entry->CategoryName);
        }
        return met;
    };
    const auto namesOfSpending = [&store] {
        QStringList names;
        for (const CategorySpending *category : owned(store->GetSpendingPerCategory()))
            names.append(category->CategoryName);
        return names;
    };

    QStringList met = namesAsListed();
    QCOMPARE(met.size(), 16);
    QCOMPARE(namesOfSpending(), met);

    // And so once the category met last gets the newest entry of all, and
    // the one met first loses its entries at its newest date-time.
    const QString last = met.constLast();
    const QString first = met.constFirst();
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.isOpen());
        QVERIFY(raw.insertEntry(QStringLiteral("Late"), last, QDateTime(QDate(2026, 12, 1), QTime(9, 0)), 2.0) > 0);
        QVERIFY(raw.exec(QStringLiteral("DELETE FROM Entry WHERE CategoryName = '%1' AND TransactDateTime = (SELECT "
                                        "max(TransactDateTime) FROM Entry WHERE CategoryName = '%1')")
                             .arg(first)));
    }
    met = namesAsListed();
    QCOMPARE(met.constFirst(), last);
    QVERIFY(met.indexOf(first) > 0);
    QCOMPARE(namesOfSpending(), met);
}

void tst_DatabaseManager::datesAreFilteredAsSqliteComparesTheStoredValues()
{
    // Date-times as other programs may have stored them: numbers (the
    // column's affinity keeps a numeric text as a number), texts of other
    // forms, and the file's own. Whatever the store filters by, SQLite's own
    // comparison of the column with the bounds' texts must agree.
    auto store = startStore();
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.isOpen());
        const QStringList stored = { "'2026-11-15T10:00:00'", "20261115", "'20261115'", "1.5", "''",
                                     "'2026-11-14T24:00:00'", "'2026-11-15'", "'2026-11-15T10:00:00.500'",
                                     "'abc'", "'2026-11-16T00:00:00'", "'2026-11-14T23:59:59'" };
        for (const QString &value : stored) {
            QVERIFY2(raw.exec(QStringLiteral("INSERT INTO Entry (ItemName,CategoryName,CategoryID,TransactDateTime,"
                                             "Price,LocationText,EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,"
                                             "ItemID) VALUES ('Item','Food',1,%1,1.0,'Here','false',0,0,0,0)")
                                  .arg(value)),
                     qPrintable(raw.lastError()));
        }
    }
    const auto numbers = [](const QList<Entry *> &entries) {
        QList<int> sorted;
        for (const Entry *entry : entries)
            sorted.append(entry->SNo);
        std::sort(sorted.begin(), sorted.end());
        qDeleteAll(entries);
        return sorted;
    };
    const auto sqliteSays = [this](const QString &condition) {
        RawDatabase raw(home->databasePath());
        QList<int> sorted;
        for (const QVariantList &row : raw.rows(QStringLiteral("SELECT SNo FROM Entry WHERE ") + condition))
            sorted.append(row.at(0).toInt());
        std::sort(sorted.begin(), sorted.end());
        return sorted;
    };

    const QList<QPair<QDateTime, QDateTime>> ranges = {
        { QDateTime(QDate(2026, 11, 15), QTime(0, 0)), QDateTime(QDate(2026, 11, 15), QTime(23, 59, 59)) },
        { QDateTime(QDate(2026, 11, 14), QTime(0, 0)), QDateTime(QDate(2026, 11, 16), QTime(0, 0)) },
        { QDateTime(QDate(1, 1, 1), QTime(0, 0)), QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59)) },
        { QDateTime(QDate(2026, 11, 15), QTime(10, 0)), QDateTime(QDate(2026, 11, 15), QTime(10, 0)) },
    };
    for (const auto &[from, to] : ranges) {
        const QString condition = QStringLiteral("TransactDateTime >= '%1' AND TransactDateTime <= '%2'")
                                      .arg(StorageForm::dateTime(from), StorageForm::dateTime(to));
        const QList<int> expected = sqliteSays(condition);
        QCOMPARE(numbers(store->GetAllEntriesBetweenDates(from, to)), expected);
        QCOMPARE(store->GetNumberOfEntriesBetweenDates(from, to), int(expected.size()));
    }
    // The whole range holds the six texts that begin with a year (the
    // numeric text became a number when stored), no number, and neither
    // the empty text nor "abc".
    QCOMPARE(sqliteSays(QStringLiteral("TransactDateTime >= '0001-01-01T00:00:00' AND TransactDateTime <= "
                                       "'9999-12-31T23:59:59'"))
                 .size(),
             6);
    const QDateTime at(QDate(2026, 11, 15), QTime(10, 0));
    QCOMPARE(numbers(store->GetAllEntriesOnDate(at)),
             sqliteSays(QStringLiteral("TransactDateTime = '%1'").arg(StorageForm::dateTime(at))));
}

namespace {

// Adds entries whose TransactDateTime is each of these SQL literals, in
// this order.
bool addEntriesStoredAs(const QString &fileName, const QStringList &literals)
{
    RawDatabase raw(fileName);
    for (const QString &literal : literals) {
        if (!raw.exec(QStringLiteral("INSERT INTO Entry (ItemName,CategoryName,CategoryID,TransactDateTime,Price,"
                                     "LocationText,EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,ItemID) VALUES "
                                     "('Item','Food',1,%1,1.25,'Here','false',0,0,0,0)")
                          .arg(literal)))
            return false;
    }
    return true;
}

// Each line of the list beside its record: the same rows, the same texts,
// price and date-time, and the day of that date-time.
void compareLinesWithRecords(DatabaseManager &store, const EntryFilter &filter)
{
    QList<Entry> records;
    QVERIFY(store.visitEntries(filter, [&](const Entry &entry) { records.append(entry); }));
    QList<EntryLine> lines;
    QVERIFY(store.visitEntryLines(filter, [&](const EntryLine &line) { lines.append(line); }));
    QCOMPARE(lines.size(), records.size());
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const EntryLine &line = lines.at(i);
        const Entry &record = records.at(i);
        QCOMPARE(line.ItemName, record.ItemName);
        QCOMPARE(line.CategoryName, record.CategoryName);
        QCOMPARE(line.LocationText, record.LocationText);
        QCOMPARE(line.Price, record.Price);
        const QDateTime when = line.dateTime();
        QCOMPARE(when.isValid(), record.TransactDateTime.isValid());
        QCOMPARE(when, record.TransactDateTime);
        QCOMPARE(when.timeSpec(), record.TransactDateTime.timeSpec());
        QCOMPARE(when.toString(Qt::TextDate), record.TransactDateTime.toString(Qt::TextDate));
        QCOMPARE(line.day(), record.TransactDateTime.date());
    }
}

} // namespace

void tst_DatabaseManager::entryLinesAgreeWithTheRecordsWhateverTheStoredForm()
{
    auto store = startStore();
    QVERIFY(addEntriesStoredAs(home->databasePath(),
                               { "'2026-11-15T10:00:00'", "'2026-11-14T24:00:00'", "'2026-11-15T10:00:00.500'",
                                 "'2026-11-15T10:00:00Z'", "'2026-11-15T10:00:00+05:30'", "'2026-11-15'",
                                 "'2026-02-30T10:00:00'", "'2026-11-15T25:00:00'", "'abc'", "''", "20261115",
                                 "1.5", "'２０２６-11-15T10:00:00'", "'2026-11-15 10:00:00'" }));
    compareLinesWithRecords(*store, EntryFilter());
    compareLinesWithRecords(*store, EntryFilter::ofCategory(QStringLiteral("Food")));
    // The file's own form is kept as its date and time, any other form as
    // the date-time it reads as.
    QList<EntryLine> lines;
    QVERIFY(store->visitEntryLines(EntryFilter(), [&](const EntryLine &line) { lines.append(line); }));
    int ownForm = 0;
    for (const EntryLine &line : std::as_const(lines)) {
        if (line.storedDate.isValid()) {
            ++ownForm;
            QCOMPARE(line.storedDate, QDate(2026, 11, 15));
            QCOMPARE(line.storedTime, QTime(10, 0));
            QVERIFY(!line.other.isValid());
        }
    }
    QCOMPARE(ownForm, 1);
}

void tst_DatabaseManager::entryLinesKnowTheLocalDayAcrossChangesOfOffset_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QDate>("changeDay");
    // Summer time begins at 02:00 (Berlin), at midnight (Havana: the day's
    // midnight does not exist), and ends at midnight (Santiago: the hour
    // before midnight comes twice).
    QTest::newRow("Berlin") << QByteArray("Europe/Berlin") << QDate(2026, 3, 29);
    QTest::newRow("Havana") << QByteArray("America/Havana") << QDate(2026, 3, 8);
    QTest::newRow("Santiago") << QByteArray("America/Santiago") << QDate(2026, 4, 5);
    QTest::newRow("Berlin, autumn") << QByteArray("Europe/Berlin") << QDate(2026, 10, 25);
    // Samoa moved across the date line: 30 December 2011 never began there.
    QTest::newRow("Apia") << QByteArray("Pacific/Apia") << QDate(2011, 12, 30);
}

void tst_DatabaseManager::entryLinesKnowTheLocalDayAcrossChangesOfOffset()
{
    QFETCH(QByteArray, zone);
    QFETCH(QDate, changeDay);
    // The zones come with tzdata, which the set-up installs.
    QVERIFY2(QFile::exists(QStringLiteral("/usr/share/zoneinfo/") + QString::fromLatin1(zone)), zone.constData());
    const QByteArray zoneBefore = qgetenv("TZ");
    const bool hadZone = qEnvironmentVariableIsSet("TZ");
    qputenv("TZ", zone);
    const auto restore = qScopeGuard([&] {
        if (hadZone)
            qputenv("TZ", zoneBefore);
        else
            qunsetenv("TZ");
    });

    // Every quarter of an hour of the day before, the day of the change and
    // the day after, the hours around midnight and the change above all.
    auto store = startStore();
    QStringList literals;
    for (int day = -1; day <= 1; ++day) {
        for (int minutes = 0; minutes < 24 * 60; minutes += 15) {
            const QDate date = changeDay.addDays(day);
            literals.append(QStringLiteral("'%1T%2:%3:00'")
                                .arg(date.toString(Qt::ISODate))
                                .arg(minutes / 60, 2, 10, QLatin1Char('0'))
                                .arg(minutes % 60, 2, 10, QLatin1Char('0')));
        }
    }
    QVERIFY(addEntriesStoredAs(home->databasePath(), literals));
    compareLinesWithRecords(*store, EntryFilter());
}

void tst_DatabaseManager::theContentVersionMovesWithEveryWriteAndOnlyThen()
{
    auto store = startStore();
    addSampleEntries(*store);
    const auto first = store->contentVersion();
    QVERIFY(first.has_value());

    // Reading changes nothing.
    owned(store->GetAllEntries());
    store->GetDateOfLastEntry();
    QCOMPARE(store->contentVersion(), first);

    // A write through the store.
    Entry entry = makeEntry(at(2026, 5, 1), QStringLiteral("Soup"), QStringLiteral("Food"), 4.0f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&entry));
    const auto second = store->contentVersion();
    QVERIFY(second.has_value());
    QVERIFY(second != first);
    QCOMPARE(store->contentVersion(), second);

    // A write through a table model on the store's connection.
    {
        std::unique_ptr<QSqlTableModel> model(store->createTableModel(QStringLiteral("Entry"), nullptr));
        QVERIFY(model);
        QVERIFY(model->setData(model->index(0, 1), QStringLiteral("Renamed")));
        QVERIFY(model->submitAll());
    }
    const auto third = store->contentVersion();
    QVERIFY(third != second);

    // A commit of another connection to the file.
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.insertEntry(QStringLiteral("Juice"), QStringLiteral("Drinks"), at(2026, 5, 2), 3.0) > 0);
    }
    const auto fourth = store->contentVersion();
    QVERIFY(fourth != third);
    QCOMPARE(store->contentVersion(), fourth);
}

// A file in trouble

void tst_DatabaseManager::aKilledWriterLeavesAWholeFileWithEveryConfirmedEntryOnce()
{
    startStore().reset(); // the file, with its tables and default rows

    const quint32 seed = QRandomGenerator::global()->generate();
    QRandomGenerator random(seed);
    int storedBefore = 0;
    for (int run = 0; run < 10; ++run) {
        const QString label = QStringLiteral("run%1").arg(run);
        QProcess writer;
        writer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        writer.start(QStringLiteral(LEDGERLY_ADD_ENTRIES_PROGRAM), { label });
        QVERIFY2(writer.waitForStarted(), qPrintable(writer.errorString()));

        // Killed once it has confirmed this many of its 1,000 entries, while
        // it is at work on the next ones, wherever in their statements it is.
        // That moment is what matters, not how far into the thousand it
        // falls, so the kill comes early enough to keep the test short.
        const int killAfter = int(random.bounded(1, 300));
        QByteArray output;
        while (output.count('\n') < killAfter && writer.state() == QProcess::Running) {
            if (writer.waitForReadyRead(30000))
                output += writer.readAllStandardOutput();
            else
                break;
        }
        writer.kill();
        QVERIFY(writer.waitForFinished(30000));
        QVERIFY2(writer.exitStatus() == QProcess::CrashExit,
                 qPrintable(QStringLiteral("run %1 (seed %2) was not killed").arg(run).arg(seed)));
        output += writer.readAllStandardOutput();
        // Only whole lines were confirmed.
        QStringList confirmed = QString::fromUtf8(output.left(output.lastIndexOf('\n'))).split(QLatin1Char('\n'));
        QVERIFY2(confirmed.size() >= killAfter,
                 qPrintable(QStringLiteral("run %1 (seed %2) confirmed %3").arg(run).arg(seed).arg(confirmed.size())));

        RawDatabase raw(home->databasePath());
        QCOMPARE(raw.scalar(QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
        QHash<QString, int> copies;
        for (const QVariantList &row : raw.rows(
                 QStringLiteral("SELECT ItemName, count(*) FROM Entry WHERE ItemName LIKE '%1 %' GROUP BY ItemName")
                     .arg(label)))
            copies.insert(row.at(0).toString(), row.at(1).toInt());
        for (const QString &name : std::as_const(confirmed))
            QVERIFY2(copies.value(name) == 1,
                     qPrintable(QStringLiteral("%1: %2 copies").arg(name).arg(copies.value(name))));
        // Beyond the confirmed ones, at most the entry whose confirmation the
        // kill cut off.
        const QString next = QStringLiteral("%1 %2").arg(label).arg(confirmed.size());
        for (auto it = copies.cbegin(); it != copies.cend(); ++it) {
            if (!confirmed.contains(it.key()))
                QVERIFY2(it.key() == next && it.value() == 1, qPrintable(it.key()));
        }
        // Each entry is written whole: its catalogue row with it, no row
        // of an entry that is not there.
        QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Items WHERE ItemName LIKE 'run%'")).toInt(),
                 raw.scalar(QStringLiteral("SELECT count(*) FROM Entry WHERE ItemName LIKE 'run%'")).toInt());
        QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Items WHERE ItemName NOT IN "
                                           "(SELECT ItemName FROM Entry)"))
                     .toInt(),
                 0);

        // The next start opens the file and reads and writes it.
        auto store = startStore();
        QVERIFY2(store->isUsable(), qPrintable(store->openError()));
        const int stored = store->GetTotalNumberOfEntries();
        QCOMPARE(stored, storedBefore + int(copies.size()));
        QCOMPARE(int(owned(store->GetAllEntries()).size()), stored);
        storedBefore = stored;
    }
    auto store = startStore();
    Entry after = makeEntry(at(2026, 6, 1), QStringLiteral("After"), QStringLiteral("Food"), 1.0f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&after));
}

void tst_DatabaseManager::aFullFileRefusesAnEntryWholeAndTakesItOnceThereIsRoom()
{
    auto store = startStore();
    addSampleEntries(*store);
    QVERIFY(limitDatabaseFile());
    const int filled = fillDatabaseFile(*store);
    QVERIFY(filled >= 0);
    RawDatabase raw(home->databasePath());
    const QStringList full = raw.dumpTables();

    // A new item would fit in the catalogue, but its entry does not fit:
    // neither is written.
    Entry entry = makeEntry(at(2026, 4, 2), QStringLiteral("Coffee beans"), QStringLiteral("Groceries"), 12.5f, QStringLiteral("Corner shop"), true, 10.5f, 20.25f);
    QVERIFY(!store->AddEntry(&entry));
    QCOMPARE(raw.dumpTables(), full);
    QCOMPARE(store->GetItemID(QStringLiteral("Coffee beans"), QStringLiteral("Groceries")), 0);

    QVERIFY(liftDatabaseFileLimit());
    QVERIFY(store->AddEntry(&entry));
    QCOMPARE(store->GetTotalNumberOfEntries(), 5 + filled + 1);
    const auto items = owned(store->GetItemsOfParticularCategory(QStringLiteral("Groceries")));
    QCOMPARE(items.size(), 1);
    QCOMPARE(items[0]->UseFrequency, 1);
    QCOMPARE(owned(store->GetAllHistoricLocation()).size(), 1);
}

void tst_DatabaseManager::aLockedFileFailsAnEntryAfterOneWaitAndLeavesNothingHalfWritten()
{
    auto store = startStore();
    addSampleEntries(*store);
    const int busyTimeout = connectionBusyTimeout();
    QCOMPARE(busyTimeout, 5000);
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();

    QVERIFY(raw.exec(QStringLiteral("BEGIN EXCLUSIVE")));
    Entry entry = makeEntry(at(2026, 4, 2), QStringLiteral("Coffee beans"), QStringLiteral("Groceries"), 12.5f, QStringLiteral("Corner shop"), true, 10.5f, 20.25f);
    QElapsedTimer adding;
    adding.start();
    QVERIFY(!store->AddEntry(&entry));
    // One wait for the whole entry, not one per statement.
    QVERIFY2(adding.elapsed() < busyTimeout + 1000, qPrintable(QString::number(adding.elapsed())));
    QVERIFY(raw.exec(QStringLiteral("ROLLBACK")));
    QCOMPARE(raw.dumpTables(), before);

    QVERIFY(store->AddEntry(&entry));
    QCOMPARE(store->GetTotalNumberOfEntries(), 6);
    QCOMPARE(store->GetItemID(QStringLiteral("Coffee beans"), QStringLiteral("Groceries")), 5 + 1);
}

void tst_DatabaseManager::anEntryAddedInsideACallersTransactionGoesWithIt()
{
    auto store = startStore();
    addSampleEntries(*store);
    RawDatabase raw(home->databasePath());
    const QStringList before = raw.dumpTables();
    QSqlDatabase connection = QSqlDatabase::database();

    QVERIFY(connection.transaction());
    Entry entry = makeEntry(at(2026, 4, 2), QStringLiteral("Coffee beans"), QStringLiteral("Groceries"), 12.5f, QStringLiteral("Market"));
    QVERIFY(store->AddEntry(&entry));
    QCOMPARE(store->GetTotalNumberOfEntries(), 6);
    QVERIFY(connection.rollback());
    QCOMPARE(raw.dumpTables(), before);

    QVERIFY(connection.transaction());
    QVERIFY(store->AddEntry(&entry));
    QVERIFY(connection.commit());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Entry")).toInt(), 6);
}

// The catalogue and the places at work

void tst_DatabaseManager::theCatalogueListsEachNameOnceTheMostUsedFirstWithItsMostUsedRow()
{
    auto store = startStore();
    QVERIFY(owned(store->GetItemCatalogue()).isEmpty());

    struct Bought
    {
        const char *item;
        const char *category;
        float price;
    };
    // Coffee: four times as a drink, last at 2.5, then once as food at 4;
    // coffee beans twice, last at 12; Cake once, at 3.
    const Bought bought[] = {
        { "Coffee", "Drinks", 2.0f }, { "Cake", "Food", 3.0f },
        { "Coffee", "Drinks", 3.0f }, { "coffee beans", "Groceries", 11.0f },
        { "Coffee", "Drinks", 2.0f }, { "Coffee", "Drinks", 2.5f },
        { "Coffee", "Food", 4.0f },   { "coffee beans", "Groceries", 12.0f },
    };
    int day = 1;
    for (const Bought &purchase : bought) {
        Entry entry = makeEntry(at(2026, 5, day++), QLatin1String(purchase.item), QLatin1String(purchase.category), purchase.price, QStringLiteral("Market"));
        QVERIFY(store->AddEntry(&entry));
    }

    const auto catalogue = owned(store->GetItemCatalogue());
    QCOMPARE(itemNames(catalogue),
             QStringList({ QStringLiteral("Coffee"), QStringLiteral("coffee beans"), QStringLiteral("Cake") }));
    // Uses summed over the name's rows; price and category of the most used.
    QCOMPARE(catalogue[0]->UseFrequency, 5);
    QCOMPARE(catalogue[0]->CategoryName, QStringLiteral("Drinks"));
    QCOMPARE(catalogue[0]->CategoryID, 2);
    QCOMPARE(catalogue[0]->LastPrice, 2.5f);
    QCOMPARE(catalogue[0]->SNo, store->GetItemID(QStringLiteral("Coffee"), QStringLiteral("Drinks")));
    QCOMPARE(catalogue[1]->UseFrequency, 2);
    QCOMPARE(catalogue[1]->CategoryName, QStringLiteral("Groceries"));
    QCOMPARE(catalogue[1]->LastPrice, 12.0f);
    QCOMPARE(catalogue[2]->UseFrequency, 1);
    QCOMPARE(catalogue[2]->CategoryName, QStringLiteral("Food"));
    QCOMPARE(catalogue[2]->CategoryID, 1);
    QCOMPARE(catalogue[2]->LastPrice, 3.0f);
    // The catalogue itself still has a row per name and category.
    QCOMPARE(store->GetTotalNumberOfItems(), 4);
}

void tst_DatabaseManager::catalogueNamesUsedEquallyOftenComeNewestFirst()
{
    auto store = startStore();
    const auto use = [&store](const char *name, const char *category, float price) {
        Items item = makeItem(QLatin1String(name), QLatin1String(category), price);
        return store->AddItem(&item);
    };
    // Rows 1 to 4 as they are first used; row 5 is Tea's second row.
    QVERIFY(use("Tea", "Drinks", 1.0f));
    QVERIFY(use("Milk", "Drinks", 1.0f));
    QVERIFY(use("Juice", "Drinks", 1.0f));
    QVERIFY(use("Water", "Drinks", 1.0f));
    QVERIFY(use("Tea", "Drinks", 1.1f));
    QVERIFY(use("Milk", "Drinks", 1.2f));
    QVERIFY(use("Milk", "Drinks", 1.3f));
    QVERIFY(use("Tea", "Food", 0.8f));

    // Tea and Milk are used three times each. Tea's newest row (5) is newer
    // than Milk's (2), although the row that speaks for Tea, the one used
    // most, is row 1. Water (row 4) and Juice (row 3) once each.
    const auto catalogue = owned(store->GetItemCatalogue());
    QCOMPARE(itemNames(catalogue),
             QStringList(
                 { QStringLiteral("Tea"), QStringLiteral("Milk"), QStringLiteral("Water"), QStringLiteral("Juice") }));
    QCOMPARE(catalogue[0]->UseFrequency, 3);
    QCOMPARE(catalogue[0]->SNo, 1);
    QCOMPARE(catalogue[0]->CategoryName, QStringLiteral("Drinks"));
    QCOMPARE(catalogue[0]->LastPrice, 1.1f);
    QCOMPARE(catalogue[1]->UseFrequency, 3);
    QCOMPARE(catalogue[1]->LastPrice, 1.3f);

    // Of two rows of a name used equally often, the newer speaks for it.
    QVERIFY(use("Water", "Food", 0.5f));
    const auto again = owned(store->GetItemCatalogue());
    QCOMPARE(itemNames(again).at(2), QStringLiteral("Water"));
    QCOMPARE(again[2]->SNo, 6);
    QCOMPARE(again[2]->CategoryName, QStringLiteral("Food"));
    QCOMPARE(again[2]->LastPrice, 0.5f);
}

void tst_DatabaseManager::spendingPerPlaceSumsTheEntriesOfEachPlaceTextLargestFirst()
{
    auto store = startStore();
    QVERIFY(owned(store->GetSpendingPerPlace()).isEmpty());
    const QList<Entry> entries = {
        makeEntry(at(2026, 3, 1, 18, 30), QStringLiteral("Bread"), QStringLiteral("Food"), 3.0f, QStringLiteral("Market")),
        makeEntry(at(2026, 2, 2, 9, 0), QStringLiteral("Ferry"), QStringLiteral("Others"), 10.0f, QStringLiteral("Harbour")),
        makeEntry(at(2026, 1, 10, 8, 0), QStringLiteral("Milk"), QStringLiteral("Food"), 2.5f, QStringLiteral("Market")),
        makeEntry(at(2026, 4, 4, 16, 0), QStringLiteral("Gum"), QStringLiteral("Food"), 0.5f, QString("")),
    };
    for (Entry entry : entries)
        QVERIFY(store->AddEntry(&entry));
    {
        // A row written by another program, without a place text at all.
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.insertEntry(QStringLiteral("Stamp"), QStringLiteral("Others"), at(2026, 1, 1, 12, 0), 1.0,
                                QString()) > 0);
        QVERIFY(raw.scalar(QStringLiteral("select count(*) from Entry where LocationText is null")).toInt() == 1);
    }

    const auto places = owned(store->GetSpendingPerPlace());
    QCOMPARE(places.size(), 3);
    QCOMPARE(places[0]->LocationText, QStringLiteral("Harbour"));
    QCOMPARE(places[0]->NumberOfEntries, 1);
    QCOMPARE(places[0]->Total, 10.0f);
    QCOMPARE(places[0]->Average, 10.0f);
    QCOMPARE(places[0]->LastVisit, at(2026, 2, 2, 9, 0));
    QCOMPARE(places[1]->LocationText, QStringLiteral("Market"));
    QCOMPARE(places[1]->NumberOfEntries, 2);
    QCOMPARE(places[1]->Total, 5.5f);
    QCOMPARE(places[1]->Average, 2.75f);
    QCOMPARE(places[1]->LastVisit, at(2026, 3, 1, 18, 30));
    // No place text and an empty one are the same place.
    QCOMPARE(places[2]->LocationText, QString());
    QCOMPARE(places[2]->NumberOfEntries, 2);
    QCOMPARE(places[2]->Total, 1.5f);
    QCOMPARE(places[2]->Average, 0.75f);
    QCOMPARE(places[2]->LastVisit, at(2026, 4, 4, 16, 0));
}

void tst_DatabaseManager::spendingPerRememberedPlaceCountsOnlyTheEntriesThatPointAtIt()
{
    auto store = startStore();
    const QList<Entry> entries = {
        makeEntry(at(2026, 2, 2), QStringLiteral("Ferry"), QStringLiteral("Others"), 4.0f, QStringLiteral("Harbour"), true, 103.85f, 1.28f),
        makeEntry(at(2026, 2, 3), QStringLiteral("Lunch"), QStringLiteral("Food"), 20.0f, QStringLiteral("Pune"), true, 73.85f, 18.52f),
        makeEntry(at(2026, 2, 4), QStringLiteral("Ferry"), QStringLiteral("Others"), 6.0f, QStringLiteral("Harbour"), true, 103.85f, 1.28f),
        // At the harbour by name only, without a geolocation.
        makeEntry(at(2026, 2, 5), QStringLiteral("Ice cream"), QStringLiteral("Food"), 100.0f, QStringLiteral("Harbour")),
    };
    for (Entry entry : entries)
        QVERIFY(store->AddEntry(&entry));
    // A remembered place that no entry points at.
    HistoricLocation unvisited = makePlace(QStringLiteral("Airport"), 103.99f, 1.36f);
    QVERIFY(store->AddHistoricLocation(&unvisited));

    const auto places = owned(store->GetSpendingPerRememberedPlace());
    QCOMPARE(places.size(), 2);
    QCOMPARE(places[0]->LocationName, QStringLiteral("Pune"));
    QCOMPARE(places[0]->SNo, 2);
    QCOMPARE(places[0]->LocationLongitude, 73.85f);
    QCOMPARE(places[0]->LocationLatitude, 18.52f);
    QCOMPARE(places[0]->NumberOfEntries, 1);
    QCOMPARE(places[0]->Total, 20.0f);
    QCOMPARE(places[1]->LocationName, QStringLiteral("Harbour"));
    QCOMPARE(places[1]->SNo, 1);
    QCOMPARE(places[1]->LocationLongitude, 103.85f);
    QCOMPARE(places[1]->LocationLatitude, 1.28f);
    QCOMPARE(places[1]->NumberOfEntries, 2);
    QCOMPARE(places[1]->Total, 10.0f);
}

QTEST_GUILESS_MAIN(tst_DatabaseManager)

#include "tst_databasemanager.moc"
