// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "entryimport.h"
#include "importpreviewdialog.h"
#include "rules.h"

#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"
#include "widgettest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

namespace {

struct Fixture
{
    TempHome home;
    DatabaseManager store { nullptr };

    // The file as the window reads it before the preview shows.
    EntryFileContents readFile(const QString &name, const QByteArray &bytes)
    {
        const QString file = home.filePath(name);
        if (!writeFile(file, bytes))
            qWarning("could not write %s", qPrintable(file));
        return EntryImport::read(file);
    }
};

QString text(const QDialog &dialog, const char *label)
{
    return child<QLabel>(dialog, label)->text();
}

QList<QStringList> tableRows(const QDialog &dialog)
{
    return tableTexts(child<QTableWidget>(dialog, "tableWidgetEntries"));
}


const QByteArray bankFile = "!Account\r\nNChecking\r\nTBank\r\n^\r\n!Type:Bank\r\n"
                            "D11/20/2026\r\nT-1,200.00\r\nPLandlord\r\nMRent\r\nLHousing\r\n^\r\n"
                            "D11/21/2026\r\nT3,000.00\r\nPEmployer\r\n^\r\n"
                            "D11/22/2026\r\nT0.00\r\nPVoid\r\n^\r\n"
                            "D11/23/2026\r\nT-50\r\nL[Savings]\r\n^\r\n"
                            "D11/24/2026\r\nT-2.5\r\nPKiosk\r\nMCoffee\r\nLDrinks\r\n^\r\n";

} // namespace

class TestImportPreviewDialog : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    void cleanup() { VERIFY_NO_WIDGETS_LEFT(); }

    void showsWhatItAddsWhatItSkipsAndWhy();
    void showsTheFirstHundredEntriesOfALargerFile();
    void changingTheEncodingReadsTheFileAgain();
    void changingTheDateOrderReadsTheFileAgain();
    void aDateOrderTheFileCannotBeReadInSaysWhyAndOffersNoImport();
    void alreadyImportedRecordsAreSkippedUnlessDuplicatesAreAllowed();
    void aCsvFileOffersNoEncodingOrDateOrder();
    void theEntriesShowTheCategoriesTheRulesGive();
};

void TestImportPreviewDialog::showsWhatItAddsWhatItSkipsAndWhy()
{
    Fixture f;
    const QString file = f.home.filePath(QStringLiteral("bank.qif"));
    ImportPreviewDialog dialog(f.store, file, f.readFile(QStringLiteral("bank.qif"), bankFile));
    dialog.show();

    QVERIFY(!dialog.parentWidget());
    QVERIFY(dialog.isModal());
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Import Preview"));
    QCOMPARE(text(dialog, "labelFile"), QStringLiteral("Importing from %1").arg(file));
    QCOMPARE(text(dialog, "labelAdded"), QStringLiteral("Adds 2 entries."));
    // One record in each reason, the account block being another section.
    QCOMPARE(text(dialog, "labelSkipped"),
             QStringLiteral("Skips 4: income 1, transfers 1, zero amounts 1, other sections 1."));
    QVERIFY(!child<QLabel>(dialog, "labelOpenDate")->isVisible());
    QVERIFY(!child<QLabel>(dialog, "labelProblems")->isVisible());
    // Without rules nothing is said of them.
    QVERIFY(!child<QLabel>(dialog, "labelCategorised")->isVisible());
    auto *encoding = child<QComboBox>(dialog, "comboBoxEncoding");
    QVERIFY(encoding->isEnabled());
    QCOMPARE(encoding->currentText(), QStringLiteral("UTF-8"));
    auto *order = child<QComboBox>(dialog, "comboBoxDateOrder");
    QVERIFY(order->isEnabled());
    QCOMPARE(order->currentText(), QStringLiteral("Month first (mdy)"));
    QVERIFY(!child<QCheckBox>(dialog, "checkBoxAllowDuplicates")->isChecked());
    QCOMPARE(child<QCheckBox>(dialog, "checkBoxAllowDuplicates")->text(), QStringLiteral("Allow duplicates"));

    auto *table = child<QTableWidget>(dialog, "tableWidgetEntries");
    QStringList headings;
    for (int column = 0; column < table->columnCount(); ++column)
        headings.append(table->horizontalHeaderItem(column)->text());
    QCOMPARE(headings, QStringList({ "Date", "Item", "Category", "Amount", "Place" }));
    QCOMPARE(text(dialog, "labelShown"), QStringLiteral("The entries:"));
    QCOMPARE(tableRows(dialog),
             QList<QStringList>({ { "Fri Nov 20 2026", "Rent", "Housing", "1200", "Landlord" },
                                  { "Tue Nov 24 2026", "Coffee", "Drinks", "2.5", "Kiosk" } }));
    QCOMPARE(child<QPushButton>(dialog, "pushButtonImport")->text(), QStringLiteral("Import"));
    QVERIFY(child<QPushButton>(dialog, "pushButtonImport")->isEnabled());
    QCOMPARE(dialog.contents().entries.size(), 2);
}

