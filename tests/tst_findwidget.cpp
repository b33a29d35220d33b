// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "entrydetailswidget.h"
#include "findwidget.h"
#include "historywidget.h"
#include "mainwindow.h"
#include "settings.h"

#include "filedialoganswerer.h"
#include "mainwindowfixture.h"
#include "messageboxanswerer.h"
#include "rawdatabase.h"
#include "testsupport.h"
#include "webenginesanitizeroptions.h"
#include "widgettest.h"

#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QTableView>
#include <QTableWidget>
#include <QTest>

namespace {

QDateTime at(int year, int month, int day, int hour = 12)
{
    return QDateTime(QDate(year, month, day), QTime(hour, 0));
}

// Ten entries over two years; four at pharmacies.
void addEntries(MainWindowFixture &f)
{
    RawDatabase raw(f.setUpFile());
    raw.insertEntry(QStringLiteral("Cough syrup"), QStringLiteral("Medical Expense"), at(2025, 2, 3), 8.5,
                    QStringLiteral("Löwen-Apotheke"));
    raw.insertEntry(QStringLiteral("Plasters"), QStringLiteral("Medical Expense"), at(2025, 11, 20), 24.0,
                    QStringLiteral("Stadt-Apotheke"));
    raw.insertEntry(QStringLiteral("Vitamins"), QStringLiteral("Medical Expense"), at(2026, 1, 15), 31.9,
                    QStringLiteral("APOTHEKE am Markt"));
    raw.insertEntry(QStringLiteral("Lozenges"), QStringLiteral("Medical Expense"), at(2026, 2, 1), 4.2,
                    QStringLiteral("Löwen-Apotheke"));
    raw.insertEntry(QStringLiteral("Bread"), QStringLiteral("Food"), at(2026, 2, 2), 3.5, QStringLiteral("Bakery"));
    raw.insertEntry(QStringLiteral("Café"), QStringLiteral("Drinks"), at(2026, 2, 3), 2.8, QStringLiteral("Corner"));
    raw.insertEntry(QStringLiteral("Shoes"), QStringLiteral("Clothing"), at(2026, 2, 4), 100.0, QStringLiteral("Mall"));
    raw.insertEntry(QStringLiteral("Socks"), QStringLiteral("Clothing"), at(2026, 2, 5), 9.5, QStringLiteral("Mall"));
    raw.insertEntry(QStringLiteral("Shirt"), QStringLiteral("Clothing"), at(2026, 2, 6), 20.0, QStringLiteral("Mall"));
    raw.insertEntry(QStringLiteral("Tea"), QStringLiteral("Drinks"), at(2026, 2, 7), 1.5, QStringLiteral("Kiosk"));
}

// 1200 entries an hour apart from 1 January 2020, "Thing 0" the oldest;
// entry i costs ((7 i) mod 1200) + 1, so the prices are 1 to 1200 each once
// (7 and 1200 share no factor) and total 1200 * 1201 / 2 = 720600.
constexpr int manyEntries = 1200;
void addManyEntries(MainWindowFixture &f)
{
    RawDatabase raw(f.setUpFile());
    QVERIFY(raw.exec(QStringLiteral("BEGIN")));
    const QDateTime first(QDate(2020, 1, 1), QTime(0, 0));
    for (int i = 0; i < manyEntries; ++i)
        QVERIFY(raw.insertEntry(QStringLiteral("Thing %1").arg(i), QStringLiteral("Others"), first.addSecs(3600 * i),
                                (7 * i) % manyEntries + 1, QStringLiteral("Shop"))
                > 0);
    QVERIFY(raw.exec(QStringLiteral("COMMIT")));
}

FindWidget *openFind(MainWindowFixture &f)
{
    child<QAction>(f.window(), "actionFind")->trigger();
    return qobject_cast<FindWidget *>(f.page());
}

QTableView *table(FindWidget *page)
{
    return child<QTableView>(*page, "tableViewResults");
}

// The texts of one column, top to bottom, as the table shows them.
QStringList column(FindWidget *page, int index)
{
    QStringList texts;
    const QAbstractItemModel *model = table(page)->model();
    for (int row = 0; row < model->rowCount(); ++row)
        texts << model->index(row, index).data().toString();
    return texts;
}

QString summary(FindWidget *page)
{
    return child<QLabel>(*page, "labelSummary")->text();
}

} // namespace

