// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "mainwindow.h"
#include "testwidget.h"

#include "mainwindowfixture.h"
#include "messageboxanswerer.h"
#include "rawdatabase.h"
#include "temphome.h"
#include "widgettest.h"

#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QSqlTableModel>
#include <QTableView>
#include <QtTest>

namespace {

struct Fixture
{
    TempHome home;
    DatabaseManager store { nullptr };
    RawDatabase raw { home.databasePath() };
};

QSqlTableModel *shownModel(const TestWidget &page)
{
    return qobject_cast<QSqlTableModel *>(child<QTableView>(page, QStringLiteral("tableView"))->model());
}

int count(RawDatabase &raw, const QString &table)
{
    return raw.scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(table)).toInt();
}

// Presses a button and answers the one box it shows with Ok.
SeenMessageBox press(const TestWidget &page, const QString &button)
{
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    child<QPushButton>(page, button)->click();
    if (answerer.seen().size() != 1 || !answerer.errors().isEmpty())
        qWarning("expected one message box, saw %lld: %s", qlonglong(answerer.seen().size()),
                 qPrintable(answerer.errors().join(QLatin1Char('\n'))));
    return answerer.seen().value(0);
}

} // namespace

class TestTestWidget : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    void cleanup();

    void formHasTheDesignedButtonsAndTable_data();
    void formHasTheDesignedButtonsAndTable();
    void formHasItsTitleSizeAndStyles();

    void eachButtonReportsAndShowsTheTableItWrote_data();
    void eachButtonReportsAndShowsTheTableItWrote();
    void addItemWritesTheSampleItem();
    void addGeoLocationWritesTheSamplePlace();
    void addEntryWritesTheSampleEntryNow();
    void addModeOnAnExistingDefaultAddsNothing();
    void failedWritesShowTheirFailureTexts_data();
    void failedWritesShowTheirFailureTexts();
    void substituteAndCategoryButtonsDoNothing();
    void eachPressReplacesTheTableInTheView();
    void noMenuButtonLeadsToThePage();
};

void TestTestWidget::cleanup()
{
    VERIFY_NO_WIDGETS_LEFT();
}

void TestTestWidget::formHasTheDesignedButtonsAndTable_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QRect>("geometry");
    QTest::addColumn<QString>("text");

    QTest::newRow("pushButton") << "pushButton" << QRect(20, 20, 261, 71) << "Test Add Item";
    QTest::newRow("pushButton_2") << "pushButton_2" << QRect(20, 100, 261, 71) << "Test Add GeoLocation";
    QTest::newRow("pushButton_3") << "pushButton_3" << QRect(20, 180, 261, 71) << "Test Add Mode";
    QTest::newRow("pushButton_4") << "pushButton_4" << QRect(20, 260, 261, 71) << "Test Add Entry";
    QTest::newRow("pushButton_5") << "pushButton_5" << QRect(20, 350, 261, 71) << "Test Add Substitute";
    QTest::newRow("pushButton_6") << "pushButton_6" << QRect(20, 440, 261, 71) << "Test Add Category";
}

void TestTestWidget::formHasTheDesignedButtonsAndTable()
{
    QFETCH(QString, name);
    QFETCH(QRect, geometry);
    QFETCH(QString, text);

    Fixture f;
    TestWidget page(&f.store);
    auto *button = child<QPushButton>(page, name);
    QVERIFY(button);
    QCOMPARE(button->geometry(), geometry);
    QCOMPARE(button->text(), text);
    QCOMPARE(button->styleSheet(), QString::fromLatin1(FormStyle::gradientButton));
    QCOMPARE(button->parentWidget()->objectName(), QStringLiteral("scrollAreaWidgetContents"));
}

void TestTestWidget::formHasItsTitleSizeAndStyles()
{
    Fixture f;
    TestWidget page(&f.store);
    QCOMPARE(page.objectName(), QStringLiteral("TestWidget"));
    QCOMPARE(page.windowTitle(), QStringLiteral("Form"));
    QCOMPARE(page.size(), QSize(888, 761));
    QCOMPARE(page.styleSheet(), QStringLiteral("background-color: rgb(0, 0, 0);"));

    auto *scrollArea = child<QScrollArea>(page, QStringLiteral("scrollArea"));
    QCOMPARE(scrollArea->geometry(), QRect(10, 10, 871, 741));
    QVERIFY(!scrollArea->widgetResizable());
    QCOMPARE(scrollArea->widget()->objectName(), QStringLiteral("scrollAreaWidgetContents"));
    QCOMPARE(scrollArea->widget()->geometry(), QRect(0, 0, 869, 739));
    QCOMPARE(scrollArea->styleSheet(), QStringLiteral("font: 75 14pt \"MS Shell Dlg 2\";"));

    auto *view = child<QTableView>(page, QStringLiteral("tableView"));
    QCOMPARE(view->geometry(), QRect(300, 20, 561, 241));
    QCOMPARE(view->model(), nullptr);
}