void TestImportPreviewDialog::showsTheFirstHundredEntriesOfALargerFile()
{
    Fixture f;
    QByteArray bytes = "!Type:Cash\r\n";
    for (int i = 0; i < 150; ++i)
        bytes += "D2026-01-01\r\nT-" + QByteArray::number(i + 1) + "\r\nMItem " + QByteArray::number(i) + "\r\n^\r\n";
    ImportPreviewDialog dialog(f.store, f.home.filePath(QStringLiteral("many.qif")),
                               f.readFile(QStringLiteral("many.qif"), bytes));
    QCOMPARE(text(dialog, "labelAdded"), QStringLiteral("Adds 150 entries."));
    QCOMPARE(text(dialog, "labelSkipped"), QStringLiteral("Skips nothing."));
    QCOMPARE(text(dialog, "labelShown"), QStringLiteral("The first 100 entries:"));
    const QList<QStringList> rows = tableRows(dialog);
    QCOMPARE(rows.size(), 100);
    QCOMPARE(rows.constFirst().value(1), QStringLiteral("Item 0"));
    QCOMPARE(rows.constLast().value(1), QStringLiteral("Item 99"));
    QCOMPARE(rows.constLast().value(3), QStringLiteral("100"));
    QCOMPARE(dialog.contents().entries.size(), 150);
}

void TestImportPreviewDialog::changingTheEncodingReadsTheFileAgain()
{
    Fixture f;
    // "Café" in UTF-8: two bytes that Windows-1252 reads as "Ã©".
    ImportPreviewDialog dialog(
        f.store, f.home.filePath(QStringLiteral("cafe.qif")),
        f.readFile(QStringLiteral("cafe.qif"), "!Type:Cash\r\nD2026-05-01\r\nT-3\r\nMCaf\xc3\xa9\r\n^\r\n"));
    dialog.show();
    auto *encoding = child<QComboBox>(dialog, "comboBoxEncoding");
    QCOMPARE(encoding->currentText(), QStringLiteral("UTF-8"));
    QCOMPARE(tableRows(dialog).value(0).value(1), QString::fromUtf8("Caf\xc3\xa9"));

    pickByKeys(encoding, encoding->findText(QStringLiteral("Windows-1252")));
    QCOMPARE(encoding->currentText(), QStringLiteral("Windows-1252"));
    QCOMPARE(tableRows(dialog).value(0).value(1), QString::fromUtf8("Caf\xc3\x83\xc2\xa9"));
    QCOMPARE(dialog.contents().entries.value(0).entry.ItemName, QString::fromUtf8("Caf\xc3\x83\xc2\xa9"));
    QCOMPARE(text(dialog, "labelAdded"), QStringLiteral("Adds 1 entry."));
}

