// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "mainwindow.h"
#include "optionswidget.h"
#include "recurringexpenses.h"
#include "settings.h"
#include "storageform.h"

#include "dialoganswerer.h"
#include "mainwindowfixture.h"
#include "messageboxanswerer.h"
#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"
#include "widgettest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QSqlDatabase>
#include <QSqlTableModel>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QTabWidget>
#include <QTableView>
#include <QTextDocument>
#include <QTimer>
#include <QSpinBox>
#include <QTableWidget>
#include <QtTest>

namespace {

const QString unsavedText = QStringLiteral("Your changes to the entries could not be saved.");

enum Tab { CategoryTab = 0, ModeTab = 1, EntriesTab = 2, BudgetsTab = 3, RulesTab = 4, RecurringTab = 5 };
enum Column { ItemNameColumn = 1, DateColumn = 4, PriceColumn = 5, LocationColumn = 6 };

QStringList items(const QComboBox *box)
{
    QStringList result;
    for (int i = 0; i < box->count(); ++i)
        result.append(box->itemText(i));
    return result;
}

// Categories that no entry uses, in the store's order, read straight from the file.
QStringList unusedCategories(RawDatabase &raw)
{
    QStringList names;
    const QList<QVariantList> rows = raw.rows(QStringLiteral(
        "SELECT CategoryName FROM Category WHERE CategoryName NOT IN (SELECT CategoryName FROM Entry) ORDER BY SNo"));
    for (const QVariantList &row : rows)
        names.append(row.at(0).toString());
    return names;
}

int categoryCount(RawDatabase &raw, const QString &name)
{
    return raw.scalar(QStringLiteral("SELECT COUNT(*) FROM Category WHERE CategoryName = '%1'").arg(name)).toInt();
}

QStringList modeNames(RawDatabase &raw)
{
    QStringList names;
    for (const QVariantList &row : raw.rows(QStringLiteral("SELECT ModeName FROM Mode ORDER BY SNo")))
        names.append(row.at(0).toString());
    return names;
}

QString entryValue(RawDatabase &raw, int sno, const char *column)
{
    return raw.scalar(QStringLiteral("SELECT %1 FROM Entry WHERE SNo = %2").arg(QLatin1String(column)).arg(sno))
        .toString();
}

double entryPrice(RawDatabase &raw, int sno)
{
    return raw.scalar(QStringLiteral("SELECT Price FROM Entry WHERE SNo = %1").arg(sno)).toDouble();
}

// One home, one store on its file, one options page, and a raw view of the file.
struct Fixture
{
    // The entry most tests edit; its SNo.
    int addCoffee()
    {
        return raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"),
                               QDateTime(QDate(2026, 3, 1), QTime(8, 0)), 2.5);
    }

    TempHome home;
    DatabaseManager store { nullptr };
    RawDatabase raw { home.databasePath() };
};

QTabWidget *tabs(const OptionsWidget &page)
{
    return child<QTabWidget>(page, "tabWidgetOptionsContainer");
}

// Shows the page on its entries tab, where editors need a window on screen.
bool showEntriesTab(OptionsWidget &page)
{
    page.show();
    if (!QTest::qWaitForWindowExposed(&page))
        return false;
    child<QTabWidget>(page, "tabWidgetOptionsContainer")->setCurrentIndex(EntriesTab);
    return true;
}

QTableView *entriesView(const OptionsWidget &page)
{
    return child<QTableView>(page, "tableViewEditEntries");
}

QSqlTableModel *entriesModel(const OptionsWidget &page)
{
    return qobject_cast<QSqlTableModel *>(entriesView(page)->model());
}

// Opens the table's own editor on a cell, as a double click would.
QWidget *openEditor(QTableView *view, int row, int column)
{
    const QModelIndex index = view->model()->index(row, column);
    view->setCurrentIndex(index);
    view->edit(index);
    return view->indexWidget(index);
}

// Enter commits the editor's value to the model (queued by the delegate).
void commit(QWidget *editor)
{
    QTest::keyClick(editor, Qt::Key_Return);
}

void typeInto(QWidget *editor, const QString &text)
{
    if (auto *lineEdit = qobject_cast<QLineEdit *>(editor))
        lineEdit->selectAll();
    if (auto *spinBox = qobject_cast<QAbstractSpinBox *>(editor))
        spinBox->selectAll();
    QTest::keyClicks(editor, text);
}

} // namespace

class TestOptionsWidget : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void budgetsTabListsEveryCategoryWithItsBudgetAndTheMonthStart();
    void savingBudgetsStoresEditsRemovalsAndTheMonthStart();
    void cancelDropsTheBudgetEditsAndShowsWhatIsStored();
    void aBudgetSaveThatFailsKeepsTheEdits();
    void aBudgetAmountThatIsNoAmountIsRefusedAndNothingSaved();
    void rulesTabListsTheRulesInTheOrderTheyAreTried();
    void addTakesANewRuleFromItsDialog();
    void aRuleTheDialogCannotUseKeepsTheDialogOpenWithTheReason();
    void editShowsTheSelectedRuleAndReplacesIt();
    void removeAsksFirstAndRemovesOnlyOnYes();
    void upAndDownMoveTheSelectedRuleAndTheSelectionFollows();
    void applyShowsTheDryRunCountBeforeItRecategorises();
    void applyWithNothingToDoSaysSoAndAsksNothing();
    void recurringTabListsEveryExpenseAndTheNextThirtyDaysWithTheirTotal();
    void addingARecurringExpenseStoresWhatTheDialogSays();
    void aRecurringExpenseThatCannotBeKeptKeepsTheDialogOpenAndStoresNothing();
    void editingARecurringExpenseStoresTheChange();
    void removingARecurringExpenseAsksFirstAndKeepsItsEntries();
    void initTestCase() { WidgetTest::initTestCase(); }
    void cleanup();

    // The form
    void formHasTheDesignedWidgetsAndGeometry_data();
    void formHasTheDesignedWidgetsAndGeometry();
    void formHasItsTitleSizeAndStyles();
    void tabsCaptionsAndButtonsCarryTheirTexts();
    void buildingTheFormRunsNoTabHandler();

    // Categories
    void aNewPageShowsTheCategoryTabWithEachUnusedCategoryTwice();
    void everyVisitToTheCategoryTabAppendsTheListAgain();
    void addingACategoryConfirmsStoresAndClearsTheField();
    void aNewCategoryIsListedOnlyAtTheNextFilling();
    void addingAnExistingCategoryReportsSuccessAndAddsNothing();
    void anEmptyNameIsRefusedWithoutAskingTheStore_data();
    void anEmptyNameIsRefusedWithoutAskingTheStore();
    void aNameOfBlanksIsStoredAsItIs();
    void discardingTheConfirmationChangesNothing_data();
    void discardingTheConfirmationChangesNothing();
    void renamingAnUnusedCategoryRefillsTheListOnce();
    void renamingToANameInUseFailsAndKeepsTheFields();
    void renamingWithEveryCategoryInUseFails();

    // Modes
    void aNewPageShowsDefaultInRedAndOffersTheOtherModesInStoreOrder();
    void switchingModeAsksReportsAndOffersTheOthers();
    void discardingAModeSwitchChangesNothing();
    void aStoreHoldingOnlyTheCurrentModeOffersAnEmptySwitch();
    void aStoreWithoutDefaultStillStartsFromDefault();

    // Entry editing
    void theEntriesTabShowsTheEditableColumnsOfTheEntryTable();
    void savingStoresAnEditedPriceAndItemNameAndSaysNothing();
    void cancelRestoresTheStoredValues();
    void switchingAwayAndBackKeepsTheOneModelAndRereadsAnUneditedTable();
    void anEditSurvivesSwitchingAwayAndBackAndSaveStoresIt();
    void anEditedDateIsStoredInTheStorageForm();
    void typedTextCannotReachTheDateOrPriceColumns_data();
    void typedTextCannotReachTheDateOrPriceColumns();
    void thePriceEditorTakesTheAmountsOfTheNewEntryPage_data();
    void thePriceEditorTakesTheAmountsOfTheNewEntryPage();
    void closingAnEditorWithoutAChangeWritesNothing();
    void anUnreadableStoredDateOpensAsItsTextAndIsReplacedOnlyByADate();
    void aFullDiskFailsSaveChangesNothingAndSaveWorksOnceThereIsRoom();
    void aFailedSaveIsReportedOnceAndKeepsTheEditsForALaterSave();
    void theStoreKeepsWorkingAfterTheEntriesTab();
    void anUnreadableFileLeavesTheTableEmptyAndSilent();

    // Deleting entries
    void theDeleteKeyHidesTheSelectedRowsAndSaveRemovesExactlyThoseEntries();
    void theContextMenuOffersDeleteEntryForTheRowUnderThePointer();
    void cancelBringsMarkedRowsBackAndDeletesNothing();
    void theDeleteKeyInACellsEditorDeletesTextNotTheRow();
    void aLockedFileOnSaveStoresNothingAndKeepsTheMarksAndEdits();
    void aSaveRefusedAtItsCommitGivesBackEveryEditAndMark();
    void rowsMarkedBeforeSwitchingAwayStayMarkedAndSaveDeletesThem();

    // The main window
    void optionsShowsThePageOnStackedPage2();
    void optionsReplacesThePageAndStartsFromDefaultAgain();
};

void TestOptionsWidget::cleanup()
{
    VERIFY_NO_WIDGETS_LEFT();
}

void TestOptionsWidget::formHasTheDesignedWidgetsAndGeometry_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QRect>("geometry");

    const QList<std::tuple<const char *, const char *, QRect>> widgets = {
        { "scrollArea", "QScrollArea", QRect(10, 10, 871, 741) },
        { "scrollAreaWidgetContents", "QWidget", QRect(0, 0, 869, 739) },
        { "tabWidgetOptionsContainer", "QTabWidget", QRect(10, 9, 851, 721) },
        { "labelNewCategoryName", "QLabel", QRect(10, 30, 191, 41) },
        { "lineEditNewCategoryName", "QLineEdit", QRect(210, 20, 551, 51) },
        { "pushButtonAddNewCategory", "QPushButton", QRect(310, 100, 311, 61) },
        { "labelCategoryNameToEdit", "QLabel", QRect(10, 230, 191, 41) },
        { "comboBoxCategoryName", "QComboBox", QRect(210, 230, 581, 41) },
        { "labelNewCategoryNameEdit", "QLabel", QRect(10, 290, 191, 41) },
        { "lineEditCategoryNameToEdit", "QLineEdit", QRect(210, 280, 551, 51) },
        { "pushButtonEditCategory", "QPushButton", QRect(310, 370, 311, 61) },
        { "labelCurrentModeName", "QLabel", QRect(10, 20, 131, 41) },
        { "labelCurrentModeActual", "QLabel", QRect(150, 20, 581, 41) },
        { "labelNewMode", "QLabel", QRect(10, 70, 131, 41) },
        { "comboBoxNewModeNames", "QComboBox", QRect(150, 70, 581, 41) },
        { "pushButtonChangeMode", "QPushButton", QRect(300, 130, 311, 61) },
        { "tableViewEditEntries", "QTableView", QRect(70, 30, 701, 401) },
        { "pushButtonSaveChanges", "QPushButton", QRect(70, 450, 311, 61) },
        { "pushButtonCancelChanges", "QPushButton", QRect(460, 450, 311, 61) },
    };
    for (const auto &[name, className, geometry] : widgets)
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(className) << geometry;
}

void TestOptionsWidget::formHasTheDesignedWidgetsAndGeometry()
{
    QFETCH(QString, name);
    QFETCH(QString, className);
    QFETCH(QRect, geometry);

    Fixture f;
    OptionsWidget page(&f.store);
    auto *widget = page.findChild<QWidget *>(name);
    QVERIFY2(widget, qPrintable(name));
    QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), className);
    QCOMPARE(widget->geometry(), geometry);
}

