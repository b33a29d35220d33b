// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// The step that maps a bank CSV's columns before the import preview.
#include "csvmappingdialog.h"
#include "csvprofiles.h"
#include "databasemanager.h"

#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"
#include "widgettest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

namespace {

struct Fixture
{
    TempHome home;
    DatabaseManager store { nullptr };
};

QString text(const QDialog &dialog, const char *label)
{
    return child<QLabel>(dialog, label)->text();
}

QList<QStringList> tableRows(const QDialog &dialog)
{
    return tableTexts(child<QTableWidget>(dialog, "tableWidgetRows"));
}

QStringList headings(const QDialog &dialog)
{
    auto *table = child<QTableWidget>(dialog, "tableWidgetRows");
    QStringList names;
    for (int column = 0; column < table->columnCount(); ++column)
        names.append(table->horizontalHeaderItem(column)->text());
    return names;
}

// A German bank's export: a title line, ';', a decimal comma.
const QByteArray giro = "Umsätze Girokonto;;;\n"
                        "Buchungstag;Verwendungszweck;Empfänger;Betrag (EUR)\n"
                        "02.03.2026;Miete März;Hausverwaltung;-850,00\n"
                        "03.03.2026;Lohn;Arbeitgeber GmbH;2.500,00\n"
                        "05.03.2026;Einkauf;REWE;-23,45\n"
                        "Kontostand;;;1.626,55\n";

} // namespace

class TestCsvMappingDialog : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    void cleanup() { VERIFY_NO_WIDGETS_LEFT(); }

    void headerNamesOfFourLanguagesMeanTheirFields_data();
    void headerNamesOfFourLanguagesMeanTheirFields();
    void theColumnsAreFilledInFromTheHeaderAndTheRowsShown();
    void choosingAnotherColumnOrSettingReadsTheFileAgain();
    void debitAndCreditColumnsAreChosenWhereThereIsNoAmount();
    void savingAsAProfileKeepsTheMappingAsTheCommandLineWouldGiveIt();
    void aSavedProfileWhoseColumnsTheHeaderNamesIsChosenAtOnce();
    void aProfileWhoseColumnsTheFileLacksIsNotChosen();
    void aFileWithoutAHeaderIsMappedByColumnNumbers();
    void anotherEncodingOrDateFormReadsTheRowsAgain();
};

void TestCsvMappingDialog::headerNamesOfFourLanguagesMeanTheirFields_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("field");
    for (const char *name : { "Date", "Datum", "Buchungstag", "fecha", "Transaction Date" })
        QTest::newRow(name) << QString::fromUtf8(name) << int(CsvMapping::Date);
    for (const char *name : { "Payee", "Empfänger", "Bénéficiaire", "Beneficiario", "Description" })
        QTest::newRow(name) << QString::fromUtf8(name) << int(CsvMapping::Item);
    for (const char *name : { "Amount", "Betrag", "Montant", "Importe", "Betrag (EUR)", " amount " })
        QTest::newRow(name) << QString::fromUtf8(name) << int(CsvMapping::Amount);
    for (const char *name : { "Outflow", "Débit", "Soll", "Cargo", "Withdrawals (SGD)" })
        QTest::newRow(name) << QString::fromUtf8(name) << int(CsvMapping::Debit);
    for (const char *name : { "Inflow", "Crédit", "Haben", "Abono", "Deposits (SGD)" })
        QTest::newRow(name) << QString::fromUtf8(name) << int(CsvMapping::Credit);
    for (const char *name : { "Category", "Kategorie", "Catégorie", "Categoría" })
        QTest::newRow(name) << QString::fromUtf8(name) << int(CsvMapping::Category);
    for (const char *name : { "Saldo", "Balance", "Währung", "" })
        QTest::newRow(name) << QString::fromUtf8(name) << int(CsvMapping::FieldCount);
}

void TestCsvMappingDialog::headerNamesOfFourLanguagesMeanTheirFields()
{
    QFETCH(QString, name);
    QFETCH(int, field);
    QCOMPARE(int(CsvMappingDialog::fieldOfHeader(name)), field);
}

