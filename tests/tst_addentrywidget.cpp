// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "addentrywidget.h"
#include "databasemanager.h"
#include "format.h"
#include "geolocationreply.h"
#include "mainwindow.h"

#include "settings.h"

#include "localhttpserver.h"
#include "mainwindowfixture.h"
#include "messageboxanswerer.h"
#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"
#include "widgettest.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QDateEdit>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QScopeGuard>
#include <QScrollArea>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextDocument>
#include <QtTest>

#include <memory>

namespace {

const char geoLocationVariable[] = "LEDGERLY_GEOLOCATION_URL";

const QByteArray fullReply = QByteArrayLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                               "<Response>\n"
                                               "  <Ip>10.1.2.3</Ip>\n"
                                               "  <City>Pune</City>\n"
                                               "  <RegionName>Maharashtra</RegionName>\n"
                                               "  <Latitude>18.52</Latitude>\n"
                                               "  <Longitude>73.85</Longitude>\n"
                                               "</Response>\n");

// The reply in one line, so that a table row can say what it expects:
// "-" for a child that was not read.
QString describe(const GeoLocationReply &reply)
{
    const auto text = [](const std::optional<QString> &value) { return value ? *value : QStringLiteral("-"); };
    const auto number = [](const std::optional<float> &value) {
        return value ? Format::number(*value) : QStringLiteral("-");
    };
    return QStringLiteral("ip=%1 city=%2 region=%3 lat=%4 long=%5")
        .arg(text(reply.ipAddress), text(reply.city), text(reply.region), number(reply.latitude),
             number(reply.longitude));
}

// A store on the file of a temporary home, and a page on it.
struct PageFixture
{
    PageFixture() : store(nullptr), page(QPointer<DatabaseManager>(&store), nullptr) { }

    QLineEdit *name() { return child<QLineEdit>(page, "lineEditItemName"); }
    QLineEdit *amount() { return child<QLineEdit>(page, "lineEditAmount"); }
    QLineEdit *place() { return child<QLineEdit>(page, "lineEditLocation"); }
    QComboBox *category() { return child<QComboBox>(page, "comboBoxCategory"); }
    QDateEdit *date() { return child<QDateEdit>(page, "dateEdit"); }
    QCheckBox *geoLocation() { return child<QCheckBox>(page, "checkBoxGeoLocation"); }
    void pressAdd() { child<QPushButton>(page, "pushButtonAdd")->click(); }

    // Types like a user, through the amount validator.
    void type(const QString &itemName, const QString &price, const QString &where)
    {
        QTest::keyClicks(name(), itemName);
        QTest::keyClicks(amount(), price);
        QTest::keyClicks(place(), where);
    }

    // Waits until the page has read a lookup's reply: a reply that arrived
    // whole goes, with its manager, once the page has read it.
    bool waitForLookup()
    {
        // Every reply is deleted once finished and handled.
        return QTest::qWaitFor([] { return qApp->findChildren<QNetworkReply *>().isEmpty(); });
    }

    // What the page shows of the latest lookup: the end of the confirmation
    // that Add asks for, "Longitude: 73.85 Latitude: 18.52 Location:
    // 10.1.2.3 ". Types an entry into the empty fields, presses Add, answers
    // Discard through the test's answerer and empties the fields again. Like
    // every Add, it asks the service once more.
    QString lookupShown(MessageBoxAnswerer &answerer)
    {
        type(QStringLiteral("Probe"), QStringLiteral("1.00"), QStringLiteral("Here"));
        const qsizetype seen = answerer.seen().size();
        answerer.answer(QMessageBox::Discard);
        pressAdd();
        name()->clear();
        amount()->clear();
        place()->clear();
        if (answerer.seen().size() != seen + 1)
            return QStringLiteral("(no confirmation)");
        const QString text = answerer.seen().constLast().text;
        return text.mid(text.indexOf(QStringLiteral("Longitude: ")));
    }

    TempHome home;
    DatabaseManager store;
    AddEntryWidget page;
};

// A page over a catalogue of items bought before: Coffee (used five times,
// last at 2.5, as a drink), Cake (once, at 3, food) and coffee beans (twice,
// last at 12, groceries), written before the page opens.
struct CatalogueFixture
{
    // More rows, in the form "('Name', 'Category', 1, 2.5, 1)", come after.
    explicit CatalogueFixture(const QStringList &moreRows = {}) : store(nullptr)
    {
        RawDatabase raw(home.databasePath());
        const QStringList rows = QStringList { "('Coffee', 'Drinks', 2, 2.5, 5)", "('Cake', 'Food', 1, 3, 1)",
                                               "('coffee beans', 'Groceries', 13, 12, 2)" } +
            moreRows;
        for (const QString &row : rows) {
            if (!raw.exec(QStringLiteral("INSERT INTO Items (ItemName,CategoryName,CategoryID,LastPrice,UseFrequency) "
                                         "VALUES %1")
                              .arg(row)))
                qFatal("cannot write the catalogue: %s", qPrintable(raw.lastError()));
        }
        page = std::make_unique<AddEntryWidget>(QPointer<DatabaseManager>(&store), nullptr);
    }

    // Shows the page, whose name field then has the focus: the list of
    // names belongs to the field that has it.
    bool show()
    {
        page->show();
        return QTest::qWaitForWindowActive(page.get()) && QTest::qWaitFor([this] { return name()->hasFocus(); });
    }

    QLineEdit *name() { return child<QLineEdit>(*page, "lineEditItemName"); }
    QLineEdit *amount() { return child<QLineEdit>(*page, "lineEditAmount"); }
    QLineEdit *place() { return child<QLineEdit>(*page, "lineEditLocation"); }
    QComboBox *category() { return child<QComboBox>(*page, "comboBoxCategory"); }
    QCompleter *completer() { return name()->completer(); }
    QAbstractItemView *list() { return completer()->popup(); }

    // The names the open list offers, top to bottom.
    QStringList offered()
    {
        QStringList names;
        const QAbstractItemModel *model = list()->model();
        for (int row = 0; row < model->rowCount(); ++row)
            names.append(model->index(row, 0).data().toString());
        return names;
    }

    // Types into the name field and waits for the list of names to be on
    // screen.
    bool openList(const QString &typed)
    {
        QTest::keyClicks(name(), typed);
        return QTest::qWaitFor([this] { return list()->isVisible(); }) && QTest::qWaitForWindowExposed(list());
    }

    // Picks a name with the keys, as a user does: types `typed`, moves down
    // the list `rows` times and presses Return; true once the list closed.
    bool pickWithKeys(const QString &typed, int rows)
    {
        if (!openList(typed))
            return false;
        for (int row = 0; row < rows; ++row)
            keyToList(Qt::Key_Down);
        keyToList(Qt::Key_Return);
        return QTest::qWaitFor([this] { return !list()->isVisible(); });
    }

    // A key as the user presses it while the list is open: the window
    // system hands it to the open list, not to the field.
    void keyToList(Qt::Key key) { QTest::keyClick(list()->windowHandle(), key); }

    TempHome home;
    DatabaseManager store;
    std::unique_ptr<AddEntryWidget> page;
};

QList<QVariantList> storedEntries(const TempHome &home)
{
    RawDatabase raw(home.databasePath());
    return raw.rows(
        QStringLiteral("SELECT ItemName, CategoryName, TransactDateTime, Price, LocationText, EnableGeoLoc, "
                       "GeoLocLongit, GeoLocLatit FROM Entry ORDER BY SNo"));
}

int storedEntryCount(const TempHome &home)
{
    RawDatabase raw(home.databasePath());
    return raw.scalar(QStringLiteral("SELECT COUNT(*) FROM Entry")).toInt();
}

QString confirmation(const QString &name, const QString &price, const QString &category, const QDate &date,
                     const QString &place, const QString &geo, const QString &longitude, const QString &latitude,
                     const QString &location)
{
    return QStringLiteral("Details Entered - Item Name: ") + name + QStringLiteral("  Price: ") + price +
        QStringLiteral(" Category: ") + category + QStringLiteral("  Date: ") + date.toString(Qt::TextDate) +
        QStringLiteral("  Location: ") + place + QStringLiteral("  AddGeoLocation: ") + geo +
        QStringLiteral(" Longitude: ") + longitude + QStringLiteral(" Latitude: ") + latitude +
        QStringLiteral(" Location: ") + location + QStringLiteral(" ");
}

} // namespace