class TestFindWidget : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    // The settings live as long as the test program: each test starts
    // without a remembered filter.
    void init() { Settings().setFindFilter(SearchFilter()); }
    void cleanup() { VERIFY_NO_WIDGETS_LEFT(); }

    void goFindOpensAFreshPageWithCtrlF();
    void theHistoryPagesFindButtonOpensTheFindPage();
    void anEmptyFilterShowsEveryEntryNewestFirstInFiveColumns();
    void typingFiltersTheTableWithTheCountAndTotal();
    void everyPartOfTheFilterNarrowsTheResults();
    void sortingByAmountSortsByValue();
    void openingARowShowsThatEntryAfterAnotherWriterAddedRows();
    void exportWritesExactlyTheResults();
    void theFilterComesBackOnReopeningAndClearEmptiesIt();
    void manyResultsShowTheirCountAndTotalAtOnceAndTheirRowsAPageAtATime();
    void sortingManyResultsByAColumnSortsThemAll();
    void exportWritesEveryResultAlsoThoseNotShownYet();
    void entriesRemovedWhileScrollingEndTheResultsWithoutAGap();
};

void TestFindWidget::goFindOpensAFreshPageWithCtrlF()
{
    MainWindowFixture f;
    addEntries(f);
    QVERIFY(f.show());
    QAction *find = child<QAction>(f.window(), "actionFind");
    QCOMPARE(find->text(), QStringLiteral("Find…"));
    QCOMPARE(find->shortcut(), QKeySequence(QStringLiteral("Ctrl+F")));
    QTest::keyClick(&f.window(), Qt::Key_F, Qt::ControlModifier);
    QPointer<FindWidget> first = qobject_cast<FindWidget *>(f.page());
    QVERIFY(first);
    QTest::keyClick(&f.window(), Qt::Key_F, Qt::ControlModifier);
    QTRY_VERIFY(first.isNull());
    QVERIFY(qobject_cast<FindWidget *>(f.page()));
}

void TestFindWidget::theHistoryPagesFindButtonOpensTheFindPage()
{
    MainWindowFixture f;
    addEntries(f);
    QVERIFY(f.show());
    f.click("pushButtonHistory");
    auto *history = qobject_cast<HistoryWidget *>(f.page());
    QVERIFY(history);
    auto *button = child<QPushButton>(*history, "pushButtonFind");
    QCOMPARE(button->text(), QStringLiteral("Find"));
    button->click();
    QVERIFY(qobject_cast<FindWidget *>(f.page()));
}

void TestFindWidget::anEmptyFilterShowsEveryEntryNewestFirstInFiveColumns()
{
    MainWindowFixture f;
    addEntries(f);
    QVERIFY(f.show());
    FindWidget *page = openFind(f);
    QVERIFY(page);
    const QAbstractItemModel *model = table(page)->model();
    QStringList headers;
    for (int section = 0; section < model->columnCount(); ++section)
        headers << model->headerData(section, Qt::Horizontal).toString();
    QCOMPARE(headers, (QStringList { "Date", "Item", "Category", "Amount", "Place" }));
    QCOMPARE(column(page, 1), (QStringList { "Tea", "Shirt", "Socks", "Shoes", "Café", "Bread", "Lozenges", "Vitamins",
                                             "Plasters", "Cough syrup" }));
    QCOMPARE(model->index(0, 0).data().toString(), QStringLiteral("Sat Feb 7 2026"));
    QCOMPARE(model->index(0, 2).data().toString(), QStringLiteral("Drinks"));
    QCOMPARE(model->index(0, 3).data().toString(), QStringLiteral("1.5"));
    QCOMPARE(model->index(0, 4).data().toString(), QStringLiteral("Kiosk"));
    // 8.5 + 24 + 31.9 + 4.2 + 3.5 + 2.8 + 100 + 9.5 + 20 + 1.5
    QCOMPARE(summary(page), QStringLiteral("10 entries, total 205.90"));
    QCOMPARE(child<QComboBox>(*page, "comboBoxCategory")->itemText(0), QStringLiteral("All categories"));
    QCOMPARE(child<QDateEdit>(*page, "dateEditFrom")->text().trimmed(), QString());
    QCOMPARE(child<QDateEdit>(*page, "dateEditTo")->text().trimmed(), QString());
}