void TestCsvMappingDialog::theColumnsAreFilledInFromTheHeaderAndTheRowsShown()
{
    Fixture f;
    CsvMappingDialog dialog(f.store, f.home.filePath(QStringLiteral("giro.csv")), giro);
    dialog.show();
    QVERIFY(!dialog.parentWidget());
    QVERIFY(dialog.isModal());
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Map the Columns"));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxDate")->currentText(), QStringLiteral("Buchungstag (column 1)"));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxItem")->currentText(), QStringLiteral("Empfänger (column 3)"));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxAmount")->currentText(), QStringLiteral("Betrag (EUR) (column 4)"));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxPlace")->currentText(), QStringLiteral("None"));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxDebit")->currentText(), QStringLiteral("None"));
    QCOMPARE(text(dialog, "labelDetected"),
             QStringLiteral("Read with: delimiter \";\", encoding UTF-8, dates d.M.yyyy, decimal comma."));
    QCOMPARE(text(dialog, "labelReads"), QStringLiteral("Reads 2 expenses; skips 2 (income 1, not transactions 1)."));
    QCOMPARE(headings(dialog), QStringList({ "Buchungstag", "Verwendungszweck", "Empfänger", "Betrag (EUR)" }));
    QCOMPARE(tableRows(dialog),
             QList<QStringList>({ { "02.03.2026", "Miete März", "Hausverwaltung", "-850,00" },
                                  { "03.03.2026", "Lohn", "Arbeitgeber GmbH", "2.500,00" },
                                  { "05.03.2026", "Einkauf", "REWE", "-23,45" },
                                  { "Kontostand", "", "", "1.626,55" } }));
    QVERIFY(child<QPushButton>(dialog, "pushButtonNext")->isEnabled());
    QCOMPARE(dialog.mapping().text(), QStringLiteral("--map 'date=Buchungstag,item=Empfänger,amount=Betrag (EUR)'"));
}

void TestCsvMappingDialog::choosingAnotherColumnOrSettingReadsTheFileAgain()
{
    Fixture f;
    CsvMappingDialog dialog(f.store, f.home.filePath(QStringLiteral("giro.csv")), giro);
    dialog.show();
    // The memo as the item, the payee as the place.
    pickByKeys(child<QComboBox>(dialog, "comboBoxItem"), 2);
    QCOMPARE(child<QComboBox>(dialog, "comboBoxItem")->currentText(), QStringLiteral("Verwendungszweck (column 2)"));
    auto *place = child<QComboBox>(dialog, "comboBoxPlace");
    pickByKeys(place, 3);
    QCOMPARE(dialog.mapping().mapText(),
             QStringLiteral("date=Buchungstag,item=Verwendungszweck,place=Empfänger,amount=Betrag (EUR)"));
    // A card statement: positive amounts are spent.
    pickByKeys(child<QComboBox>(dialog, "comboBoxSign"), 1);
    QCOMPARE(text(dialog, "labelReads"), QStringLiteral("Reads 1 expense; skips 3 (income 2, not transactions 1)."));
    QVERIFY(dialog.mapping().invert);
    pickByKeys(child<QComboBox>(dialog, "comboBoxSign"), 0);
    // A delimiter the file does not use finds no header line.
    pickByKeys(child<QComboBox>(dialog, "comboBoxDelimiter"), 1);
    QCOMPARE(dialog.mapping().delimiter, QLatin1Char(','));
    QVERIFY(text(dialog, "labelReads")
                .startsWith(QLatin1String("The file cannot be read this way:\nno line names "
                                          "the columns")));
    QVERIFY(!child<QPushButton>(dialog, "pushButtonNext")->isEnabled());
    pickByKeys(child<QComboBox>(dialog, "comboBoxDelimiter"), 2);
    QCOMPARE(text(dialog, "labelReads"), QStringLiteral("Reads 2 expenses; skips 2 (income 1, not transactions 1)."));
    QVERIFY(child<QPushButton>(dialog, "pushButtonNext")->isEnabled());
    // Taking the date away leaves the mapping incomplete.
    pickByKeys(child<QComboBox>(dialog, "comboBoxDate"), 0);
    QCOMPARE(text(dialog, "labelReads"), QStringLiteral("--map needs a date column: date=NAME or date=NUMBER."));
    QVERIFY(!child<QPushButton>(dialog, "pushButtonNext")->isEnabled());
}