class TestAddEntryWidget : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase();
    void init();
    void cleanup();

    // The form
    void formHasTheDesignedWidgetsAndGeometry_data();
    void formHasTheDesignedWidgetsAndGeometry();
    void pageHasItsTitleSizeAndStyleSheets();
    void captionsAreYellowRichText_data();
    void captionsAreYellowRichText();
    void addButtonHasTheGradientStyleAndTheMenuFont();
    void dateEditShowsDayMonthYearWithoutAPopUpAndStartsToday();
    void categoryBoxListsTheStoredCategoriesInTableOrder();
    void addCategoriesToComboBoxAppendsNamesWithoutUserData();
    void checkBoxStartsUnticked();

    // The amount field
    void amountValidatorJudgesText_data();
    void amountValidatorJudgesText();
    void typingIntoTheAmountKeepsOnlyWhatTheValidatorAllows_data();
    void typingIntoTheAmountKeepsOnlyWhatTheValidatorAllows();
    void anAmountWithoutAPointIsStillReadByAdd_data();
    void anAmountWithoutAPointIsStillReadByAdd();

    // Validation, confirmation, saving
    void missingFieldsAreReportedAndNothingIsStored_data();
    void missingFieldsAreReportedAndNothingIsStored();
    void aMissingLocationAloneStopsAddSilently();
    void confirmationListsWhatWasTypedAndTheLatestLookup();
    void discardKeepsEveryFieldAsTyped();
    void saveWithTheBoxUntickedStoresTheFixedCoordinates();
    void saveWithTheBoxTickedStoresTheCoordinatesOfTheLatestReply();
    void savedEntryIsReadBackByTheStoreAsTyped_data();
    void savedEntryIsReadBackByTheStoreAsTyped();
    void savingClearsTheFieldsAndKeepsTheCategory();
    void aRefusedWriteIsReportedAndKeepsWhatWasTypedForTheNextAdd();
    void anAmountBeyondTheLargestIsRefusedBeforeTheConfirmation_data();
    void anAmountBeyondTheLargestIsRefusedBeforeTheConfirmation();
    void amountsUpToTheLargestAreStoredAsBefore_data();
    void amountsUpToTheLargestAreStoredAsBefore();
    void aFullDiskRefusesTheEntryChangesNothingAndAddWorksOnceThereIsRoom();
    void aLockedFileIsReportedWithinTheBusyTimeoutAndAddWorksOnceReleased();

    // The keyboard
    void returnInATextFieldGivesTheMessagesOfAdd_data();
    void returnInATextFieldGivesTheMessagesOfAdd();
    void tabWalksFromTheNameDownToAdd();
    void theNameFieldHasTheFocusWhenThePageOpens();

    // Item completion
    void typingOffersTheCatalogueNamesThatHoldItMostUsedFirst();
    void pickingANameWithAnEmptyAmountFillsItsLastPriceAndCategory();
    void pickingANameKeepsAnAmountAlreadyTyped();
    void pickingANameKeepsACategoryTheUserChose();
    void aCatalogueNameTypedInFullCountsAsPickedWhenTheUserMovesOn();
    void aStoredPriceThatAddWouldRefuseIsNotOffered_data();
    void aStoredPriceThatAddWouldRefuseIsNotOffered();
    void pressingAddStoresTheFieldsAsTheyWereWithoutFillingThem();
    void theSavedEntryIsExactlyWhatThePageShowed();
    void returnWithTheListOpenPicksTheNameAndDoesNotPressAdd();
    void aPageOnAnEmptyCatalogueHasACompleterWithoutRows();

    // The reply parser
    void parserReadsWhatTheReplySays_data();
    void parserReadsWhatTheReplySays();

    // The lookup against a real server
    void withoutAServiceNoRequestIsSentAndTheLookupValuesStayEmpty();
    void theServiceUrlComesFromTheSettings();
    void theEnvironmentOverridesTheSetting();
    void openingThePageSendsOneGetAndEachAddOneMore();
    void aFullReplyShowsItsCoordinatesAndItsAddressAsTheLocation();
    void anUnknownChildWithANestedSubtreeIsSkipped();
    void aSuccessfulReplyIsDeletedAndTheProgramKeepsOneManager();
    void everyPageLooksUpThroughTheSameManager();
    void aFailedLookupChangesNothingAndItsReplyIsDeleted_data();
    void aFailedLookupChangesNothingAndItsReplyIsDeleted();
    void aServerThatNeverAnswersLeavesThePageUsable();
    void anUnreadableReplyLeavesWhatThePageShowsAsItWas_data();
    void anUnreadableReplyLeavesWhatThePageShowsAsItWas();
    void numbersThatAreNotNumbersAreReadAsZero();

    // The main window's New Entry button
    void newEntryShowsTheNewEntryPageOnTheDataPage();
    void newEntryAgainReplacesTheTypedPageWithAnEmptyOne();
    void homeAndAboutKeepTheTypedPageAliveAndHidden();
    void thePageKeepsItsBlackBackgroundInsideTheItalicHost();

private:
    void setService(const QUrl &url);

    QTemporaryDir settingsDir;
};

void TestAddEntryWidget::initTestCase()
{
    WidgetTest::initTestCase();
    QVERIFY(settingsDir.isValid());
    // Settings of the user running the tests must not leak in.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsDir.path());
    // Nor a proxy from the environment: the server is on this machine.
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
}

void TestAddEntryWidget::init()
{
    qunsetenv(geoLocationVariable);
    QSettings(QStringLiteral("Ledgerly"), QStringLiteral("Ledgerly")).clear();
}

void TestAddEntryWidget::cleanup()
{
    qunsetenv(geoLocationVariable);
    VERIFY_NO_WIDGETS_LEFT();
}

void TestAddEntryWidget::setService(const QUrl &url)
{
    qputenv(geoLocationVariable, url.toString().toUtf8());
}

// ---------------------------------------------------------------- the form

void TestAddEntryWidget::formHasTheDesignedWidgetsAndGeometry_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QRect>("geometry");

    const auto row = [](const char *name, const char *className, const QRect &geometry) {
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(className) << geometry;
    };
    row("scrollArea", "QScrollArea", QRect(10, 10, 871, 741));
    row("scrollAreaWidgetContents", "QWidget", QRect(0, 0, 869, 739));
    row("labelName", "QLabel", QRect(20, 20, 111, 31));
    row("lineEditItemName", "QLineEdit", QRect(150, 10, 681, 51));
    row("labelAmount", "QLabel", QRect(20, 80, 111, 31));
    row("lineEditAmount", "QLineEdit", QRect(150, 70, 681, 51));
    row("labelCategory", "QLabel", QRect(20, 140, 111, 31));
    row("comboBoxCategory", "QComboBox", QRect(150, 131, 681, 41));
    row("labelLocation", "QLabel", QRect(20, 200, 111, 31));
    row("lineEditLocation", "QLineEdit", QRect(150, 190, 681, 51));
    row("labelDate", "QLabel", QRect(20, 260, 111, 31));
    row("dateEdit", "QDateEdit", QRect(150, 250, 291, 61));
    row("checkBoxGeoLocation", "QCheckBox", QRect(150, 350, 471, 51));
    row("pushButtonAdd", "QPushButton", QRect(300, 470, 311, 61));
}

void TestAddEntryWidget::formHasTheDesignedWidgetsAndGeometry()
{
    QFETCH(QString, name);
    QFETCH(QString, className);
    QFETCH(QRect, geometry);

    PageFixture f;
    auto *widget = f.page.findChild<QWidget *>(name);
    QVERIFY2(widget, qPrintable(name));
    QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), className);
    QCOMPARE(widget->geometry(), geometry);
    if (name != QLatin1String("scrollArea") && name != QLatin1String("scrollAreaWidgetContents"))
        QCOMPARE(widget->parentWidget()->objectName(), QStringLiteral("scrollAreaWidgetContents"));
}

void TestAddEntryWidget::pageHasItsTitleSizeAndStyleSheets()
{
    PageFixture f;
    QCOMPARE(f.page.objectName(), QStringLiteral("AddEntryWidget"));
    QCOMPARE(f.page.windowTitle(), QStringLiteral("Form"));
    QCOMPARE(f.page.size(), QSize(888, 761));
    QCOMPARE(f.page.styleSheet(), QStringLiteral("background-color: rgb(0, 0, 0);"));

    auto *scrollArea = child<QScrollArea>(f.page, "scrollArea");
    QCOMPARE(scrollArea->styleSheet(), QStringLiteral("font: 75 14pt \"MS Shell Dlg 2\";"));
    QVERIFY(!scrollArea->widgetResizable());
    QCOMPARE(scrollArea->widget()->objectName(), QStringLiteral("scrollAreaWidgetContents"));

    for (QLineEdit *edit : { f.name(), f.amount(), f.place() })
        QCOMPARE(edit->styleSheet(), QString::fromLatin1(FormStyle::inputField));
    QCOMPARE(f.date()->styleSheet(), QString::fromLatin1(FormStyle::inputField));
    QCOMPARE(f.category()->styleSheet(), QString::fromLatin1(FormStyle::borderedCombo));
    QCOMPARE(f.geoLocation()->styleSheet(), QStringLiteral("font: 75 14pt \"MS Shell Dlg 2\";\n"));
    QCOMPARE(f.geoLocation()->text(), QStringLiteral("Add GeoLocation"));
}

void TestAddEntryWidget::captionsAreYellowRichText_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("spanStyle");

    QTest::newRow("Name") << "labelName"
                          << "Name"
                          << "<span style=\" color:#ffff00;\">Name</span>";
    QTest::newRow("Amount") << "labelAmount"
                            << "Amount"
                            << "<span style=\" font-size:14pt; color:#ffff00;\">Amount</span>";
    QTest::newRow("Category") << "labelCategory"
                              << "Category"
                              << "<span style=\" font-size:14pt; color:#ffff00;\">Category</span>";
    QTest::newRow("Location") << "labelLocation"
                              << "Location"
                              << "<span style=\" font-size:14pt; color:#ffff00;\">Location</span>";
    QTest::newRow("Date") << "labelDate"
                          << "Date"
                          << "<span style=\" font-size:14pt; color:#ffff00;\">Date</span>";
}

void TestAddEntryWidget::captionsAreYellowRichText()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(QString, spanStyle);

    PageFixture f;
    auto *label = f.page.findChild<QLabel *>(name);
    QVERIFY(label);
    QCOMPARE(plainText(label), text);
    QVERIFY(Qt::mightBeRichText(label->text()));
    QVERIFY2(label->text().contains(spanStyle), qPrintable(label->text()));
    QVERIFY(label->text().contains(QStringLiteral("font-family:'MS Shell Dlg 2'; font-size:14pt;")));
    // One paragraph holding one span.
    QCOMPARE(label->text().count(QStringLiteral("<p ")), 1);
    QCOMPARE(label->text().count(QStringLiteral("<span ")), 1);

    QTextDocument document;
    document.setHtml(label->text());
    const QTextCharFormat format = document.begin().begin().fragment().charFormat();
    QCOMPARE(format.foreground().color(), QColor(0xff, 0xff, 0x00));
}

void TestAddEntryWidget::addButtonHasTheGradientStyleAndTheMenuFont()
{
    PageFixture f;
    auto *add = child<QPushButton>(f.page, "pushButtonAdd");
    QCOMPARE(add->text(), QStringLiteral("Add"));
    QCOMPARE(add->styleSheet(), QString::fromLatin1(FormStyle::gradientButton));
    QCOMPARE(add->font().family(), QStringLiteral("MS Shell Dlg 2"));
    QCOMPARE(add->font().pointSize(), 16);
    QVERIFY(!add->font().italic());
    QVERIFY(!add->font().bold());
}

void TestAddEntryWidget::dateEditShowsDayMonthYearWithoutAPopUpAndStartsToday()
{
    PageFixture f;
    QCOMPARE(f.date()->displayFormat(), QStringLiteral("dd/MM/yyyy"));
    QVERIFY(!f.date()->calendarPopup());
    QCOMPARE(f.date()->date(), QDate::currentDate());
    QCOMPARE(f.date()->text(), QDate::currentDate().toString(QStringLiteral("dd/MM/yyyy")));
}

void TestAddEntryWidget::categoryBoxListsTheStoredCategoriesInTableOrder()
{
    PageFixture f;
    RawDatabase raw(f.home.databasePath());
    const QList<QVariantList> rows = raw.rows(QStringLiteral("SELECT CategoryName FROM Category"));
    QCOMPARE(rows.size(), 37);

    auto *combo = f.category();
    QCOMPARE(combo->count(), rows.size());
    for (int i = 0; i < rows.size(); ++i)
        QCOMPARE(combo->itemText(i), rows.at(i).constFirst().toString());
    QCOMPARE(combo->currentIndex(), 0);
}