void TestOptionsWidget::formHasItsTitleSizeAndStyles()
{
    Fixture f;
    OptionsWidget page(&f.store);
    QCOMPARE(page.objectName(), QStringLiteral("OptionsWidget"));
    QCOMPARE(page.windowTitle(), QStringLiteral("Form"));
    QCOMPARE(page.size(), QSize(888, 761));
    QCOMPARE(page.styleSheet(), QStringLiteral("background-color: rgb(0, 0, 0);"));

    auto *scrollArea = child<QScrollArea>(page, "scrollArea");
    QVERIFY(scrollArea->widgetResizable());
    QCOMPARE(scrollArea->widget()->objectName(), QStringLiteral("scrollAreaWidgetContents"));
    QCOMPARE(scrollArea->styleSheet(), QStringLiteral("font: 75 14pt \"MS Shell Dlg 2\";"));

    QCOMPARE(tabs(page)->styleSheet(), QString::fromLatin1(FormStyle::borderedCombo));
    QCOMPARE(child<QComboBox>(page, "comboBoxCategoryName")->styleSheet(),
             QString::fromLatin1(FormStyle::borderedCombo));
    QCOMPARE(child<QComboBox>(page, "comboBoxNewModeNames")->styleSheet(),
             QString::fromLatin1(FormStyle::borderedCombo));
    QCOMPARE(child<QLineEdit>(page, "lineEditNewCategoryName")->styleSheet(),
             QString::fromLatin1(FormStyle::inputField));
    QCOMPARE(child<QLineEdit>(page, "lineEditCategoryNameToEdit")->styleSheet(),
             QString::fromLatin1(FormStyle::inputField));
    QCOMPARE(entriesView(page)->styleSheet(),
             QStringLiteral("border-color: rgb(181, 181, 181);\nfont: 75 12pt \"MS Shell Dlg 2\";\n"
                            "background-color: rgb(255, 170, 127);"));

    for (const char *name : { "pushButtonAddNewCategory", "pushButtonEditCategory", "pushButtonChangeMode",
                              "pushButtonSaveChanges", "pushButtonCancelChanges" })
        QCOMPARE(child<QPushButton>(page, name)->styleSheet(), QString::fromLatin1(FormStyle::gradientButton));

    // The add button carries the widget font of the menu buttons as well.
    QCOMPARE(child<QPushButton>(page, "pushButtonAddNewCategory")->font().family(), QStringLiteral("MS Shell Dlg 2"));
}

void TestOptionsWidget::tabsCaptionsAndButtonsCarryTheirTexts()
{
    Fixture f;
    OptionsWidget page(&f.store);
    // The three described tabs, then the budgets', the rules' and the
    // recurring expenses'.
    QCOMPARE(tabs(page)->count(), 6);
    const QStringList tabNames = { QStringLiteral("tabAddCategory"), QStringLiteral("tabSwitchModes"),
                                   QStringLiteral("tabEditEntries"), QStringLiteral("tabBudgets"),
                                   QStringLiteral("tabRules"),       QStringLiteral("tabRecurring") };
    const QStringList titles = { QStringLiteral("Category"), QStringLiteral("Switch Modes"),
                                 QStringLiteral("Edit Entries"), QStringLiteral("Budgets"),
                                 QStringLiteral("Rules"),    QStringLiteral("Recurring") };
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(tabs(page)->widget(i)->objectName(), tabNames.at(i));
        QCOMPARE(tabs(page)->tabText(i), titles.at(i));
    }

    const QList<QPair<const char *, QString>> captions = {
        { "labelNewCategoryName", QStringLiteral("New Category Name") },
        { "labelCategoryNameToEdit", QStringLiteral("Old Category Name") },
        { "labelNewCategoryNameEdit", QStringLiteral("New Category Name") },
        { "labelCurrentModeName", QStringLiteral("Current Mode") },
        { "labelNewMode", QStringLiteral("New Mode") },
    };
    for (const auto &[name, text] : captions) {
        const QLabel *label = child<QLabel>(page, name);
        QCOMPARE(plainText(label), text);
        QVERIFY2(label->text().contains(QStringLiteral("<span style=\" color:#ffff00;\">")), name);
        QVERIFY(label->text().contains(QStringLiteral("font-family:'MS Shell Dlg 2'; font-size:14pt;")));
    }

    const QList<QPair<const char *, QString>> buttons = {
        { "pushButtonAddNewCategory", QStringLiteral("Add") },   { "pushButtonEditCategory", QStringLiteral("Edit") },
        { "pushButtonChangeMode", QStringLiteral("Switch") },    { "pushButtonSaveChanges", QStringLiteral("Save") },
        { "pushButtonCancelChanges", QStringLiteral("Cancel") },
    };
    for (const auto &[name, text] : buttons)
        QCOMPARE(child<QPushButton>(page, name)->text(), text);
}

void TestOptionsWidget::buildingTheFormRunsNoTabHandler()
{
    // The form ends on the entries tab before its slots are connected: no
    // table model is made until the user opens that tab.
    Fixture f;
    OptionsWidget page(&f.store);
    QCOMPARE(tabs(page)->currentIndex(), int(CategoryTab));
    QVERIFY(page.findChildren<QSqlTableModel *>().isEmpty());
    QCOMPARE(entriesView(page)->model(), nullptr);
}

void TestOptionsWidget::aNewPageShowsTheCategoryTabWithEachUnusedCategoryTwice()
{
    Fixture f;
    QVERIFY(
        f.raw.insertEntry(QStringLiteral("Bread"), QStringLiteral("Food"), QDateTime(QDate(2026, 3, 1), QTime()), 2.5));
    const QStringList unused = unusedCategories(f.raw);
    QCOMPARE(unused.size(), 36);
    QVERIFY(!unused.contains(QStringLiteral("Food")));

    OptionsWidget page(&f.store);
    QCOMPARE(tabs(page)->currentIndex(), int(CategoryTab));
    QCOMPARE(items(child<QComboBox>(page, "comboBoxCategoryName")), unused + unused);
    // The mode tab is filled already.
    QCOMPARE(items(child<QComboBox>(page, "comboBoxNewModeNames")).size(), 2);
}

void TestOptionsWidget::everyVisitToTheCategoryTabAppendsTheListAgain()
{
    Fixture f;
    OptionsWidget page(&f.store);
    const QStringList unused = unusedCategories(f.raw);
    tabs(page)->setCurrentIndex(ModeTab);
    tabs(page)->setCurrentIndex(CategoryTab);
    QCOMPARE(items(child<QComboBox>(page, "comboBoxCategoryName")), unused + unused + unused);
}

void TestOptionsWidget::addingACategoryConfirmsStoresAndClearsTheField()
{
    Fixture f;
    OptionsWidget page(&f.store);
    auto *field = child<QLineEdit>(page, "lineEditNewCategoryName");
    QTest::keyClicks(field, QStringLiteral("Pets"));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    child<QPushButton>(page, "pushButtonAddNewCategory")->click();

    QCOMPARE(answerer.texts(),
             QStringList({ QStringLiteral("Category Name Entered - Pets "),
                           QStringLiteral("Category added to the database successfully") }));
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    VERIFY_BOX_SHAPE(answerer.seen().at(0), BoxKind::Confirmation);
    VERIFY_BOX_SHAPE(answerer.seen().at(1), BoxKind::Information);

    QCOMPARE(categoryCount(f.raw, QStringLiteral("Pets")), 1);
    QVERIFY(field->text().isEmpty());
}

void TestOptionsWidget::aNewCategoryIsListedOnlyAtTheNextFilling()
{
    Fixture f;
    OptionsWidget page(&f.store);
    auto *box = child<QComboBox>(page, "comboBoxCategoryName");
    const QStringList before = items(box);
    QTest::keyClicks(child<QLineEdit>(page, "lineEditNewCategoryName"), QStringLiteral("Pets"));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    child<QPushButton>(page, "pushButtonAddNewCategory")->click();
    QCOMPARE(answerer.seen().size(), 2);
    QCOMPARE(items(box), before);

    tabs(page)->setCurrentIndex(ModeTab);
    tabs(page)->setCurrentIndex(CategoryTab);
    QCOMPARE(items(box).count(QStringLiteral("Pets")), 1);
    QCOMPARE(items(box).constLast(), QStringLiteral("Pets"));
}

void TestOptionsWidget::addingAnExistingCategoryReportsSuccessAndAddsNothing()
{
    Fixture f;
    OptionsWidget page(&f.store);
    auto *field = child<QLineEdit>(page, "lineEditNewCategoryName");
    QTest::keyClicks(field, QStringLiteral("Food"));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    child<QPushButton>(page, "pushButtonAddNewCategory")->click();

    QCOMPARE(answerer.texts(),
             QStringList({ QStringLiteral("Category Name Entered - Food "),
                           QStringLiteral("Category added to the database successfully") }));
    QCOMPARE(categoryCount(f.raw, QStringLiteral("Food")), 1);
    QCOMPARE(f.raw.scalar(QStringLiteral("SELECT COUNT(*) FROM Category")).toInt(), 37);
    QVERIFY(field->text().isEmpty());
}

void TestOptionsWidget::anEmptyNameIsRefusedWithoutAskingTheStore_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::newRow("Add") << QByteArray("pushButtonAddNewCategory");
    QTest::newRow("Edit") << QByteArray("pushButtonEditCategory");
}

void TestOptionsWidget::anEmptyNameIsRefusedWithoutAskingTheStore()
{
    QFETCH(QByteArray, button);
    Fixture f;
    OptionsWidget page(&f.store);
    const QList<QVariantList> before = f.raw.rows(QStringLiteral("SELECT * FROM Category ORDER BY SNo"));

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    child<QPushButton>(page, button.constData())->click();

    QCOMPARE(answerer.texts(), QStringList { QStringLiteral("New Category Name cannot be empty") });
    VERIFY_BOX_SHAPE(answerer.seen().constFirst(), BoxKind::Information);
    QVERIFY(answerer.errors().isEmpty());
    QCOMPARE(f.raw.rows(QStringLiteral("SELECT * FROM Category ORDER BY SNo")), before);
}

void TestOptionsWidget::aNameOfBlanksIsStoredAsItIs()
{
    Fixture f;
    OptionsWidget page(&f.store);
    QTest::keyClicks(child<QLineEdit>(page, "lineEditNewCategoryName"), QStringLiteral("   "));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    child<QPushButton>(page, "pushButtonAddNewCategory")->click();

    QCOMPARE(answerer.texts(),
             QStringList({ QStringLiteral("Category Name Entered -     "),
                           QStringLiteral("Category added to the database successfully") }));
    QCOMPARE(categoryCount(f.raw, QStringLiteral("   ")), 1);
}

void TestOptionsWidget::discardingTheConfirmationChangesNothing_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QByteArray>("button");
    QTest::newRow("Add") << QByteArray("lineEditNewCategoryName") << QByteArray("pushButtonAddNewCategory");
    QTest::newRow("Edit") << QByteArray("lineEditCategoryNameToEdit") << QByteArray("pushButtonEditCategory");
}

void TestOptionsWidget::discardingTheConfirmationChangesNothing()
{
    QFETCH(QByteArray, field);
    QFETCH(QByteArray, button);
    Fixture f;
    OptionsWidget page(&f.store);
    auto *box = child<QComboBox>(page, "comboBoxCategoryName");
    const QStringList listed = items(box);
    const QList<QVariantList> before = f.raw.rows(QStringLiteral("SELECT * FROM Category ORDER BY SNo"));
    QTest::keyClicks(child<QLineEdit>(page, field.constData()), QStringLiteral("Pets"));

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Discard);
    child<QPushButton>(page, button.constData())->click();

    QCOMPARE(answerer.texts(), QStringList { QStringLiteral("Category Name Entered - Pets ") });
    QVERIFY(answerer.errors().isEmpty());
    QCOMPARE(f.raw.rows(QStringLiteral("SELECT * FROM Category ORDER BY SNo")), before);
    QCOMPARE(child<QLineEdit>(page, field.constData())->text(), QStringLiteral("Pets"));
    QCOMPARE(items(box), listed);
}

void TestOptionsWidget::renamingAnUnusedCategoryRefillsTheListOnce()
{
    Fixture f;
    QVERIFY(
        f.raw.insertEntry(QStringLiteral("Bread"), QStringLiteral("Food"), QDateTime(QDate(2026, 3, 1), QTime()), 2.5));
    const int giftsId = f.raw.scalar(QStringLiteral("SELECT SNo FROM Category WHERE CategoryName = 'Gifts'")).toInt();
    OptionsWidget page(&f.store);
    auto *box = child<QComboBox>(page, "comboBoxCategoryName");
    box->setCurrentIndex(box->findText(QStringLiteral("Gifts")));
    auto *field = child<QLineEdit>(page, "lineEditCategoryNameToEdit");
    QTest::keyClicks(field, QStringLiteral("Presents"));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    child<QPushButton>(page, "pushButtonEditCategory")->click();

    QCOMPARE(answerer.texts(),
             QStringList({ QStringLiteral("Category Name Entered - Presents "),
                           QStringLiteral("Category name Gifts edited to Presents ") }));
    QCOMPARE(f.raw.scalar(QStringLiteral("SELECT CategoryName FROM Category WHERE SNo = %1").arg(giftsId)).toString(),
             QStringLiteral("Presents"));
    QCOMPARE(categoryCount(f.raw, QStringLiteral("Gifts")), 0);

    const QStringList listed = items(box);
    QCOMPARE(listed, unusedCategories(f.raw));
    QCOMPARE(listed.count(QStringLiteral("Presents")), 1);
    QVERIFY(!listed.contains(QStringLiteral("Gifts")));
    QVERIFY(!listed.contains(QStringLiteral("Food")));
    QVERIFY(field->text().isEmpty());
}

