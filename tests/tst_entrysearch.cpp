// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "entryquery.h"
#include "entrysearch.h"
#include "migrations.h"

#include "describedfile.h"
#include "rawdatabase.h"
#include "sampleentries.h"
#include "temphome.h"

#include <QSqlRecord>
#include <QSqlTableModel>
#include <QTest>

#include <memory>

namespace {

QStringList itemsOf(const EntrySearch::Result &result)
{
    QStringList items;
    for (const Entry *entry : result.entries.list())
        items << entry->ItemName;
    return items;
}

SearchFilter withText(const QString &text)
{
    SearchFilter filter;
    filter.text = text;
    return filter;
}

} // namespace

class tst_EntrySearch : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void textIsFoundInItemPlaceOrCategoryWhateverItsCaseAndAccents_data();
    void textIsFoundInItemPlaceOrCategoryWhateverItsCaseAndAccents();
    void placeIsMatchedInThePlaceOnly();
    void categoryIsMatchedExactly();
    void aCategoryThatDoesNotExistFindsNothing();
    void bothEndDaysOfTheDateRangeAreIncluded();
    void equalMinimumAndMaximumFindAnAmountStoredAsAFloatToTheCent();
    void amountBoundsAreIncluded();
    void allGivenPartsMustHold();
    void anEmptyFilterFindsEveryEntry();
    void resultsAreNewestFirstAndTheLastAddedFirstOnTheSameDate();
    void countAndTotalAreThoseOfTheResults();
    void entriesOfAFileFromBeforeSearchingAreFound();
    void editsThroughTheEntryTableModelAreFoundByTheirNewTexts();
    void entriesWrittenByAnotherConnectionAreFoundAndDeletedOnesAreNot();
    void foldingDropsAccentsAndCase();
    void theIndexIsAskedForEveryRunOfThreeCharacters();
    void textsShorterThanThreeCharactersAreFoundToo();
    void theIndexHoldsTheFoldedTextsAndForgetsChangedAndDeletedOnes();
    void aRowTheIndexWronglyNamesIsNotFound();
    void quotesAndOperatorWordsInTheTextAreMatchedAsText();

private:
    void add(const QString &item, const QString &category, const QDateTime &when, float price,
             const QString &place = QStringLiteral("Somewhere"));

    std::unique_ptr<TempHome> home;
    std::unique_ptr<DatabaseManager> store;
};

void tst_EntrySearch::init()
{
    home = std::make_unique<TempHome>();
    store = std::make_unique<DatabaseManager>(nullptr);
    QVERIFY(store->isUsable());
}

void tst_EntrySearch::cleanup()
{
    store.reset();
    home.reset();
}

void tst_EntrySearch::add(const QString &item, const QString &category, const QDateTime &when, float price,
                          const QString &place)
{
    Entry entry = makeEntry(when, item, category, price, place);
    QVERIFY(store->AddEntry(&entry));
}

void tst_EntrySearch::textIsFoundInItemPlaceOrCategoryWhateverItsCaseAndAccents_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected");
    // Newest first: Latte (day 6) ... Café (day 1).
    QTest::newRow("plain finds accented, upper case and longer words")
        << QStringLiteral("cafe")
        << QStringList { QStringLiteral("Latte"), QStringLiteral("Cafeteria lunch"), QStringLiteral("CAFÉ NOIR"),
                         QStringLiteral("Café") };
    QTest::newRow("accented upper case finds plain lower case")
        << QStringLiteral("CAFÉ")
        << QStringList { QStringLiteral("Latte"), QStringLiteral("Cafeteria lunch"), QStringLiteral("CAFÉ NOIR"),
                         QStringLiteral("Café") };
    QTest::newRow("a part of the category") << QStringLiteral("MEDICAL") << QStringList { QStringLiteral("Aspirin") };
    QTest::newRow("a part of the place") << QStringLiteral("apoth") << QStringList { QStringLiteral("Aspirin") };
    QTest::newRow("an accent in the place") << QStringLiteral("zurich") << QStringList { QStringLiteral("Bread") };
    QTest::newRow("nothing matches") << QStringLiteral("xyz") << QStringList();
    QTest::newRow("no text spans two fields") << QStringLiteral("lunchfood") << QStringList();
}