void TestAddEntryWidget::addCategoriesToComboBoxAppendsNamesWithoutUserData()
{
    PageFixture f;
    const int before = f.category()->count();

    Category tea;
    tea.CategoryName = QStringLiteral("Tea");
    Category books;
    books.CategoryName = QStringLiteral("Books");
    f.page.AddCategoriesToComboBox({ &tea, &books });

    QCOMPARE(f.category()->count(), before + 2);
    QCOMPARE(f.category()->itemText(before), QStringLiteral("Tea"));
    QCOMPARE(f.category()->itemText(before + 1), QStringLiteral("Books"));
    QVERIFY(!f.category()->itemData(before).isValid());
    // The records stay the caller's and untouched.
    QCOMPARE(tea.CategoryName, QStringLiteral("Tea"));
}

void TestAddEntryWidget::checkBoxStartsUnticked()
{
    PageFixture f;
    QVERIFY(!f.geoLocation()->isChecked());
    QVERIFY(f.name()->text().isEmpty());
    QVERIFY(f.amount()->text().isEmpty());
    QVERIFY(f.place()->text().isEmpty());
}

// ---------------------------------------------------------- the amount field

void TestAddEntryWidget::amountValidatorJudgesText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QValidator::State>("state");

    QTest::newRow("12 without a point") << "12" << QValidator::Intermediate;
    QTest::newRow("12.") << "12." << QValidator::Acceptable;
    QTest::newRow("12.5") << "12.5" << QValidator::Acceptable;
    QTest::newRow("12.50") << "12.50" << QValidator::Acceptable;
    QTest::newRow("0.99") << "0.99" << QValidator::Acceptable;
    QTest::newRow("third decimal digit") << "12.555" << QValidator::Invalid;
    QTest::newRow("point first") << ".5" << QValidator::Invalid;
    QTest::newRow("letters") << "abc" << QValidator::Invalid;
    QTest::newRow("negative") << "-3.00" << QValidator::Invalid;
    QTest::newRow("comma") << "12,50" << QValidator::Invalid;
    QTest::newRow("empty") << "" << QValidator::Intermediate;
}

void TestAddEntryWidget::amountValidatorJudgesText()
{
    QFETCH(QString, text);
    QFETCH(QValidator::State, state);

    PageFixture f;
    const auto *validator = qobject_cast<const QRegularExpressionValidator *>(f.amount()->validator());
    QVERIFY(validator);
    QCOMPARE(validator->parent(), f.amount());
    QCOMPARE(validator->regularExpression().pattern(), QStringLiteral("[0-9]+\\.[0-9]{0,2}"));
    QVERIFY(!(validator->regularExpression().patternOptions() & QRegularExpression::CaseInsensitiveOption));
    int position = 0;
    QCOMPARE(validator->validate(text, position), state);
}

void TestAddEntryWidget::typingIntoTheAmountKeepsOnlyWhatTheValidatorAllows_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("kept");
    QTest::addColumn<bool>("acceptable");

    QTest::newRow("12 stays, not yet acceptable") << "12"
                                                  << "12" << false;
    QTest::newRow("12.") << "12."
                         << "12." << true;
    QTest::newRow("12.5") << "12.5"
                          << "12.5" << true;
    QTest::newRow("12.50") << "12.50"
                           << "12.50" << true;
    QTest::newRow("a third decimal digit cannot be typed") << "12.555"
                                                           << "12.55" << true;
    QTest::newRow("letters cannot be typed") << "1a2.b5"
                                             << "12.5" << true;
}

void TestAddEntryWidget::typingIntoTheAmountKeepsOnlyWhatTheValidatorAllows()
{
    QFETCH(QString, typed);
    QFETCH(QString, kept);
    QFETCH(bool, acceptable);

    PageFixture f;
    QTest::keyClicks(f.amount(), typed);
    QCOMPARE(f.amount()->text(), kept);
    QCOMPARE(f.amount()->hasAcceptableInput(), acceptable);
}

void TestAddEntryWidget::anAmountWithoutAPointIsStillReadByAdd_data()
{
    QTest::addColumn<bool>("byReturn");
    QTest::newRow("pressing Add") << false;
    // The field's returnPressed() would stay silent for an amount its
    // validator does not accept; Return presses Add all the same.
    QTest::newRow("Return in the amount") << true;
}

void TestAddEntryWidget::anAmountWithoutAPointIsStillReadByAdd()
{
    QFETCH(bool, byReturn);
    PageFixture f;
    f.type(QStringLiteral("Bread"), QStringLiteral("12"), QStringLiteral("Bakery"));
    QVERIFY(!f.amount()->hasAcceptableInput());

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    if (byReturn)
        QTest::keyClick(f.amount(), Qt::Key_Return);
    else
        f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 2);
    QVERIFY(answerer.texts().constFirst().contains(QStringLiteral("  Price: 12 Category: ")));
    const QList<QVariantList> rows = storedEntries(f.home);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0).at(3).toFloat(), 12.0f);
}

// --------------------------------------------- validation, confirmation, saving

void TestAddEntryWidget::missingFieldsAreReportedAndNothingIsStored_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("amount");
    QTest::addColumn<QString>("place");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("all empty") << ""
                               << ""
                               << "" << QStringList { "All fields empty. Enter information" };
    QTest::newRow("only the location") << ""
                                       << ""
                                       << "Market" << QStringList { "Item Name and Amount not entered." };
    QTest::newRow("no name") << ""
                             << "2.50"
                             << "Market" << QStringList { "Item Name cannot be empty. Enter Item Name" };
    QTest::newRow("no name and no location") << ""
                                             << "2.50"
                                             << "" << QStringList { "Item Name cannot be empty. Enter Item Name" };
    QTest::newRow("no amount") << "Coffee"
                               << ""
                               << "Market" << QStringList { "Amount cannot be empty. Enter Amount" };
    QTest::newRow("no amount and no location") << "Coffee"
                                               << ""
                                               << "" << QStringList { "Amount cannot be empty. Enter Amount" };
}

void TestAddEntryWidget::missingFieldsAreReportedAndNothingIsStored()
{
    QFETCH(QString, name);
    QFETCH(QString, amount);
    QFETCH(QString, place);
    QFETCH(QStringList, messages);

    PageFixture f;
    f.type(name, amount, place);
    f.geoLocation()->setChecked(true);

    MessageBoxAnswerer answerer;
    for (int i = 0; i < messages.size(); ++i)
        answerer.answer(QMessageBox::Ok);
    f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.texts(), messages);
    for (const SeenMessageBox &box : answerer.seen()) {
        VERIFY_BOX_SHAPE(box, BoxKind::Information);
    }
    QCOMPARE(storedEntryCount(f.home), 0);
    // Nothing is cleared on a validation failure.
    QCOMPARE(f.name()->text(), name);
    QCOMPARE(f.amount()->text(), amount);
    QCOMPARE(f.place()->text(), place);
    QVERIFY(f.geoLocation()->isChecked());
}

void TestAddEntryWidget::aMissingLocationAloneStopsAddSilently()
{
    PageFixture f;
    f.type(QStringLiteral("Coffee"), QStringLiteral("2.50"), QString());

    MessageBoxAnswerer answerer;
    // A box would be modal: it would have been seen, and answered as
    // unexpected, before the click returns.
    f.pressAdd();

    QVERIFY(answerer.seen().isEmpty());
    QVERIFY(answerer.errors().isEmpty());
    QCOMPARE(storedEntryCount(f.home), 0);
    QCOMPARE(f.name()->text(), QStringLiteral("Coffee"));
    QCOMPARE(f.amount()->text(), QStringLiteral("2.50"));
}

void TestAddEntryWidget::confirmationListsWhatWasTypedAndTheLatestLookup()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200, fullReply);
    setService(server.url());

    PageFixture f;
    QVERIFY(f.waitForLookup());

    f.type(QStringLiteral("Coffee 100%"), QStringLiteral("2.50"), QStringLiteral("Pune Market %1"));
    f.category()->setCurrentIndex(3);
    const QString category = f.category()->currentText();
    const QDate day(2026, 3, 5);
    f.date()->setDate(day);
    f.geoLocation()->setChecked(true);

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Discard);
    f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 1);
    const SeenMessageBox &box = answerer.seen().constFirst();
    QCOMPARE(box.text,
             confirmation(QStringLiteral("Coffee 100%"), QStringLiteral("2.50"), category, day,
                          QStringLiteral("Pune Market %1"), QStringLiteral("True"), QStringLiteral("73.85"),
                          QStringLiteral("18.52"), QStringLiteral("10.1.2.3")));
    QVERIFY(box.text.contains(QStringLiteral("Date: Thu Mar 5 2026  Location")));
    VERIFY_BOX_SHAPE(box, BoxKind::Confirmation);
}

void TestAddEntryWidget::discardKeepsEveryFieldAsTyped()
{
    PageFixture f;
    f.type(QStringLiteral("Coffee"), QStringLiteral("2.5"), QStringLiteral("Station"));
    f.category()->setCurrentIndex(5);
    f.date()->setDate(QDate(2025, 12, 24));
    f.geoLocation()->setChecked(true);

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Discard);
    f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 1);
    QCOMPARE(answerer.seen().constFirst().pressed, QMessageBox::Discard);
    QCOMPARE(storedEntryCount(f.home), 0);
    QCOMPARE(f.name()->text(), QStringLiteral("Coffee"));
    QCOMPARE(f.amount()->text(), QStringLiteral("2.5"));
    QCOMPARE(f.place()->text(), QStringLiteral("Station"));
    QCOMPARE(f.category()->currentIndex(), 5);
    QCOMPARE(f.date()->date(), QDate(2025, 12, 24));
    QVERIFY(f.geoLocation()->isChecked());
}