void TestOptionsWidget::renamingToANameInUseFailsAndKeepsTheFields()
{
    Fixture f;
    OptionsWidget page(&f.store);
    auto *box = child<QComboBox>(page, "comboBoxCategoryName");
    box->setCurrentIndex(box->findText(QStringLiteral("Gifts")));
    const QStringList listed = items(box);
    auto *field = child<QLineEdit>(page, "lineEditCategoryNameToEdit");
    QTest::keyClicks(field, QStringLiteral("Food"));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    child<QPushButton>(page, "pushButtonEditCategory")->click();

    QCOMPARE(answerer.texts(),
             QStringList({ QStringLiteral("Category Name Entered - Food "),
                           QStringLiteral("Category name could not be edited!") }));
    QCOMPARE(categoryCount(f.raw, QStringLiteral("Gifts")), 1);
    QCOMPARE(categoryCount(f.raw, QStringLiteral("Food")), 1);
    QCOMPARE(field->text(), QStringLiteral("Food"));
    QCOMPARE(box->currentText(), QStringLiteral("Gifts"));
    QCOMPARE(items(box), listed);
}

void TestOptionsWidget::renamingWithEveryCategoryInUseFails()
{
    Fixture f;
    const QList<QVariantList> categories = f.raw.rows(QStringLiteral("SELECT CategoryName FROM Category"));
    for (const QVariantList &row : categories)
        QVERIFY(f.raw.insertEntry(QStringLiteral("Thing"), row.at(0).toString(),
                                  QDateTime(QDate(2026, 3, 1), QTime(12, 0)), 1.0));
    const QList<QVariantList> before = f.raw.rows(QStringLiteral("SELECT * FROM Category ORDER BY SNo"));

    OptionsWidget page(&f.store);
    auto *box = child<QComboBox>(page, "comboBoxCategoryName");
    QCOMPARE(box->count(), 0);
    QTest::keyClicks(child<QLineEdit>(page, "lineEditCategoryNameToEdit"), QStringLiteral("Pets"));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    child<QPushButton>(page, "pushButtonEditCategory")->click();

    QCOMPARE(answerer.texts(),
             QStringList({ QStringLiteral("Category Name Entered - Pets "),
                           QStringLiteral("Category name could not be edited!") }));
    QCOMPARE(f.raw.rows(QStringLiteral("SELECT * FROM Category ORDER BY SNo")), before);
}

void TestOptionsWidget::aNewPageShowsDefaultInRedAndOffersTheOtherModesInStoreOrder()
{
    Fixture f;
    OptionsWidget page(&f.store);
    auto *label = child<QLabel>(page, "labelCurrentModeActual");
    QCOMPARE(label->text(), QStringLiteral("<font color=#ff0000> Default </font>"));
    QCOMPARE(items(child<QComboBox>(page, "comboBoxNewModeNames")),
             QStringList({ QStringLiteral("Money Saving"), QStringLiteral("Time Saving") }));
}

void TestOptionsWidget::switchingModeAsksReportsAndOffersTheOthers()
{
    Fixture f;
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(ModeTab);
    auto *box = child<QComboBox>(page, "comboBoxNewModeNames");
    box->setCurrentIndex(box->findText(QStringLiteral("Time Saving")));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    child<QPushButton>(page, "pushButtonChangeMode")->click();

    QCOMPARE(answerer.texts(),
             QStringList({ QStringLiteral("You are switching from Default to Time Saving "),
                           QStringLiteral("Mode switched from Default to Time Saving ") }));
    VERIFY_BOX_SHAPE(answerer.seen().at(0), BoxKind::Confirmation);
    VERIFY_BOX_SHAPE(answerer.seen().at(1), BoxKind::Information);
    QVERIFY(answerer.errors().isEmpty());

    QCOMPARE(child<QLabel>(page, "labelCurrentModeActual")->text(),
             QStringLiteral("<font color=#ff0000> Time Saving </font>"));
    QCOMPARE(items(box), QStringList({ QStringLiteral("Default"), QStringLiteral("Money Saving") }));
    // The mode belongs to the page: nothing is written.
    QCOMPARE(modeNames(f.raw),
             QStringList({ QStringLiteral("Default"), QStringLiteral("Money Saving"), QStringLiteral("Time Saving") }));
}

void TestOptionsWidget::discardingAModeSwitchChangesNothing()
{
    Fixture f;
    OptionsWidget page(&f.store);
    auto *box = child<QComboBox>(page, "comboBoxNewModeNames");
    box->setCurrentIndex(box->findText(QStringLiteral("Money Saving")));

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Discard);
    child<QPushButton>(page, "pushButtonChangeMode")->click();

    QCOMPARE(answerer.texts(), QStringList { QStringLiteral("You are switching from Default to Money Saving ") });
    QVERIFY(answerer.errors().isEmpty());
    QCOMPARE(child<QLabel>(page, "labelCurrentModeActual")->text(),
             QStringLiteral("<font color=#ff0000> Default </font>"));
    QCOMPARE(items(box), QStringList({ QStringLiteral("Money Saving"), QStringLiteral("Time Saving") }));
    QCOMPARE(box->currentText(), QStringLiteral("Money Saving"));
}

void TestOptionsWidget::aStoreHoldingOnlyTheCurrentModeOffersAnEmptySwitch()
{
    Fixture f;
    QVERIFY(f.raw.exec(QStringLiteral("DELETE FROM Mode WHERE ModeName <> 'Default'")));
    OptionsWidget page(&f.store);
    auto *box = child<QComboBox>(page, "comboBoxNewModeNames");
    QCOMPARE(box->count(), 0);

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    child<QPushButton>(page, "pushButtonChangeMode")->click();

    QCOMPARE(answerer.texts(),
             QStringList({ QStringLiteral("You are switching from Default to  "),
                           QStringLiteral("Mode switched from Default to  ") }));
    QCOMPARE(child<QLabel>(page, "labelCurrentModeActual")->text(), QStringLiteral("<font color=#ff0000>  </font>"));
    QCOMPARE(items(box), QStringList { QStringLiteral("Default") });
}

void TestOptionsWidget::aStoreWithoutDefaultStillStartsFromDefault()
{
    Fixture f;
    QVERIFY(f.raw.exec(QStringLiteral("UPDATE Mode SET ModeName = 'Relaxed' WHERE ModeName = 'Default'")));
    OptionsWidget page(&f.store);
    QCOMPARE(child<QLabel>(page, "labelCurrentModeActual")->text(),
             QStringLiteral("<font color=#ff0000> Default </font>"));
    QCOMPARE(items(child<QComboBox>(page, "comboBoxNewModeNames")),
             QStringList({ QStringLiteral("Relaxed"), QStringLiteral("Money Saving"), QStringLiteral("Time Saving") }));
}

void TestOptionsWidget::theEntriesTabShowsTheEditableColumnsOfTheEntryTable()
{
    Fixture f;
    QVERIFY(f.raw.insertEntry(QStringLiteral("Bread"), QStringLiteral("Food"),
                              QDateTime(QDate(2026, 3, 1), QTime(8, 0)), 2.5, QStringLiteral("Bakery")));
    QVERIFY(f.raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"),
                              QDateTime(QDate(2026, 3, 2), QTime(9, 30)), 3.0, QStringLiteral("Cafe")));
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(EntriesTab);

    QSqlTableModel *model = entriesModel(page);
    QVERIFY(model);
    QCOMPARE(model->parent(), &page);
    QCOMPARE(model->tableName(), QStringLiteral("Entry"));
    QCOMPARE(model->editStrategy(), QSqlTableModel::OnManualSubmit);
    QCOMPARE(model->rowCount(), 2);
    QCOMPARE(model->columnCount(), 12);

    QTableView *view = entriesView(page);
    const QList<int> hidden = { 0, 2, 3, 7, 8, 9, 10, 11 };
    for (int column = 0; column < model->columnCount(); ++column)
        QCOMPARE(view->isColumnHidden(column), hidden.contains(column));
    QCOMPARE(model->headerData(ItemNameColumn, Qt::Horizontal).toString(), QStringLiteral("ItemName"));
    QCOMPARE(model->headerData(DateColumn, Qt::Horizontal).toString(), QStringLiteral("TransactDateTime"));
    QCOMPARE(model->headerData(PriceColumn, Qt::Horizontal).toString(), QStringLiteral("Price"));
    QCOMPARE(model->headerData(LocationColumn, Qt::Horizontal).toString(), QStringLiteral("LocationText"));
    QCOMPARE(model->index(1, ItemNameColumn).data().toString(), QStringLiteral("Coffee"));
    QCOMPARE(model->index(1, LocationColumn).data().toString(), QStringLiteral("Cafe"));

    // Shown as every page shows dates and numbers.
    QCOMPARE(qobject_cast<QStyledItemDelegate *>(view->itemDelegateForColumn(DateColumn))
                 ->displayText(model->index(1, DateColumn).data(), QLocale()),
             QStringLiteral("Mon Mar 2 09:30:00 2026"));
    QCOMPARE(qobject_cast<QStyledItemDelegate *>(view->itemDelegateForColumn(PriceColumn))
                 ->displayText(model->index(0, PriceColumn).data(), QLocale()),
             QStringLiteral("2.5"));

    // Stretched once to the view's width, then left to the user.
    int visibleWidth = 0;
    for (int column : { 1, 4, 5, 6 })
        visibleWidth += view->horizontalHeader()->sectionSize(column);
    QVERIFY2(visibleWidth >= view->viewport()->width() - 4, qPrintable(QString::number(visibleWidth)));
    QCOMPARE(view->horizontalHeader()->sectionResizeMode(1), QHeaderView::Interactive);
}

void TestOptionsWidget::savingStoresAnEditedPriceAndItemNameAndSaysNothing()
{
    Fixture f;
    const QDateTime when(QDate(2026, 3, 1), QTime(8, 0));
    const int sno = f.raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"), when, 2.5);
    QVERIFY(sno);
    OptionsWidget page(&f.store);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    tabs(page)->setCurrentIndex(EntriesTab);
    QTableView *view = entriesView(page);
    QSqlTableModel *model = entriesModel(page);

    QWidget *priceEditor = openEditor(view, 0, PriceColumn);
    QVERIFY(qobject_cast<QLineEdit *>(priceEditor));
    QCOMPARE(qobject_cast<QLineEdit *>(priceEditor)->text(), QStringLiteral("2.50"));
    typeInto(priceEditor, QStringLiteral("3.75"));
    commit(priceEditor);
    QTRY_COMPARE(model->index(0, PriceColumn).data().toDouble(), 3.75);

    QWidget *nameEditor = openEditor(view, 0, ItemNameColumn);
    QVERIFY(qobject_cast<QLineEdit *>(nameEditor));
    typeInto(nameEditor, QStringLiteral("Tea"));
    commit(nameEditor);
    QTRY_COMPARE(model->index(0, ItemNameColumn).data().toString(), QStringLiteral("Tea"));

    // Nothing reaches the file before Save.
    QCOMPARE(entryValue(f.raw, sno, "ItemName"), QStringLiteral("Coffee"));

    MessageBoxAnswerer answerer;
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCoreApplication::processEvents();
    QVERIFY(answerer.seen().isEmpty());
    QVERIFY(answerer.errors().isEmpty());

    QCOMPARE(entryValue(f.raw, sno, "ItemName"), QStringLiteral("Tea"));
    QCOMPARE(entryPrice(f.raw, sno), 3.75);
    QCOMPARE(entryValue(f.raw, sno, "TransactDateTime"), StorageForm::dateTime(when));
    QCOMPARE(entryValue(f.raw, sno, "CategoryName"), QStringLiteral("Drinks"));
    QCOMPARE(entryValue(f.raw, sno, "EnableGeoLoc"), QStringLiteral("false"));
    QVERIFY(!model->isDirty());
    page.close();
}

void TestOptionsWidget::cancelRestoresTheStoredValues()
{
    Fixture f;
    const int sno = f.raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"),
                                      QDateTime(QDate(2026, 3, 1), QTime(8, 0)), 2.5);
    OptionsWidget page(&f.store);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    tabs(page)->setCurrentIndex(EntriesTab);
    QSqlTableModel *model = entriesModel(page);

    QWidget *editor = openEditor(entriesView(page), 0, PriceColumn);
    typeInto(editor, QStringLiteral("9"));
    commit(editor);
    QTRY_COMPARE(model->index(0, PriceColumn).data().toDouble(), 9.0);

    child<QPushButton>(page, "pushButtonCancelChanges")->click();
    QCOMPARE(model->index(0, PriceColumn).data().toDouble(), 2.5);
    QVERIFY(!model->isDirty());

    // The dropped edit stays dropped.
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCOMPARE(entryPrice(f.raw, sno), 2.5);
    page.close();
}