void tst_EntrySearch::textIsFoundInItemPlaceOrCategoryWhateverItsCaseAndAccents()
{
    QFETCH(QString, text);
    QFETCH(QStringList, expected);
    add(QStringLiteral("Café"), QStringLiteral("Drinks"), at(2026, 3, 1), 3.5f, QStringLiteral("Corner"));
    add(QStringLiteral("CAFÉ NOIR"), QStringLiteral("Drinks"), at(2026, 3, 2), 4.0f, QStringLiteral("Corner"));
    add(QStringLiteral("Cafeteria lunch"), QStringLiteral("Food"), at(2026, 3, 3), 8.0f, QStringLiteral("Work"));
    add(QStringLiteral("Aspirin"), QStringLiteral("Medical Expense"), at(2026, 3, 4), 5.0f,
        QStringLiteral("Stadt-Apotheke"));
    add(QStringLiteral("Bread"), QStringLiteral("Groceries"), at(2026, 3, 5), 2.0f, QStringLiteral("Zürich HB"));
    add(QStringLiteral("Latte"), QStringLiteral("Drinks"), at(2026, 3, 6), 4.5f, QStringLiteral("Café Central"));

    EntrySearch search(*store);
    QCOMPARE(itemsOf(search.find(withText(text))), expected);
}

void tst_EntrySearch::placeIsMatchedInThePlaceOnly()
{
    add(QStringLiteral("Market visit"), QStringLiteral("Groceries"), at(2026, 3, 1), 10.0f, QStringLiteral("Home"));
    add(QStringLiteral("Apples"), QStringLiteral("Groceries"), at(2026, 3, 2), 3.0f, QStringLiteral("MARKÉT hall"));
    SearchFilter filter;
    filter.place = QStringLiteral("market");
    EntrySearch search(*store);
    QCOMPARE(itemsOf(search.find(filter)), QStringList { QStringLiteral("Apples") });
}

void tst_EntrySearch::categoryIsMatchedExactly()
{
    add(QStringLiteral("Fuel"), QStringLiteral("Automobile - Fuel"), at(2026, 3, 1), 50.0f);
    add(QStringLiteral("Oil change"), QStringLiteral("Automobile - Maintainence"), at(2026, 3, 2), 80.0f);
    SearchFilter filter;
    filter.category = QStringLiteral("Automobile - Fuel");
    EntrySearch search(*store);
    QCOMPARE(itemsOf(search.find(filter)), QStringList { QStringLiteral("Fuel") });
    filter.category = QStringLiteral("automobile - fuel");
    QCOMPARE(search.find(filter).count, 0);
}

void tst_EntrySearch::aCategoryThatDoesNotExistFindsNothing()
{
    add(QStringLiteral("Bread"), QStringLiteral("Food"), at(2026, 3, 1), 2.0f);
    SearchFilter filter;
    filter.category = QStringLiteral("Pets");
    EntrySearch search(*store);
    const EntrySearch::Result result = search.find(filter);
    QCOMPARE(result.count, 0);
    QCOMPARE(result.total, 0.0);
    QVERIFY(result.entries.list().isEmpty());
}

void tst_EntrySearch::bothEndDaysOfTheDateRangeAreIncluded()
{
    add(QStringLiteral("Before"), QStringLiteral("Food"), at(2026, 2, 28, 23, 59), 1.0f);
    add(QStringLiteral("First day"), QStringLiteral("Food"), at(2026, 3, 1), 1.0f);
    add(QStringLiteral("Last day late"), QStringLiteral("Food"), at(2026, 3, 31, 23, 59), 1.0f);
    add(QStringLiteral("After"), QStringLiteral("Food"), at(2026, 4, 1), 1.0f);
    SearchFilter filter;
    filter.from = QDate(2026, 3, 1);
    filter.to = QDate(2026, 3, 31);
    EntrySearch search(*store);
    QCOMPARE(itemsOf(search.find(filter)), (QStringList { QStringLiteral("Last day late"), QStringLiteral("First day") }));

    filter.to = QDate();
    QCOMPARE(itemsOf(search.find(filter)),
             (QStringList { QStringLiteral("After"), QStringLiteral("Last day late"), QStringLiteral("First day") }));
    filter.from = QDate();
    filter.to = QDate(2026, 2, 28);
    QCOMPARE(itemsOf(search.find(filter)), QStringList { QStringLiteral("Before") });
}