void TestAddEntryWidget::saveWithTheBoxUntickedStoresTheFixedCoordinates()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200, fullReply);
    setService(server.url());

    PageFixture f;
    QVERIFY(f.waitForLookup());
    f.type(QStringLiteral("Coffee"), QStringLiteral("2.50"), QStringLiteral("Pune Market"));
    f.category()->setCurrentIndex(2);
    const QString category = f.category()->currentText();
    f.date()->setDate(QDate(2026, 3, 5));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.texts().value(1), QStringLiteral("Entry added to the database successfully"));
    QVERIFY(answerer.texts().value(0).contains(QStringLiteral("AddGeoLocation: False Longitude: 73.85")));

    const QList<QVariantList> rows = storedEntries(f.home);
    QCOMPARE(rows.size(), 1);
    const QVariantList &row = rows.constFirst();
    QCOMPARE(row.at(0).toString(), QStringLiteral("Coffee"));
    QCOMPARE(row.at(1).toString(), category);
    QCOMPARE(row.at(2).toString(), QStringLiteral("2026-03-05T00:00:00"));
    QCOMPARE(row.at(3).toFloat(), 2.5f);
    QCOMPARE(row.at(4).toString(), QStringLiteral("Pune Market"));
    QCOMPARE(row.at(5).toString(), QStringLiteral("false"));
    // Not the reply's coordinates: an entry without a geolocation carries
    // the fixed pair.
    QCOMPARE(row.at(6).toFloat(), 103.0f);
    QCOMPARE(row.at(7).toFloat(), 1.3f);

    RawDatabase raw(f.home.databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT COUNT(*) FROM HistoricLocation")).toInt(), 0);
}

void TestAddEntryWidget::saveWithTheBoxTickedStoresTheCoordinatesOfTheLatestReply()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200, fullReply);
    setService(server.url());

    PageFixture f;
    QVERIFY(f.waitForLookup());
    // The reply to this Add's own lookup may arrive while the confirmation is
    // open; it says the same, so the stored values do not depend on timing.
    f.type(QStringLiteral("Tea"), QStringLiteral("1.20"), QStringLiteral("Pune Station"));
    f.geoLocation()->setChecked(true);
    f.date()->setDate(QDate(2024, 2, 29));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.texts().value(1), QStringLiteral("Entry added to the database successfully"));

    const QList<QVariantList> rows = storedEntries(f.home);
    QCOMPARE(rows.size(), 1);
    const QVariantList &row = rows.constFirst();
    QCOMPARE(row.at(2).toString(), QStringLiteral("2024-02-29T00:00:00"));
    QCOMPARE(row.at(3).toFloat(), 1.2f);
    QCOMPARE(row.at(4).toString(), QStringLiteral("Pune Station"));
    QCOMPARE(row.at(5).toString(), QStringLiteral("true"));
    QCOMPARE(row.at(6).toFloat(), 73.85f);
    QCOMPARE(row.at(7).toFloat(), 18.52f);
}

void TestAddEntryWidget::savedEntryIsReadBackByTheStoreAsTyped_data()
{
    QTest::addColumn<bool>("byReturn");
    QTest::newRow("pressing Add") << false;
    QTest::newRow("Return in the amount") << true;
}

void TestAddEntryWidget::savedEntryIsReadBackByTheStoreAsTyped()
{
    QFETCH(bool, byReturn);
    PageFixture f;
    f.type(QStringLiteral("Lunch"), QStringLiteral("8.75"), QStringLiteral("Canteen"));
    f.category()->setCurrentIndex(1);
    const QString category = f.category()->currentText();
    f.date()->setDate(QDate(2026, 1, 31));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    if (byReturn)
        QTest::keyClick(f.amount(), Qt::Key_Return);
    else
        f.pressAdd();
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 2);
    QVERIFY(answerer.seen().at(0).text.startsWith(QStringLiteral("Details Entered - Item Name: Lunch  Price: 8.75 ")));
    QCOMPARE(answerer.seen().at(1).text, QStringLiteral("Entry added to the database successfully"));
    QVERIFY(f.name()->text().isEmpty());

    const auto entries = owned(f.store.GetAllEntries());
    QCOMPARE(entries.size(), 1);
    const Entry *entry = entries[0];
    QCOMPARE(entry->ItemName, QStringLiteral("Lunch"));
    QCOMPARE(entry->CategoryName, category);
    QCOMPARE(entry->CategoryID, f.store.GetCategoryID(category));
    QCOMPARE(entry->Price, 8.75f);
    QCOMPARE(entry->LocationText, QStringLiteral("Canteen"));
    QCOMPARE(entry->TransactDateTime, QDate(2026, 1, 31).startOfDay());
    QVERIFY(!entry->EnableGeoLoc);
    QCOMPARE(entry->GeoLocLongit, 103.0f);
    QCOMPARE(entry->GeoLocLatit, 1.3f);
    QVERIFY(entry->ItemID > 0);
}

void TestAddEntryWidget::savingClearsTheFieldsAndKeepsTheCategory()
{
    PageFixture f;
    f.type(QStringLiteral("Coffee"), QStringLiteral("3."), QStringLiteral("Kiosk"));
    f.category()->setCurrentIndex(7);
    f.date()->setDate(QDate(2020, 6, 1));
    f.geoLocation()->setChecked(true);

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    const SeenMessageBox &result = answerer.seen().value(1);
    QCOMPARE(result.text, QStringLiteral("Entry added to the database successfully"));
    VERIFY_BOX_SHAPE(result, BoxKind::Information);

    QVERIFY(f.name()->text().isEmpty());
    QVERIFY(f.amount()->text().isEmpty());
    QVERIFY(f.place()->text().isEmpty());
    QVERIFY(!f.geoLocation()->isChecked());
    QCOMPARE(f.date()->date(), QDate::currentDate());
    QCOMPARE(f.category()->currentIndex(), 7);
    QCOMPARE(storedEntryCount(f.home), 1);
}

namespace {

// What a refused Add must leave on the page: everything as typed. Empty when
// it does, otherwise what differs.
QString keptFieldsMismatch(PageFixture &f, const QString &name, const QString &amount, const QString &place,
                           const QDate &date, bool geo, int category)
{
    QStringList differences;
    const auto check = [&differences](const char *field, const QString &shown, const QString &typed) {
        if (shown != typed)
            differences.append(QStringLiteral("%1 shows \"%2\", typed \"%3\"").arg(field, shown, typed));
    };
    check("name", f.name()->text(), name);
    check("amount", f.amount()->text(), amount);
    check("location", f.place()->text(), place);
    check("date", f.date()->date().toString(Qt::ISODate), date.toString(Qt::ISODate));
    check("box", f.geoLocation()->isChecked() ? "ticked" : "unticked", geo ? "ticked" : "unticked");
    check("category", QString::number(f.category()->currentIndex()), QString::number(category));
    return differences.join(QStringLiteral("; "));
}

} // namespace

#define VERIFY_FIELDS_KEPT(...)                                                                                        \
    do {                                                                                                               \
        const QString mismatch = keptFieldsMismatch(__VA_ARGS__);                                                      \
        QVERIFY2(mismatch.isEmpty(), qPrintable(mismatch));                                                            \
    } while (false)

void TestAddEntryWidget::aRefusedWriteIsReportedAndKeepsWhatWasTypedForTheNextAdd()
{
    PageFixture f;
    {
        RawDatabase raw(f.home.databasePath());
        QVERIFY2(raw.exec(QStringLiteral("DROP TABLE Entry")), qPrintable(raw.lastError()));
    }
    f.type(QStringLiteral("Coffee"), QStringLiteral("2.50"), QStringLiteral("Kiosk"));
    f.category()->setCurrentIndex(4);
    f.geoLocation()->setChecked(true);
    f.date()->setDate(QDate(2026, 2, 3));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 2);
    const SeenMessageBox &result = answerer.seen().at(1);
    QCOMPARE(result.text, QStringLiteral("Entry could not be added to the database!"));
    VERIFY_BOX_SHAPE(result, BoxKind::Information);
    VERIFY_FIELDS_KEPT(f, QStringLiteral("Coffee"), QStringLiteral("2.50"), QStringLiteral("Kiosk"), QDate(2026, 2, 3),
                       true, 4);

    // Once the cause is gone, Add again stores what is still on the page.
    {
        RawDatabase raw(f.home.databasePath());
        QVERIFY2(raw.exec(QStringLiteral(
                     "CREATE TABLE Entry ( SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, ItemName "
                     "nvarchar(255) NOT NULL, CategoryName nvarchar(255) NOT NULL, CategoryID integer NOT NULL, "
                     "TransactDateTime  datetime NOT NULL, Price float(50) NOT NULL, LocationText nvarchar(255), "
                     "EnableGeoLoc boolean NOT NULL, GeoLocID integer, GeoLocLongit float(50), GeoLocLatit "
                     "float(50), ItemID integer NOT NULL )")),
                 qPrintable(raw.lastError()));
    }
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 4);
    QCOMPARE(answerer.seen().at(3).text, QStringLiteral("Entry added to the database successfully"));
    QVERIFY(f.name()->text().isEmpty());
    QVERIFY(f.amount()->text().isEmpty());
    QVERIFY(f.place()->text().isEmpty());
    QVERIFY(!f.geoLocation()->isChecked());
    QCOMPARE(f.date()->date(), QDate::currentDate());

    const QList<QVariantList> rows = storedEntries(f.home);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0).at(0).toString(), QStringLiteral("Coffee"));
    QCOMPARE(rows.at(0).at(1).toString(), f.category()->itemText(4));
    QCOMPARE(rows.at(0).at(2).toString(), QStringLiteral("2026-02-03T00:00:00"));
    QCOMPARE(rows.at(0).at(3).toFloat(), 2.5f);
    QCOMPARE(rows.at(0).at(4).toString(), QStringLiteral("Kiosk"));
    QCOMPARE(rows.at(0).at(5).toString(), QStringLiteral("true"));
}

void TestAddEntryWidget::anAmountBeyondTheLargestIsRefusedBeforeTheConfirmation_data()
{
    QTest::addColumn<QString>("amount");
    QTest::newRow("forty nines and a point") << QString(40, QLatin1Char('9')) + QLatin1Char('.');
    QTest::newRow("four hundred nines") << QString(400, QLatin1Char('9'));
    QTest::newRow("ten million") << QStringLiteral("10000000.00");
    QTest::newRow("a hundred million") << QStringLiteral("99999999.9");
}

void TestAddEntryWidget::anAmountBeyondTheLargestIsRefusedBeforeTheConfirmation()
{
    QFETCH(QString, amount);
    PageFixture f;
    f.type(QStringLiteral("Gold"), amount, QStringLiteral("Vault"));
    QCOMPARE(f.amount()->text(), amount);

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 1);
    QCOMPARE(answerer.seen().at(0).text, QStringLiteral("Amount is too large. Enter a smaller amount"));
    VERIFY_BOX_SHAPE(answerer.seen().at(0), BoxKind::Information);
    QCOMPARE(storedEntryCount(f.home), 0);
    RawDatabase raw(f.home.databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT COUNT(*) FROM Items")).toInt(), 0);
    QCOMPARE(f.name()->text(), QStringLiteral("Gold"));
    QCOMPARE(f.amount()->text(), amount);
    QCOMPARE(f.place()->text(), QStringLiteral("Vault"));
}