void TestOptionsWidget::switchingAwayAndBackKeepsTheOneModelAndRereadsAnUneditedTable()
{
    Fixture f;
    const int sno = f.raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"),
                                      QDateTime(QDate(2026, 3, 1), QTime(8, 0)), 2.5);
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(EntriesTab);
    QPointer<QSqlTableModel> first = entriesModel(page);
    QVERIFY(first->setData(first->index(0, PriceColumn), 4.0f));
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCOMPARE(entryPrice(f.raw, sno), 4.0);

    QVERIFY(
        f.raw.insertEntry(QStringLiteral("Bread"), QStringLiteral("Food"), QDateTime(QDate(2026, 3, 2), QTime()), 1.5));
    tabs(page)->setCurrentIndex(ModeTab);
    tabs(page)->setCurrentIndex(EntriesTab);

    // The same model, read afresh: it held nothing unsaved.
    QSqlTableModel *second = entriesModel(page);
    QCOMPARE(second, first.data());
    QCOMPARE(page.findChildren<QSqlTableModel *>().size(), 1);
    QCOMPARE(second->rowCount(), 2);
    QCOMPARE(second->index(0, PriceColumn).data().toDouble(), 4.0);
    QCOMPARE(second->index(1, ItemNameColumn).data().toString(), QStringLiteral("Bread"));
    QVERIFY(entriesView(page)->isColumnHidden(0));
    QVERIFY(entriesView(page)->isColumnHidden(11));
}

void TestOptionsWidget::anEditSurvivesSwitchingAwayAndBackAndSaveStoresIt()
{
    Fixture f;
    const int sno = f.raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"),
                                      QDateTime(QDate(2026, 3, 1), QTime(8, 0)), 2.5);
    OptionsWidget page(&f.store);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    tabs(page)->setCurrentIndex(EntriesTab);
    QSqlTableModel *first = entriesModel(page);
    QWidget *editor = openEditor(entriesView(page), 0, ItemNameColumn);
    typeInto(editor, QStringLiteral("Espresso"));
    commit(editor);
    QTRY_VERIFY(first->isDirty());

    // Leaving the tab unsaved and coming back shows the same model with the
    // edit in it (two models would hold two versions of one row), and the
    // next Save stores it.
    tabs(page)->setCurrentIndex(CategoryTab);
    tabs(page)->setCurrentIndex(EntriesTab);
    QCOMPARE(entriesModel(page), first);
    QCOMPARE(entriesModel(page)->index(0, ItemNameColumn).data().toString(), QStringLiteral("Espresso"));

    MessageBoxAnswerer answerer;
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCoreApplication::processEvents();
    QVERIFY(answerer.seen().isEmpty());
    QCOMPARE(entryValue(f.raw, sno, "ItemName"), QStringLiteral("Espresso"));
    page.close();
}

void TestOptionsWidget::anEditedDateIsStoredInTheStorageForm()
{
    Fixture f;
    const int sno = f.raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"),
                                      QDateTime(QDate(2026, 3, 1), QTime(8, 0)), 2.5);
    OptionsWidget page(&f.store);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    tabs(page)->setCurrentIndex(EntriesTab);

    auto *editor = qobject_cast<QDateTimeEdit *>(openEditor(entriesView(page), 0, DateColumn));
    QVERIFY(editor);
    QCOMPARE(editor->dateTime(), QDateTime(QDate(2026, 3, 1), QTime(8, 0)));
    QCOMPARE(editor->displayFormat(), QStringLiteral("dd/MM/yyyy HH:mm:ss"));
    editor->setDateTime(QDateTime(QDate(2026, 12, 1), QTime(9, 15, 30)));
    commit(editor);
    QTRY_VERIFY(entriesModel(page)->isDirty());

    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCOMPARE(entryValue(f.raw, sno, "TransactDateTime"), QStringLiteral("2026-12-01T09:15:30"));
    page.close();
}

void TestOptionsWidget::typedTextCannotReachTheDateOrPriceColumns_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("price");
    QTest::newRow("a word as the date") << int(DateColumn) << QStringLiteral("tomorrow") << 2.5;
    QTest::newRow("a word as the price") << int(PriceColumn) << QStringLiteral("abc") << 2.5;
    QTest::newRow("a minus sign cannot be typed") << int(PriceColumn) << QStringLiteral("-5") << 5.0;
    QTest::newRow("a third decimal cannot be typed") << int(PriceColumn) << QStringLiteral("1.239") << 1.23;
}

void TestOptionsWidget::typedTextCannotReachTheDateOrPriceColumns()
{
    QFETCH(int, column);
    QFETCH(QString, typed);
    QFETCH(double, price);
    Fixture f;
    const int sno = f.raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"),
                                      QDateTime(QDate(2026, 3, 1), QTime(8, 0)), 2.5);
    OptionsWidget page(&f.store);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    tabs(page)->setCurrentIndex(EntriesTab);

    QWidget *editor = openEditor(entriesView(page), 0, column);
    QVERIFY(editor);
    typeInto(editor, typed);
    commit(editor);
    QTRY_VERIFY(!entriesView(page)->indexWidget(entriesModel(page)->index(0, column)));

    MessageBoxAnswerer answerer;
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCoreApplication::processEvents();
    QVERIFY(answerer.seen().isEmpty());

    const QString storedDate = entryValue(f.raw, sno, "TransactDateTime");
    QVERIFY2(
        QRegularExpression(QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d$")).match(storedDate).hasMatch(),
        qPrintable(storedDate));
    QCOMPARE(storedDate, QStringLiteral("2026-03-01T08:00:00"));
    const QVariant storedPrice = f.raw.scalar(QStringLiteral("SELECT Price FROM Entry WHERE SNo = %1").arg(sno));
    QCOMPARE(storedPrice.typeId(), QMetaType::Double);
    QCOMPARE(storedPrice.toFloat(), float(price));
    page.close();
}

void TestOptionsWidget::thePriceEditorTakesTheAmountsOfTheNewEntryPage_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("tooLarge");
    QTest::addColumn<float>("price");
    QTest::newRow("the largest") << QStringLiteral("9999999.99") << false << 9999999.99f;
    QTest::newRow("without a point") << QStringLiteral("12") << false << 12.0f;
    QTest::newRow("a point and no decimals") << QStringLiteral("12.") << false << 12.0f;
    QTest::newRow("a cent") << QStringLiteral("0.01") << false << 0.01f;
    QTest::newRow("forty nines and a point") << QString(40, QLatin1Char('9')) + QLatin1Char('.') << true << 2.5f;
    QTest::newRow("ten million") << QStringLiteral("10000000") << true << 2.5f;
}

void TestOptionsWidget::thePriceEditorTakesTheAmountsOfTheNewEntryPage()
{
    QFETCH(QString, typed);
    QFETCH(bool, tooLarge);
    QFETCH(float, price);
    Fixture f;
    const int sno = f.addCoffee();
    OptionsWidget page(&f.store);
    QVERIFY(showEntriesTab(page));
    QSqlTableModel *model = entriesModel(page);

    auto *editor = qobject_cast<QLineEdit *>(openEditor(entriesView(page), 0, PriceColumn));
    QVERIFY(editor);
    typeInto(editor, typed);
    QCOMPARE(editor->text(), typed);
    MessageBoxAnswerer answerer;
    if (tooLarge)
        answerer.answer(QMessageBox::Ok);
    commit(editor);
    QTRY_VERIFY(!entriesView(page)->indexWidget(model->index(0, PriceColumn)));
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    if (tooLarge) {
        QCOMPARE(answerer.seen().size(), 1);
        QCOMPARE(answerer.seen().at(0).text, QStringLiteral("Amount is too large. Enter a smaller amount"));
        VERIFY_BOX_SHAPE(answerer.seen().at(0), BoxKind::Information);
        QVERIFY(!model->isDirty());
    } else {
        QVERIFY(answerer.seen().isEmpty());
        QVERIFY(model->isDirty());
    }

    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCoreApplication::processEvents();
    QCOMPARE(answerer.seen().size(), tooLarge ? 1 : 0);
    QCOMPARE(f.raw.scalar(QStringLiteral("SELECT Price FROM Entry WHERE SNo = %1").arg(sno)).toFloat(), price);
    page.close();
}

void TestOptionsWidget::closingAnEditorWithoutAChangeWritesNothing()
{
    Fixture f;
    // A price with more decimals than the editor shows, and a date in an
    // ISO form other than the file's own: an editor shows both rounded.
    const int sno = f.raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"),
                                      QDateTime(QDate(2026, 3, 1), QTime(8, 0)), 2.345);
    QVERIFY(f.raw.exec(
        QStringLiteral("UPDATE Entry SET TransactDateTime = '2026-11-15T08:30:05.250', Price = 2.345 WHERE SNo = %1")
            .arg(sno)));
    const QStringList before = f.raw.dumpTables();
    OptionsWidget page(&f.store);
    QVERIFY(showEntriesTab(page));
    QSqlTableModel *model = entriesModel(page);

    auto *price = qobject_cast<QLineEdit *>(openEditor(entriesView(page), 0, PriceColumn));
    QVERIFY(price);
    QCOMPARE(price->text(), QStringLiteral("2.35"));
    commit(price);
    QTRY_VERIFY(!entriesView(page)->indexWidget(model->index(0, PriceColumn)));

    auto *date = qobject_cast<QDateTimeEdit *>(openEditor(entriesView(page), 0, DateColumn));
    QVERIFY(date);
    QCOMPARE(date->dateTime(), QDateTime(QDate(2026, 11, 15), QTime(8, 30, 5, 250)));
    commit(date);
    QTRY_VERIFY(!entriesView(page)->indexWidget(model->index(0, DateColumn)));

    QVERIFY(!model->isDirty());
    MessageBoxAnswerer answerer;
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCoreApplication::processEvents();
    QVERIFY(answerer.seen().isEmpty());
    QCOMPARE(f.raw.dumpTables(), before);
    page.close();
}

void TestOptionsWidget::anUnreadableStoredDateOpensAsItsTextAndIsReplacedOnlyByADate()
{
    Fixture f;
    const int sno = f.addCoffee();
    QVERIFY(
        f.raw.exec(QStringLiteral("UPDATE Entry SET TransactDateTime = 'sometime in May' WHERE SNo = %1").arg(sno)));
    OptionsWidget page(&f.store);
    QVERIFY(showEntriesTab(page));
    QSqlTableModel *model = entriesModel(page);
    QTableView *view = entriesView(page);
    const QModelIndex cell = model->index(0, DateColumn);
    QCOMPARE(view->itemDelegateForColumn(DateColumn)->metaObject()->className(), "EntryDateTimeDelegate");
    QCOMPARE(qobject_cast<QStyledItemDelegate *>(view->itemDelegateForColumn(DateColumn))
                 ->displayText(cell.data(), QLocale()),
             QStringLiteral("sometime in May"));

    // Opened and closed as it is: nothing changes.
    auto *editor = qobject_cast<QLineEdit *>(openEditor(view, 0, DateColumn));
    QVERIFY(editor);
    QCOMPARE(editor->text(), QStringLiteral("sometime in May"));
    commit(editor);
    QTRY_VERIFY(!view->indexWidget(cell));
    QVERIFY(!model->isDirty());

    // Text that is still no date is not taken either.
    editor = qobject_cast<QLineEdit *>(openEditor(view, 0, DateColumn));
    QVERIFY(editor);
    typeInto(editor, QStringLiteral("early June"));
    commit(editor);
    QTRY_VERIFY(!view->indexWidget(cell));
    QVERIFY(!model->isDirty());
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCOMPARE(entryValue(f.raw, sno, "TransactDateTime"), QStringLiteral("sometime in May"));

    // A date, in the editors' own form, is stored in the file's.
    editor = qobject_cast<QLineEdit *>(openEditor(view, 0, DateColumn));
    QVERIFY(editor);
    typeInto(editor, QStringLiteral("15/05/2026 08:30:00"));
    commit(editor);
    QTRY_VERIFY(model->isDirty());
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCOMPARE(entryValue(f.raw, sno, "TransactDateTime"), QStringLiteral("2026-05-15T08:30:00"));
    page.close();
}

void TestOptionsWidget::aFullDiskFailsSaveChangesNothingAndSaveWorksOnceThereIsRoom()
{
    Fixture f;
    const int sno = f.addCoffee();
    QVERIFY(limitDatabaseFile());
    QVERIFY(fillDatabaseFile(f.store) >= 0);
    const QStringList full = f.raw.dumpTables();
    OptionsWidget page(&f.store);
    QVERIFY(showEntriesTab(page));
    QSqlTableModel *model = entriesModel(page);

    // A longer name needs room the file no longer has.
    const QString longName = QString(3000, QLatin1Char('n'));
    auto *editor = qobject_cast<QLineEdit *>(openEditor(entriesView(page), 0, ItemNameColumn));
    QVERIFY(editor);
    editor->setText(longName);
    commit(editor);
    QTRY_VERIFY(model->isDirty());

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 1);
    const SeenMessageBox &box = answerer.seen().constFirst();
    QVERIFY2(box.text.startsWith(unsavedText), qPrintable(box.text));
    QVERIFY2(box.text.contains(QStringLiteral("full")), qPrintable(box.text));
    VERIFY_BOX_SHAPE(box, BoxKind::Warning);
    QCOMPARE(f.raw.dumpTables(), full);
    QVERIFY(model->isDirty());

    QVERIFY(liftDatabaseFileLimit());
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCoreApplication::processEvents();
    QCOMPARE(answerer.seen().size(), 1);
    QVERIFY(!model->isDirty());
    QCOMPARE(entryValue(f.raw, sno, "ItemName"), longName);
    page.close();
}