void TestFindWidget::typingFiltersTheTableWithTheCountAndTotal()
{
    MainWindowFixture f;
    addEntries(f);
    QVERIFY(f.show());
    FindWidget *page = openFind(f);
    auto *text = child<QLineEdit>(*page, "lineEditText");
    text->setFocus();
    QTest::keyClicks(text, QStringLiteral("apoth"));
    QTRY_COMPARE(column(page, 1), (QStringList { "Lozenges", "Vitamins", "Plasters", "Cough syrup" }));
    // 4.2 + 31.9 + 24 + 8.5
    QCOMPARE(summary(page), QStringLiteral("4 entries, total 68.60"));
    QTest::keyClicks(text, QStringLiteral("xyz"));
    QTRY_COMPARE(summary(page), QStringLiteral("0 entries, total 0.00"));
    QCOMPARE(table(page)->model()->rowCount(), 0);
    text->clear();
    QTest::keyClicks(text, QStringLiteral("CAFE"));
    QTRY_COMPARE(column(page, 1), QStringList { "Café" });
    QCOMPARE(summary(page), QStringLiteral("1 entry, total 2.80"));
}

void TestFindWidget::everyPartOfTheFilterNarrowsTheResults()
{
    MainWindowFixture f;
    addEntries(f);
    QVERIFY(f.show());
    FindWidget *page = openFind(f);
    child<QLineEdit>(*page, "lineEditText")->setText(QStringLiteral("apoth"));
    child<QDateEdit>(*page, "dateEditFrom")->setDate(QDate(2025, 1, 1));
    child<QDateEdit>(*page, "dateEditTo")->setDate(QDate(2025, 12, 31));
    QTRY_COMPARE(column(page, 1), (QStringList { "Plasters", "Cough syrup" }));
    child<QLineEdit>(*page, "lineEditMinimum")->setText(QStringLiteral("20"));
    QTRY_COMPARE(column(page, 1), QStringList { "Plasters" });
    QCOMPARE(summary(page), QStringLiteral("1 entry, total 24.00"));

    child<QPushButton>(*page, "pushButtonClear")->click();
    auto *category = child<QComboBox>(*page, "comboBoxCategory");
    category->setCurrentIndex(category->findText(QStringLiteral("Clothing")));
    child<QLineEdit>(*page, "lineEditMaximum")->setText(QStringLiteral("20.00"));
    QTRY_COMPARE(column(page, 1), (QStringList { "Shirt", "Socks" }));
    child<QLineEdit>(*page, "lineEditPlace")->setText(QStringLiteral("löwen"));
    category->setCurrentIndex(0);
    QTRY_COMPARE(column(page, 1), (QStringList { "Lozenges", "Cough syrup" }));
}

void TestFindWidget::sortingByAmountSortsByValue()
{
    MainWindowFixture f;
    addEntries(f);
    QVERIFY(f.show());
    FindWidget *page = openFind(f);
    child<QComboBox>(*page, "comboBoxCategory")->setCurrentText(QStringLiteral("Clothing"));
    QTRY_COMPARE(column(page, 1), (QStringList { "Shirt", "Socks", "Shoes" }));
    table(page)->sortByColumn(3, Qt::AscendingOrder);
    // As texts, "100" would come before "20" and "9.5".
    QCOMPARE(column(page, 3), (QStringList { "9.5", "20", "100" }));
    table(page)->sortByColumn(3, Qt::DescendingOrder);
    QCOMPARE(column(page, 3), (QStringList { "100", "20", "9.5" }));
    table(page)->sortByColumn(1, Qt::AscendingOrder);
    QCOMPARE(column(page, 1), (QStringList { "Shirt", "Shoes", "Socks" }));
    table(page)->sortByColumn(0, Qt::AscendingOrder);
    QCOMPARE(column(page, 1), (QStringList { "Shoes", "Socks", "Shirt" }));
}