void TestAddEntryWidget::amountsUpToTheLargestAreStoredAsBefore_data()
{
    QTest::addColumn<QString>("amount");
    QTest::addColumn<float>("price");
    // A float keeps about seven digits: the largest amount is stored as the
    // float nearest to it, ten million, as any amount always was.
    QTest::newRow("the largest") << QStringLiteral("9999999.99") << 9999999.99f;
    QTest::newRow("a cent") << QStringLiteral("0.01") << 0.01f;
    QTest::newRow("without a point") << QStringLiteral("12") << 12.0f;
    QTest::newRow("a million") << QStringLiteral("1000000.") << 1000000.0f;
}

void TestAddEntryWidget::amountsUpToTheLargestAreStoredAsBefore()
{
    QFETCH(QString, amount);
    QFETCH(float, price);
    PageFixture f;
    f.type(QStringLiteral("Rent"), amount, QStringLiteral("Home"));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 2);
    QVERIFY(answerer.seen().at(0).text.startsWith(QStringLiteral("Details Entered - Item Name: Rent  Price: ") +
                                                  amount + QLatin1Char(' ')));
    QCOMPARE(answerer.seen().at(1).text, QStringLiteral("Entry added to the database successfully"));
    const QList<QVariantList> rows = storedEntries(f.home);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0).at(3).toFloat(), price);
}

void TestAddEntryWidget::aFullDiskRefusesTheEntryChangesNothingAndAddWorksOnceThereIsRoom()
{
    PageFixture f;
    QVERIFY(limitDatabaseFile());
    QVERIFY(fillDatabaseFile(f.store) >= 0);
    RawDatabase raw(f.home.databasePath());
    const QStringList full = raw.dumpTables();

    f.type(QStringLiteral("Coffee beans"), QStringLiteral("12.50"), QStringLiteral("Corner shop"));
    f.category()->setCurrentIndex(12);
    f.date()->setDate(QDate(2026, 2, 3));
    f.geoLocation()->setChecked(true);
    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 2);
    QCOMPARE(answerer.seen().at(1).text, QStringLiteral("Entry could not be added to the database!"));
    VERIFY_BOX_SHAPE(answerer.seen().at(1), BoxKind::Information);
    QCOMPARE(raw.dumpTables(), full);
    VERIFY_FIELDS_KEPT(f, QStringLiteral("Coffee beans"), QStringLiteral("12.50"), QStringLiteral("Corner shop"),
                       QDate(2026, 2, 3), true, 12);

    QVERIFY(liftDatabaseFileLimit());
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 4);
    QCOMPARE(answerer.seen().at(3).text, QStringLiteral("Entry added to the database successfully"));
    QVERIFY(f.name()->text().isEmpty());
    const QList<QVariantList> beans = raw.rows(
        QStringLiteral("SELECT CategoryName, TransactDateTime, Price, LocationText, EnableGeoLoc FROM Entry WHERE "
                       "ItemName = 'Coffee beans'"));
    QCOMPARE(beans.size(), 1);
    QCOMPARE(beans.at(0).at(0).toString(), f.category()->itemText(12));
    QCOMPARE(beans.at(0).at(1).toString(), QStringLiteral("2026-02-03T00:00:00"));
    QCOMPARE(beans.at(0).at(2).toFloat(), 12.5f);
    QCOMPARE(beans.at(0).at(3).toString(), QStringLiteral("Corner shop"));
    QCOMPARE(beans.at(0).at(4).toString(), QStringLiteral("true"));
    // The entry, its item, its place, the place table's first number, and
    // the entry's search row and spending row.
    QCOMPARE(raw.dumpTables().size(), full.size() + 6);
}

void TestAddEntryWidget::aLockedFileIsReportedWithinTheBusyTimeoutAndAddWorksOnceReleased()
{
    PageFixture f;
    QSqlQuery timeout(QSqlDatabase::database());
    QVERIFY(timeout.exec(QStringLiteral("PRAGMA busy_timeout")) && timeout.next());
    const int busyTimeout = timeout.value(0).toInt();
    // What the README promises.
    QCOMPARE(busyTimeout, 5000);
    RawDatabase raw(f.home.databasePath());
    const QStringList before = raw.dumpTables();

    f.type(QStringLiteral("Coffee"), QStringLiteral("2.50"), QStringLiteral("Kiosk"));
    QVERIFY(raw.exec(QStringLiteral("BEGIN EXCLUSIVE")));
    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    QElapsedTimer pressing;
    pressing.start();
    f.pressAdd();
    const qint64 elapsed = pressing.elapsed();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 2);
    QCOMPARE(answerer.seen().at(1).text, QStringLiteral("Entry could not be added to the database!"));
    // The store waits for the file once, not once per statement.
    QVERIFY2(elapsed < busyTimeout + 1000, qPrintable(QString::number(elapsed)));
    QVERIFY(raw.exec(QStringLiteral("ROLLBACK")));
    QCOMPARE(raw.dumpTables(), before);
    VERIFY_FIELDS_KEPT(f, QStringLiteral("Coffee"), QStringLiteral("2.50"), QStringLiteral("Kiosk"),
                       QDate::currentDate(), false, 0);

    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 4);
    QCOMPARE(answerer.seen().at(3).text, QStringLiteral("Entry added to the database successfully"));
    QCOMPARE(storedEntryCount(f.home), 1);
    QCOMPARE(raw.scalar(QStringLiteral("SELECT UseFrequency FROM Items WHERE ItemName = 'Coffee'")).toInt(), 1);
}

// ---------------------------------------------------------------- the keyboard

void TestAddEntryWidget::returnInATextFieldGivesTheMessagesOfAdd_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("amount");
    QTest::addColumn<QString>("place");
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<int>("key");
    QTest::addColumn<QStringList>("messages");

    const int returnKey = Qt::Key_Return;
    QTest::newRow("all empty, Return in the name")
        << ""
        << ""
        << "" << QByteArray("lineEditItemName") << returnKey << QStringList { "All fields empty. Enter information" };
    QTest::newRow("only the location, Return in it") << ""
                                                     << ""
                                                     << "Market" << QByteArray("lineEditLocation") << returnKey
                                                     << QStringList { "Item Name and Amount not entered." };
    QTest::newRow("no name, Return in the amount") << ""
                                                   << "2.50"
                                                   << "Market" << QByteArray("lineEditAmount") << returnKey
                                                   << QStringList { "Item Name cannot be empty. Enter Item Name" };
    QTest::newRow("no amount, Return in the amount") << "Coffee"
                                                     << ""
                                                     << "Market" << QByteArray("lineEditAmount") << returnKey
                                                     << QStringList { "Amount cannot be empty. Enter Amount" };
    QTest::newRow("no amount, keypad Enter in the name")
        << "Coffee"
        << ""
        << "Market" << QByteArray("lineEditItemName") << int(Qt::Key_Enter)
        << QStringList { "Amount cannot be empty. Enter Amount" };
    QTest::newRow("no location, Return in the amount")
        << "Coffee"
        << "2.50"
        << "" << QByteArray("lineEditAmount") << returnKey << QStringList {};
}

void TestAddEntryWidget::returnInATextFieldGivesTheMessagesOfAdd()
{
    QFETCH(QString, name);
    QFETCH(QString, amount);
    QFETCH(QString, place);
    QFETCH(QByteArray, field);
    QFETCH(int, key);
    QFETCH(QStringList, messages);

    // What Add says, then what the key says on a page typed the same way.
    QStringList saidByAdd;
    {
        PageFixture f;
        f.type(name, amount, place);
        MessageBoxAnswerer answerer;
        for (int i = 0; i < messages.size(); ++i)
            answerer.answer(QMessageBox::Ok);
        f.pressAdd();
        QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
        saidByAdd = answerer.texts();
    }

    PageFixture f;
    f.type(name, amount, place);
    MessageBoxAnswerer answerer;
    for (int i = 0; i < messages.size(); ++i)
        answerer.answer(QMessageBox::Ok);
    QTest::keyClick(child<QLineEdit>(f.page, field.constData()), Qt::Key(key),
                    key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.texts(), messages);
    QCOMPARE(answerer.texts(), saidByAdd);
    QCOMPARE(storedEntryCount(f.home), 0);
    // The key only pressed Add: what was typed stays as typed.
    QCOMPARE(f.name()->text(), name);
    QCOMPARE(f.amount()->text(), amount);
    QCOMPARE(f.place()->text(), place);
}

void TestAddEntryWidget::tabWalksFromTheNameDownToAdd()
{
    PageFixture f;
    f.page.show();
    QVERIFY(QTest::qWaitForWindowActive(&f.page));
    const QList<QWidget *> order = {
        f.name(),
        f.amount(),
        f.category(),
        f.place(),
        f.date(),
        f.geoLocation(),
        child<QPushButton>(f.page, "pushButtonAdd"),
    };
    const auto owner = [&order]() -> QWidget * {
        QWidget *focus = QApplication::focusWidget();
        for (QWidget *widget : order) {
            if (widget == focus || widget->isAncestorOf(focus))
                return widget;
        }
        return focus;
    };

    QCOMPARE(QApplication::focusWidget(), f.name());
    QList<QWidget *> walked = { owner() };
    // The date edit takes a Tab for each of its day, month and year.
    for (int press = 0; press < 12 && walked.constLast() != order.constLast(); ++press) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        if (owner() != walked.constLast())
            walked.append(owner());
    }
    QCOMPARE(walked, order);
}

void TestAddEntryWidget::theNameFieldHasTheFocusWhenThePageOpens()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));

    f.click("pushButtonNewEntry");
    QTRY_COMPARE(QApplication::focusWidget(), child<QLineEdit>(*f.page(), "lineEditItemName"));
    // Typing goes straight into it.
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Tea"));
    QCOMPARE(child<QLineEdit>(*f.page(), "lineEditItemName")->text(), QStringLiteral("Tea"));

    // And so it does on the fresh page of the next press.
    f.click("pushButtonNewEntry");
    QTRY_COMPARE(QApplication::focusWidget(), child<QLineEdit>(*f.page(), "lineEditItemName"));
    QVERIFY(child<QLineEdit>(*f.page(), "lineEditItemName")->text().isEmpty());
}