void TestImportPreviewDialog::changingTheDateOrderReadsTheFileAgain()
{
    Fixture f;
    // No date decides: 05/05 reads the same either way.
    ImportPreviewDialog dialog(f.store, f.home.filePath(QStringLiteral("open.qif")),
                               f.readFile(QStringLiteral("open.qif"),
                                          "!Type:Cash\r\nD05/05/2026\r\nT-1\r\nMSame\r\n^\r\n"
                                          "D03/04/2026\r\nT-2\r\nMTea\r\n^\r\n"));
    dialog.show();
    auto *order = child<QComboBox>(dialog, "comboBoxDateOrder");
    QCOMPARE(order->currentText(), QStringLiteral("Month first (mdy)"));
    QVERIFY(child<QLabel>(dialog, "labelOpenDate")->isVisible());
    QCOMPARE(text(dialog, "labelOpenDate"),
             QStringLiteral("The dates can be read two ways: 03/04/2026 (line 6) is Wed Mar 4 2026 with the month "
                            "first, or Fri Apr 3 2026 with the day first. Choose the date order that this file is "
                            "written in."));
    QCOMPARE(tableRows(dialog).value(1).value(0), QStringLiteral("Wed Mar 4 2026"));

    pickByKeys(order, 1);
    QCOMPARE(order->currentText(), QStringLiteral("Day first (dmy)"));
    QCOMPARE(tableRows(dialog).value(0).value(0), QStringLiteral("Tue May 5 2026"));
    QCOMPARE(tableRows(dialog).value(1).value(0), QStringLiteral("Fri Apr 3 2026"));
    QCOMPARE(dialog.contents().entries.value(1).entry.TransactDateTime, QDate(2026, 4, 3).startOfDay());

    pickByKeys(order, 0);
    QCOMPARE(tableRows(dialog).value(1).value(0), QStringLiteral("Wed Mar 4 2026"));
}

void TestImportPreviewDialog::aDateOrderTheFileCannotBeReadInSaysWhyAndOffersNoImport()
{
    Fixture f;
    // Month first, as 31 says; year first, 12/31/05 would be the 5th day of
    // month 31 of 2012.
    ImportPreviewDialog dialog(
        f.store, f.home.filePath(QStringLiteral("late.qif")),
        f.readFile(QStringLiteral("late.qif"), "!Type:Cash\r\nD12/31/05\r\nT-2\r\nMTea\r\n^\r\n"));
    dialog.show();
    QCOMPARE(child<QComboBox>(dialog, "comboBoxDateOrder")->currentText(), QStringLiteral("Month first (mdy)"));
    pickByKeys(child<QComboBox>(dialog, "comboBoxDateOrder"), 2);
    QCOMPARE(child<QComboBox>(dialog, "comboBoxDateOrder")->currentText(), QStringLiteral("Year first (ymd)"));
    QVERIFY(child<QLabel>(dialog, "labelProblems")->isVisible());
    QVERIFY2(text(dialog, "labelProblems").startsWith(QStringLiteral("The file cannot be read this way:\nline 2: ")),
             qPrintable(text(dialog, "labelProblems")));
    QCOMPARE(text(dialog, "labelAdded"), QStringLiteral("Adds 0 entries."));
    QCOMPARE(tableRows(dialog).size(), 0);
    QVERIFY(!child<QPushButton>(dialog, "pushButtonImport")->isEnabled());

    pickByKeys(child<QComboBox>(dialog, "comboBoxDateOrder"), 0);
    QVERIFY(!child<QLabel>(dialog, "labelProblems")->isVisible());
    QVERIFY(child<QPushButton>(dialog, "pushButtonImport")->isEnabled());
    QCOMPARE(tableRows(dialog).value(0).value(0), QStringLiteral("Sat Dec 31 2005"));
}