void TestOptionsWidget::aFailedSaveIsReportedOnceAndKeepsTheEditsForALaterSave()
{
    Fixture f;
    const int sno = f.raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"),
                                      QDateTime(QDate(2026, 3, 1), QTime(8, 0)), 2.5);
    OptionsWidget page(&f.store);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    // Two visits: both models receive Save, yet the user hears of it once.
    tabs(page)->setCurrentIndex(EntriesTab);
    tabs(page)->setCurrentIndex(CategoryTab);
    tabs(page)->setCurrentIndex(EntriesTab);
    QSqlTableModel *model = entriesModel(page);
    QWidget *editor = openEditor(entriesView(page), 0, PriceColumn);
    typeInto(editor, QStringLiteral("7.25"));
    commit(editor);
    QTRY_VERIFY(model->isDirty());

    // Another program holds the file: the save waits a little for it, then
    // fails. Each model waits on its own, so the store's own wait of five
    // seconds would make this one press last many times as long.
    QVERIFY(f.raw.exec(QStringLiteral("BEGIN EXCLUSIVE")));
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    QElapsedTimer pressing;
    pressing.start();
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QVERIFY2(pressing.elapsed() < 5000, qPrintable(QString::number(pressing.elapsed())));

    QCOMPARE(answerer.seen().size(), 1);
    QVERIFY(answerer.errors().isEmpty());
    const SeenMessageBox &box = answerer.seen().constFirst();
    QVERIFY2(box.text.startsWith(unsavedText), qPrintable(box.text));
    QVERIFY2(box.text.contains(QStringLiteral("database is locked")), qPrintable(box.text));
    QVERIFY2(box.text.contains(QStringLiteral("press Save to try again")), qPrintable(box.text));
    VERIFY_BOX_SHAPE(box, BoxKind::Warning);

    QVERIFY(f.raw.exec(QStringLiteral("ROLLBACK")));
    QCOMPARE(entryPrice(f.raw, sno), 2.5);
    QVERIFY(model->isDirty());
    QCOMPARE(model->index(0, PriceColumn).data().toDouble(), 7.25);

    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    QCoreApplication::processEvents();
    QCOMPARE(answerer.seen().size(), 1);
    QCOMPARE(entryPrice(f.raw, sno), 7.25);
    QVERIFY(!model->isDirty());
    page.close();
}

void TestOptionsWidget::theStoreKeepsWorkingAfterTheEntriesTab()
{
    Fixture f;
    QVERIFY(f.raw.insertEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"),
                              QDateTime(QDate(2026, 3, 1), QTime(8, 0)), 2.5));
    const QStringList connections = QSqlDatabase::connectionNames();
    {
        OptionsWidget page(&f.store);
        tabs(page)->setCurrentIndex(EntriesTab);
        tabs(page)->setCurrentIndex(CategoryTab);
        tabs(page)->setCurrentIndex(EntriesTab);
        child<QPushButton>(page, "pushButtonSaveChanges")->click();
        QCOMPARE(QSqlDatabase::connectionNames(), connections);
        QVERIFY(QSqlDatabase::database().isOpen());
    }
    QVERIFY(QSqlDatabase::database().isOpen());
    QCOMPARE(f.store.GetTotalNumberOfEntries(), 1);
    QVERIFY(f.store.AddCategory(QStringLiteral("Pets")));
    QCOMPARE(categoryCount(f.raw, QStringLiteral("Pets")), 1);
}

void TestOptionsWidget::anUnreadableFileLeavesTheTableEmptyAndSilent()
{
    TempHome home;
    {
        QFile file(home.databasePath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(4096, 'x'));
    }
    DatabaseManager store(nullptr);
    QVERIFY(!store.isUsable());
    runPendingEventsAndClearQuit();

    MessageBoxAnswerer answerer;
    OptionsWidget page(&store);
    QCOMPARE(child<QComboBox>(page, "comboBoxCategoryName")->count(), 0);
    QCOMPARE(child<QComboBox>(page, "comboBoxNewModeNames")->count(), 0);
    tabs(page)->setCurrentIndex(EntriesTab);
    QCOMPARE(entriesModel(page)->rowCount(), 0);
    child<QPushButton>(page, "pushButtonSaveChanges")->click();
    child<QPushButton>(page, "pushButtonCancelChanges")->click();
    QCoreApplication::processEvents();
    QVERIFY(answerer.seen().isEmpty());
    QVERIFY(answerer.errors().isEmpty());
    QCOMPARE(QFile(home.databasePath()).size(), 4096);
}

// Deleting entries

namespace {

// Four entries, and a page on its entries tab.
struct DeletionFixture
{
    Fixture f;
    QList<int> snos;
    OptionsWidget page { &f.store };

    DeletionFixture()
    {
        const QStringList items = { QStringLiteral("Bread"), QStringLiteral("Coffee"), QStringLiteral("Cake"),
                                    QStringLiteral("Tea") };
        for (int i = 0; i < items.size(); ++i)
            snos.append(f.raw.insertEntry(items.at(i), QStringLiteral("Food"),
                                          QDateTime(QDate(2026, 3, 1 + i), QTime(8, 0)), 1.5 + i));
        page.show();
        tabs(page)->setCurrentIndex(EntriesTab);
    }

    QTableView *view() const { return entriesView(page); }
    QSqlTableModel *model() const { return entriesModel(page); }

    QList<int> storedSNos()
    {
        QList<int> stored;
        for (const QVariantList &row : f.raw.rows(QStringLiteral("SELECT SNo FROM Entry ORDER BY SNo")))
            stored.append(row.at(0).toInt());
        return stored;
    }

    QList<bool> hiddenRows() const
    {
        QList<bool> hidden;
        for (int row = 0; row < model()->rowCount(); ++row)
            hidden.append(view()->isRowHidden(row));
        return hidden;
    }

    void select(std::initializer_list<int> rows)
    {
        view()->clearSelection();
        for (int row : rows)
            view()->selectionModel()->select(model()->index(row, ItemNameColumn),
                                             QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }

    void pressDelete()
    {
        view()->setFocus();
        QTest::keyClick(view(), Qt::Key_Delete);
    }
};

} // namespace

void TestOptionsWidget::theDeleteKeyHidesTheSelectedRowsAndSaveRemovesExactlyThoseEntries()
{
    DeletionFixture d;
    QVERIFY(QTest::qWaitForWindowExposed(&d.page));
    const QList<QVariantList> items = d.f.raw.rows(QStringLiteral("SELECT * FROM Items ORDER BY SNo"));
    d.select({ 1, 2 });
    d.pressDelete();
    QCOMPARE(d.hiddenRows(), QList<bool>({ false, true, true, false }));
    // Nothing leaves the file before Save.
    QCOMPARE(d.storedSNos(), d.snos);

    MessageBoxAnswerer answerer;
    child<QPushButton>(d.page, "pushButtonSaveChanges")->click();
    QCoreApplication::processEvents();
    QVERIFY(answerer.seen().isEmpty());
    QCOMPARE(d.storedSNos(), QList<int>({ d.snos.at(0), d.snos.at(3) }));
    QCOMPARE(d.model()->rowCount(), 2);
    QCOMPARE(d.hiddenRows(), QList<bool>({ false, false }));
    QCOMPARE(d.model()->index(1, ItemNameColumn).data().toString(), QStringLiteral("Tea"));
    // The catalogue counts what was entered, deleted or not.
    QCOMPARE(d.f.raw.rows(QStringLiteral("SELECT * FROM Items ORDER BY SNo")), items);
    d.page.close();
}

void TestOptionsWidget::theContextMenuOffersDeleteEntryForTheRowUnderThePointer()
{
    DeletionFixture d;
    QVERIFY(QTest::qWaitForWindowExposed(&d.page));
    QTableView *view = d.view();
    QCOMPARE(view->contextMenuPolicy(), Qt::ActionsContextMenu);

    QStringList offered;
    QTimer::singleShot(0, [&offered] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!menu)
            return;
        for (const QAction *action : menu->actions())
            offered.append(action->text());
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
    });
    // A right click selects the row under the pointer, then opens the menu.
    const QRect cell = view->visualRect(d.model()->index(2, ItemNameColumn));
    QTest::mouseClick(view->viewport(), Qt::RightButton, {}, cell.center());
    QContextMenuEvent event(QContextMenuEvent::Mouse, cell.center(), view->viewport()->mapToGlobal(cell.center()));
    QCoreApplication::sendEvent(view->viewport(), &event);

    QCOMPARE(offered, QStringList { QStringLiteral("Delete Entry") });
    QCOMPARE(d.hiddenRows(), QList<bool>({ false, false, true, false }));
    child<QPushButton>(d.page, "pushButtonSaveChanges")->click();
    QCOMPARE(d.storedSNos(), QList<int>({ d.snos.at(0), d.snos.at(1), d.snos.at(3) }));
    d.page.close();
}

void TestOptionsWidget::cancelBringsMarkedRowsBackAndDeletesNothing()
{
    DeletionFixture d;
    QVERIFY(QTest::qWaitForWindowExposed(&d.page));
    QWidget *editor = openEditor(d.view(), 3, PriceColumn);
    typeInto(editor, QStringLiteral("8"));
    commit(editor);
    QTRY_VERIFY(d.model()->isDirty());
    d.select({ 0, 3 });
    d.pressDelete();
    QCOMPARE(d.hiddenRows(), QList<bool>({ true, false, false, true }));

    child<QPushButton>(d.page, "pushButtonCancelChanges")->click();
    QCOMPARE(d.hiddenRows(), QList<bool>({ false, false, false, false }));
    QVERIFY(!d.model()->isDirty());
    QCOMPARE(d.model()->index(3, PriceColumn).data().toDouble(), 4.5);

    child<QPushButton>(d.page, "pushButtonSaveChanges")->click();
    QCOMPARE(d.storedSNos(), d.snos);
    QCOMPARE(entryPrice(d.f.raw, d.snos.at(3)), 4.5);
    d.page.close();
}

void TestOptionsWidget::theDeleteKeyInACellsEditorDeletesTextNotTheRow()
{
    DeletionFixture d;
    QVERIFY(QTest::qWaitForWindowExposed(&d.page));
    auto *editor = qobject_cast<QLineEdit *>(openEditor(d.view(), 1, ItemNameColumn));
    QVERIFY(editor);
    editor->setFocus();
    editor->setCursorPosition(0);
    QTest::keyClick(editor, Qt::Key_Delete);
    QCOMPARE(editor->text(), QStringLiteral("offee"));
    QCOMPARE(d.hiddenRows(), QList<bool>({ false, false, false, false }));
    d.page.close();
}

void TestOptionsWidget::aLockedFileOnSaveStoresNothingAndKeepsTheMarksAndEdits()
{
    DeletionFixture d;
    QVERIFY(QTest::qWaitForWindowExposed(&d.page));
    QWidget *editor = openEditor(d.view(), 0, PriceColumn);
    typeInto(editor, QStringLiteral("7.25"));
    commit(editor);
    QTRY_COMPARE(d.model()->index(0, PriceColumn).data().toDouble(), 7.25);
    d.select({ 1, 2 });
    d.pressDelete();
    const QStringList before = d.f.raw.dumpTables();

    // Another program holds the file.
    RawDatabase other(d.f.home.databasePath());
    QVERIFY(other.exec(QStringLiteral("BEGIN EXCLUSIVE")));
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    child<QPushButton>(d.page, "pushButtonSaveChanges")->click();
    QCOMPARE(answerer.seen().size(), 1);
    const SeenMessageBox &box = answerer.seen().constFirst();
    QVERIFY2(box.text.startsWith(unsavedText), qPrintable(box.text));
    QVERIFY2(box.text.contains(QStringLiteral("database is locked")), qPrintable(box.text));
    VERIFY_BOX_SHAPE(box, BoxKind::Warning);
    QVERIFY(other.exec(QStringLiteral("ROLLBACK")));

    QCOMPARE(d.f.raw.dumpTables(), before);
    QCOMPARE(d.hiddenRows(), QList<bool>({ false, true, true, false }));
    QCOMPARE(d.model()->index(0, PriceColumn).data().toDouble(), 7.25);

    // Once the file is free, the same Save stores all of it.
    child<QPushButton>(d.page, "pushButtonSaveChanges")->click();
    QCOMPARE(answerer.seen().size(), 1);
    QCOMPARE(d.storedSNos(), QList<int>({ d.snos.at(0), d.snos.at(3) }));
    QCOMPARE(entryPrice(d.f.raw, d.snos.at(0)), 7.25);
    d.page.close();
}