void TestCsvMappingDialog::debitAndCreditColumnsAreChosenWhereThereIsNoAmount()
{
    Fixture f;
    const QByteArray ynab = "\"Date\",\"Payee\",\"Outflow\",\"Inflow\"\n\"2022/11/07\",\"shop1\",4.75,0.00\n"
                            "\"2022/11/08\",\"work\",0.00,100.00\n";
    CsvMappingDialog dialog(f.store, f.home.filePath(QStringLiteral("ynab.csv")), ynab);
    dialog.show();
    QCOMPARE(dialog.mapping().mapText(), QStringLiteral("date=Date,item=Payee,debit=Outflow,credit=Inflow"));
    QCOMPARE(text(dialog, "labelReads"), QStringLiteral("Reads 1 expense; skips 1 (income 1)."));
}

void TestCsvMappingDialog::savingAsAProfileKeepsTheMappingAsTheCommandLineWouldGiveIt()
{
    Fixture f;
    CsvMappingDialog dialog(f.store, f.home.filePath(QStringLiteral("giro.csv")), giro);
    dialog.show();
    pickByKeys(child<QComboBox>(dialog, "comboBoxDecimal"), 1);
    child<QCheckBox>(dialog, "checkBoxSaveProfile")->setChecked(true);
    // Without a name nothing is saved and the dialog stays.
    QTest::mouseClick(child<QPushButton>(dialog, "pushButtonNext"), Qt::LeftButton);
    QVERIFY(dialog.isVisible());
    QCOMPARE(text(dialog, "labelReads"), QStringLiteral("Name the profile to save it."));
    QTest::keyClicks(child<QLineEdit>(dialog, "lineEditProfileName"), QStringLiteral("Giro"));
    QTest::mouseClick(child<QPushButton>(dialog, "pushButtonNext"), Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    RawDatabase raw(f.home.databasePath());
    QCOMPARE(raw.rows(QStringLiteral("SELECT Name, Mapping FROM CsvProfile")),
             QList<QVariantList>({ { QStringLiteral("Giro"),
                                     QStringLiteral("--map 'date=Buchungstag,item=Empfänger,amount=Betrag (EUR)' "
                                                    "--decimal comma") } }));
}

void TestCsvMappingDialog::aSavedProfileWhoseColumnsTheHeaderNamesIsChosenAtOnce()
{
    Fixture f;
    CsvProfiles profiles(f.store);
    QVERIFY(profiles.save(QStringLiteral("Another bank"), QStringLiteral("--map date=Datum,item=Name,amount=Summe")));
    QVERIFY(profiles.save(QStringLiteral("Giro"),
                          QStringLiteral("--map date=Buchungstag,item=Verwendungszweck,place=Empfänger,"
                                         "amount='Betrag (EUR)' --invert")));
    CsvMappingDialog dialog(f.store, f.home.filePath(QStringLiteral("giro.csv")), giro);
    dialog.show();
    QCOMPARE(dialog.chosenProfile(), QStringLiteral("Giro"));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxProfile")->currentText(), QStringLiteral("Giro"));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxItem")->currentText(), QStringLiteral("Verwendungszweck (column 2)"));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxPlace")->currentText(), QStringLiteral("Empfänger (column 3)"));
    QCOMPARE(child<QComboBox>(dialog, "comboBoxSign")->currentIndex(), 1);
    QCOMPARE(text(dialog, "labelReads"), QStringLiteral("Reads 1 expense; skips 3 (income 2, not transactions 1)."));
    // The user can change it: without a profile the header's names suggest
    // the columns; another profile shows its own.
    auto *profile = child<QComboBox>(dialog, "comboBoxProfile");
    pickByKeys(profile, 0);
    QCOMPARE(profile->currentText(), QStringLiteral("None"));
    QCOMPARE(dialog.mapping().text(), QStringLiteral("--map 'date=Buchungstag,item=Empfänger,amount=Betrag (EUR)'"));
    pickByKeys(profile, 1);
    QCOMPARE(profile->currentText(), QStringLiteral("Another bank"));
    QCOMPARE(dialog.mapping().mapText(), QString());
    QCOMPARE(text(dialog, "labelReads"), QStringLiteral("--map needs a date column: date=NAME or date=NUMBER."));
}