// ---------------------------------------------------------- item completion

void TestAddEntryWidget::typingOffersTheCatalogueNamesThatHoldItMostUsedFirst()
{
    CatalogueFixture f;
    QVERIFY(f.show());
    QCOMPARE(f.completer()->model()->rowCount(), 3);
    QCOMPARE(f.completer()->caseSensitivity(), Qt::CaseInsensitive);
    QCOMPARE(f.completer()->filterMode(), Qt::MatchContains);
    QCOMPARE(f.completer()->completionMode(), QCompleter::PopupCompletion);

    QVERIFY(f.openList(QStringLiteral("co")));
    QCOMPARE(f.offered(), (QStringList { "Coffee", "coffee beans" }));

    // Anywhere in the name, whatever the case.
    f.name()->clear();
    QVERIFY(f.openList(QStringLiteral("AK")));
    QCOMPARE(f.offered(), QStringList { "Cake" });
    QTest::keyClicks(f.name(), QStringLiteral("x"));
    QTRY_VERIFY(!f.list()->isVisible());

    // Offering changes none of the other fields.
    QVERIFY(f.amount()->text().isEmpty());
    QCOMPARE(f.category()->currentText(), QStringLiteral("Food"));
}

void TestAddEntryWidget::pickingANameWithAnEmptyAmountFillsItsLastPriceAndCategory()
{
    CatalogueFixture f;
    QVERIFY(f.show());
    MessageBoxAnswerer answerer;
    QVERIFY(f.openList(QStringLiteral("co")));

    // Picked with the mouse.
    const QRect coffee = f.list()->visualRect(f.list()->model()->index(0, 0));
    QTest::mouseClick(f.list()->viewport(), Qt::LeftButton, Qt::NoModifier, coffee.center());

    QTRY_VERIFY(!f.list()->isVisible());
    QCOMPARE(f.name()->text(), QStringLiteral("Coffee"));
    QCOMPARE(f.amount()->text(), QStringLiteral("2.50"));
    QVERIFY(f.amount()->hasAcceptableInput());
    QCOMPARE(f.category()->currentText(), QStringLiteral("Drinks"));
    QVERIFY(answerer.seen().isEmpty());
    QCOMPARE(storedEntryCount(f.home), 0);
}

void TestAddEntryWidget::pickingANameKeepsAnAmountAlreadyTyped()
{
    CatalogueFixture f;
    QVERIFY(f.show());
    QTest::keyClicks(f.amount(), QStringLiteral("3.00"));
    f.name()->setFocus();
    QTRY_VERIFY(f.name()->hasFocus());
    QVERIFY(f.pickWithKeys(QStringLiteral("co"), 1));
    QCOMPARE(f.name()->text(), QStringLiteral("Coffee"));
    QCOMPARE(f.amount()->text(), QStringLiteral("3.00"));
    QCOMPARE(f.category()->currentText(), QStringLiteral("Food"));
}

void TestAddEntryWidget::pickingANameKeepsACategoryTheUserChose()
{
    CatalogueFixture f;
    QVERIFY(f.show());
    // The user picks Gifts with the keyboard.
    f.category()->setFocus();
    QTRY_VERIFY(f.category()->hasFocus());
    const int gifts = f.category()->findText(QStringLiteral("Gifts"));
    QVERIFY(gifts > 0);
    for (int step = 0; step < gifts; ++step)
        QTest::keyClick(f.category(), Qt::Key_Down);
    QCOMPARE(f.category()->currentText(), QStringLiteral("Gifts"));

    f.name()->setFocus();
    QTRY_VERIFY(f.name()->hasFocus());
    QVERIFY(f.pickWithKeys(QStringLiteral("co"), 1));
    QCOMPARE(f.amount()->text(), QStringLiteral("2.50"));
    QCOMPARE(f.category()->currentText(), QStringLiteral("Gifts"));
}

void TestAddEntryWidget::aCatalogueNameTypedInFullCountsAsPickedWhenTheUserMovesOn()
{
    {
        CatalogueFixture f;
        QVERIFY(f.show());
        QVERIFY(f.openList(QStringLiteral("coffee beans")));
        // Tab goes on to the amount, closing the list on the way.
        f.keyToList(Qt::Key_Tab);

        QTRY_VERIFY(f.amount()->hasFocus());
        QVERIFY(!f.list()->isVisible());
        QCOMPARE(f.amount()->text(), QStringLiteral("12.00"));
        QCOMPARE(f.category()->currentText(), QStringLiteral("Groceries"));
    }

    // A name that only differs in case is another item.
    CatalogueFixture f;
    QVERIFY(f.show());
    QVERIFY(f.openList(QStringLiteral("cake")));
    f.keyToList(Qt::Key_Tab);
    QTRY_VERIFY(f.amount()->hasFocus());
    QVERIFY(f.amount()->text().isEmpty());
    QCOMPARE(f.category()->currentText(), QStringLiteral("Food"));
}

void TestAddEntryWidget::aStoredPriceThatAddWouldRefuseIsNotOffered_data()
{
    QTest::addColumn<QString>("row");
    QTest::newRow("negative") << QStringLiteral("('Refund', 'Gifts', 14, -3, 1)");
    QTest::newRow("beyond the largest amount") << QStringLiteral("('Refund', 'Gifts', 14, 123456789, 1)");
}

void TestAddEntryWidget::aStoredPriceThatAddWouldRefuseIsNotOffered()
{
    QFETCH(QString, row);
    CatalogueFixture f({ row });
    QVERIFY(f.show());
    QVERIFY(f.pickWithKeys(QStringLiteral("Ref"), 1));

    QCOMPARE(f.name()->text(), QStringLiteral("Refund"));
    QVERIFY(f.amount()->text().isEmpty());
    // The category comes all the same.
    QCOMPARE(f.category()->currentText(), QStringLiteral("Gifts"));
}

void TestAddEntryWidget::pressingAddStoresTheFieldsAsTheyWereWithoutFillingThem()
{
    CatalogueFixture f;
    QVERIFY(f.show());
    QTest::keyClicks(f.place(), QStringLiteral("Cafe"));
    f.name()->setFocus();
    QTRY_VERIFY(f.name()->hasFocus());
    f.name()->setText(QStringLiteral("Cake"));

    // The focus leaves the name for Add, which then finds no amount.
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    QTest::mouseClick(child<QPushButton>(*f.page, "pushButtonAdd"), Qt::LeftButton);

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.texts(), QStringList { "Amount cannot be empty. Enter Amount" });
    QVERIFY(f.amount()->text().isEmpty());
    QCOMPARE(f.category()->currentText(), QStringLiteral("Food"));
    QCOMPARE(storedEntryCount(f.home), 0);
}

void TestAddEntryWidget::theSavedEntryIsExactlyWhatThePageShowed()
{
    CatalogueFixture f;
    QVERIFY(f.show());
    QVERIFY(f.pickWithKeys(QStringLiteral("co"), 1));
    QTest::keyClicks(f.place(), QStringLiteral("Cafe Blue"));

    const QString name = f.name()->text();
    const QString amount = f.amount()->text();
    const QString category = f.category()->currentText();
    QCOMPARE(name, QStringLiteral("Coffee"));
    QCOMPARE(amount, QStringLiteral("2.50"));
    QCOMPARE(category, QStringLiteral("Drinks"));

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    QTest::mouseClick(child<QPushButton>(*f.page, "pushButtonAdd"), Qt::LeftButton);
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 2);
    QVERIFY(answerer.seen().at(0).text.startsWith(
        QStringLiteral("Details Entered - Item Name: Coffee  Price: 2.50 Category: Drinks  Date: ")));

    const QList<QVariantList> rows = storedEntries(f.home);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows[0].at(0).toString(), name);
    QCOMPARE(rows[0].at(1).toString(), category);
    QCOMPARE(rows[0].at(3).toFloat(), amount.toFloat());
    QCOMPARE(rows[0].at(4).toString(), QStringLiteral("Cafe Blue"));
    // The catalogue learnt the sixth use of Coffee as a drink.
    RawDatabase raw(f.home.databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT UseFrequency FROM Items WHERE ItemName = 'Coffee'")).toInt(), 6);
}

void TestAddEntryWidget::returnWithTheListOpenPicksTheNameAndDoesNotPressAdd()
{
    CatalogueFixture f;
    QVERIFY(f.show());
    QTest::keyClicks(f.place(), QStringLiteral("Cafe"));
    f.name()->setFocus();
    QTRY_VERIFY(f.name()->hasFocus());
    MessageBoxAnswerer answerer;

    // A Return that reaches the field itself while the list is open only
    // closes the list.
    QVERIFY(f.openList(QStringLiteral("ca")));
    QTest::keyClick(f.name(), Qt::Key_Return);
    QTRY_VERIFY(!f.list()->isVisible());
    QCoreApplication::processEvents();
    QVERIFY(answerer.seen().isEmpty());
    QCOMPARE(f.name()->text(), QStringLiteral("ca"));
    QVERIFY(f.amount()->text().isEmpty());
    f.name()->clear();

    // The list picks coffee beans and closes; Add is not pressed.
    QVERIFY(f.pickWithKeys(QStringLiteral("co"), 2));
    QCoreApplication::processEvents();
    QVERIFY(answerer.seen().isEmpty());
    QCOMPARE(f.name()->text(), QStringLiteral("coffee beans"));
    QCOMPARE(f.amount()->text(), QStringLiteral("12.00"));
    QCOMPARE(f.category()->currentText(), QStringLiteral("Groceries"));
    QVERIFY(f.name()->hasFocus());

    // Return with the list closed presses Add, as always.
    answerer.answer(QMessageBox::Discard);
    QTest::keyClick(f.page->windowHandle(), Qt::Key_Return);
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 1);
    QVERIFY(answerer.seen().at(0).text.startsWith(
        QStringLiteral("Details Entered - Item Name: coffee beans  Price: 12.00 Category: Groceries  ")));
    QCOMPARE(storedEntryCount(f.home), 0);
}

void TestAddEntryWidget::aPageOnAnEmptyCatalogueHasACompleterWithoutRows()
{
    PageFixture f;
    QCompleter *completer = f.name()->completer();
    QVERIFY(completer);
    QCOMPARE(completer->model()->rowCount(), 0);
    f.page.show();
    QVERIFY(QTest::qWaitForWindowActive(&f.page));
    QTRY_VERIFY(f.name()->hasFocus());
    QTest::keyClicks(f.name(), QStringLiteral("co"));
    QCoreApplication::processEvents();
    QCOMPARE(completer->completionCount(), 0);
    QVERIFY(!completer->popup()->isVisible());
    QVERIFY(f.amount()->text().isEmpty());
}