void TestOptionsWidget::aSaveRefusedAtItsCommitGivesBackEveryEditAndMark()
{
    DeletionFixture d;
    QVERIFY(QTest::qWaitForWindowExposed(&d.page));
    // Edits made over two visits of the tab, in its one model.
    QWidget *editor = openEditor(d.view(), 3, ItemNameColumn);
    typeInto(editor, QStringLiteral("Green tea"));
    commit(editor);
    QTRY_VERIFY(d.model()->isDirty());
    tabs(d.page)->setCurrentIndex(CategoryTab);
    tabs(d.page)->setCurrentIndex(EntriesTab);
    editor = openEditor(d.view(), 0, PriceColumn);
    typeInto(editor, QStringLiteral("6.5"));
    commit(editor);
    // The model is dirty already: wait for this very edit.
    QTRY_COMPARE(d.model()->index(0, PriceColumn).data().toDouble(), 6.5);
    d.select({ 2 });
    d.pressDelete();
    const QStringList before = d.f.raw.dumpTables();

    // Another program is in the middle of reading: the writes go into the
    // journal, but the commit cannot put them into the file.
    RawDatabase reader(d.f.home.databasePath());
    QVERIFY(reader.exec(QStringLiteral("BEGIN")));
    QCOMPARE(reader.scalar(QStringLiteral("SELECT COUNT(*) FROM Entry")).toInt(), 4);
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    child<QPushButton>(d.page, "pushButtonSaveChanges")->click();
    QCOMPARE(answerer.seen().size(), 1);
    QVERIFY2(answerer.seen().constFirst().text.contains(QStringLiteral("database is locked")),
             qPrintable(answerer.seen().constFirst().text));
    QVERIFY(reader.exec(QStringLiteral("COMMIT")));
    QCOMPARE(d.f.raw.dumpTables(), before);

    // The model holds its edits again, and the mark stands.
    const QList<QSqlTableModel *> models = d.page.findChildren<QSqlTableModel *>();
    QCOMPARE(models.size(), 1);
    for (QSqlTableModel *model : models)
        QVERIFY(model->isDirty());
    QCOMPARE(d.hiddenRows(), QList<bool>({ false, false, true, false }));
    QCOMPARE(d.model()->index(0, PriceColumn).data().toDouble(), 6.5);

    child<QPushButton>(d.page, "pushButtonSaveChanges")->click();
    QCOMPARE(answerer.seen().size(), 1);
    QCOMPARE(d.storedSNos(), QList<int>({ d.snos.at(0), d.snos.at(1), d.snos.at(3) }));
    QCOMPARE(entryPrice(d.f.raw, d.snos.at(0)), 6.5);
    QCOMPARE(entryValue(d.f.raw, d.snos.at(3), "ItemName"), QStringLiteral("Green tea"));
    d.page.close();
}

void TestOptionsWidget::rowsMarkedBeforeSwitchingAwayStayMarkedAndSaveDeletesThem()
{
    DeletionFixture d;
    QVERIFY(QTest::qWaitForWindowExposed(&d.page));
    d.select({ 0 });
    d.pressDelete();
    tabs(d.page)->setCurrentIndex(ModeTab);
    tabs(d.page)->setCurrentIndex(EntriesTab);
    // The mark stands: the row stays hidden until Save or Cancel.
    QCOMPARE(d.hiddenRows(), QList<bool>({ true, false, false, false }));
    QVERIFY(d.page.hasUnsavedEntryChanges());
    child<QPushButton>(d.page, "pushButtonSaveChanges")->click();
    QCOMPARE(d.storedSNos(), QList<int>({ d.snos.at(1), d.snos.at(2), d.snos.at(3) }));
    QVERIFY(!d.page.hasUnsavedEntryChanges());
    d.page.close();
}

void TestOptionsWidget::optionsShowsThePageOnStackedPage2()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    auto *host = f.host();
    child<QPushButton>(window, "pushButtonOptions")->click();

    QCOMPARE(f.stack()->currentIndex(), 2);
    auto *page = qobject_cast<OptionsWidget *>(host->widget());
    QVERIFY(page);
    QCOMPARE(page->objectName(), QStringLiteral("OptionsWidget"));
    QVERIFY(!host->widgetResizable());
    QCOMPARE(page->size(), QSize(888, 761));
    QCOMPARE(tabs(*page)->currentIndex(), int(CategoryTab));
    QVERIFY(child<QComboBox>(*page, "comboBoxCategoryName")->count() > 0);
    QVERIFY(window.findChild<QWidget *>(QStringLiteral("scrollAreaWidgetContents_2")) == nullptr);
}

void TestOptionsWidget::optionsReplacesThePageAndStartsFromDefaultAgain()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    auto *host = f.host();
    child<QPushButton>(window, "pushButtonOptions")->click();
    QPointer<OptionsWidget> first = qobject_cast<OptionsWidget *>(host->widget());
    QVERIFY(first);
    auto *box = child<QComboBox>(*first, "comboBoxNewModeNames");
    box->setCurrentIndex(box->findText(QStringLiteral("Money Saving")));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    child<QPushButton>(*first, "pushButtonChangeMode")->click();
    QCOMPARE(answerer.seen().size(), 2);
    QCOMPARE(child<QLabel>(*first, "labelCurrentModeActual")->text(),
             QStringLiteral("<font color=#ff0000> Money Saving </font>"));

    child<QPushButton>(window, "pushButtonHome")->click();
    child<QPushButton>(window, "pushButtonOptions")->click();
    QVERIFY(first.isNull());
    auto *second = qobject_cast<OptionsWidget *>(host->widget());
    QVERIFY(second);
    QCOMPARE(f.stack()->currentIndex(), 2);
    QCOMPARE(child<QLabel>(*second, "labelCurrentModeActual")->text(),
             QStringLiteral("<font color=#ff0000> Default </font>"));
}

namespace {

QTableWidget *budgetTable(const OptionsWidget &page)
{
    return child<QTableWidget>(page, "tableWidgetBudgetsEdit");
}

int budgetRow(const OptionsWidget &page, const QString &category)
{
    QTableWidget *table = budgetTable(page);
    for (int row = 0; row < table->rowCount(); ++row)
        if (table->item(row, 0)->text() == category)
            return row;
    return -1;
}

QComboBox *periodBox(const OptionsWidget &page, int row)
{
    return qobject_cast<QComboBox *>(budgetTable(page)->cellWidget(row, 2));
}

void setBudgetText(const OptionsWidget &page, const QString &category, const QString &amount)
{
    budgetTable(page)->item(budgetRow(page, category), 1)->setText(amount);
}

QList<QVariantList> storedBudgets(RawDatabase &raw)
{
    return raw.rows(QStringLiteral("SELECT CategoryName, Amount, Period FROM Budget ORDER BY CategoryName"));
}

} // namespace

void TestOptionsWidget::budgetsTabListsEveryCategoryWithItsBudgetAndTheMonthStart()
{
    Fixture f;
    QVERIFY(Settings().setBudgetMonthStart(25));
    QVERIFY(f.raw.exec(QStringLiteral("INSERT INTO Budget VALUES ('Food', 400, 'month'), ('Drinks', 12.5, 'week')")));
    OptionsWidget page(&f.store);
    QTabWidget *tabBox = tabs(page);
    QCOMPARE(tabBox->count(), 6);
    QCOMPARE(tabBox->tabText(BudgetsTab), QStringLiteral("Budgets"));
    QCOMPARE(budgetTable(page)->rowCount(), 0);

    tabBox->setCurrentIndex(BudgetsTab);
    QTableWidget *table = budgetTable(page);
    QCOMPARE(table->rowCount(), f.store.GetNumberOfCategories());
    QCOMPARE(table->horizontalHeaderItem(0)->text(), QStringLiteral("Category"));
    QCOMPARE(table->horizontalHeaderItem(1)->text(), QStringLiteral("Budget"));
    QCOMPARE(table->horizontalHeaderItem(2)->text(), QStringLiteral("Period"));
    const int food = budgetRow(page, QStringLiteral("Food"));
    const int drinks = budgetRow(page, QStringLiteral("Drinks"));
    const int clothing = budgetRow(page, QStringLiteral("Clothing"));
    QCOMPARE(table->item(food, 1)->text(), QStringLiteral("400.00"));
    QCOMPARE(periodBox(page, food)->currentText(), QStringLiteral("month"));
    QCOMPARE(table->item(drinks, 1)->text(), QStringLiteral("12.50"));
    QCOMPARE(periodBox(page, drinks)->currentText(), QStringLiteral("week"));
    QCOMPARE(table->item(clothing, 1)->text(), QString());
    QCOMPARE(child<QSpinBox>(page, "spinBoxMonthStart")->value(), 25);
    QCOMPARE(child<QLabel>(page, "labelMonthStart")->text(), QStringLiteral("Budget months start on day"));
    QCOMPARE(child<QPushButton>(page, "pushButtonSaveBudgets")->text(), QStringLiteral("Save"));
    QCOMPARE(child<QPushButton>(page, "pushButtonCancelBudgets")->text(), QStringLiteral("Cancel"));
    QVERIFY(Settings().setBudgetMonthStart(1));
}

void TestOptionsWidget::savingBudgetsStoresEditsRemovalsAndTheMonthStart()
{
    Fixture f;
    QVERIFY(Settings().setBudgetMonthStart(1));
    QVERIFY(f.raw.exec(QStringLiteral("INSERT INTO Budget VALUES ('Food', 400, 'month'), ('Drinks', 12.5, 'week')")));
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(BudgetsTab);
    setBudgetText(page, QStringLiteral("Food"), QStringLiteral("450.5"));
    setBudgetText(page, QStringLiteral("Drinks"), QString());
    setBudgetText(page, QStringLiteral("Clothing"), QStringLiteral("1200"));
    periodBox(page, budgetRow(page, QStringLiteral("Clothing")))->setCurrentIndex(2);
    child<QSpinBox>(page, "spinBoxMonthStart")->setValue(25);
    MessageBoxAnswerer answerer;
    child<QPushButton>(page, "pushButtonSaveBudgets")->click();
    QCOMPARE(answerer.seen().size(), 0);

    QCOMPARE(storedBudgets(f.raw), QList<QVariantList>({ { QStringLiteral("Clothing"), 1200.0, QStringLiteral("year") },
                                                         { QStringLiteral("Food"), 450.5, QStringLiteral("month") } }));
    QCOMPARE(Settings().budgetMonthStart(), 25);
    // The tab shows what is stored now.
    QCOMPARE(budgetTable(page)->item(budgetRow(page, QStringLiteral("Food")), 1)->text(), QStringLiteral("450.50"));
    QVERIFY(Settings().setBudgetMonthStart(1));
}

void TestOptionsWidget::cancelDropsTheBudgetEditsAndShowsWhatIsStored()
{
    Fixture f;
    QVERIFY(Settings().setBudgetMonthStart(1));
    QVERIFY(f.raw.exec(QStringLiteral("INSERT INTO Budget VALUES ('Food', 400, 'month')")));
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(BudgetsTab);
    setBudgetText(page, QStringLiteral("Food"), QStringLiteral("1"));
    setBudgetText(page, QStringLiteral("Drinks"), QStringLiteral("5"));
    child<QSpinBox>(page, "spinBoxMonthStart")->setValue(20);
    child<QPushButton>(page, "pushButtonCancelBudgets")->click();

    QCOMPARE(budgetTable(page)->item(budgetRow(page, QStringLiteral("Food")), 1)->text(), QStringLiteral("400.00"));
    QCOMPARE(budgetTable(page)->item(budgetRow(page, QStringLiteral("Drinks")), 1)->text(), QString());
    QCOMPARE(child<QSpinBox>(page, "spinBoxMonthStart")->value(), 1);
    QCOMPARE(storedBudgets(f.raw), QList<QVariantList>({ { QStringLiteral("Food"), 400.0, QStringLiteral("month") } }));
    QCOMPARE(Settings().budgetMonthStart(), 1);
}

void TestOptionsWidget::aBudgetSaveThatFailsKeepsTheEdits()
{
    Fixture f;
    QVERIFY(Settings().setBudgetMonthStart(1));
    QVERIFY(f.raw.exec(QStringLiteral("INSERT INTO Budget VALUES ('Food', 400, 'month')")));
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(BudgetsTab);
    setBudgetText(page, QStringLiteral("Food"), QStringLiteral("300"));
    setBudgetText(page, QStringLiteral("Drinks"), QStringLiteral("5"));

    QVERIFY(f.raw.exec(QStringLiteral("BEGIN EXCLUSIVE")));
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    child<QPushButton>(page, "pushButtonSaveBudgets")->click();
    QCOMPARE(answerer.seen().size(), 1);
    const SeenMessageBox &box = answerer.seen().constFirst();
    QVERIFY2(box.text.startsWith(QStringLiteral("Your budgets could not be saved.")), qPrintable(box.text));
    QVERIFY2(box.text.contains(QStringLiteral("database is locked")), qPrintable(box.text));
    QVERIFY2(box.text.contains(QStringLiteral("press Save to try again")), qPrintable(box.text));
    VERIFY_BOX_SHAPE(box, BoxKind::Warning);
    QVERIFY(f.raw.exec(QStringLiteral("ROLLBACK")));

    QCOMPARE(storedBudgets(f.raw), QList<QVariantList>({ { QStringLiteral("Food"), 400.0, QStringLiteral("month") } }));
    QCOMPARE(budgetTable(page)->item(budgetRow(page, QStringLiteral("Food")), 1)->text(), QStringLiteral("300"));
    QCOMPARE(budgetTable(page)->item(budgetRow(page, QStringLiteral("Drinks")), 1)->text(), QStringLiteral("5"));

    // Once the file is free, the same Save stores them.
    child<QPushButton>(page, "pushButtonSaveBudgets")->click();
    QCOMPARE(storedBudgets(f.raw), QList<QVariantList>({ { QStringLiteral("Drinks"), 5.0, QStringLiteral("month") },
                                                         { QStringLiteral("Food"), 300.0, QStringLiteral("month") } }));
}