void tst_EntrySearch::equalMinimumAndMaximumFindAnAmountStoredAsAFloatToTheCent()
{
    add(QStringLiteral("Shoes"), QStringLiteral("Clothing"), at(2026, 3, 1), 49.90f);
    add(QStringLiteral("Boots"), QStringLiteral("Clothing"), at(2026, 3, 2), 49.91f);
    {
        // A price that arithmetic left a hair below its cent.
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.insertEntry(QStringLiteral("Scarf"), QStringLiteral("Clothing"), at(2026, 3, 3), 49.889999) > 0);
    }
    SearchFilter filter;
    filter.minimum = 49.90;
    filter.maximum = 49.90;
    EntrySearch search(*store);
    QCOMPARE(itemsOf(search.find(filter)), QStringList { QStringLiteral("Shoes") });
    filter.minimum = 49.89;
    filter.maximum = 49.89;
    QCOMPARE(itemsOf(search.find(filter)), QStringList { QStringLiteral("Scarf") });
}

void tst_EntrySearch::amountBoundsAreIncluded()
{
    add(QStringLiteral("Nineteen"), QStringLiteral("Food"), at(2026, 3, 1), 19.99f);
    add(QStringLiteral("Twenty"), QStringLiteral("Food"), at(2026, 3, 2), 20.0f);
    add(QStringLiteral("Thirty"), QStringLiteral("Food"), at(2026, 3, 3), 30.0f);
    add(QStringLiteral("Above"), QStringLiteral("Food"), at(2026, 3, 4), 30.01f);
    SearchFilter filter;
    filter.minimum = 20;
    filter.maximum = 30;
    EntrySearch search(*store);
    QCOMPARE(itemsOf(search.find(filter)), (QStringList { QStringLiteral("Thirty"), QStringLiteral("Twenty") }));
    filter.maximum.reset();
    QCOMPARE(itemsOf(search.find(filter)),
             (QStringList { QStringLiteral("Above"), QStringLiteral("Thirty"), QStringLiteral("Twenty") }));
}

void tst_EntrySearch::allGivenPartsMustHold()
{
    const QString pharmacy = QStringLiteral("Apotheke am Markt");
    add(QStringLiteral("Plaster"), QStringLiteral("Medical Expense"), at(2025, 6, 1), 25.0f, pharmacy);
    add(QStringLiteral("Cheap plaster"), QStringLiteral("Medical Expense"), at(2025, 6, 2), 5.0f, pharmacy);
    add(QStringLiteral("Old plaster"), QStringLiteral("Medical Expense"), at(2024, 6, 1), 25.0f, pharmacy);
    add(QStringLiteral("Plaster gift"), QStringLiteral("Gifts"), at(2025, 6, 3), 25.0f, pharmacy);
    add(QStringLiteral("Plaster elsewhere"), QStringLiteral("Medical Expense"), at(2025, 6, 4), 25.0f,
        QStringLiteral("Drugstore"));
    add(QStringLiteral("Bread"), QStringLiteral("Medical Expense"), at(2025, 6, 5), 25.0f, pharmacy);

    SearchFilter filter;
    filter.text = QStringLiteral("PLASTER");
    filter.category = QStringLiteral("Medical Expense");
    filter.place = QStringLiteral("apoth");
    filter.from = QDate(2025, 1, 1);
    filter.to = QDate(2025, 12, 31);
    filter.minimum = 20;
    filter.maximum = 30;
    EntrySearch search(*store);
    QCOMPARE(itemsOf(search.find(filter)), QStringList { QStringLiteral("Plaster") });
}

void tst_EntrySearch::anEmptyFilterFindsEveryEntry()
{
    add(QStringLiteral("One"), QStringLiteral("Food"), at(2026, 3, 1), 1.0f);
    add(QStringLiteral("Two"), QStringLiteral("Drinks"), at(2026, 3, 2), 2.0f, QString());
    EntrySearch search(*store);
    QCOMPARE(itemsOf(search.find({})), (QStringList { QStringLiteral("Two"), QStringLiteral("One") }));
}