void TestTestWidget::eachButtonReportsAndShowsTheTableItWrote_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("table");
    QTest::addColumn<int>("rowsAfter");

    QTest::newRow("item") << "pushButton"
                          << "item added to the database successfully "
                          << "Items" << 1;
    QTest::newRow("place") << "pushButton_2"
                           << "historic location added to the database successfully "
                           << "HistoricLocation" << 1;
    QTest::newRow("mode") << "pushButton_3"
                          << "Mode added to the database successfully "
                          << "Mode" << 3;
    QTest::newRow("entry") << "pushButton_4"
                           << "Entry added to the database successfully"
                           << "Entry" << 1;
}

void TestTestWidget::eachButtonReportsAndShowsTheTableItWrote()
{
    QFETCH(QString, button);
    QFETCH(QString, text);
    QFETCH(QString, table);
    QFETCH(int, rowsAfter);

    Fixture f;
    TestWidget page(&f.store);
    const SeenMessageBox box = press(page, button);
    QCOMPARE(box.text, text);
    VERIFY_BOX_SHAPE(box, BoxKind::Information);

    QCOMPARE(count(f.raw, table), rowsAfter);
    QSqlTableModel *model = shownModel(page);
    QVERIFY(model);
    QCOMPARE(model->tableName(), table);
    QCOMPARE(model->editStrategy(), QSqlTableModel::OnManualSubmit);
    QCOMPARE(model->rowCount(), rowsAfter);
    QCOMPARE(model->parent(), &page);
    auto *view = child<QTableView>(page, QStringLiteral("tableView"));
    for (int column = 0; column < model->columnCount(); ++column)
        QVERIFY(!view->isColumnHidden(column));
}

void TestTestWidget::addItemWritesTheSampleItem()
{
    Fixture f;
    TestWidget page(&f.store);
    press(page, QStringLiteral("pushButton"));
    // The store looks the category's number up itself and starts the count at one.
    const QList<QVariantList> rows =
        f.raw.rows(QStringLiteral("SELECT ItemName, CategoryName, CategoryID, LastPrice, UseFrequency FROM Items"));
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0).at(0).toString(), QStringLiteral("Add Item Test 1"));
    QCOMPARE(rows.at(0).at(1).toString(), QStringLiteral("Drinks"));
    QCOMPARE(rows.at(0).at(2).toInt(), f.store.GetCategoryID(QStringLiteral("Drinks")));
    QCOMPARE(rows.at(0).at(3).toFloat(), 11.0f);
    QCOMPARE(rows.at(0).at(4).toInt(), 1);
    QCOMPARE(shownModel(page)->index(0, 1).data().toString(), QStringLiteral("Add Item Test 1"));
}

void TestTestWidget::addGeoLocationWritesTheSamplePlace()
{
    Fixture f;
    TestWidget page(&f.store);
    press(page, QStringLiteral("pushButton_2"));
    const QList<QVariantList> rows = f.raw.rows(
        QStringLiteral("SELECT LocationName, LocationLongitude, LocationLatitude, ReverseGeoLocation, CoordinateText "
                       "FROM HistoricLocation"));
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0).at(0).toString(), QStringLiteral("Test Location 2"));
    QCOMPARE(rows.at(0).at(1).toFloat(), 103.856f);
    QCOMPARE(rows.at(0).at(2).toFloat(), 1.293f);
    QCOMPARE(rows.at(0).at(3).toString(), QStringLiteral("Singapore"));
    QCOMPARE(rows.at(0).at(4).toString(), QStringLiteral("103.856/1.293"));
}