void TestFindWidget::openingARowShowsThatEntryAfterAnotherWriterAddedRows()
{
    MainWindowFixture f;
    addEntries(f);
    QVERIFY(f.show());
    FindWidget *page = openFind(f);
    child<QLineEdit>(*page, "lineEditText")->setText(QStringLiteral("apoth"));
    QTRY_COMPARE(column(page, 1), (QStringList { "Lozenges", "Vitamins", "Plasters", "Cough syrup" }));
    {
        // Newer entries move every found entry down the list of all entries.
        RawDatabase raw(f.home.databasePath());
        QVERIFY(raw.insertEntry(QStringLiteral("Newspaper"), QStringLiteral("Others"), at(2026, 3, 1), 2.0) > 0);
        QVERIFY(raw.insertEntry(QStringLiteral("Magazine"), QStringLiteral("Others"), at(2026, 3, 2), 5.0) > 0);
    }
    QTableView *view = table(page);
    const QModelIndex vitamins = view->model()->index(1, 1);
    // A double click as a mouse makes it: the press that selects the row
    // comes before the second click.
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(vitamins).center());
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(vitamins).center());
    auto *area = child<QScrollArea>(*page, "scrollAreaEntryDetails");
    QTRY_VERIFY(qobject_cast<EntryDetailsWidget *>(area->widget()));
    auto *fields = child<QTableWidget>(*area->widget(), "tableWidget");
    QCOMPARE(plainText(qobject_cast<QLabel *>(fields->cellWidget(0, 1))).trimmed(), QStringLiteral("Vitamins"));

    // Return on a row opens it as well.
    view->setFocus();
    view->setCurrentIndex(view->model()->index(3, 0));
    QTest::keyClick(view, Qt::Key_Return);
    QTRY_COMPARE(plainText(qobject_cast<QLabel *>(
                               child<QTableWidget>(*area->widget(), "tableWidget")->cellWidget(0, 1)))
                     .trimmed(),
                 QStringLiteral("Cough syrup"));
}

void TestFindWidget::exportWritesExactlyTheResults()
{
    MainWindowFixture f;
    addEntries(f);
    QVERIFY(f.show());
    FindWidget *page = openFind(f);
    child<QComboBox>(*page, "comboBoxCategory")->setCurrentText(QStringLiteral("Drinks"));
    QTRY_COMPARE(column(page, 1), (QStringList { "Tea", "Café" }));

    const QString file = f.home.filePath(QStringLiteral("drinks.csv"));
    FileDialogAnswerer dialogs;
    MessageBoxAnswerer boxes;
    dialogs.choose(file);
    boxes.answer(QMessageBox::Ok);
    child<QPushButton>(*page, "pushButtonExport")->click();
    QCOMPARE(dialogs.errors(), QStringList());
    QCOMPARE(dialogs.seen().size(), 1);
    QCOMPARE(dialogs.seen().constFirst().title, QStringLiteral("Export Results"));
    QCOMPARE(child<QPushButton>(*page, "pushButtonExport")->text(), QStringLiteral("Export Results…"));
    QCOMPARE(boxes.texts(), QStringList { QStringLiteral("Exported 2 entries to %1.").arg(file) });
    QCOMPARE(readFile(file), QByteArray("Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude\r\n"
                                        "2026-02-07T12:00:00,Tea,Drinks,1.5,Kiosk,false,103,1.3\r\n"
                                        "2026-02-03T12:00:00,Café,Drinks,2.8,Corner,false,103,1.3\r\n"));
}