void tst_EntrySearch::resultsAreNewestFirstAndTheLastAddedFirstOnTheSameDate()
{
    add(QStringLiteral("Early"), QStringLiteral("Food"), at(2026, 3, 1), 1.0f);
    add(QStringLiteral("Same A"), QStringLiteral("Food"), at(2026, 3, 5), 1.0f);
    add(QStringLiteral("Late"), QStringLiteral("Food"), at(2026, 3, 9), 1.0f);
    add(QStringLiteral("Same B"), QStringLiteral("Food"), at(2026, 3, 5), 1.0f);
    add(QStringLiteral("Same C"), QStringLiteral("Food"), at(2026, 3, 5), 1.0f);
    EntrySearch search(*store);
    QCOMPARE(itemsOf(search.find({})),
             (QStringList { QStringLiteral("Late"), QStringLiteral("Same C"), QStringLiteral("Same B"),
                            QStringLiteral("Same A"), QStringLiteral("Early") }));
}

void tst_EntrySearch::countAndTotalAreThoseOfTheResults()
{
    add(QStringLiteral("Tea"), QStringLiteral("Drinks"), at(2026, 3, 1), 2.5f);
    add(QStringLiteral("Teapot"), QStringLiteral("Household"), at(2026, 3, 2), 19.99f);
    add(QStringLiteral("Coffee"), QStringLiteral("Drinks"), at(2026, 3, 3), 3.2f);
    EntrySearch search(*store);
    const EntrySearch::Result result = search.find(withText(QStringLiteral("tea")));
    QCOMPARE(result.count, 2);
    // The stored floats, added in double precision.
    QCOMPARE(result.total, double(2.5f) + double(19.99f));
    const EntrySearch::Result all = search.find({});
    QCOMPARE(all.count, 3);
    QCOMPARE(all.total, double(2.5f) + double(19.99f) + double(3.2f));
}

void tst_EntrySearch::entriesOfAFileFromBeforeSearchingAreFound()
{
    store.reset();
    QVERIFY(QFile::remove(home->databasePath()));
    QVERIFY(makeDescribedFile(home->databasePath()));
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.insertEntry(QStringLiteral("Hustensaft"), QStringLiteral("Medical Expense"), at(2020, 1, 5), 7.5,
                                QStringLiteral("Löwen-Apotheke")) > 0);
        QVERIFY(raw.insertEntry(QStringLiteral("Bread"), QStringLiteral("Food"), at(2020, 1, 6), 2.0) > 0);
        QCOMPARE(raw.scalar(QStringLiteral("PRAGMA user_version")).toInt(), 0);
    }
    store = std::make_unique<DatabaseManager>(nullptr);
    QVERIFY(store->isUsable());
    {
        // The step that added the search texts listed every entry there.
        RawDatabase raw(home->databasePath());
        QCOMPARE(raw.scalar(QStringLiteral("select count(*) from EntrySearch")).toInt(), 2);
    }
    EntrySearch search(*store);
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral("LOWEN")))), QStringList { QStringLiteral("Hustensaft") });
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select Place from EntrySearch where SNo = 1")).toString(),
             QStringLiteral("lowen-apotheke"));
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from EntrySearch where Item is null")).toInt(), 0);
}

void tst_EntrySearch::editsThroughTheEntryTableModelAreFoundByTheirNewTexts()
{
    add(QStringLiteral("Tea"), QStringLiteral("Drinks"), at(2026, 3, 1), 2.5f, QStringLiteral("Kiosk"));
    add(QStringLiteral("Water"), QStringLiteral("Drinks"), at(2026, 3, 2), 1.0f, QStringLiteral("Kiosk"));
    EntrySearch search(*store);
    QCOMPARE(search.find(withText(QStringLiteral("tea"))).count, 1);

    std::unique_ptr<QSqlTableModel> model(store->createTableModel(QStringLiteral("Entry"), nullptr));
    QVERIFY(model);
    const int item = model->record().indexOf(QStringLiteral("ItemName"));
    const int place = model->record().indexOf(QStringLiteral("LocationText"));
    int teaRow = -1;
    for (int row = 0; row < model->rowCount(); ++row) {
        if (model->index(row, item).data().toString() == QLatin1String("Tea"))
            teaRow = row;
    }
    QVERIFY(teaRow >= 0);
    QVERIFY(model->setData(model->index(teaRow, item), QStringLiteral("Rooibos")));
    QVERIFY(model->setData(model->index(1 - teaRow, place), QStringLiteral("Teahouse")));
    QVERIFY(model->submitAll());
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral("tea")))), QStringList { QStringLiteral("Water") });
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral("rooibos")))), QStringList { QStringLiteral("Rooibos") });

    QVERIFY(model->removeRow(teaRow));
    QVERIFY(model->submitAll());
    QCOMPARE(search.find(withText(QStringLiteral("rooibos"))).count, 0);
}