void TestTestWidget::addEntryWritesTheSampleEntryNow()
{
    Fixture f;
    TestWidget page(&f.store);
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    press(page, QStringLiteral("pushButton_4"));
    const QDateTime after = QDateTime::currentDateTime().addSecs(1);

    const QList<QVariantList> rows = f.raw.rows(QStringLiteral(
        "SELECT ItemName, CategoryName, CategoryID, TransactDateTime, Price, LocationText, EnableGeoLoc FROM Entry"));
    QCOMPARE(rows.size(), 1);
    const QVariantList &row = rows.at(0);
    QCOMPARE(row.at(0).toString(), QStringLiteral("TestItem 1"));
    QCOMPARE(row.at(1).toString(), QStringLiteral("Food"));
    QCOMPARE(row.at(2).toInt(), f.store.GetCategoryID(QStringLiteral("Food")));
    const QString stored = row.at(3).toString();
    QVERIFY2(QRegularExpression(QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d$")).match(stored).hasMatch(),
             qPrintable(stored));
    const QDateTime when = QDateTime::fromString(stored, Qt::ISODate);
    QVERIFY2(when >= before && when <= after, qPrintable(stored));
    QCOMPARE(row.at(4).toFloat(), 10.5f);
    QCOMPARE(row.at(5).toString(), QStringLiteral("TestLocation 1"));
    QCOMPARE(row.at(6).toString(), QStringLiteral("false"));
    // The entry also counts as a use of its item.
    QCOMPARE(f.raw.scalar(QStringLiteral("SELECT UseFrequency FROM Items WHERE ItemName = 'TestItem 1'")).toInt(), 1);
}

void TestTestWidget::addModeOnAnExistingDefaultAddsNothing()
{
    Fixture f;
    TestWidget page(&f.store);
    const QList<QVariantList> before = f.raw.rows(QStringLiteral("SELECT * FROM Mode ORDER BY SNo"));
    QCOMPARE(press(page, QStringLiteral("pushButton_3")).text,
             QStringLiteral("Mode added to the database successfully "));
    QCOMPARE(f.raw.rows(QStringLiteral("SELECT * FROM Mode ORDER BY SNo")), before);
    QCOMPARE(shownModel(page)->tableName(), QStringLiteral("Mode"));
    QCOMPARE(shownModel(page)->rowCount(), 3);
}

void TestTestWidget::failedWritesShowTheirFailureTexts_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("text");

    // The item's failure text names the real number of "Drinks", the second default category.
    QTest::newRow("item") << "pushButton"
                          << "Items"
                          << "item could not be added to the database - 2";
    QTest::newRow("place") << "pushButton_2"
                           << "HistoricLocation"
                           << "historic location could not be added to the database ";
    QTest::newRow("mode") << "pushButton_3"
                          << "Mode"
                          << "Mode could not be added to the database ";
    QTest::newRow("entry") << "pushButton_4"
                           << "Entry"
                           << "Entry could not be added to the database!";
}

void TestTestWidget::failedWritesShowTheirFailureTexts()
{
    QFETCH(QString, button);
    QFETCH(QString, table);
    QFETCH(QString, text);

    Fixture f;
    QCOMPARE(f.store.GetCategoryID(QStringLiteral("Drinks")), 2);
    QVERIFY(f.raw.exec(QStringLiteral("DROP TABLE %1").arg(table)));
    TestWidget page(&f.store);
    const SeenMessageBox box = press(page, button);
    QCOMPARE(box.text, text);
    VERIFY_BOX_SHAPE(box, BoxKind::Information);
    // The view still gets the table's model; there is just nothing to show.
    QCOMPARE(shownModel(page)->tableName(), table);
    QCOMPARE(shownModel(page)->rowCount(), 0);
}

void TestTestWidget::substituteAndCategoryButtonsDoNothing()
{
    Fixture f;
    TestWidget page(&f.store);
    const QList<QVariantList> categories = f.raw.rows(QStringLiteral("SELECT * FROM Category ORDER BY SNo"));

    MessageBoxAnswerer answerer;
    child<QPushButton>(page, QStringLiteral("pushButton_5"))->click();
    child<QPushButton>(page, QStringLiteral("pushButton_6"))->click();
    QCoreApplication::processEvents();

    QVERIFY(answerer.seen().isEmpty());
    QVERIFY(answerer.errors().isEmpty());
    QCOMPARE(count(f.raw, QStringLiteral("ItemSubstitutes")), 0);
    QCOMPARE(f.raw.rows(QStringLiteral("SELECT * FROM Category ORDER BY SNo")), categories);
    QCOMPARE(shownModel(page), nullptr);
}

void TestTestWidget::eachPressReplacesTheTableInTheView()
{
    Fixture f;
    TestWidget page(&f.store);
    press(page, QStringLiteral("pushButton"));
    QSqlTableModel *items = shownModel(page);
    QCOMPARE(items->tableName(), QStringLiteral("Items"));

    press(page, QStringLiteral("pushButton_2"));
    QCOMPARE(shownModel(page)->tableName(), QStringLiteral("HistoricLocation"));
    QVERIFY(shownModel(page) != items);

    press(page, QStringLiteral("pushButton"));
    QCOMPARE(shownModel(page)->tableName(), QStringLiteral("Items"));
    QCOMPARE(shownModel(page)->rowCount(), 1);
    QCOMPARE(shownModel(page)->index(0, 5).data().toInt(), 2); // the second press raised the use count
}

void TestTestWidget::noMenuButtonLeadsToThePage()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    for (const char *name : { "pushButtonHome", "pushButtonExit", "pushButtonOptions" }) {
        child<QPushButton>(window, QString::fromLatin1(name))->click();
        QVERIFY2(!window.findChild<TestWidget *>(), name);
    }
    const QList<QPushButton *> buttons = window.findChildren<QPushButton *>();
    for (const QPushButton *button : buttons)
        QVERIFY2(!button->text().contains(QStringLiteral("Test")), qPrintable(button->text()));
}

QTEST_MAIN(TestTestWidget)

#include "tst_testwidget.moc"