// --------------------------------------------------------- the reply parser

void TestAddEntryWidget::parserReadsWhatTheReplySays_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("read");

    QTest::newRow("full reply") << fullReply << "ip=10.1.2.3 city=Pune region=Maharashtra lat=18.52 long=73.85";
    QTest::newRow("without declaration or blanks")
        << QByteArray("<Response><Ip>1.2.3.4</Ip><Latitude>-33.9</Latitude><Longitude>151.2</Longitude></Response>")
        << "ip=1.2.3.4 city=- region=- lat=-33.9 long=151.2";
    QTest::newRow("unknown child with a nested subtree between known ones")
        << QByteArray("<Response><Ip>10.1.2.3</Ip>"
                      "<CountryCode><City>Wrong</City><Latitude>1</Latitude><Deep><Ip>9.9.9.9</Ip></Deep></CountryCode>"
                      "<City>Pune</City><RegionName>Maharashtra</RegionName></Response>")
        << "ip=10.1.2.3 city=Pune region=Maharashtra lat=- long=-";
    QTest::newRow("a later child of the same name wins")
        << QByteArray("<Response><Ip>1.1.1.1</Ip><City>A</City><Ip>2.2.2.2</Ip></Response>")
        << "ip=2.2.2.2 city=A region=- lat=- long=-";
    QTest::newRow("names are case-sensitive")
        << QByteArray("<Response><ip>1.1.1.1</ip><CITY>A</CITY></Response>") << "ip=- city=- region=- lat=- long=-";
    QTest::newRow("empty children are read as empty")
        << QByteArray("<Response><Ip/><City></City></Response>") << "ip= city= region=- lat=- long=-";
    QTest::newRow("UTF-8 text") << QByteArray("<Response><City>Z\xc3\xbcrich</City><RegionName>S\xc3\xa3o "
                                              "Paulo</RegionName></Response>")
                                << QString::fromUtf8("ip=- city=Z\xc3\xbcrich region=S\xc3\xa3o Paulo lat=- long=-");
    QTest::newRow("numbers that are not numbers read as 0")
        << QByteArray("<Response><Latitude>north</Latitude><Longitude>73,85</Longitude></Response>")
        << "ip=- city=- region=- lat=0 long=0";
    QTest::newRow("root other than Response")
        << QByteArray("<Reply><Ip>10.1.2.3</Ip><City>Pune</City></Reply>") << "ip=- city=- region=- lat=- long=-";
    QTest::newRow("Response below another root")
        << QByteArray("<Envelope><Response><Ip>1.2.3.4</Ip></Response></Envelope>")
        << "ip=- city=- region=- lat=- long=-";
    QTest::newRow("body that is not XML")
        << QByteArray("Ip: 10.1.2.3\nCity: Pune\n") << "ip=- city=- region=- lat=- long=-";
    QTest::newRow("HTML error page") << QByteArray("<html><body><h1>Not here</h1></body></html>")
                                     << "ip=- city=- region=- lat=- long=-";
    QTest::newRow("empty body") << QByteArray() << "ip=- city=- region=- lat=- long=-";
    QTest::newRow("binary bytes") << QByteArray("\x00\xff\xfe<Response>\x01", 13)
                                  << "ip=- city=- region=- lat=- long=-";
}

void TestAddEntryWidget::parserReadsWhatTheReplySays()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, read);

    const GeoLocationReply reply = parseGeoLocationReply(body);
    QCOMPARE(describe(reply), read);
    QCOMPARE(reply.isEmpty(), read == QLatin1String("ip=- city=- region=- lat=- long=-"));
}

// ------------------------------------------------ the lookup, against a server

void TestAddEntryWidget::withoutAServiceNoRequestIsSentAndTheLookupValuesStayEmpty()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200, fullReply);

    PageFixture f;
    QVERIFY(f.page.findChildren<QNetworkAccessManager *>().isEmpty());

    f.type(QStringLiteral("Coffee"), QStringLiteral("2.50"), QStringLiteral("Kiosk"));
    f.geoLocation()->setChecked(true);
    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QVERIFY(f.page.findChildren<QNetworkAccessManager *>().isEmpty());
    QCOMPARE(server.requestCount(), 0);
    // As after a failed lookup: the never-written coordinates, no location.
    QVERIFY(answerer.texts().value(0).endsWith(QStringLiteral("Longitude: 0 Latitude: 0 Location:  ")));
    const QList<QVariantList> rows = storedEntries(f.home);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0).at(5).toString(), QStringLiteral("true"));
    QCOMPARE(rows.at(0).at(6).toFloat(), 0.0f);
    QCOMPARE(rows.at(0).at(7).toFloat(), 0.0f);
}

void TestAddEntryWidget::theServiceUrlComesFromTheSettings()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200, fullReply);
    {
        QSettings settings(QStringLiteral("Ledgerly"), QStringLiteral("Ledgerly"));
        settings.setValue(QStringLiteral("GeoLocation/ServiceUrl"), server.url().toString());
    }
    QCOMPARE(Settings().geoLocationServiceUrl(), server.url());

    PageFixture f;
    QTRY_COMPARE(server.requestCount(), 1);
    QCOMPARE(server.requestLines().constFirst(), QStringLiteral("GET /ip_query.php HTTP/1.1"));
    QVERIFY(f.waitForLookup());
    MessageBoxAnswerer answerer;
    QCOMPARE(f.lookupShown(answerer), QStringLiteral("Longitude: 73.85 Latitude: 18.52 Location: 10.1.2.3 "));
}

void TestAddEntryWidget::theEnvironmentOverridesTheSetting()
{
    LocalHttpServer configured;
    QVERIFY(configured.listen());
    configured.setReply(200, fullReply);
    LocalHttpServer overriding;
    QVERIFY(overriding.listen());
    overriding.setReply(200, QByteArrayLiteral("<Response><Ip>192.0.2.9</Ip></Response>"));
    {
        QSettings settings(QStringLiteral("Ledgerly"), QStringLiteral("Ledgerly"));
        settings.setValue(QStringLiteral("GeoLocation/ServiceUrl"), configured.url().toString());
    }
    setService(overriding.url());
    QCOMPARE(Settings().geoLocationServiceUrl(), overriding.url());

    PageFixture f;
    QVERIFY(f.waitForLookup());
    QCOMPARE(overriding.requestCount(), 1);
    QCOMPARE(configured.requestCount(), 0);
    MessageBoxAnswerer answerer;
    QCOMPARE(f.lookupShown(answerer), QStringLiteral("Longitude: 0 Latitude: 0 Location: 192.0.2.9 "));
    QCOMPARE(configured.requestCount(), 0);
}

void TestAddEntryWidget::openingThePageSendsOneGetAndEachAddOneMore()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200, fullReply);
    setService(server.url());

    PageFixture f;
    QTRY_COMPARE(server.requestCount(), 1);
    QVERIFY(f.waitForLookup());

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Ok, QMessageBox::Ok });
    f.pressAdd();
    f.pressAdd();
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QTRY_COMPARE(server.requestCount(), 3);

    // Whether the box is ticked plays no part.
    f.geoLocation()->setChecked(true);
    f.type(QStringLiteral("Coffee"), QStringLiteral("2.50"), QStringLiteral("Kiosk"));
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();
    QTRY_COMPARE(server.requestCount(), 4);

    for (const QString &line : server.requestLines())
        QCOMPARE(line, QStringLiteral("GET /ip_query.php HTTP/1.1"));
}

void TestAddEntryWidget::aFullReplyShowsItsCoordinatesAndItsAddressAsTheLocation()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200, fullReply);
    setService(server.url());

    PageFixture f;
    QVERIFY(f.waitForLookup());
    MessageBoxAnswerer answerer;
    QCOMPARE(f.lookupShown(answerer), QStringLiteral("Longitude: 73.85 Latitude: 18.52 Location: 10.1.2.3 "));
}

void TestAddEntryWidget::anUnknownChildWithANestedSubtreeIsSkipped()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200,
                    QByteArrayLiteral("<Response><Ip>10.1.2.3</Ip>"
                                      "<Timezone><City>Elsewhere</City><Latitude>1.5</Latitude></Timezone>"
                                      "<City>Pune</City><RegionName>Maharashtra</RegionName>"
                                      "<Latitude>18.52</Latitude><Longitude>73.85</Longitude></Response>"));
    setService(server.url());

    PageFixture f;
    QVERIFY(f.waitForLookup());
    MessageBoxAnswerer answerer;
    QCOMPARE(f.lookupShown(answerer), QStringLiteral("Longitude: 73.85 Latitude: 18.52 Location: 10.1.2.3 "));
}

void TestAddEntryWidget::aSuccessfulReplyIsDeletedAndTheProgramKeepsOneManager()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200, fullReply);
    setService(server.url());

    PageFixture f;
    // The page holds no manager of its own; the program has one.
    QVERIFY(f.page.findChildren<QNetworkAccessManager *>().isEmpty());
    const QList<QNetworkAccessManager *> managers = qApp->findChildren<QNetworkAccessManager *>();
    QCOMPARE(managers.size(), 1);
    QPointer<QNetworkAccessManager> manager = managers.constFirst();
    QTRY_VERIFY(manager->findChildren<QNetworkReply *>().isEmpty());
    QVERIFY(manager);
    // It was read before it went.
    MessageBoxAnswerer answerer;
    QCOMPARE(f.lookupShown(answerer), QStringLiteral("Longitude: 73.85 Latitude: 18.52 Location: 10.1.2.3 "));
}

void TestAddEntryWidget::everyPageLooksUpThroughTheSameManager()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200, fullReply);
    setService(server.url());

    QNetworkAccessManager *first = nullptr;
    for (int page = 0; page < 3; ++page) {
        PageFixture f;
        QTRY_COMPARE(server.requestCount(), page + 1);
        QVERIFY(f.waitForLookup());
        const QList<QNetworkAccessManager *> managers = qApp->findChildren<QNetworkAccessManager *>();
        QCOMPARE(managers.size(), 1);
        if (!first)
            first = managers.constFirst();
        QCOMPARE(managers.constFirst(), first);
    }
}