void TestOptionsWidget::aBudgetAmountThatIsNoAmountIsRefusedAndNothingSaved()
{
    Fixture f;
    QVERIFY(Settings().setBudgetMonthStart(1));
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(BudgetsTab);
    setBudgetText(page, QStringLiteral("Food"), QStringLiteral("300"));
    setBudgetText(page, QStringLiteral("Drinks"), QStringLiteral("-4"));
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    child<QPushButton>(page, "pushButtonSaveBudgets")->click();
    QCOMPARE(answerer.texts(), QStringList({ QStringLiteral("The budget of Drinks must be an amount above 0 and at "
                                                            "most 9999999.99, not -4. Nothing was saved.") }));
    QCOMPARE(storedBudgets(f.raw), QList<QVariantList>());
    QCOMPARE(budgetTable(page)->item(budgetRow(page, QStringLiteral("Drinks")), 1)->text(), QStringLiteral("-4"));
}

namespace {

QTableWidget *rulesTable(const OptionsWidget &page)
{
    return child<QTableWidget>(page, "tableWidgetRules");
}

// The rules tab's rows, one text a row: "N|text|in|how|category".
QStringList shownRules(const OptionsWidget &page)
{
    QTableWidget *table = rulesTable(page);
    QStringList rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        QStringList cells = { table->verticalHeaderItem(row)
                                  ? table->verticalHeaderItem(row)->text()
                                  : table->model()->headerData(row, Qt::Vertical).toString() };
        for (int column = 0; column < table->columnCount(); ++column)
            cells << table->item(row, column)->text();
        rows << cells.join(QLatin1Char('|'));
    }
    return rows;
}

QTableWidget *recurringTable(const OptionsWidget &page)
{
    return child<QTableWidget>(page, "tableWidgetRecurring");
}

QList<QStringList> tableRows(const QTableWidget *table)
{
    QList<QStringList> rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < table->columnCount(); ++column)
            cells << table->item(row, column)->text();
        rows << cells;
    }
    return rows;
}

QList<QVariantList> storedRules(RawDatabase &raw)
{
    return raw.rows(
        QStringLiteral("SELECT Position, Text, SearchIn, How, CategoryName FROM CategoryRule ORDER BY Position"));
}

void addRules(RawDatabase &raw)
{
    QVERIFY(raw.exec(QStringLiteral("INSERT INTO CategoryRule VALUES (1, 'REWE', 'both', 'contains', 'Groceries'), "
                                    "(2, 'shell', 'place', 'contains', 'Automobile - Fuel'), "
                                    "(3, '^db\\b', 'item', 'regex', 'Insurance - Travel')")));
}

void fillRuleDialog(QDialog &dialog, const QString &text, const QString &in, bool regex, const QString &category)
{
    child<QLineEdit>(dialog, "lineEditRuleText")->setText(text);
    auto *where = child<QComboBox>(dialog, "comboBoxRuleIn");
    where->setCurrentIndex(where->findText(in));
    child<QCheckBox>(dialog, "checkBoxRuleRegex")->setChecked(regex);
    child<QComboBox>(dialog, "comboBoxRuleCategory")->setCurrentText(category);
}

int addRecurring(DatabaseManager &store, const QString &item, double amount, const QString &category,
                 const Recurrence &every, const QDate &first, int times = 0)
{
    RecurringExpense expense;
    expense.item = item;
    expense.amount = amount;
    expense.category = category;
    expense.every = every;
    expense.first = first;
    expense.end.times = times;
    return RecurringExpenses(store).add(expense);
}

// Each stored recurring expense, its values as texts and NULL as "NULL".
QList<QStringList> storedRecurring(RawDatabase &raw)
{
    QList<QStringList> rows;
    for (const QVariantList &row : raw.rows(
             QStringLiteral("SELECT ItemName, Price, CategoryName, LocationText, EveryCount, EveryUnit, FirstDate, "
                            "LastDate, Times, Mode, NextDate FROM RecurringExpense ORDER BY SNo"))) {
        QStringList texts;
        for (const QVariant &value : row)
            texts << (value.isNull() ? QStringLiteral("NULL") : value.toString());
        rows << texts;
    }
    return rows;
}

void pressOk(QDialog &dialog)
{
    child<QDialogButtonBox>(dialog, "buttonBox")->button(QDialogButtonBox::Ok)->click();
}

} // namespace

void TestOptionsWidget::rulesTabListsTheRulesInTheOrderTheyAreTried()
{
    Fixture f;
    addRules(f.raw);
    OptionsWidget page(&f.store);
    QCOMPARE(tabs(page)->count(), 6);
    QCOMPARE(tabs(page)->tabText(RulesTab), QStringLiteral("Rules"));
    QCOMPARE(tabs(page)->widget(RulesTab)->objectName(), QStringLiteral("tabRules"));
    tabs(page)->setCurrentIndex(RulesTab);

    QTableWidget *table = rulesTable(page);
    QStringList headers;
    for (int column = 0; column < table->columnCount(); ++column)
        headers << table->horizontalHeaderItem(column)->text();
    QCOMPARE(headers, QStringList({ "Look for", "In", "How", "Category" }));
    QCOMPARE(shownRules(page),
             QStringList({ "1|REWE|Item or place|Contains|Groceries", "2|shell|Place|Contains|Automobile - Fuel",
                           "3|^db\\b|Item|Regular expression|Insurance - Travel" }));
    QStringList buttons;
    for (const char *name : { "pushButtonAddRule", "pushButtonEditRule", "pushButtonRemoveRule", "pushButtonRuleUp",
                              "pushButtonRuleDown", "pushButtonApplyRules" })
        buttons << child<QPushButton>(page, name)->text();
    QCOMPARE(buttons, QStringList({ "Add", "Edit", "Remove", "Up", "Down", "Apply to Stored Entries…" }));
    // Without a selected rule, only Add and Apply have something to work on.
    QVERIFY(child<QPushButton>(page, "pushButtonAddRule")->isEnabled());
    QVERIFY(child<QPushButton>(page, "pushButtonApplyRules")->isEnabled());
    for (const char *name : { "pushButtonEditRule", "pushButtonRemoveRule", "pushButtonRuleUp", "pushButtonRuleDown" })
        QVERIFY2(!child<QPushButton>(page, name)->isEnabled(), name);
}

void TestOptionsWidget::addTakesANewRuleFromItsDialog()
{
    Fixture f;
    addRules(f.raw);
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(RulesTab);
    DialogAnswerer dialogs(QStringLiteral("RuleDialog"));
    dialogs.answer([](QDialog &dialog) {
        fillRuleDialog(dialog, QStringLiteral("café"), QStringLiteral("Item"), false, QStringLiteral("Coffee"));
        pressOk(dialog);
    });
    child<QPushButton>(page, "pushButtonAddRule")->click();
    QCOMPARE(dialogs.errors(), QStringList());
    QCOMPARE(dialogs.answered(), 1);

    QCOMPARE(storedRules(f.raw).constLast(), QVariantList({ 4, "café", "item", "contains", "Coffee" }));
    QCOMPARE(categoryCount(f.raw, QStringLiteral("Coffee")), 1);
    QCOMPARE(shownRules(page).constLast(), QStringLiteral("4|café|Item|Contains|Coffee"));
    // The new rule is the selected one.
    QCOMPARE(rulesTable(page)->selectedRanges().constFirst().topRow(), 3);
}

void TestOptionsWidget::aRuleTheDialogCannotUseKeepsTheDialogOpenWithTheReason()
{
    Fixture f;
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(RulesTab);
    const QStringList before = f.raw.dumpTables();
    QString shown;
    bool stayedOpen = false;
    DialogAnswerer dialogs(QStringLiteral("RuleDialog"));
    dialogs.answer([&](QDialog &dialog) {
        fillRuleDialog(dialog, QStringLiteral("(rewe"), QStringLiteral("Item or place"), true,
                       QStringLiteral("Groceries"));
        pressOk(dialog);
        stayedOpen = dialog.isVisible();
        shown = child<QLabel>(dialog, "labelRuleProblem")->text();
        dialog.reject();
    });
    child<QPushButton>(page, "pushButtonAddRule")->click();
    QCOMPARE(dialogs.errors(), QStringList());
    QVERIFY(stayedOpen);
    QCOMPARE(shown,
             QStringLiteral("This rule cannot be used: the regular expression \"(rewe\" is not valid: missing "
                            "closing parenthesis at offset 5."));
    QCOMPARE(f.raw.dumpTables(), before);
    QCOMPARE(rulesTable(page)->rowCount(), 0);
}

void TestOptionsWidget::editShowsTheSelectedRuleAndReplacesIt()
{
    Fixture f;
    addRules(f.raw);
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(RulesTab);
    rulesTable(page)->selectRow(1);
    QStringList offered;
    DialogAnswerer dialogs(QStringLiteral("RuleDialog"));
    dialogs.answer([&offered](QDialog &dialog) {
        offered << child<QLineEdit>(dialog, "lineEditRuleText")->text()
                << child<QComboBox>(dialog, "comboBoxRuleIn")->currentText()
                << (child<QCheckBox>(dialog, "checkBoxRuleRegex")->isChecked() ? "regex" : "contains")
                << child<QComboBox>(dialog, "comboBoxRuleCategory")->currentText();
        fillRuleDialog(dialog, QStringLiteral("^(shell|aral)"), QStringLiteral("Item or place"), true,
                       QStringLiteral("Automobile - Other"));
        pressOk(dialog);
    });
    child<QPushButton>(page, "pushButtonEditRule")->click();
    QCOMPARE(dialogs.errors(), QStringList());
    QCOMPARE(offered, QStringList({ "shell", "Place", "contains", "Automobile - Fuel" }));
    QCOMPARE(storedRules(f.raw).at(1), QVariantList({ 2, "^(shell|aral)", "both", "regex", "Automobile - Other" }));
    QCOMPARE(storedRules(f.raw).size(), 3);
    QCOMPARE(shownRules(page).at(1),
             QStringLiteral("2|^(shell|aral)|Item or place|Regular expression|"
                            "Automobile - Other"));
}

void TestOptionsWidget::removeAsksFirstAndRemovesOnlyOnYes()
{
    Fixture f;
    addRules(f.raw);
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(RulesTab);
    rulesTable(page)->selectRow(0);
    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Cancel, QMessageBox::Yes });
    child<QPushButton>(page, "pushButtonRemoveRule")->click();
    QCOMPARE(answerer.texts(),
             QStringList({ QStringLiteral("Remove rule 1 (\"REWE\")? The entries it categorised keep "
                                          "their category.") }));
    QCOMPARE(storedRules(f.raw).size(), 3);

    child<QPushButton>(page, "pushButtonRemoveRule")->click();
    QCOMPARE(answerer.seen().size(), 2);
    QCOMPARE(storedRules(f.raw),
             QList<QVariantList>({ { 1, "shell", "place", "contains", "Automobile - Fuel" },
                                   { 2, "^db\\b", "item", "regex", "Insurance - Travel" } }));
    QCOMPARE(shownRules(page).size(), 2);
    QCOMPARE(answerer.errors(), QStringList());
}

void TestOptionsWidget::upAndDownMoveTheSelectedRuleAndTheSelectionFollows()
{
    Fixture f;
    addRules(f.raw);
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(RulesTab);
    auto *up = child<QPushButton>(page, "pushButtonRuleUp");
    auto *down = child<QPushButton>(page, "pushButtonRuleDown");
    const auto texts = [&f] {
        QStringList order;
        for (const QVariantList &row : storedRules(f.raw))
            order << row.at(1).toString();
        return order;
    };

    rulesTable(page)->selectRow(2);
    QVERIFY(up->isEnabled());
    QVERIFY(!down->isEnabled());
    up->click();
    QCOMPARE(texts(), QStringList({ "REWE", "^db\\b", "shell" }));
    QCOMPARE(rulesTable(page)->selectedRanges().constFirst().topRow(), 1);
    up->click();
    QCOMPARE(texts(), QStringList({ "^db\\b", "REWE", "shell" }));
    QCOMPARE(rulesTable(page)->selectedRanges().constFirst().topRow(), 0);
    // The first rule can go no higher.
    QVERIFY(!up->isEnabled());
    down->click();
    QCOMPARE(texts(), QStringList({ "REWE", "^db\\b", "shell" }));
    QCOMPARE(shownRules(page).at(1), QStringLiteral("2|^db\\b|Item|Regular expression|Insurance - Travel"));
}