void TestFindWidget::theFilterComesBackOnReopeningAndClearEmptiesIt()
{
    MainWindowFixture f;
    addEntries(f);
    QVERIFY(f.show());
    FindWidget *page = openFind(f);
    child<QLineEdit>(*page, "lineEditText")->setText(QStringLiteral("s"));
    child<QComboBox>(*page, "comboBoxCategory")->setCurrentText(QStringLiteral("Clothing"));
    child<QLineEdit>(*page, "lineEditPlace")->setText(QStringLiteral("mall"));
    child<QDateEdit>(*page, "dateEditFrom")->setDate(QDate(2026, 2, 4));
    child<QDateEdit>(*page, "dateEditTo")->setDate(QDate(2026, 2, 5));
    child<QLineEdit>(*page, "lineEditMinimum")->setText(QStringLiteral("9.5"));
    child<QLineEdit>(*page, "lineEditMaximum")->setText(QStringLiteral("150"));
    QTRY_COMPARE(column(page, 1), (QStringList { "Socks", "Shoes" }));

    f.click("pushButtonHome");
    page = openFind(f);
    QCOMPARE(column(page, 1), (QStringList { "Socks", "Shoes" }));
    QCOMPARE(child<QLineEdit>(*page, "lineEditText")->text(), QStringLiteral("s"));
    QCOMPARE(child<QComboBox>(*page, "comboBoxCategory")->currentText(), QStringLiteral("Clothing"));
    QCOMPARE(child<QLineEdit>(*page, "lineEditPlace")->text(), QStringLiteral("mall"));
    QCOMPARE(child<QDateEdit>(*page, "dateEditFrom")->date(), QDate(2026, 2, 4));
    QCOMPARE(child<QDateEdit>(*page, "dateEditTo")->date(), QDate(2026, 2, 5));
    QCOMPARE(child<QLineEdit>(*page, "lineEditMinimum")->text(), QStringLiteral("9.50"));
    QCOMPARE(child<QLineEdit>(*page, "lineEditMaximum")->text(), QStringLiteral("150.00"));

    child<QPushButton>(*page, "pushButtonClear")->click();
    QCOMPARE(child<QLineEdit>(*page, "lineEditText")->text(), QString());
    QCOMPARE(child<QComboBox>(*page, "comboBoxCategory")->currentText(), QStringLiteral("All categories"));
    QCOMPARE(summary(page), QStringLiteral("10 entries, total 205.90"));
    page = openFind(f);
    QCOMPARE(child<QLineEdit>(*page, "lineEditPlace")->text(), QString());
    QCOMPARE(child<QDateEdit>(*page, "dateEditFrom")->text().trimmed(), QString());
    QCOMPARE(table(page)->model()->rowCount(), 10);
}

void TestFindWidget::manyResultsShowTheirCountAndTotalAtOnceAndTheirRowsAPageAtATime()
{
    MainWindowFixture f;
    addManyEntries(f);
    QVERIFY(f.show());
    FindWidget *page = openFind(f);
    QTRY_COMPARE(summary(page), QStringLiteral("1200 entries, total 720600.00"));
    // A page of rows, the newest first; the table offers more.
    QAbstractItemModel *model = table(page)->model();
    QCOMPARE(model->rowCount(), 500);
    QCOMPARE(model->index(0, 1).data().toString(), QStringLiteral("Thing 1199"));
    QCOMPARE(model->index(499, 1).data().toString(), QStringLiteral("Thing 700"));
    QVERIFY(model->canFetchMore(QModelIndex()));

    // Scrolled to its end, the table reads the next page, and the next.
    table(page)->scrollToBottom();
    QTRY_COMPARE(model->rowCount(), 1000);
    table(page)->scrollToBottom();
    QTRY_COMPARE(model->rowCount(), manyEntries);
    QVERIFY(!model->canFetchMore(QModelIndex()));
    QStringList expected;
    for (int i = manyEntries - 1; i >= 0; --i)
        expected << QStringLiteral("Thing %1").arg(i);
    QCOMPARE(column(page, 1), expected);
    QCOMPARE(summary(page), QStringLiteral("1200 entries, total 720600.00"));
}