void tst_EntrySearch::entriesWrittenByAnotherConnectionAreFoundAndDeletedOnesAreNot()
{
    add(QStringLiteral("Tea"), QStringLiteral("Drinks"), at(2026, 3, 1), 2.5f);
    EntrySearch search(*store);
    QCOMPARE(search.find(withText(QStringLiteral("tea"))).count, 1);
    {
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.insertEntry(QStringLiteral("Green tea"), QStringLiteral("Drinks"), at(2026, 3, 2), 3.0) > 0);
        QVERIFY(raw.exec(QStringLiteral("delete from Entry where ItemName = 'Tea'")));
    }
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral("TEA")))), QStringList { QStringLiteral("Green tea") });
    RawDatabase raw(home->databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from EntrySearch")).toInt(), 1);
}

void tst_EntrySearch::foldingDropsAccentsAndCase()
{
    QCOMPARE(EntrySearch::fold(QStringLiteral("CAFÉ")), QStringLiteral("cafe"));
    // A decomposed accent (e + combining acute) folds alike.
    QCOMPARE(EntrySearch::fold(QStringLiteral("Cafe\u0301")), QStringLiteral("cafe"));
    QCOMPARE(EntrySearch::fold(QStringLiteral("Ærø Ñandú")), QStringLiteral("ærø nandu"));
    QCOMPARE(EntrySearch::fold(QString()), QString());
}

void tst_EntrySearch::theIndexIsAskedForEveryRunOfThreeCharacters()
{
    QCOMPARE(EntryQuery::trigramQuery({ QStringLiteral("cafe") }), QStringLiteral("\"caf\" AND \"afe\""));
    // Both texts' runs, each once; a double quote is doubled inside its
    // quotes, as the full-text query language asks.
    QCOMPARE(EntryQuery::trigramQuery({ QStringLiteral("aaaa"), QStringLiteral("a\"b") }),
             QStringLiteral("\"aaa\" AND \"a\"\"b\""));
    // Characters, not UTF-16 units: one run of three for a text of an
    // emoji and two letters.
    QCOMPARE(EntryQuery::trigramQuery({ QStringLiteral("\U0001F34Eab") }), QStringLiteral("\"\U0001F34Eab\""));
    QCOMPARE(EntryQuery::trigramQuery({ QStringLiteral("ab"), QString() }), QString());
}

void tst_EntrySearch::textsShorterThanThreeCharactersAreFoundToo()
{
    add(QStringLiteral("Tea"), QStringLiteral("Drinks"), at(2026, 3, 1), 2.5f, QStringLiteral("Kiosk"));
    add(QStringLiteral("Bread"), QStringLiteral("Groceries"), at(2026, 3, 2), 2.0f, QStringLiteral("Bakery"));
    EntrySearch search(*store);
    // "ea" is in Tea and Bread, "é" folds to the e of both.
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral("EA")))),
             QStringList({ QStringLiteral("Bread"), QStringLiteral("Tea") }));
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral("sK")))), QStringList { QStringLiteral("Tea") });
    SearchFilter filter;
    filter.place = QStringLiteral("ba");
    QCOMPARE(itemsOf(search.find(filter)), QStringList { QStringLiteral("Bread") });
}