void TestCsvMappingDialog::aProfileWhoseColumnsTheFileLacksIsNotChosen()
{
    Fixture f;
    QVERIFY(CsvProfiles(f.store).save(QStringLiteral("Card"),
                                      QStringLiteral("--map date=Buchungstag,item=Händler,amount='Betrag (EUR)'")));
    CsvMappingDialog dialog(f.store, f.home.filePath(QStringLiteral("giro.csv")), giro);
    dialog.show();
    QCOMPARE(dialog.chosenProfile(), QString());
    QCOMPARE(child<QComboBox>(dialog, "comboBoxProfile")->currentText(), QStringLiteral("None"));
    QCOMPARE(dialog.mapping().mapText(), QStringLiteral("date=Buchungstag,item=Empfänger,amount=Betrag (EUR)"));
}

void TestCsvMappingDialog::aFileWithoutAHeaderIsMappedByColumnNumbers()
{
    Fixture f;
    const QByteArray rows = "18.09.2017\tBilla\tEUR\t\t12,40\n19.09.2017\tGehalt\tEUR\t2.000,00\t\n";
    CsvMappingDialog dialog(f.store, f.home.filePath(QStringLiteral("export.csv")), rows);
    dialog.show();
    // A first row of dates and amounts is no header.
    QVERIFY(!child<QCheckBox>(dialog, "checkBoxHeader")->isChecked());
    QCOMPARE(child<QComboBox>(dialog, "comboBoxDate")->itemText(1), QStringLiteral("Column 1"));
    QCOMPARE(headings(dialog), QStringList({ "Column 1", "Column 2", "Column 3", "Column 4", "Column 5" }));
    QCOMPARE(tableRows(dialog).size(), 2);
    pickByKeys(child<QComboBox>(dialog, "comboBoxDate"), 1);
    pickByKeys(child<QComboBox>(dialog, "comboBoxItem"), 2);
    pickByKeys(child<QComboBox>(dialog, "comboBoxDebit"), 5);
    pickByKeys(child<QComboBox>(dialog, "comboBoxCredit"), 4);
    QCOMPARE(dialog.mapping().text(), QStringLiteral("--map date=1,item=2,debit=5,credit=4 --skip-lines 0"));
    QCOMPARE(text(dialog, "labelReads"), QStringLiteral("Reads 1 expense; skips 1 (income 1)."));
    // With a header, its first row would be the names.
    child<QCheckBox>(dialog, "checkBoxHeader")->setChecked(true);
    QCOMPARE(child<QComboBox>(dialog, "comboBoxDate")->itemText(1), QStringLiteral("18.09.2017 (column 1)"));
}

void TestCsvMappingDialog::anotherEncodingOrDateFormReadsTheRowsAgain()
{
    Fixture f;
    // Windows-1250: 0x8A is "Š" there, and also in Windows-1252, which the
    // bytes are taken for; 0xE8 is "č" there and "è" in Windows-1252.
    const QByteArray czech = "Datum;Name;Betrag\n27-05-2018;\x8akoda \xe8"
                             "erpadlo;-1,00\n";
    CsvMappingDialog dialog(f.store, f.home.filePath(QStringLiteral("pohyby.csv")), czech);
    dialog.show();
    QCOMPARE(tableRows(dialog).constFirst().at(1), QStringLiteral("Škoda èerpadlo"));
    // 27-05-2018 is in no form detected: no date reads.
    QCOMPARE(text(dialog, "labelReads"),
             QStringLiteral("The file cannot be read this way:\nline 2: the dates of most rows cannot be read; choose "
                            "the date form with --date-format"));
    QVERIFY(!child<QPushButton>(dialog, "pushButtonNext")->isEnabled());
    auto *encoding = child<QComboBox>(dialog, "comboBoxEncoding");
    pickByKeys(encoding, encoding->findText(QStringLiteral("windows-1250")));
    QCOMPARE(tableRows(dialog).constFirst().at(1), QStringLiteral("Škoda čerpadlo"));
    auto *dateForm = child<QComboBox>(dialog, "comboBoxDateForm");
    pickByKeys(dateForm, dateForm->findText(QStringLiteral("dd-MM-yyyy")));
    QCOMPARE(text(dialog, "labelReads"), QStringLiteral("Reads 1 expense."));
    QVERIFY(child<QPushButton>(dialog, "pushButtonNext")->isEnabled());
    QCOMPARE(dialog.mapping().text(),
             QStringLiteral("--map date=Datum,item=Name,amount=Betrag --encoding "
                            "windows-1250 --date-format dd-MM-yyyy"));
}

QTEST_MAIN(TestCsvMappingDialog)
#include "tst_csvmappingdialog.moc"