void TestAddEntryWidget::aFailedLookupChangesNothingAndItsReplyIsDeleted_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("refuse");
    QTest::addColumn<QNetworkReply::NetworkError>("error");

    QTest::newRow("HTTP 500") << 500 << false << QNetworkReply::InternalServerError;
    QTest::newRow("HTTP 404") << 404 << false << QNetworkReply::ContentNotFoundError;
    QTest::newRow("connection refused") << 200 << true << QNetworkReply::ConnectionRefusedError;
}

void TestAddEntryWidget::aFailedLookupChangesNothingAndItsReplyIsDeleted()
{
    QFETCH(int, status);
    QFETCH(bool, refuse);
    QFETCH(QNetworkReply::NetworkError, error);

    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200, fullReply);
    setService(server.url());

    PageFixture f;
    QVERIFY(f.waitForLookup());

    // The error reply carries a body that would change every member.
    server.setReply(status,
                    QByteArrayLiteral("<Response><Ip>6.6.6.6</Ip><City>Nowhere</City><RegionName>None"
                                      "</RegionName><Latitude>1</Latitude><Longitude>2</Longitude></Response>"));
    if (refuse)
        server.stopListening();

    QNetworkAccessManager *manager = qApp->findChild<QNetworkAccessManager *>();
    QVERIFY(manager);
    QPointer<QNetworkReply> failed;
    bool finished = false;
    QNetworkReply::NetworkError seen = QNetworkReply::NoError;
    // Heard only while this test runs: the manager outlives it.
    QObject listener;
    connect(manager, &QNetworkAccessManager::finished, &listener, [&](QNetworkReply *reply) {
        failed = reply;
        finished = true;
        seen = reply->error();
    });
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    f.pressAdd();
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));

    // The failed reply finishes with its error and is then deleted; the
    // program's manager stays for the next lookup.
    QTRY_VERIFY(finished);
    QCOMPARE(seen, error);
    QTRY_VERIFY(failed.isNull());
    QCOMPARE(qApp->findChild<QNetworkAccessManager *>(), manager);

    // The page goes on working: it shows the last good reply, and a ticked
    // entry gets its coordinates.
    f.type(QStringLiteral("Coffee"), QStringLiteral("2.50"), QStringLiteral("Kiosk"));
    f.geoLocation()->setChecked(true);
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QVERIFY2(answerer.texts().value(1).endsWith(QStringLiteral("Longitude: 73.85 Latitude: 18.52 Location: 10.1.2.3 ")),
             qPrintable(answerer.texts().value(1)));
    QCOMPARE(answerer.texts().value(2), QStringLiteral("Entry added to the database successfully"));
    const QList<QVariantList> rows = storedEntries(f.home);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0).at(6).toFloat(), 73.85f);
    QCOMPARE(rows.at(0).at(7).toFloat(), 18.52f);
}

void TestAddEntryWidget::aServerThatNeverAnswersLeavesThePageUsable()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setNeverAnswer(true);
    setService(server.url());

    auto f = std::make_unique<PageFixture>();
    QTRY_COMPARE(server.requestCount(), 1);

    f->type(QStringLiteral("Coffee"), QStringLiteral("2.50"), QStringLiteral("Kiosk"));
    f->geoLocation()->setChecked(true);
    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f->pressAdd();

    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.texts().value(1), QStringLiteral("Entry added to the database successfully"));
    QTRY_COMPARE(server.requestCount(), 2);
    // Nothing was known when the entry was confirmed.
    QVERIFY2(answerer.texts().value(0).endsWith(QStringLiteral("Longitude: 0 Latitude: 0 Location:  ")),
             qPrintable(answerer.texts().value(0)));
    const QList<QVariantList> rows = storedEntries(f->home);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0).at(6).toFloat(), 0.0f);

    // Both lookups are still under way; they are given up with the page.
    const QList<QNetworkReply *> replies = qApp->findChildren<QNetworkReply *>();
    QCOMPARE(replies.size(), 2);
    QPointer<QNetworkReply> pending = replies.constFirst();
    QVERIFY(!pending->isFinished());
    f.reset();
    QTRY_VERIFY(pending.isNull());
    QVERIFY(qApp->findChildren<QNetworkReply *>().isEmpty());
}

void TestAddEntryWidget::anUnreadableReplyLeavesWhatThePageShowsAsItWas_data()
{
    QTest::addColumn<QByteArray>("body");

    QTest::newRow("not XML") << QByteArray("City=Nowhere;Latitude=1");
    QTest::newRow("root other than Response")
        << QByteArray("<Error><Ip>6.6.6.6</Ip><City>Nowhere</City><Latitude>1</Latitude></Error>");
    QTest::newRow("empty body") << QByteArray();
}

void TestAddEntryWidget::anUnreadableReplyLeavesWhatThePageShowsAsItWas()
{
    QFETCH(QByteArray, body);

    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200, fullReply);
    setService(server.url());

    PageFixture f;
    QVERIFY(f.waitForLookup());

    server.setReply(200, body);
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    f.pressAdd();
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QTRY_COMPARE(server.requestCount(), 2);
    QVERIFY(f.waitForLookup());

    QCOMPARE(f.lookupShown(answerer), QStringLiteral("Longitude: 73.85 Latitude: 18.52 Location: 10.1.2.3 "));
}

void TestAddEntryWidget::numbersThatAreNotNumbersAreReadAsZero()
{
    LocalHttpServer server;
    QVERIFY(server.listen());
    server.setReply(200,
                    QByteArrayLiteral("<Response><Ip>10.1.2.3</Ip><Latitude>north</Latitude>"
                                      "<Longitude>73.85E</Longitude></Response>"));
    setService(server.url());

    PageFixture f;
    QVERIFY(f.waitForLookup());

    f.type(QStringLiteral("Coffee"), QStringLiteral("2.50"), QStringLiteral("Kiosk"));
    f.geoLocation()->setChecked(true);
    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    f.pressAdd();
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QVERIFY(answerer.texts().value(0).endsWith(QStringLiteral("Longitude: 0 Latitude: 0 Location: 10.1.2.3 ")));
}

// ------------------------------------------- the main window's New Entry button

void TestAddEntryWidget::newEntryShowsTheNewEntryPageOnTheDataPage()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    auto *host = f.host();
    QPointer<QWidget> placeholder = host->widget();
    QCOMPARE(placeholder->objectName(), QStringLiteral("scrollAreaWidgetContents_2"));

    child<QPushButton>(window, "pushButtonNewEntry")->click();

    auto *page = qobject_cast<AddEntryWidget *>(host->widget());
    QVERIFY(page);
    QCOMPARE(f.stack()->currentIndex(), 2);
    QVERIFY(!host->widgetResizable());
    QCOMPARE(page->size(), QSize(888, 761));
    QVERIFY(placeholder.isNull());
    QCOMPARE(window.findChildren<AddEntryWidget *>().size(), 1);
    QCOMPARE(child<QComboBox>(*page, "comboBoxCategory")->count(), 37);
}

void TestAddEntryWidget::newEntryAgainReplacesTheTypedPageWithAnEmptyOne()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    auto *newEntry = child<QPushButton>(window, "pushButtonNewEntry");
    auto *host = f.host();

    newEntry->click();
    QPointer<AddEntryWidget> first = qobject_cast<AddEntryWidget *>(host->widget());
    QVERIFY(first);
    QTest::keyClicks(child<QLineEdit>(*first, "lineEditItemName"), QStringLiteral("Coffee"));
    QTest::keyClicks(child<QLineEdit>(*first, "lineEditAmount"), QStringLiteral("2.50"));
    QTest::keyClicks(child<QLineEdit>(*first, "lineEditLocation"), QStringLiteral("Kiosk"));
    child<QCheckBox>(*first, "checkBoxGeoLocation")->setChecked(true);

    newEntry->click();

    QVERIFY(first.isNull());
    auto *second = qobject_cast<AddEntryWidget *>(host->widget());
    QVERIFY(second);
    QCOMPARE(window.findChildren<AddEntryWidget *>().size(), 1);
    QVERIFY(child<QLineEdit>(*second, "lineEditItemName")->text().isEmpty());
    QVERIFY(child<QLineEdit>(*second, "lineEditAmount")->text().isEmpty());
    QVERIFY(child<QLineEdit>(*second, "lineEditLocation")->text().isEmpty());
    QVERIFY(!child<QCheckBox>(*second, "checkBoxGeoLocation")->isChecked());
    QCOMPARE(f.stack()->currentIndex(), 2);
}

void TestAddEntryWidget::homeAndAboutKeepTheTypedPageAliveAndHidden()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    QVERIFY(f.show());
    auto *stack = f.stack();

    child<QPushButton>(window, "pushButtonNewEntry")->click();
    QPointer<AddEntryWidget> page = window.findChild<AddEntryWidget *>();
    QVERIFY(page);
    QVERIFY(page->isVisible());
    auto *name = child<QLineEdit>(*page, "lineEditItemName");
    QTest::keyClicks(name, QStringLiteral("Coffee"));

    child<QPushButton>(window, "pushButtonHome")->click();
    QCOMPARE(stack->currentIndex(), 0);
    QVERIFY(page);
    QVERIFY(!page->isVisible());

    child<QPushButton>(window, "pushButtonExit")->click();
    QCOMPARE(stack->currentIndex(), 1);
    QVERIFY(page);
    QVERIFY(!page->isVisible());
    QCOMPARE(name->text(), QStringLiteral("Coffee"));

    // Back on the data page it is the same page, as typed.
    stack->setCurrentIndex(2);
    QVERIFY(page->isVisible());
    QCOMPARE(name->text(), QStringLiteral("Coffee"));

    child<QPushButton>(window, "pushButtonNewEntry")->click();
    QVERIFY(page.isNull());
}

void TestAddEntryWidget::thePageKeepsItsBlackBackgroundInsideTheItalicHost()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    QVERIFY(f.show());
    child<QPushButton>(window, "pushButtonNewEntry")->click();
    auto *page = window.findChild<AddEntryWidget *>();
    QVERIFY(page);

    const QImage image = page->grab().toImage();
    // Between the captions and the fields, and below the Add button.
    QCOMPARE(image.pixelColor(140, 100), QColor(Qt::black));
    QCOMPARE(image.pixelColor(100, 500), QColor(Qt::black));
    // The page's own fonts are upright though its host's is italic.
    QVERIFY(!child<QLineEdit>(*page, "lineEditItemName")->font().italic());
    QVERIFY(!child<QPushButton>(*page, "pushButtonAdd")->font().italic());
}

QTEST_MAIN(TestAddEntryWidget)

#include "tst_addentrywidget.moc"