void tst_EntrySearch::theIndexHoldsTheFoldedTextsAndForgetsChangedAndDeletedOnes()
{
    add(QStringLiteral("Café"), QStringLiteral("Drinks"), at(2026, 3, 1), 3.5f, QStringLiteral("Corner"));
    add(QStringLiteral("Bread"), QStringLiteral("Groceries"), at(2026, 3, 2), 2.0f, QStringLiteral("Bakery"));
    EntrySearch search(*store);
    QVERIFY(search.bringTextsUpToDate());
    RawDatabase raw(home->databasePath());
    const auto indexed = [&raw](const QString &run) {
        QStringList rows;
        for (const QVariantList &row :
             raw.rows(QStringLiteral("select rowid from EntrySearchIndex where EntrySearchIndex match '\"%1\"' "
                                     "order by rowid")
                          .arg(run)))
            rows << row.at(0).toString();
        return rows;
    };
    // The folded texts, not the stored ones: "cafe", not "Café".
    QCOMPARE(indexed(QStringLiteral("afe")), QStringList { QStringLiteral("1") });
    QCOMPARE(indexed(QStringLiteral("Caf")), QStringList());
    QCOMPARE(indexed(QStringLiteral("bak")), QStringList { QStringLiteral("2") });

    QVERIFY(raw.exec(QStringLiteral("update Entry set ItemName = 'Tea' where SNo = 1")));
    QVERIFY(search.bringTextsUpToDate());
    QCOMPARE(indexed(QStringLiteral("afe")), QStringList());
    QCOMPARE(indexed(QStringLiteral("tea")), QStringList { QStringLiteral("1") });
    // The place and category of the changed entry are indexed again.
    QCOMPARE(indexed(QStringLiteral("orn")), QStringList { QStringLiteral("1") });

    QVERIFY(raw.exec(QStringLiteral("delete from Entry where SNo = 2")));
    QCOMPARE(indexed(QStringLiteral("bak")), QStringList());
    QCOMPARE(raw.scalar(QStringLiteral("select count(*) from EntrySearch")).toInt(), 1);
}

void tst_EntrySearch::aRowTheIndexWronglyNamesIsNotFound()
{
    add(QStringLiteral("Tea"), QStringLiteral("Drinks"), at(2026, 3, 1), 2.5f, QStringLiteral("Kiosk"));
    add(QStringLiteral("Water"), QStringLiteral("Drinks"), at(2026, 3, 2), 1.0f, QStringLiteral("Kiosk"));
    EntrySearch search(*store);
    QVERIFY(search.bringTextsUpToDate());
    {
        // An index that says the water's row holds "coffee" (as one left
        // behind by a writer that bypassed the triggers might): the
        // search checks the texts themselves.
        RawDatabase raw(home->databasePath());
        QVERIFY(raw.exec(QStringLiteral("insert into EntrySearchIndex (rowid, Item, Category, Place) values (2, "
                                        "'coffee', '', '')")));
    }
    QCOMPARE(search.find(withText(QStringLiteral("coffee"))).count, 0);
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral("water")))), QStringList { QStringLiteral("Water") });
}

void tst_EntrySearch::quotesAndOperatorWordsInTheTextAreMatchedAsText()
{
    add(QStringLiteral("The \"Best\" Tea"), QStringLiteral("Drinks"), at(2026, 3, 1), 2.5f, QStringLiteral("Kiosk"));
    add(QStringLiteral("Salt AND pepper"), QStringLiteral("Groceries"), at(2026, 3, 2), 1.0f, QStringLiteral("Shop"));
    add(QStringLiteral("Pepper"), QStringLiteral("Groceries"), at(2026, 3, 3), 1.5f, QStringLiteral("Shop"));
    EntrySearch search(*store);
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral("\"best\"")))), QStringList { QStringLiteral("The \"Best\" Tea") });
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral("t and p")))), QStringList { QStringLiteral("Salt AND pepper") });
    // Words and signs the full-text query language would read as its own
    // are texts to find like any other.
    add(QStringLiteral("Star*fruit NEAR(market) ^x"), QStringLiteral("Fruit"), at(2026, 3, 4), 2.0f,
        QStringLiteral("Shop"));
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral("r*f")))), QStringList { QStringLiteral("Star*fruit NEAR(market) ^x") });
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral("near(")))), QStringList { QStringLiteral("Star*fruit NEAR(market) ^x") });
    QCOMPARE(itemsOf(search.find(withText(QStringLiteral(") ^x")))), QStringList { QStringLiteral("Star*fruit NEAR(market) ^x") });
}

QTEST_GUILESS_MAIN(tst_EntrySearch)

#include "tst_entrysearch.moc"