void TestOptionsWidget::applyShowsTheDryRunCountBeforeItRecategorises()
{
    Fixture f;
    addRules(f.raw);
    const QDateTime when(QDate(2026, 3, 1), QTime(12, 0));
    f.raw.insertEntry(QStringLiteral("REWE SAGT DANKE"), QStringLiteral("Others"), when, 20);
    f.raw.insertEntry(QStringLiteral("Fuel"), QStringLiteral("Others"), when, 50, QStringLiteral("Shell Hamburg"));
    f.raw.insertEntry(QStringLiteral("REWE"), QStringLiteral("Food"), when, 5);
    f.raw.insertEntry(QStringLiteral("Kiosk"), QStringLiteral("Others"), when, 1);
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(RulesTab);
    const QStringList before = f.raw.dumpTables();

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Cancel);
    child<QPushButton>(page, "pushButtonApplyRules")->click();
    QCOMPARE(answerer.texts(),
             QStringList({ QStringLiteral("The rules give 2 entries in Others a category of their "
                                          "own. Recategorise them?") }));
    QCOMPARE(f.raw.dumpTables(), before);

    answerer.clear();
    answerer.answer({ QMessageBox::Yes, QMessageBox::Ok });
    child<QPushButton>(page, "pushButtonApplyRules")->click();
    QCOMPARE(answerer.texts().size(), 2);
    QCOMPARE(answerer.texts().at(1), QStringLiteral("Recategorised 2 entries"));
    QCOMPARE(f.raw.rows(QStringLiteral("SELECT CategoryName FROM Entry ORDER BY SNo")),
             QList<QVariantList>({ { "Groceries" }, { "Automobile - Fuel" }, { "Food" }, { "Others" } }));
    QCOMPARE(answerer.errors(), QStringList());
}

void TestOptionsWidget::applyWithNothingToDoSaysSoAndAsksNothing()
{
    Fixture f;
    addRules(f.raw);
    f.raw.insertEntry(QStringLiteral("Kiosk"), QStringLiteral("Others"), QDateTime(QDate(2026, 3, 1), QTime()), 1);
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(RulesTab);
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    child<QPushButton>(page, "pushButtonApplyRules")->click();
    QCOMPARE(answerer.texts(),
             QStringList({ QStringLiteral("No stored entry in Others matches a rule: nothing to recategorise.") }));
    VERIFY_BOX_SHAPE(answerer.seen().constFirst(), BoxKind::Information);
}

void TestOptionsWidget::recurringTabListsEveryExpenseAndTheNextThirtyDaysWithTheirTotal()
{
    Fixture f;
    const QDate today = QDate::currentDate();
    // Weekly from today: today and 7, 14, 21 and 28 days on fall in the 30
    // days; the rent once, three days on, its next month beyond them.
    addRecurring(f.store, QStringLiteral("Paper"), 2, QStringLiteral("News"), { 1, RecurrenceUnit::Week }, today);
    addRecurring(f.store, QStringLiteral("Rent"), 900, QStringLiteral("Housing"), { 1, RecurrenceUnit::Month },
                 today.addDays(3));
    const int done = addRecurring(f.store, QStringLiteral("Course"), 50, QStringLiteral("Education"),
                                  { 1, RecurrenceUnit::Month }, QDate(2020, 1, 1), 1);
    QCOMPARE(RecurringExpenses(f.store).postDue(QDate(2020, 1, 1), false).posted.size(), 1);
    QVERIFY(done > 0);

    OptionsWidget page(&f.store);
    QCOMPARE(tabs(page)->tabText(RecurringTab), QStringLiteral("Recurring"));
    tabs(page)->setCurrentIndex(RecurringTab);
    QTableWidget *table = recurringTable(page);
    QStringList headings;
    for (int column = 0; column < table->columnCount(); ++column)
        headings << table->horizontalHeaderItem(column)->text();
    QCOMPARE(headings, QStringList({ "Item", "Amount", "Category", "Place", "Every", "Next", "End", "Mode" }));
    QCOMPARE(
        tableRows(table),
        QList<QStringList>(
            { { "Paper", "2.00", "News", "", "1 week", today.toString(Qt::TextDate), "Never", "auto" },
              { "Rent", "900.00", "Housing", "", "1 month", today.addDays(3).toString(Qt::TextDate), "Never", "auto" },
              { "Course", "50.00", "Education", "", "1 month", "Finished", "Once", "auto" } }));

    QList<QStringList> coming;
    for (int days : { 0, 3, 7, 14, 21, 28 }) {
        const QString day = today.addDays(days).toString(Qt::TextDate);
        if (days == 3)
            coming.append({ day, "Rent", "Housing", "900.00" });
        else
            coming.append({ day, "Paper", "News", "2.00" });
    }
    QCOMPARE(tableRows(child<QTableWidget>(page, "tableWidgetRecurringPreview")), coming);
    QCOMPARE(child<QLabel>(page, "labelRecurringPreview")->text(), QStringLiteral("The next 30 days"));
    QCOMPARE(child<QLabel>(page, "labelRecurringPreviewTotal")->text(), QStringLiteral("Total: 910.00"));
    for (const auto &[name, text] :
         { std::pair("pushButtonAddRecurring", "Add"), std::pair("pushButtonEditRecurring", "Edit"),
           std::pair("pushButtonRemoveRecurring", "Remove"), std::pair("pushButtonPostDueNow", "Post Due Now") })
        QCOMPARE(child<QPushButton>(page, QLatin1String(name))->text(), QLatin1String(text));
}

void TestOptionsWidget::addingARecurringExpenseStoresWhatTheDialogSays()
{
    Fixture f;
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(RecurringTab);
    DialogAnswerer dialogs(QStringLiteral("RecurringExpenseDialog"));
    dialogs.answer([](QDialog &dialog) {
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Add Recurring Expense"));
        child<QLineEdit>(dialog, "lineEditItem")->setText(QStringLiteral("Electricity"));
        child<QLineEdit>(dialog, "lineEditAmount")->setText(QStringLiteral("80.25"));
        child<QComboBox>(dialog, "comboBoxCategory")->setCurrentText(QStringLiteral("Utilities"));
        child<QLineEdit>(dialog, "lineEditPlace")->setText(QStringLiteral("Power Co"));
        child<QSpinBox>(dialog, "spinBoxEvery")->setValue(2);
        auto *unit = child<QComboBox>(dialog, "comboBoxUnit");
        unit->setCurrentIndex(unit->findText(QStringLiteral("months")));
        child<QDateEdit>(dialog, "dateEditFirst")->setDate(QDate(2026, 1, 31));
        auto *end = child<QComboBox>(dialog, "comboBoxEnd");
        end->setCurrentIndex(end->findText(QStringLiteral("After a number of times")));
        child<QSpinBox>(dialog, "spinBoxTimes")->setValue(6);
        child<QCheckBox>(dialog, "checkBoxConfirm")->setChecked(true);
        pressOk(dialog);
    });
    child<QPushButton>(page, "pushButtonAddRecurring")->click();
    QCOMPARE(dialogs.answered(), 1);
    QVERIFY2(dialogs.errors().isEmpty(), qPrintable(dialogs.errors().join('\n')));

    QCOMPARE(storedRecurring(f.raw),
             QList<QStringList>({ { "Electricity", "80.25", "Utilities", "Power Co", "2", "m", "2026-01-31", "NULL",
                                    "6", "confirm", "2026-01-31" } }));
    QCOMPARE(f.raw.scalar(QStringLiteral("SELECT count(*) FROM Category WHERE CategoryName = 'Utilities'")).toInt(), 1);
    QCOMPARE(recurringTable(page)->rowCount(), 1);
    QCOMPARE(recurringTable(page)->item(0, 6)->text(), QStringLiteral("6 times"));
    QCOMPARE(recurringTable(page)->item(0, 7)->text(), QStringLiteral("confirm"));
}

void TestOptionsWidget::aRecurringExpenseThatCannotBeKeptKeepsTheDialogOpenAndStoresNothing()
{
    Fixture f;
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(RecurringTab);
    const QStringList before = f.raw.dumpTables();
    DialogAnswerer dialogs(QStringLiteral("RecurringExpenseDialog"));
    MessageBoxAnswerer answerer;
    dialogs.answer([&answerer](QDialog &dialog) {
        child<QLineEdit>(dialog, "lineEditAmount")->setText(QStringLiteral("12"));
        child<QComboBox>(dialog, "comboBoxCategory")->setCurrentText(QStringLiteral("Bills"));
        answerer.answer(QMessageBox::Ok);
        pressOk(dialog);
        QVERIFY(answerer.waitForBoxes(1));
        QVERIFY(dialog.isVisible());
        child<QDialogButtonBox>(dialog, "buttonBox")->button(QDialogButtonBox::Cancel)->click();
    });
    child<QPushButton>(page, "pushButtonAddRecurring")->click();
    QCOMPARE(dialogs.answered(), 1);
    QVERIFY2(dialogs.errors().isEmpty(), qPrintable(dialogs.errors().join('\n')));
    QCOMPARE(answerer.texts(), QStringList({ "A recurring expense needs an item." }));
    QCOMPARE(f.raw.dumpTables(), before);
    QCOMPARE(recurringTable(page)->rowCount(), 0);
}

void TestOptionsWidget::editingARecurringExpenseStoresTheChange()
{
    Fixture f;
    addRecurring(f.store, QStringLiteral("Gym"), 30, QStringLiteral("Sport"), { 1, RecurrenceUnit::Month },
                 QDate(2026, 1, 15));
    addRecurring(f.store, QStringLiteral("Rent"), 900, QStringLiteral("Housing"), { 1, RecurrenceUnit::Month },
                 QDate(2026, 1, 1));
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(RecurringTab);
    // Listed by next day: the rent first.
    recurringTable(page)->selectRow(0);
    DialogAnswerer dialogs(QStringLiteral("RecurringExpenseDialog"));
    dialogs.answer([](QDialog &dialog) {
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Edit Recurring Expense"));
        QCOMPARE(child<QLineEdit>(dialog, "lineEditItem")->text(), QStringLiteral("Rent"));
        QCOMPARE(child<QLineEdit>(dialog, "lineEditAmount")->text(), QStringLiteral("900.00"));
        child<QLineEdit>(dialog, "lineEditAmount")->setText(QStringLiteral("950"));
        auto *end = child<QComboBox>(dialog, "comboBoxEnd");
        end->setCurrentIndex(end->findText(QStringLiteral("On a last day")));
        child<QDateEdit>(dialog, "dateEditUntil")->setDate(QDate(2026, 12, 1));
        pressOk(dialog);
    });
    child<QPushButton>(page, "pushButtonEditRecurring")->click();
    QCOMPARE(dialogs.answered(), 1);
    QVERIFY2(dialogs.errors().isEmpty(), qPrintable(dialogs.errors().join('\n')));
    QCOMPARE(
        storedRecurring(f.raw),
        QList<QStringList>(
            { { "Gym", "30", "Sport", "", "1", "m", "2026-01-15", "NULL", "NULL", "auto", "2026-01-15" },
              { "Rent", "950", "Housing", "", "1", "m", "2026-01-01", "2026-12-01", "NULL", "auto", "2026-01-01" } }));
    QCOMPARE(recurringTable(page)->item(0, 1)->text(), QStringLiteral("950.00"));
}

void TestOptionsWidget::removingARecurringExpenseAsksFirstAndKeepsItsEntries()
{
    Fixture f;
    addRecurring(f.store, QStringLiteral("Gym"), 30, QStringLiteral("Sport"), { 1, RecurrenceUnit::Month },
                 QDate(2026, 1, 15));
    QCOMPARE(RecurringExpenses(f.store).postDue(QDate(2026, 2, 15), false).posted.size(), 2);
    OptionsWidget page(&f.store);
    tabs(page)->setCurrentIndex(RecurringTab);
    recurringTable(page)->selectRow(0);
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Cancel);
    child<QPushButton>(page, "pushButtonRemoveRecurring")->click();
    QVERIFY(answerer.waitForBoxes(1));
    QCOMPARE(f.raw.scalar(QStringLiteral("SELECT count(*) FROM RecurringExpense")).toInt(), 1);

    recurringTable(page)->selectRow(0);
    answerer.answer(QMessageBox::Yes);
    child<QPushButton>(page, "pushButtonRemoveRecurring")->click();
    QVERIFY(answerer.waitForBoxes(2));
    QCOMPARE(answerer.texts().last(),
             QStringLiteral("Remove the recurring expense Gym? The entries it has posted stay."));
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(f.raw.scalar(QStringLiteral("SELECT count(*) FROM RecurringExpense")).toInt(), 0);
    QCOMPARE(f.raw.scalar(QStringLiteral("SELECT count(*) FROM Entry WHERE ItemName = 'Gym'")).toInt(), 2);
    QCOMPARE(recurringTable(page)->rowCount(), 0);
}

QTEST_MAIN(TestOptionsWidget)

#include "tst_optionswidget.moc"