void TestFindWidget::sortingManyResultsByAColumnSortsThemAll()
{
    MainWindowFixture f;
    addManyEntries(f);
    QVERIFY(f.show());
    FindWidget *page = openFind(f);
    QTRY_COMPARE(table(page)->model()->rowCount(), 500);
    table(page)->sortByColumn(3, Qt::AscendingOrder);
    // Every price from 1 to 1200, not only those of the first page.
    QStringList ascending;
    for (int price = 1; price <= manyEntries; ++price)
        ascending << QString::number(price);
    QCOMPARE(column(page, 3), ascending);
    // A new search keeps the column's order over all of its results.
    child<QLineEdit>(*page, "lineEditText")->setText(QStringLiteral("thing 1"));
    // "Thing 1", "Thing 10" to "Thing 19", "Thing 100" to "Thing 199" and
    // "Thing 1000" to "Thing 1199": 1 + 10 + 100 + 200 = 311 entries.
    QTRY_COMPARE(summary(page).section(u' ', 0, 0), QStringLiteral("311"));
    QCOMPARE(table(page)->model()->rowCount(), 311);
    const QStringList prices = column(page, 3);
    for (int row = 1; row < prices.size(); ++row)
        QVERIFY2(prices.at(row - 1).toDouble() < prices.at(row).toDouble(), qPrintable(prices.at(row)));
}

void TestFindWidget::exportWritesEveryResultAlsoThoseNotShownYet()
{
    MainWindowFixture f;
    addManyEntries(f);
    QVERIFY(f.show());
    FindWidget *page = openFind(f);
    QTRY_COMPARE(table(page)->model()->rowCount(), 500);

    const QString file = f.home.filePath(QStringLiteral("everything.csv"));
    FileDialogAnswerer dialogs;
    MessageBoxAnswerer boxes;
    dialogs.choose(file);
    boxes.answer(QMessageBox::Ok);
    child<QPushButton>(*page, "pushButtonExport")->click();
    QCOMPARE(dialogs.errors(), QStringList());
    QCOMPARE(boxes.texts(), QStringList { QStringLiteral("Exported 1200 entries to %1.").arg(file) });
    const QList<QByteArray> lines = readFile(file).split('\n');
    // The header, 1200 lines and the empty text after the last line end.
    QCOMPARE(lines.size(), 1 + manyEntries + 1);
    QVERIFY(lines.at(1).startsWith("2020-02-19T23:00:00,Thing 1199,"));
    QVERIFY(lines.at(manyEntries).startsWith("2020-01-01T00:00:00,Thing 0,"));
}

void TestFindWidget::entriesRemovedWhileScrollingEndTheResultsWithoutAGap()
{
    MainWindowFixture f;
    addManyEntries(f);
    QVERIFY(f.show());
    FindWidget *page = openFind(f);
    QAbstractItemModel *model = table(page)->model();
    QTRY_COMPARE(model->rowCount(), 500);
    {
        // Another program removes the 1000 oldest entries: the 200 left
        // are all among the rows shown.
        RawDatabase raw(f.home.databasePath());
        QVERIFY(raw.exec(QStringLiteral("DELETE FROM Entry WHERE TransactDateTime < '2020-02-11T16:00:00'")));
        QCOMPARE(raw.scalar(QStringLiteral("SELECT count(*) FROM Entry")).toInt(), 200);
    }
    table(page)->scrollToBottom();
    QCoreApplication::processEvents();
    QTRY_VERIFY(!model->canFetchMore(QModelIndex()));
    QCOMPARE(model->rowCount(), 500);
    QCOMPARE(model->index(499, 1).data().toString(), QStringLiteral("Thing 700"));
}

QTEST_MAIN(TestFindWidget)

#include "tst_findwidget.moc"