void TestImportPreviewDialog::alreadyImportedRecordsAreSkippedUnlessDuplicatesAreAllowed()
{
    Fixture f;
    const QString file = f.home.filePath(QStringLiteral("bank.qif"));
    EntryFileContents first = f.readFile(QStringLiteral("bank.qif"), bankFile);
    EntryImport::recognise(f.store, first);
    QVERIFY(EntryImport::write(f.store, first.entries, {}, file).written);

    ImportPreviewDialog dialog(f.store, file, EntryImport::read(file));
    dialog.show();
    QCOMPARE(text(dialog, "labelAdded"), QStringLiteral("Adds 0 entries."));
    QCOMPARE(text(dialog, "labelSkipped"),
             QStringLiteral("Skips 6: income 1, transfers 1, zero amounts 1, already imported 2, other sections 1."));
    QCOMPARE(tableRows(dialog).size(), 0);

    child<QCheckBox>(dialog, "checkBoxAllowDuplicates")->click();
    QCOMPARE(text(dialog, "labelAdded"), QStringLiteral("Adds 2 entries."));
    QCOMPARE(text(dialog, "labelSkipped"),
             QStringLiteral("Skips 4: income 1, transfers 1, zero amounts 1, other sections 1."));
    QCOMPARE(tableRows(dialog).size(), 2);
    QCOMPARE(dialog.contents().entries.size(), 2);

    child<QCheckBox>(dialog, "checkBoxAllowDuplicates")->click();
    QCOMPARE(text(dialog, "labelAdded"), QStringLiteral("Adds 0 entries."));
}

void TestImportPreviewDialog::aCsvFileOffersNoEncodingOrDateOrder()
{
    Fixture f;
    ImportPreviewDialog dialog(f.store, f.home.filePath(QStringLiteral("more.csv")),
                               f.readFile(QStringLiteral("more.csv"),
                                          "Date,Item,Category,Amount,Place,GeoLocation,Longitude,Latitude\r\n"
                                          "2026-11-16T10:00:00,Tea,Drinks,1.5,Kiosk,false,0,0\r\n"));
    QVERIFY(!child<QComboBox>(dialog, "comboBoxEncoding")->isEnabled());
    QVERIFY(!child<QComboBox>(dialog, "comboBoxDateOrder")->isEnabled());
    QCOMPARE(tableRows(dialog), QList<QStringList>({ { "Mon Nov 16 2026", "Tea", "Drinks", "1.5", "Kiosk" } }));
}

void TestImportPreviewDialog::theEntriesShowTheCategoriesTheRulesGive()
{
    Fixture f;
    Rules rules(f.store);
    // Kiosk's entry comes with a category of its own, which stays.
    QVERIFY(
        rules.add({ QStringLiteral("kiosk|landlord"), Rule::Field::Both, Rule::How::Regex, QStringLiteral("Rent") }));
    const QByteArray bytes = "!Type:Bank\r\nD11/20/2026\r\nT-1,200.00\r\nPLandlord\r\n^\r\n"
                             "D11/24/2026\r\nT-2.5\r\nPKiosk\r\nMCoffee\r\nLDrinks\r\n^\r\n"
                             "D11/25/2026\r\nT-3\r\nPBakery\r\n^\r\n";
    ImportPreviewDialog dialog(f.store, f.home.filePath(QStringLiteral("bank.qif")),
                               f.readFile(QStringLiteral("bank.qif"), bytes));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QStringList categories;
    for (const QStringList &row : tableRows(dialog))
        categories << row.at(1) + QLatin1Char('|') + row.at(2);
    QCOMPARE(categories, QStringList({ "Landlord|Rent", "Coffee|Drinks", "Bakery|Others" }));
    QCOMPARE(text(dialog, "labelCategorised"), QStringLiteral("The rules give 1 of them its category."));
    QVERIFY(child<QLabel>(dialog, "labelCategorised")->isVisible());
    // What Import writes is what the table shows.
    QCOMPARE(dialog.contents().entries.constFirst().entry.CategoryName, QStringLiteral("Rent"));
    QCOMPARE(dialog.contents().categorisedByRules, 1);
}

QTEST_MAIN(TestImportPreviewDialog)
#include "tst_importpreviewdialog.moc"
