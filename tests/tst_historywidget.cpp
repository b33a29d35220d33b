// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "addentrywidget.h"
#include "databasemanager.h"
#include "entrydetailswidget.h"
#include "historywidget.h"
#include "look.h"
#include "settings.h"
#include "linegraph.h"
#include "mainwindow.h"
#include "piewidget.h"
#include "placesmap.h"

#include "celltooltip.h"
#include "contrast.h"
#include "describedfile.h"
#include "graphpicture.h"
#include "mainwindowfixture.h"
#include "messageboxanswerer.h"
#include "rawdatabase.h"
#include "sampleentries.h"
#include "temphome.h"
#include "testsupport.h"
#include "webenginesanitizeroptions.h"
#include "webviewtest.h"
#include "contrast.h"
#include "widgettest.h"

#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QHeaderView>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTableWidget>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QTemporaryDir>
#include <QTextDocument>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineView>
#include <QScopeGuard>
#include <QtTest>

#include <memory>

#include <sqlite3.h>

namespace {

QString textDate(const QDate &date)
{
    return date.toString(Qt::TextDate);
}

const QStringList entryTableHeaders = { "No.", "Item Name", "Category", "Price", "Date", "Location Text" };

const char dailyGraph[] = "QtDateWiseDailyLineGraph.png";
const char weeklyGraph[] = "QtDateWiseWeeklyLineGraph.png";
const char monthlyGraph[] = "QtDateWiseMonthlyLineGraph.png";
const char categoryGraph[] = "QtCategoriesLineGraph.png";

// A history page over a store in a fresh home that is also the current
// directory, where the page writes its graphs. Rows go in through a second
// connection, at exact date-times.
class HistoryFixture
{
public:
    HistoryFixture() : home(TempHome::CurrentDir::Enter), store(nullptr), raw(home.databasePath()) { }

    void add(const QString &item, const QString &category, const QDateTime &when, double price,
             const QString &location = QStringLiteral("Somewhere"))
    {
        QVERIFY2(raw.insertEntry(item, category, when, price, location) > 0, qPrintable(raw.lastError()));
    }

    HistoryWidget *build()
    {
        page = std::make_unique<HistoryWidget>(QPointer<DatabaseManager>(&store), nullptr);
        return page.get();
    }

    template<typename T> T *child(const char *name) const { return ::child<T>(*page, name); }

    QTabWidget *tabs() const { return child<QTabWidget>("tabWidgetHistoryContainer"); }
    QDateEdit *startEdit() const { return child<QDateEdit>("dateEditDateWiseStartDate"); }
    QDateEdit *endEdit() const { return child<QDateEdit>("dateEditDateWiseEndDate"); }
    QComboBox *periodBox() const { return child<QComboBox>("comboBoxDateWiseTimePeriod"); }
    QComboBox *categoryBox() const { return child<QComboBox>("comboBoxCategory"); }
    QString labelText(const char *name) const { return child<QLabel>(name)->text(); }
    QTableWidget *table(const char *name) const { return child<QTableWidget>(name); }
    QWidget *chartIn(const char *scrollArea) const { return child<QScrollArea>(scrollArea)->widget(); }
    PieWidget *pieIn(const char *scrollArea) const { return qobject_cast<PieWidget *>(chartIn(scrollArea)); }

    bool fileExists(const char *name) const { return QFile::exists(home.filePath(QLatin1String(name))); }
    QImage savedImage(const char *name) const { return QImage(home.filePath(QLatin1String(name))); }

    TempHome home;
    DatabaseManager store;
    RawDatabase raw;
    std::unique_ptr<HistoryWidget> page;
};

// What differs between the graph the page saved and a picture of exactly
// these points, laid out by the graph's rules at the size of the page's
// graph areas (y sorted, x as given); empty when nothing does.
QString savedGraphMismatch(const HistoryFixture &fixture, const char *file, const GraphPoints &points)
{
    const QImage saved = fixture.savedImage(file);
    if (saved.size() != QSize(401, 281))
        return QStringLiteral("%1 is %2 x %3").arg(QLatin1String(file)).arg(saved.width()).arg(saved.height());
    return graphPictureMismatch(saved, expectedGraphLayout(points, saved.size(), false, true));
}

QStringList rowTexts(const QTableWidget *table, int row)
{
    QStringList texts;
    for (int column = 0; column < table->columnCount(); ++column)
        texts.append(table->item(row, column) ? table->item(row, column)->text() : QStringLiteral("<no item>"));
    return texts;
}

QStringList columnTexts(const QTableWidget *table, int column)
{
    QStringList texts;
    for (int row = 0; row < table->rowCount(); ++row)
        texts.append(table->item(row, column)->text());
    return texts;
}

QStringList headerTexts(const QTableWidget *table)
{
    QStringList texts;
    for (int column = 0; column < table->columnCount(); ++column)
        texts.append(table->horizontalHeaderItem(column)->text());
    return texts;
}

// Every cell red and read-only, every section stretched.
bool allCellsAreRedReadOnlyAndStretched(const QTableWidget *table)
{
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            const QTableWidgetItem *item = table->item(row, column);
            if (!item || item->foreground().color() != QColor(0xff, 0, 0) || (item->flags() & Qt::ItemIsEditable))
                return false;
        }
    }
    // The columns share the width; one whose heading would not fit in its
    // share keeps the heading's width instead.
    const QHeaderView *header = table->horizontalHeader();
    bool stretched = false;
    for (int column = 0; column < table->columnCount(); ++column) {
        if (header->sectionResizeMode(column) == QHeaderView::Stretch)
            stretched = true;
        else if (header->sectionResizeMode(column) != QHeaderView::Fixed ||
                 header->sectionSize(column) < header->sectionSizeHint(column))
            return false;
    }
    return stretched;
}

// Pixels of a cell's text in a picture of the table as it shows on screen:
// how many are red, the tables' text colour, and how many dark, the colour
// a table's text has when nothing else is said.
struct TextInk
{
    int red = 0;
    int dark = 0;
};

TextInk cellInk(QTableWidget *table, int row, int column)
{
    const QImage shot = table->viewport()->grab().toImage();
    // Inside the grid lines.
    const QRect cell = table->visualItemRect(table->item(row, column)).adjusted(2, 2, -2, -2);
    TextInk ink;
    for (int y = cell.top(); y <= cell.bottom(); ++y) {
        for (int x = cell.left(); x <= cell.right(); ++x) {
            const QColor pixel = shot.pixelColor(x, y);
            if (pixel.red() > 200 && pixel.green() < 90 && pixel.blue() < 90)
                ++ink.red;
            else if (pixel.red() < 110 && pixel.green() < 110 && pixel.blue() < 110)
                ++ink.dark;
        }
    }
    return ink;
}

QString categoryLabel(const QString &text)
{
    return QStringLiteral("<font color=#ff7637> %1 </font>").arg(text);
}

void clickCell(QTableWidget *table, int row, int column)
{
    const QRect cell = table->visualItemRect(table->item(row, column));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
}

// ------------------------------------------------------------ the places tab

// From the very start of every page: a script that a place name smuggled
// into the page would run counts its alerts, without any dialog.
const char alertCounterScript[] = R"(
window.testAlerts = 0;
window.alert = function () { window.testAlerts += 1; };
)";

const QRegularExpression anyTileUrl(QStringLiteral(R"(^https://tile\.openstreetmap\.org/\d+/\d+/\d+\.png$)"));

// The statements run on the store's connection, as SQLite hands them to
// its own engine: the connection's trace, from construction to destruction.
class StatementLog
{
public:
    StatementLog()
    {
        const QVariant handle = QSqlDatabase::database().driver()->handle();
        if (handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0)
            connection = *static_cast<sqlite3 *const *>(handle.constData());
        if (connection)
            sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, &StatementLog::record, this);
    }
    ~StatementLog()
    {
        if (connection)
            sqlite3_trace_v2(connection, 0, nullptr, nullptr);
    }
    StatementLog(const StatementLog &) = delete;
    StatementLog &operator=(const StatementLog &) = delete;

    bool isTracing() const { return connection != nullptr; }
    // How many statements ran that read the given table grouped by a column:
    // "group by Place" for the places table, "group by HistoricLocation" for
    // the map's places.
    int count(const QString &fragment) const
    {
        return int(std::count_if(statements.cbegin(), statements.cend(), [&fragment](const QString &statement) {
            return statement.contains(fragment, Qt::CaseInsensitive);
        }));
    }
    void clear() { statements.clear(); }

private:
    static int record(unsigned type, void *context, void *statement, void *)
    {
        if (type == SQLITE_TRACE_STMT) {
            const char *text = sqlite3_sql(static_cast<sqlite3_stmt *>(statement));
            static_cast<StatementLog *>(context)->statements.append(QString::fromUtf8(text ? text : ""));
        }
        return 0;
    }

    sqlite3 *connection = nullptr;
    QStringList statements;
};

const char placesGrouped[] = "group by Place";
const char rememberedPlacesGrouped[] = "group by HistoricLocation.SNo";

const QStringList placesTableHeaders = { "Place", "Entries", "Total", "Average", "Last Visit" };

// A place name that is markup, a script and quotes at once: it must show as
// typed, in the table and on the map.
const QString markupPlace = QStringLiteral("Joe's \"Diner\" <b>&</b> </script><script>alert(1)</script>");

// An entry through the store, as the new-entry page adds it, so that a
// geolocated one points at its remembered place.
bool addThroughStore(DatabaseManager &store, const QString &item, const QDateTime &when, float price,
                     const QString &place, bool geo = false, float longitude = 103.0f, float latitude = 1.3f)
{
    Entry entry;
    entry.ItemName = item;
    entry.CategoryName = QStringLiteral("Food");
    entry.TransactDateTime = when;
    entry.Price = price;
    entry.LocationText = place;
    entry.EnableGeoLoc = geo;
    entry.GeoLocLongit = longitude;
    entry.GeoLocLatit = latitude;
    return store.AddEntry(&entry);
}

// Three places: Koregaon Park with two geolocated entries, Orchard Road
// without a geolocation, and the markup place, geolocated once.
bool addThreePlaces(DatabaseManager &store)
{
    return addThroughStore(store, "Lunch", at(2026, 11, 15, 13, 0), 12.5f, "Koregaon Park", true, 73.85f, 18.52f) &&
        addThroughStore(store, "Tea", at(2026, 11, 10, 17, 30), 7.5f, "Koregaon Park", true, 73.85f, 18.52f) &&
        addThroughStore(store, "Shoes", at(2026, 3, 2), 40.0f, "Orchard Road") &&
        addThroughStore(store, "Bus", at(2026, 2, 27, 8, 15), 2.5f, "Orchard Road") &&
        addThroughStore(store, "Burger", at(2026, 6, 1, 20, 0), 30.0f, markupPlace, true, 103.8198f, 1.3521f);
}

// Every circle on the map as the page holds it: name, position, radius, the
// lines of its pop-up as text, whether Leaflet drew it as an SVG path and
// whether its pop-up is open.
const char markersScript[] = R"((function () {
        var markers = [];
        window.places.eachLayer(function (marker) {
            var position = marker.getLatLng();
            var content = marker.getPopup().getContent();
            var element = marker.getElement();
            markers.push({
                name: marker.placeName, lat: position.lat, lng: position.lng, radius: marker.getRadius(),
                lines: Array.prototype.map.call(content.children, function (line) { return line.textContent; }),
                elements: content.querySelectorAll('*').length,
                svgPath: !!element && element.tagName === 'path' && element.ownerSVGElement !== null,
                open: marker.isPopupOpen()
            });
        });
        return markers;
    })())";

// What the map shows: centre, zoom, how many places are in view, the lines
// of the open pop-up, and what the page holds besides (scripts, links that
// lead away, alerts raised, circles drawn).
const char viewScript[] = R"((function () {
        var centre = window.map.getCenter();
        var bounds = window.map.getBounds();
        var inView = 0;
        window.places.eachLayer(function (marker) { if (bounds.contains(marker.getLatLng())) inView += 1; });
        var popUp = document.querySelector('.leaflet-popup-content');
        return {
            lat: centre.lat, lng: centre.lng, zoom: window.map.getZoom(), inView: inView,
            popUp: popUp ? Array.prototype.map.call(popUp.firstChild.children,
                                                    function (line) { return line.textContent; }) : [],
            scripts: document.querySelectorAll('script').length,
            links: document.querySelectorAll('a[href]:not([href^="#"])').length,
            alerts: window.testAlerts,
            svgPaths: document.querySelectorAll('svg path.leaflet-interactive').length
        };
    })())";

// The number of places on the map, or -1 while the map page is not there.
int markersOnMap(QWebEngineView *view)
{
    if (view->url().isEmpty() || view->url() == QUrl(QStringLiteral("about:blank")))
        return -1;
    const QVariant count =
        evaluate(view, QStringLiteral("typeof window.places === 'object' ? window.places.getLayers().length : -1"));
    return count.isValid() ? count.toInt() : -1;
}

// Builds the fixture's page and shows it on its places tab: the places
// table, or null if it never shows.
QTableWidget *showPlacesTable(HistoryFixture &f)
{
    HistoryWidget *page = f.build();
    page->show();
    if (!QTest::qWaitForWindowExposed(page))
        return nullptr;
    f.tabs()->setCurrentIndex(4);
    QTableWidget *places = f.table("tableWidgetPlaces");
    return QTest::qWaitFor([places] { return places->isVisible(); }) ? places : nullptr;
}

// The same, then waits until the map shows `places` places: the map's
// view, or null if it never does.
QWebEngineView *showPlacesTab(HistoryFixture &f, int places)
{
    if (!showPlacesTable(f))
        return nullptr;
    auto *map = f.child<QWebEngineView>("webViewPlaces");
    return QTest::qWaitFor([&] { return markersOnMap(map) == places; }, webTimeoutMs) ? map : nullptr;
}

QVariantList mapMarkers(QWebEngineView *view)
{
    return evaluate(view, QString::fromLatin1(markersScript)).toList();
}

QVariantMap mapView(QWebEngineView *view)
{
    return evaluate(view, QString::fromLatin1(viewScript)).toMap();
}

QVariantMap markerNamed(const QVariantList &markers, const QString &name)
{
    for (const QVariant &marker : markers) {
        if (marker.toMap().value(QStringLiteral("name")).toString() == name)
            return marker.toMap();
    }
    return {};
}

bool near(double a, double b)
{
    return qAbs(a - b) < 1e-6;
}

// How far the named place is drawn from the middle of the map, in whole
// pixels along the farther axis; -1 when it is not on the map.
const char pixelsFromCentreFunction[] = R"((function (name) {
        var marker = null;
        window.places.eachLayer(function (layer) { if (layer.placeName === name) marker = layer; });
        if (!marker)
            return -1;
        var point = window.map.latLngToContainerPoint(marker.getLatLng());
        var middle = window.map.getSize().divideBy(2);
        return Math.floor(Math.max(Math.abs(point.x - middle.x), Math.abs(point.y - middle.y)));
    }))";

int pixelsFromCentre(QWebEngineView *view, const QString &name)
{
    const QVariant pixels =
        evaluate(view, PlacesMap::scriptCall(QString::fromLatin1(pixelsFromCentreFunction), { name }));
    return pixels.isValid() ? pixels.toInt() : -1;
}

} // namespace

class TestHistoryWidget : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void budgetsTabIsFilledOnEachVisitNotByTheConstructor();
    void budgetsTabShowsEachBudgetInThePeriodHoldingToday();
    void budgetsUsedBarIsGreenAmberOrRedByTheSpentShare();
    void clickingABudgetListsItsCategorysEntriesOfThePeriodNewestFirst();
    void budgetsTabWithoutBudgetsSaysHowToSetOne();

    // The form
    void formHasTheDesignedWidgetsAndGeometry();
    void tabsAreCategoryWiseDateWiseTotalEntriesAndPlacesWithCategoryWiseShown();
    void styleSheetsKeepTheSharedLookWithTheTabWidgetsStrayColour();
    void captionsAreRichTextInTheirTabsAccentColour();
    void dateControlsShowDaysAndOfferThePeriods();

    // Page and Entries tab
    void pageBuiltWhenTheNewestEntryIsOnADayOpensItsDateControlsOnThatDay();
    void everyTableListsItsEntriesNewestFirstInSixRedColumns();
    void everyTableDrawsItsCellsTextInRed();
    void pricesShowWithSixSignificantDigitsAndNoTrailingZeros();
    void entriesAddedAfterThePageWasBuiltAreListedButNotSummed();
    void dateWiseTabIsComputedOnlyWhenTheUserSelectsIt();
    void pageOnAnEmptyStoreShowsNoRowsAndReportsNothing();
    void entryTablesKeepSortingOff();
    void revisitingTabsWhileNothingWasWrittenReadsNothingAgain();
    void aGraphFileRemovedSinceIsWrittenAgainAtTheNextVisit();

    // Total tab
    void totalTableListsTheFirstTenDaysFromTheOldestEntry_data();
    void totalTableListsTheFirstTenDaysFromTheOldestEntry();
    void categoriesOfThirtyAndSeventyMakeSlicesOfThirtyAndSeventyPerCent();
    void sliceValuesAreTruncatedWhileSharesUseTheFullTotal();

    // Date Wise tab
    void startEqualsEndGivesOneBucketInEveryPeriod();
    void dailyGraphKeepsADayWithoutEntriesAsZero();
    void weeklyGraphFromAWednesdayOverFifteenDaysHasThreeWeeks();
    void monthlyGraphFromThirtyJanuaryToSecondMarchHasThreeMonths();
    void dateEditsCarryMidnightSoLaterEntriesOfTheEndDayAreOutside();
    void twoEntriesOfOneCategoryOnDifferentDaysMakeOnePieSlice();
    void periodTotalLabelShowsTheSumOfTheRange();
    void eachPeriodWritesItsGraphAtTheSizeOfTheGraphArea();
    void rangeWithoutEntriesIsReportedAndTheTabKeepsItsContents();
    void startAfterEndIsReportedByThePeriodBoxWhichResetsTheEndDate();

    // Category Wise tab
    void categoryUsedAtThreeDateTimesOverFiveDaysShowsItsSixFigures();
    void categoryOfTwentyFiveOutOfTwoHundredContributesTwelveAndAHalfPerCent();
    void categoryListsItsEntriesFromTheTenthNewestDateTime_data();
    void categoryListsItsEntriesFromTheTenthNewestDateTime();
    void twoEntriesOfTheCategoryOnOneDayMakeOneGraphPoint();
    void choosingAnotherCategoryRecomputesTheTab();

    // From the main window
    void historyOpensThePageOnceAnEntryExists();
    void tappingRowZeroOfEntriesShowsTheNewestEntryAndTappingAgainReplacesIt();
    void tappingARowOfTheCategoryTableChangesNothing();
    void textsTypedOnTheNewEntryPageShowLiterallyInEveryTableAndTheDetails_data();
    void textsTypedOnTheNewEntryPageShowLiterallyInEveryTableAndTheDetails();

    // Tool tips of cut-off cells
    void aCutOffCellOfEveryEntryTableTellsItsWholeText_data();
    void aCutOffCellOfEveryEntryTableTellsItsWholeText();
    void aCellThatFitsHasNoToolTip();
    void aCutOffTextThatLooksLikeMarkupIsToldAsTyped();

    // The places tab
    void placesTabIsFilledOnItsFirstVisitAndAgainAfterAWrite();
    void placesTableListsEveryPlaceTextWithItsFiguresLargestTotalFirst();
    void placesTableSortsEachColumnByItsValues();
    void placesTableDrawsItsTextInRed();
    void aCutOffPlaceTellsItsWholeText();
    void placesMapHasACircleAtEachRememberedPlaceWithItsFiguresAsText();
    void aSinglePlaceIsShownAtZoomSixteen();
    void withoutRememberedPlacesTheMapStaysOnTheDefaultCentre();
    void tappingARowCentresTheMapOnItsPlaceAndOpensItsPopUp();
    void placesMapFetchesNothingButTilesAndOffersNoLinks();
    void markerRadiusGrowsWithTheTotal_data();
    void markerRadiusGrowsWithTheTotal();
    void placesReachThePageAsEscapedJson();

    // The looks (last: the first look applied gives the application the
    // program's style for the rest of the run)
    void graphsAndPiesFollowTheLookAndClassicKeepsTheGraphsColours();

private:
    RequestRecorder recorder;
};

void TestHistoryWidget::initTestCase()
{
    WidgetTest::initTestCase();
    QWebEngineProfile *profile = QWebEngineProfile::defaultProfile();
    profile->setUrlRequestInterceptor(&recorder);
    QWebEngineScript script;
    script.setName(QStringLiteral("alert counter"));
    script.setSourceCode(QString::fromLatin1(alertCounterScript));
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::MainWorld);
    script.setRunsOnSubFrames(false);
    profile->scripts()->insert(script);
}

void TestHistoryWidget::init()
{
    recorder.requests.clear();
}

void TestHistoryWidget::cleanup()
{
    hideToolTip();
    VERIFY_NO_WIDGETS_LEFT();
}

void TestHistoryWidget::cleanupTestCase()
{
    QWebEngineProfile::defaultProfile()->setUrlRequestInterceptor(nullptr);
    QWebEngineProfile::defaultProfile()->scripts()->clear();
}

void TestHistoryWidget::formHasTheDesignedWidgetsAndGeometry()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 15), 3);
    HistoryWidget *page = fixture.build();
    QCOMPARE(page->objectName(), QStringLiteral("HistoryWidget"));
    QCOMPARE(page->windowTitle(), QStringLiteral("Form"));
    QCOMPARE(page->size(), QSize(888, 761));

    struct Designed
    {
        const char *name;
        const char *className;
        QRect geometry;
    };
    const Designed designed[] = {
        { "scrollArea", "QScrollArea", QRect(10, 10, 871, 741) },
        { "scrollAreaWidgetContents", "QWidget", QRect(0, 0, 869, 739) },
        { "tabWidgetHistoryContainer", "QTabWidget", QRect(10, 9, 851, 721) },
        { "comboBoxCategory", "QComboBox", QRect(10, 10, 341, 41) },
        { "scrollAreaCategoryLineChart", "QScrollArea", QRect(10, 70, 401, 281) },
        { "labelCategoryTabCategoryTotal", "QLabel", QRect(420, 80, 411, 31) },
        { "labelCategoryTabDaysUse", "QLabel", QRect(420, 120, 411, 31) },
        { "labelCategoryTabCalanderDaysUse", "QLabel", QRect(420, 160, 411, 31) },
        { "labelCategoryTabAvgDaysUse", "QLabel", QRect(420, 200, 411, 31) },
        { "labelCategoryTabAvgCalanderDaysUse", "QLabel", QRect(420, 240, 411, 31) },
        { "labelCategoryTabCategoryPercent", "QLabel", QRect(420, 280, 411, 31) },
        { "labelCategoryRecentEntries", "QLabel", QRect(10, 360, 161, 41) },
        { "tableWidgetCategoryRecentEntries", "QTableWidget", QRect(10, 400, 641, 251) },
        { "labelDateWiseStart", "QLabel", QRect(40, 20, 71, 31) },
        { "dateEditDateWiseStartDate", "QDateEdit", QRect(110, 10, 291, 41) },
        { "labelDateWiseEnd", "QLabel", QRect(440, 20, 71, 31) },
        { "dateEditDateWiseEndDate", "QDateEdit", QRect(510, 10, 301, 41) },
        { "labelDateWiseTimeHorizon", "QLabel", QRect(180, 80, 81, 31) },
        { "comboBoxDateWiseTimePeriod", "QComboBox", QRect(260, 70, 341, 41) },
        { "scrollAreaDateWiseLineChart", "QScrollArea", QRect(10, 130, 401, 281) },
        { "scrollAreaDateWisePieChart", "QScrollArea", QRect(420, 130, 401, 281) },
        { "labelDateWiseRecentEntries", "QLabel", QRect(10, 420, 161, 31) },
        { "labelDatewiseTabTotal", "QLabel", QRect(420, 420, 401, 31) },
        { "tableWidgetDattewiseTabEntries", "QTableWidget", QRect(10, 460, 811, 196) },
        { "labelTotalCategoryBreakup", "QLabel", QRect(10, 20, 201, 31) },
        { "labelTotalTabGlobalTotal", "QLabel", QRect(550, 40, 281, 31) },
        { "scrollAreaTotalPieChartCategories", "QScrollArea", QRect(10, 70, 821, 321) },
        { "labelTotalRecentEntries", "QLabel", QRect(20, 400, 161, 31) },
        { "tableWidgetTotalTabEntries", "QTableWidget", QRect(10, 440, 791, 211) },
        { "labelAllEntries", "QLabel", QRect(10, 10, 111, 31) },
        { "tableWidgetAllEntries", "QTableWidget", QRect(10, 50, 821, 211) },
        { "labelAllEntriesTabEntryDetails", "QLabel", QRect(10, 270, 151, 31) },
        { "scrollAreaAllEntriesEntryDetails", "QScrollArea", QRect(0, 310, 831, 341) },
        { "tableWidgetPlaces", "QTableWidget", QRect(10, 10, 821, 281) },
        { "webViewPlaces", "QWebEngineView", QRect(10, 300, 821, 351) },
    };
    for (const Designed &widget : designed) {
        const QWidget *found = page->findChild<QWidget *>(QLatin1String(widget.name));
        QVERIFY2(found, widget.name);
        QVERIFY2(QLatin1String(found->metaObject()->className()) == QLatin1String(widget.className), widget.name);
        QVERIFY2(found->geometry() == widget.geometry,
                 qPrintable(QStringLiteral("%1 at %2,%3 %4x%5")
                                .arg(QLatin1String(widget.name))
                                .arg(found->x())
                                .arg(found->y())
                                .arg(found->width())
                                .arg(found->height())));
    }
}

namespace {

constexpr int budgetsTab = 5;

void addBudget(RawDatabase &raw, const QString &category, double amount, const QString &period)
{
    QVERIFY2(raw.exec(QStringLiteral("INSERT INTO Budget (CategoryName, Amount, Period) VALUES ('%1', %2, '%3')")
                          .arg(category)
                          .arg(amount)
                          .arg(period)),
             qPrintable(raw.lastError()));
}

QDateTime todayAt(int hour)
{
    return QDateTime(QDate::currentDate(), QTime(hour, 0));
}

} // namespace

void TestHistoryWidget::budgetsTabIsFilledOnEachVisitNotByTheConstructor()
{
    Settings().setBudgetMonthStart(1);
    HistoryFixture f;
    f.add("Bread", "Food", todayAt(9), 30);
    addBudget(f.raw, "Food", 100, "month");
    f.build();
    QTableWidget *budgets = f.table("tableWidgetBudgets");
    QCOMPARE(budgets->rowCount(), 0);
    QCOMPARE(budgets->columnCount(), 0);

    f.tabs()->setCurrentIndex(budgetsTab);
    QCOMPARE(budgets->rowCount(), 1);
    QCOMPARE(budgets->item(0, 3)->text(), QStringLiteral("30.00"));

    // A second visit reads the file again.
    f.tabs()->setCurrentIndex(0);
    f.add("Cheese", "Food", todayAt(10), 20);
    addBudget(f.raw, "Drinks", 10, "week");
    f.tabs()->setCurrentIndex(budgetsTab);
    QCOMPARE(budgets->rowCount(), 2);
    QCOMPARE(budgets->item(1, 0)->text(), QStringLiteral("Food"));
    QCOMPARE(budgets->item(1, 3)->text(), QStringLiteral("50.00"));
}

void TestHistoryWidget::budgetsTabShowsEachBudgetInThePeriodHoldingToday()
{
    Settings().setBudgetMonthStart(1);
    HistoryFixture f;
    const QDate today = QDate::currentDate();
    const QDate firstOfMonth(today.year(), today.month(), 1);
    f.add("Groceries", "Food", firstOfMonth.startOfDay(), 400);
    f.add("Bread", "Food", todayAt(12), 12.5);
    f.add("Old bread", "Food", firstOfMonth.addDays(-1).startOfDay(), 1000);
    f.add("Coffee", "Drinks", todayAt(8), 2);
    addBudget(f.raw, "Food", 400, "month");
    addBudget(f.raw, "Drinks", 20, "year");
    f.build();
    f.tabs()->setCurrentIndex(budgetsTab);

    QTableWidget *budgets = f.table("tableWidgetBudgets");
    QVERIFY(budgets->isVisibleTo(f.page.get()));
    QVERIFY(!f.child<QLabel>("labelBudgetsEmpty")->isVisibleTo(f.page.get()));
    QCOMPARE(headerTexts(budgets), QStringList({ "Category", "Period", "Budget", "Spent", "Left", "Used", "Pace" }));
    QCOMPARE(budgets->rowCount(), 2);
    QCOMPARE(rowTexts(budgets, 0).mid(0, 6), QStringList({ "Drinks", "year", "20.00", "2.00", "18.00", "10 %" }));
    QCOMPARE(rowTexts(budgets, 1).mid(0, 6), QStringList({ "Food", "month", "400.00", "412.50", "-12.50", "103 %" }));

    // Pace: the share of 400 for the days gone, today included, against
    // the 412.50 spent.
    const double allowed = 400.0 * today.day() / today.daysInMonth();
    const double margin = allowed - 412.5;
    QCOMPARE(budgets->item(1, 6)->text(), margin >= 0 ? QStringLiteral("ahead by %1").arg(margin, 0, 'f', 2)
                                                      : QStringLiteral("behind by %1").arg(-margin, 0, 'f', 2));
    // Drinks' year started on 1 January.
    const double drinksAllowed = 20.0 * today.dayOfYear() / today.daysInYear();
    const double drinksMargin = drinksAllowed - 2;
    QCOMPARE(budgets->item(0, 6)->text(), drinksMargin >= 0
                 ? QStringLiteral("ahead by %1").arg(drinksMargin, 0, 'f', 2)
                 : QStringLiteral("behind by %1").arg(-drinksMargin, 0, 'f', 2));
}

void TestHistoryWidget::budgetsUsedBarIsGreenAmberOrRedByTheSpentShare()
{
    Settings().setBudgetMonthStart(1);
    HistoryFixture f;
    const QList<QPair<QString, double>> spent = { { "A79", 79 }, { "B80", 80 }, { "C100", 100 }, { "D101", 101 } };
    for (const auto &[category, amount] : spent) {
        f.add("Thing", category, todayAt(9), amount);
        addBudget(f.raw, category, 100, "month");
    }
    HistoryWidget *page = f.build();
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page));
    f.tabs()->setCurrentIndex(budgetsTab);
    QTableWidget *budgets = f.table("tableWidgetBudgets");
    QCOMPARE(budgets->rowCount(), 4);

    const QColor green(27, 94, 32);
    const QColor amber(255, 191, 0);
    const QColor red(198, 40, 40);
    const QList<QPair<QString, QColor>> expected = {
        { "79 %", green }, { "80 %", amber }, { "100 %", amber }, { "101 %", red }
    };
    const QImage picture = budgets->viewport()->grab().toImage();
    const qreal ratio = picture.devicePixelRatio();
    for (int row = 0; row < 4; ++row) {
        QCOMPARE(budgets->item(row, 5)->text(), expected.at(row).first);
        const QRect cell = budgets->visualItemRect(budgets->item(row, 5));
        QVERIFY(cell.isValid());
        const QPoint nearLeft(int((cell.left() + 5) * ratio), int(cell.center().y() * ratio));
        QCOMPARE(picture.pixelColor(nearLeft), expected.at(row).second);
        // The percentage stands on the bar, readable.
        const QRect text(int((cell.center().x() - 20) * ratio), int((cell.top() + 3) * ratio), int(40 * ratio),
                         int((cell.height() - 6) * ratio));
        QVERIFY2(drawnContrast(picture, text) >= 4.5, qPrintable(QString::number(drawnContrast(picture, text))));
    }
    // 79 % of the cell is bar, the rest is not.
    const QRect cell = budgets->visualItemRect(budgets->item(0, 5));
    const QPoint pastTheBar(int((cell.right() - 4) * ratio), int(cell.center().y() * ratio));
    QVERIFY(picture.pixelColor(pastTheBar) != green);
}

void TestHistoryWidget::clickingABudgetListsItsCategorysEntriesOfThePeriodNewestFirst()
{
    Settings().setBudgetMonthStart(1);
    HistoryFixture f;
    const QDate today = QDate::currentDate();
    const QDate firstOfMonth(today.year(), today.month(), 1);
    f.add("Groceries", "Food", firstOfMonth.startOfDay(), 40, "Market");
    f.add("Bread", "Food", todayAt(12), 2.5, "Bakery");
    f.add("Old bread", "Food", firstOfMonth.addDays(-1).startOfDay(), 1000, "Bakery");
    f.add("Coffee", "Drinks", todayAt(8), 2, "Cafe");
    addBudget(f.raw, "Food", 400, "month");
    addBudget(f.raw, "Drinks", 20, "month");
    HistoryWidget *page = f.build();
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page));
    f.tabs()->setCurrentIndex(budgetsTab);
    QTableWidget *budgets = f.table("tableWidgetBudgets");
    QTableWidget *entries = f.table("tableWidgetBudgetEntries");
    QCOMPARE(entries->rowCount(), 0);

    QTest::mouseClick(budgets->viewport(), Qt::LeftButton, {},
                      budgets->visualItemRect(budgets->item(1, 0)).center());
    QCOMPARE(headerTexts(entries), QStringList({ "Date", "Item", "Amount", "Place" }));
    QCOMPARE(entries->rowCount(), 2);
    QCOMPARE(rowTexts(entries, 0), QStringList({ today.toString(Qt::TextDate), "Bread", "2.50", "Bakery" }));
    QCOMPARE(rowTexts(entries, 1),
             QStringList({ firstOfMonth.toString(Qt::TextDate), "Groceries", "40.00", "Market" }));

    QTest::mouseClick(budgets->viewport(), Qt::LeftButton, {},
                      budgets->visualItemRect(budgets->item(0, 0)).center());
    QCOMPARE(entries->rowCount(), 1);
    QCOMPARE(rowTexts(entries, 0), QStringList({ today.toString(Qt::TextDate), "Coffee", "2.00", "Cafe" }));
}

void TestHistoryWidget::budgetsTabWithoutBudgetsSaysHowToSetOne()
{
    HistoryFixture f;
    f.add("Bread", "Food", todayAt(9), 3);
    f.build();
    f.tabs()->setCurrentIndex(budgetsTab);
    auto *label = f.child<QLabel>("labelBudgetsEmpty");
    QVERIFY(label->isVisibleTo(f.page.get()));
    QCOMPARE(label->text(), QStringLiteral("No budgets yet. Set a limit for a category on the \"Budgets\" tab of the "
                                           "options page, or with \"ledgerly budget set CATEGORY AMOUNT\"."));
    QVERIFY(!f.table("tableWidgetBudgets")->isVisibleTo(f.page.get()));
    QCOMPARE(f.table("tableWidgetBudgets")->rowCount(), 0);
}

void TestHistoryWidget::tabsAreCategoryWiseDateWiseTotalEntriesAndPlacesWithCategoryWiseShown()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 15), 3);
    fixture.build();

    QTabWidget *tabs = fixture.tabs();
    QCOMPARE(tabs->count(), 6);
    const QStringList titles = { "Category Wise", "Date Wise", "Total", "Entries", "Places", "Budgets" };
    const QStringList pages = { "tabCategoryWise", "tabDateWise", "tabTotal", "tabAllEntries", "tabPlaces",
                                "tabBudgets" };
    for (int i = 0; i < 6; ++i) {
        QCOMPARE(tabs->tabText(i), titles.at(i));
        QCOMPARE(tabs->widget(i)->objectName(), pages.at(i));
    }
    QCOMPARE(tabs->tabPosition(), QTabWidget::North);
    QCOMPARE(tabs->currentIndex(), 0);

    // The chart areas follow their charts' size; the page itself scrolls.
    QVERIFY(!fixture.child<QScrollArea>("scrollArea")->widgetResizable());
    for (const char *area :
         { "scrollAreaCategoryLineChart", "scrollAreaDateWiseLineChart", "scrollAreaDateWisePieChart",
           "scrollAreaTotalPieChartCategories", "scrollAreaAllEntriesEntryDetails" })
        QVERIFY2(fixture.child<QScrollArea>(area)->widgetResizable(), area);
}

void TestHistoryWidget::styleSheetsKeepTheSharedLookWithTheTabWidgetsStrayColour()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 15), 3);
    HistoryWidget *page = fixture.build();

    const QString border = QStringLiteral("border-style: outset;\nborder-width: 2px;\nborder-color: beige;\n");
    QCOMPARE(page->styleSheet(), QStringLiteral("background-color: rgb(0, 0, 0);"));
    QCOMPARE(fixture.tabs()->styleSheet(), border + "font: 75 14pt \"MS Shell Dlg 2\"  rgb(255, 0, 0);");
    QCOMPARE(fixture.categoryBox()->styleSheet(), border + "font: 75 14pt \"MS Shell Dlg 2\";");
    QCOMPARE(fixture.startEdit()->styleSheet(),
             border + "font: 75 14pt \"MS Shell Dlg 2\";\nbackground-color: rgb(254, 255, 189);");
    QCOMPARE(fixture.endEdit()->styleSheet(), fixture.startEdit()->styleSheet());

    const QString tableLook =
        QStringLiteral("selection-background-color: rgb(58, 176, 86);\nbackground-color: rgb(254, 255, 189);");
    QCOMPARE(fixture.table("tableWidgetCategoryRecentEntries")->styleSheet(),
             border + "font: 75 14pt \"MS Shell Dlg 2\"  rgb(255, 0, 0);\n" + tableLook);
    QCOMPARE(fixture.table("tableWidgetDattewiseTabEntries")->styleSheet(),
             border + "font: 75 14pt \"MS Shell Dlg 2\";\n" + tableLook);
    QCOMPARE(fixture.table("tableWidgetTotalTabEntries")->styleSheet(),
             fixture.table("tableWidgetDattewiseTabEntries")->styleSheet());
    QCOMPARE(fixture.table("tableWidgetAllEntries")->styleSheet(),
             border + "font: 75 14pt \"MS Shell Dlg 2\";\n" + tableLook + "\nselection-color: rgb(85, 255, 255);");
    QVERIFY(!fixture.table("tableWidgetAllEntries")->alternatingRowColors());
    QCOMPARE(fixture.table("tableWidgetAllEntries")->palette().color(QPalette::Base), QColor(254, 255, 189));
    QCOMPARE(fixture.child<QLabel>("labelAllEntries")->styleSheet(), QStringLiteral("border-color: rgb(0, 0, 0);"));
}

void TestHistoryWidget::captionsAreRichTextInTheirTabsAccentColour()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 15), 3);
    fixture.build();

    const QList<QPair<const char *, QString>> captions = {
        { "labelCategoryRecentEntries", "color:#ff7637;\">Recent Entries</span>" },
        { "labelDateWiseStart", "color:#ff2411;\">Start</span>" },
        { "labelDateWiseEnd", "color:#ff2411;\">End</span>" },
        { "labelDateWiseTimeHorizon", "color:#ff2411;\">Period</span>" },
        { "labelDateWiseRecentEntries", "color:#ff2411;\">Recent Entries</span>" },
        { "labelTotalCategoryBreakup", "color:#ff0202;\">Category Break-up</span>" },
        { "labelTotalRecentEntries", "color:#ff0202;\">Recent Entries</span>" },
        { "labelAllEntries", "color:#ff0202;\">Entries</span>" },
        { "labelAllEntriesTabEntryDetails", "color:#ff0202;\">Entry Details</span>" },
    };
    for (const auto &caption : captions) {
        const QString text = fixture.labelText(caption.first);
        QVERIFY2(Qt::mightBeRichText(text), caption.first);
        QVERIFY2(text.contains("font-family:'MS Shell Dlg 2'; font-size:14pt;"), caption.first);
        QVERIFY2(text.contains("<span style=\" font-weight:600; " + caption.second), caption.first);
    }
    // The date-wise and total placeholders wait, in 12 pt, for their first run.
    QVERIFY(fixture.labelText("labelDatewiseTabTotal").contains("font-size:12pt;"));
    QVERIFY(fixture.labelText("labelTotalTabGlobalTotal").startsWith("<font color=#ff0202> Global Total: "));
}

void TestHistoryWidget::dateControlsShowDaysAndOfferThePeriods()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 15), 3);
    fixture.build();

    for (QDateEdit *edit : { fixture.startEdit(), fixture.endEdit() }) {
        QCOMPARE(edit->displayFormat(), QStringLiteral("dd/MM/yyyy"));
        QCOMPARE(edit->alignment(), Qt::AlignCenter);
        QCOMPARE(edit->buttonSymbols(), QAbstractSpinBox::UpDownArrows);
        QVERIFY(!edit->calendarPopup());
        QCOMPARE(edit->text(), QStringLiteral("15/11/2026"));
    }
    QComboBox *period = fixture.periodBox();
    QCOMPARE(period->count(), 3);
    QCOMPARE(period->itemText(0), QStringLiteral("Daily"));
    QCOMPARE(period->itemText(1), QStringLiteral("Weekly"));
    QCOMPARE(period->itemText(2), QStringLiteral("Monthly"));
    QCOMPARE(period->currentText(), QStringLiteral("Daily"));
}

void TestHistoryWidget::pageBuiltWhenTheNewestEntryIsOnADayOpensItsDateControlsOnThatDay()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 2, 9, 15), 3);
    fixture.add("Taxi", "Travel", at(2026, 11, 15, 21, 40), 12);
    fixture.add("Milk", "Food", at(2026, 11, 9, 7, 0), 1.5);
    fixture.build();

    QCOMPARE(fixture.startEdit()->date(), QDate(2026, 11, 15));
    QCOMPARE(fixture.endEdit()->date(), QDate(2026, 11, 15));
    // The edits carry no time of day.
    QCOMPARE(fixture.startEdit()->dateTime(), at(2026, 11, 15));
    QCOMPARE(fixture.endEdit()->dateTime(), at(2026, 11, 15));
}

void TestHistoryWidget::everyTableListsItsEntriesNewestFirstInSixRedColumns()
{
    HistoryFixture fixture;
    fixture.add("Ticket", "Travel", at(2026, 11, 13), 1234567, "Station");
    fixture.add("Coffee", "Drinks", at(2026, 11, 15), 2.5, "Cafe Blue");
    fixture.add("Bread", "Food", at(2026, 11, 14), 7, "Bakery");
    fixture.build();

    const QStringList coffee = { "1", "Coffee", "Drinks", "2.5", "Sun Nov 15 00:00:00 2026", "Cafe Blue" };
    const QStringList bread = { "2", "Bread", "Food", "7", "Sat Nov 14 00:00:00 2026", "Bakery" };
    const QStringList ticket = { "3", "Ticket", "Travel", "1.23457e+06", "Fri Nov 13 00:00:00 2026", "Station" };

    QTableWidget *all = fixture.table("tableWidgetAllEntries");
    QTableWidget *total = fixture.table("tableWidgetTotalTabEntries");
    QTableWidget *datewise = fixture.table("tableWidgetDattewiseTabEntries");
    QTableWidget *category = fixture.table("tableWidgetCategoryRecentEntries");

    fixture.tabs()->setCurrentIndex(1);
    fixture.startEdit()->setDate(QDate(2026, 11, 13));
    fixture.categoryBox()->setCurrentText("Food");
    QCOMPARE(fixture.categoryBox()->currentText(), QStringLiteral("Food"));

    for (QTableWidget *table : { all, total, datewise }) {
        QCOMPARE(table->columnCount(), 6);
        QCOMPARE(table->rowCount(), 3);
        QCOMPARE(headerTexts(table), entryTableHeaders);
        QCOMPARE(rowTexts(table, 0), coffee);
        QCOMPARE(rowTexts(table, 1), bread);
        QCOMPARE(rowTexts(table, 2), ticket);
        QVERIFY2(allCellsAreRedReadOnlyAndStretched(table), qPrintable(table->objectName()));
    }

    QCOMPARE(category->columnCount(), 6);
    QCOMPARE(category->rowCount(), 1);
    QCOMPARE(headerTexts(category), entryTableHeaders);
    QCOMPARE(rowTexts(category, 0), (QStringList { "1", "Bread", "Food", "7", "Sat Nov 14 00:00:00 2026", "Bakery" }));
    QVERIFY(allCellsAreRedReadOnlyAndStretched(category));
}

void TestHistoryWidget::everyTableDrawsItsCellsTextInRed()
{
    HistoryFixture fixture;
    fixture.add("Coffee", "Drinks", at(2026, 11, 15), 2.5, "Cafe Blue");
    HistoryWidget *page = fixture.build();
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page));

    const QList<QPair<int, const char *>> tables = { { 0, "tableWidgetCategoryRecentEntries" },
                                                     { 1, "tableWidgetDattewiseTabEntries" },
                                                     { 2, "tableWidgetTotalTabEntries" },
                                                     { 3, "tableWidgetAllEntries" } };
    for (const auto &[tab, name] : tables) {
        fixture.tabs()->setCurrentIndex(tab);
        QTableWidget *table = fixture.table(name);
        QTRY_VERIFY(table->isVisible());
        QCOMPARE(table->rowCount(), 1);
        for (int column = 0; column < table->columnCount(); ++column) {
            const TextInk ink = cellInk(table, 0, column);
            QVERIFY2(ink.red > 5 && ink.dark == 0,
                     qPrintable(QStringLiteral("%1, column %2: %3 red and %4 dark pixels")
                                    .arg(QLatin1String(name))
                                    .arg(column)
                                    .arg(ink.red)
                                    .arg(ink.dark)));
        }
    }
}

void TestHistoryWidget::pricesShowWithSixSignificantDigitsAndNoTrailingZeros()
{
    HistoryFixture fixture;
    fixture.add("A", "Food", at(2026, 11, 15), 7);
    fixture.add("B", "Food", at(2026, 11, 14), 0.1);
    fixture.add("C", "Food", at(2026, 11, 13), 12.5);
    fixture.add("D", "Food", at(2026, 11, 12), 1234567);
    fixture.add("E", "Food", at(2026, 11, 11), 103.8488);
    fixture.build();

    QCOMPARE(columnTexts(fixture.table("tableWidgetAllEntries"), 3),
             (QStringList { "7", "0.1", "12.5", "1.23457e+06", "103.849" }));
}

void TestHistoryWidget::entriesAddedAfterThePageWasBuiltAreListedButNotSummed()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 14), 30);
    fixture.add("Taxi", "Travel", at(2026, 11, 15), 70);
    fixture.build();

    fixture.add("Flowers", "Gifts", at(2026, 11, 16), 50);

    fixture.tabs()->setCurrentIndex(3);
    QTableWidget *all = fixture.table("tableWidgetAllEntries");
    QCOMPARE(all->rowCount(), 3);
    QCOMPARE(columnTexts(all, 1), (QStringList { "Flowers", "Taxi", "Bread" }));

    fixture.tabs()->setCurrentIndex(2);
    const QHash<QString, int> slices = fixture.pieIn("scrollAreaTotalPieChartCategories")->entries();
    QCOMPARE(slices.size(), 2);
    QVERIFY(slices.contains("Food - 30 % "));
    QVERIFY(slices.contains("Travel - 70 % "));
    QCOMPARE(fixture.labelText("labelTotalTabGlobalTotal"),
             QStringLiteral("<font color=#ff0202> Global Total: 100 </font>"));
    QCOMPARE(fixture.categoryBox()->findText("Gifts"), -1);
}

void TestHistoryWidget::dateWiseTabIsComputedOnlyWhenTheUserSelectsIt()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 15), 3);
    fixture.build();

    QVERIFY(!fixture.fileExists(dailyGraph));
    QCOMPARE(fixture.table("tableWidgetDattewiseTabEntries")->rowCount(), 0);
    QVERIFY(!qobject_cast<PieWidget *>(fixture.chartIn("scrollAreaDateWisePieChart")));
    QVERIFY(fixture.fileExists(categoryGraph));

    fixture.tabs()->setCurrentIndex(1);

    QVERIFY(fixture.fileExists(dailyGraph));
    QCOMPARE(fixture.table("tableWidgetDattewiseTabEntries")->rowCount(), 1);
    QVERIFY(qobject_cast<ZRLineGraph *>(fixture.chartIn("scrollAreaDateWiseLineChart")));
    QVERIFY(qobject_cast<PieWidget *>(fixture.chartIn("scrollAreaDateWisePieChart")));
}

void TestHistoryWidget::pageOnAnEmptyStoreShowsNoRowsAndReportsNothing()
{
    HistoryFixture fixture;
    MessageBoxAnswerer answerer;
    fixture.build();
    QCoreApplication::processEvents();

    QVERIFY(answerer.seen().isEmpty());
    QCOMPARE(fixture.categoryBox()->count(), 0);
    for (const char *name :
         { "tableWidgetAllEntries", "tableWidgetTotalTabEntries", "tableWidgetCategoryRecentEntries" })
        QCOMPARE(fixture.table(name)->rowCount(), 0);
    QCOMPARE(fixture.labelText("labelTotalTabGlobalTotal"),
             QStringLiteral("<font color=#ff0202> Global Total: 0 </font>"));
    QVERIFY(fixture.pieIn("scrollAreaTotalPieChartCategories")->entries().isEmpty());
}

void TestHistoryWidget::entryTablesKeepSortingOff()
{
    HistoryFixture fixture;
    fixture.add("Taxi", "Travel", at(2026, 11, 15), 70);
    fixture.add("Bread", "Food", at(2026, 11, 14), 30);
    fixture.build();
    for (int tab : { 1, 2, 3, 0 })
        fixture.tabs()->setCurrentIndex(tab);

    // Rows stay in the store's order, newest first: no header click sorts.
    for (const char *name : { "tableWidgetCategoryRecentEntries", "tableWidgetDattewiseTabEntries",
                              "tableWidgetTotalTabEntries", "tableWidgetAllEntries" }) {
        QTableWidget *table = fixture.table(name);
        QVERIFY2(!table->isSortingEnabled(), name);
        QVERIFY2(table->rowCount() > 0, name);
    }
}

void TestHistoryWidget::revisitingTabsWhileNothingWasWrittenReadsNothingAgain()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 14), 30);
    fixture.add("Taxi", "Travel", at(2026, 11, 15), 70);
    fixture.build();
    fixture.startEdit()->setDate(QDate(2026, 11, 14));
    QTableWidget *all = fixture.table("tableWidgetAllEntries");
    QTableWidget *datewise = fixture.table("tableWidgetDattewiseTabEntries");
    QTableWidget *places = fixture.table("tableWidgetPlaces");
    QCOMPARE(datewise->rowCount(), 2);
    // The places tab reads on its first visit.
    fixture.tabs()->setCurrentIndex(4);
    QCOMPARE(places->rowCount(), 1);

    StatementLog log;
    QVERIFY(log.isTracing());
    for (int tab : { 1, 2, 3, 0, 4, 1, 3, 2, 4, 0 })
        fixture.tabs()->setCurrentIndex(tab);
    QCOMPARE(log.count(QStringLiteral("from Entry")), 0);
    // Each tab still shows what it showed.
    QCOMPARE(places->rowCount(), 1);
    QCOMPARE(places->item(0, 1)->text(), QStringLiteral("2"));
    QCOMPARE(columnTexts(all, 1), (QStringList { "Taxi", "Bread" }));
    QCOMPARE(columnTexts(datewise, 1), (QStringList { "Taxi", "Bread" }));
    QCOMPARE(fixture.labelText("labelDatewiseTabTotal"),
             QStringLiteral("<font color=#ff2411> Total Spending in the period= 100 </font>"));

    // Anything written since, here by another program, is read at the next
    // visit of each tab.
    fixture.add("Flowers", "Gifts", at(2026, 11, 14, 12), 50);
    fixture.tabs()->setCurrentIndex(3);
    QVERIFY(log.count(QStringLiteral("from Entry")) > 0);
    QCOMPARE(columnTexts(all, 1), (QStringList { "Taxi", "Flowers", "Bread" }));
    fixture.tabs()->setCurrentIndex(1);
    QCOMPARE(columnTexts(datewise, 1), (QStringList { "Taxi", "Flowers", "Bread" }));
    QCOMPARE(fixture.labelText("labelDatewiseTabTotal"),
             QStringLiteral("<font color=#ff2411> Total Spending in the period= 150 </font>"));
    fixture.tabs()->setCurrentIndex(4);
    QCOMPARE(places->item(0, 1)->text(), QStringLiteral("3"));

    // A control changed is a new computation too.
    log.clear();
    fixture.periodBox()->setCurrentIndex(1);
    QVERIFY(log.count(QStringLiteral("from Entry")) > 0);
    QVERIFY(fixture.fileExists(weeklyGraph));
}

void TestHistoryWidget::aGraphFileRemovedSinceIsWrittenAgainAtTheNextVisit()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 15), 30);
    fixture.build();
    fixture.tabs()->setCurrentIndex(1);
    QVERIFY(fixture.fileExists(categoryGraph));
    QVERIFY(fixture.fileExists(dailyGraph));

    QVERIFY(QFile::remove(fixture.home.filePath(QLatin1String(categoryGraph))));
    QVERIFY(QFile::remove(fixture.home.filePath(QLatin1String(dailyGraph))));
    fixture.tabs()->setCurrentIndex(0);
    QVERIFY(fixture.fileExists(categoryGraph));
    QCOMPARE(savedGraphMismatch(fixture, categoryGraph, { { textDate(QDate(2026, 11, 15)), "30" } }), QString());
    fixture.tabs()->setCurrentIndex(1);
    QVERIFY(fixture.fileExists(dailyGraph));
    QCOMPARE(savedGraphMismatch(fixture, dailyGraph, { { textDate(QDate(2026, 11, 15)), "30" } }), QString());
}

void TestHistoryWidget::totalTableListsTheFirstTenDaysFromTheOldestEntry_data()
{
    QTest::addColumn<int>("spanDays");
    QTest::addColumn<QStringList>("listed");

    QTest::newRow("exactly ten days") << 10 << QStringList { "Newest", "Middle", "Oldest" };
    QTest::newRow("eleven days") << 11 << QStringList { "Middle", "Oldest" };
}

void TestHistoryWidget::totalTableListsTheFirstTenDaysFromTheOldestEntry()
{
    QFETCH(int, spanDays);
    QFETCH(QStringList, listed);

    HistoryFixture fixture;
    const QDateTime oldest = at(2026, 11, 1, 9, 30);
    fixture.add("Oldest", "Food", oldest, 1);
    fixture.add("Middle", "Food", oldest.addDays(5), 2);
    fixture.add("Newest", "Food", oldest.addDays(spanDays), 3);
    fixture.build();

    QCOMPARE(columnTexts(fixture.table("tableWidgetTotalTabEntries"), 1), listed);
    QCOMPARE(fixture.table("tableWidgetAllEntries")->rowCount(), 3);
}

void TestHistoryWidget::categoriesOfThirtyAndSeventyMakeSlicesOfThirtyAndSeventyPerCent()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 14), 12.5);
    fixture.add("Taxi", "Travel", at(2026, 11, 15), 70);
    fixture.add("Cheese", "Food", at(2026, 11, 13), 17.5);
    fixture.build();

    const QHash<QString, int> slices = fixture.pieIn("scrollAreaTotalPieChartCategories")->entries();
    QCOMPARE(slices.size(), 2);
    QCOMPARE(slices.value("Food - 30 % ", -1), 30);
    QCOMPARE(slices.value("Travel - 70 % ", -1), 70);
    QCOMPARE(fixture.labelText("labelTotalTabGlobalTotal"),
             QStringLiteral("<font color=#ff0202> Global Total: 100 </font>"));
}

void TestHistoryWidget::sliceValuesAreTruncatedWhileSharesUseTheFullTotal()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2026, 11, 14), 3);
    fixture.add("Taxi", "Travel", at(2026, 11, 15), 2.5);
    fixture.add("Bus", "Travel", at(2026, 11, 12), 1.5);
    fixture.add("Pen", "Office", at(2026, 11, 10), 12.75);
    fixture.build();

    const QHash<QString, int> slices = fixture.pieIn("scrollAreaTotalPieChartCategories")->entries();
    QCOMPARE(slices.size(), 3);
    // 3 of 19.75 and 4 of 19.75, in single precision.
    const float global = 19.75f;
    const auto share = [global](float total) {
        const float ratio = total / global;
        return QString::number(double(ratio * 100.0f), 'g', 6);
    };
    QCOMPARE(share(3.0f), QStringLiteral("15.1899"));
    QCOMPARE(slices.value("Food - " + share(3.0f) + " % ", -1), 3);
    QCOMPARE(slices.value("Travel - " + share(4.0f) + " % ", -1), 4);
    QCOMPARE(slices.value("Office - " + share(12.75f) + " % ", -1), 12);
    QCOMPARE(fixture.labelText("labelTotalTabGlobalTotal"),
             QStringLiteral("<font color=#ff0202> Global Total: 19.75 </font>"));
}

void TestHistoryWidget::startEqualsEndGivesOneBucketInEveryPeriod()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2025, 3, 5), 4);
    fixture.add("Taxi", "Travel", at(2025, 3, 5), 6);
    fixture.add("Old", "Food", at(2025, 3, 1), 100);
    fixture.build();
    QCOMPARE(fixture.startEdit()->date(), QDate(2025, 3, 5));

    fixture.tabs()->setCurrentIndex(1);
    QCOMPARE(savedGraphMismatch(fixture, dailyGraph, { { textDate(QDate(2025, 3, 5)), "10" } }), QString());
    fixture.periodBox()->setCurrentIndex(1);
    QCOMPARE(savedGraphMismatch(fixture, weeklyGraph, { { "Week 1", "10" } }), QString());
    fixture.periodBox()->setCurrentIndex(2);
    QCOMPARE(savedGraphMismatch(fixture, monthlyGraph, { { "March", "10" } }), QString());
    QCOMPARE(fixture.table("tableWidgetDattewiseTabEntries")->rowCount(), 2);
}

void TestHistoryWidget::dailyGraphKeepsADayWithoutEntriesAsZero()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2025, 3, 1), 4.5);
    fixture.add("Taxi", "Travel", at(2025, 3, 3), 9);
    fixture.build();

    fixture.tabs()->setCurrentIndex(1);
    fixture.startEdit()->setDate(QDate(2025, 3, 1));

    QCOMPARE(savedGraphMismatch(fixture, dailyGraph,
                                { { textDate(QDate(2025, 3, 1)), "4.5" },
                                  { textDate(QDate(2025, 3, 2)), "0" },
                                  { textDate(QDate(2025, 3, 3)), "9" } }),
             QString());
    // A graph without the empty middle day would look otherwise.
    QVERIFY(!savedGraphMismatch(fixture, dailyGraph,
                                { { textDate(QDate(2025, 3, 1)), "4.5" }, { textDate(QDate(2025, 3, 3)), "9" } })
                 .isEmpty());
}

void TestHistoryWidget::weeklyGraphFromAWednesdayOverFifteenDaysHasThreeWeeks()
{
    HistoryFixture fixture;
    // 5 March 2025 is a Wednesday; weeks run Wednesday to Tuesday.
    fixture.add("A", "Food", at(2025, 3, 5), 1);
    fixture.add("B", "Food", at(2025, 3, 11), 2);
    fixture.add("C", "Food", at(2025, 3, 12), 5);
    fixture.add("D", "Food", at(2025, 3, 19), 4);
    fixture.build();

    fixture.tabs()->setCurrentIndex(1);
    fixture.startEdit()->setDate(QDate(2025, 3, 5));
    fixture.periodBox()->setCurrentText("Weekly");

    QCOMPARE(savedGraphMismatch(fixture, weeklyGraph, { { "Week 1", "3" }, { "Week 2", "5" }, { "Week 3", "4" } }),
             QString());
}

void TestHistoryWidget::monthlyGraphFromThirtyJanuaryToSecondMarchHasThreeMonths()
{
    HistoryFixture fixture;
    fixture.add("A", "Food", at(2025, 1, 30), 1);
    fixture.add("B", "Food", at(2025, 1, 31), 2);
    fixture.add("C", "Food", at(2025, 2, 15), 10);
    fixture.add("D", "Travel", at(2025, 3, 2), 4);
    fixture.build();

    fixture.tabs()->setCurrentIndex(1);
    fixture.startEdit()->setDate(QDate(2025, 1, 30));
    fixture.periodBox()->setCurrentText("Monthly");

    QCOMPARE(savedGraphMismatch(fixture, monthlyGraph, { { "January", "3" }, { "February", "10" }, { "March", "4" } }),
             QString());
    QCOMPARE(fixture.labelText("labelDatewiseTabTotal"),
             QStringLiteral("<font color=#ff2411> Total Spending in the period= 17 </font>"));
}

void TestHistoryWidget::dateEditsCarryMidnightSoLaterEntriesOfTheEndDayAreOutside()
{
    HistoryFixture fixture;
    fixture.add("Midnight", "Food", at(2025, 3, 5), 1);
    fixture.add("Morning", "Food", at(2025, 3, 5, 9, 0), 2);
    fixture.add("Before", "Food", at(2025, 3, 4, 18, 0), 4);
    fixture.build();

    fixture.tabs()->setCurrentIndex(1);
    QCOMPARE(columnTexts(fixture.table("tableWidgetDattewiseTabEntries"), 1), QStringList { "Midnight" });

    fixture.startEdit()->setDate(QDate(2025, 3, 4));
    QCOMPARE(columnTexts(fixture.table("tableWidgetDattewiseTabEntries"), 1), (QStringList { "Midnight", "Before" }));
    QCOMPARE(fixture.labelText("labelDatewiseTabTotal"),
             QStringLiteral("<font color=#ff2411> Total Spending in the period= 5 </font>"));
}

void TestHistoryWidget::twoEntriesOfOneCategoryOnDifferentDaysMakeOnePieSlice()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2025, 3, 3), 2.5);
    fixture.add("Taxi", "Travel", at(2025, 3, 4), 9.9);
    fixture.add("Cheese", "Food", at(2025, 3, 5), 4);
    fixture.build();

    fixture.tabs()->setCurrentIndex(1);
    fixture.startEdit()->setDate(QDate(2025, 3, 3));

    const QHash<QString, int> slices = fixture.pieIn("scrollAreaDateWisePieChart")->entries();
    QCOMPARE(slices.size(), 2);
    QCOMPARE(slices.value("Food", -1), 6);
    QCOMPARE(slices.value("Travel", -1), 9);
}

void TestHistoryWidget::periodTotalLabelShowsTheSumOfTheRange()
{
    HistoryFixture fixture;
    fixture.add("Outside", "Food", at(2025, 2, 27), 1000);
    fixture.add("Bread", "Food", at(2025, 3, 1), 0.1);
    fixture.add("Taxi", "Travel", at(2025, 3, 2), 12.5);
    fixture.add("Ring", "Gifts", at(2025, 3, 3), 1234567);
    fixture.build();

    fixture.tabs()->setCurrentIndex(1);
    fixture.startEdit()->setDate(QDate(2025, 3, 1));

    float sum = 0;
    sum += 1234567.0f;
    sum += 12.5f;
    sum += 0.1f;
    QCOMPARE(fixture.labelText("labelDatewiseTabTotal"),
             QStringLiteral("<font color=#ff2411> Total Spending in the period= %1 </font>")
                 .arg(QString::number(double(sum), 'g', 6)));
    QVERIFY(fixture.labelText("labelDatewiseTabTotal").contains("= 1.23458e+06 "));
}

void TestHistoryWidget::eachPeriodWritesItsGraphAtTheSizeOfTheGraphArea()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2025, 3, 1), 3);
    fixture.add("Taxi", "Travel", at(2025, 4, 20), 7);
    fixture.build();

    fixture.tabs()->setCurrentIndex(1);
    fixture.startEdit()->setDate(QDate(2025, 3, 1));
    fixture.periodBox()->setCurrentIndex(1);
    fixture.periodBox()->setCurrentIndex(2);

    const QSize area = fixture.child<QScrollArea>("scrollAreaDateWiseLineChart")->size();
    QCOMPARE(area, QSize(401, 281));
    for (const char *name : { dailyGraph, weeklyGraph, monthlyGraph }) {
        QVERIFY2(fixture.fileExists(name), name);
        QCOMPARE(fixture.savedImage(name).size(), area);
    }
    QCOMPARE(fixture.savedImage(categoryGraph).size(),
             fixture.child<QScrollArea>("scrollAreaCategoryLineChart")->size());
}

void TestHistoryWidget::rangeWithoutEntriesIsReportedAndTheTabKeepsItsContents()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2025, 3, 1), 3);
    fixture.add("Taxi", "Travel", at(2025, 3, 5), 7);
    fixture.build();

    fixture.tabs()->setCurrentIndex(1);
    fixture.startEdit()->setDate(QDate(2025, 3, 2));
    const QString label = fixture.labelText("labelDatewiseTabTotal");
    QWidget *graph = fixture.chartIn("scrollAreaDateWiseLineChart");
    QWidget *pie = fixture.chartIn("scrollAreaDateWisePieChart");
    QCOMPARE(columnTexts(fixture.table("tableWidgetDattewiseTabEntries"), 1), QStringList { "Taxi" });

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    fixture.endEdit()->setDate(QDate(2025, 3, 4));

    QCOMPARE(answerer.texts(), QStringList { "No Entries between the given dates" });
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    const SeenMessageBox &box = answerer.seen().constFirst();
    VERIFY_BOX_SHAPE(box, BoxKind::Information);

    QCOMPARE(fixture.labelText("labelDatewiseTabTotal"), label);
    QCOMPARE(fixture.chartIn("scrollAreaDateWiseLineChart"), graph);
    QCOMPARE(fixture.chartIn("scrollAreaDateWisePieChart"), pie);
    QCOMPARE(columnTexts(fixture.table("tableWidgetDattewiseTabEntries"), 1), QStringList { "Taxi" });
}

void TestHistoryWidget::startAfterEndIsReportedByThePeriodBoxWhichResetsTheEndDate()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2025, 3, 1), 3);
    fixture.add("Taxi", "Travel", at(2025, 3, 3), 7);
    fixture.build();
    fixture.tabs()->setCurrentIndex(1);

    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Ok, QMessageBox::Ok });

    // A date edit does not compare the dates: the reversed range simply
    // holds no entries.
    fixture.endEdit()->setDate(QDate(2025, 3, 1));
    QCOMPARE(answerer.texts(), QStringList { "No Entries between the given dates" });
    QCOMPARE(fixture.endEdit()->date(), QDate(2025, 3, 1));

    fixture.periodBox()->setCurrentText("Weekly");

    QCOMPARE(answerer.texts(),
             (QStringList { "No Entries between the given dates", "Start date cannot be after end date" }));
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    const SeenMessageBox &box = answerer.seen().constLast();
    VERIFY_BOX_SHAPE(box, BoxKind::Information);

    QCOMPARE(fixture.endEdit()->dateTime(), fixture.startEdit()->dateTime());
    QCOMPARE(fixture.endEdit()->date(), QDate(2025, 3, 3));
    QCOMPARE(savedGraphMismatch(fixture, weeklyGraph, { { "Week 1", "7" } }), QString());
}

void TestHistoryWidget::categoryUsedAtThreeDateTimesOverFiveDaysShowsItsSixFigures()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2025, 3, 1, 10), 5);
    fixture.add("Cheese", "Food", at(2025, 3, 3, 10), 10);
    fixture.add("Taxi", "Travel", at(2025, 3, 4, 10), 90);
    fixture.add("Fish", "Food", at(2025, 3, 6, 10), 15);
    fixture.build();

    fixture.categoryBox()->setCurrentText("Food");
    QCOMPARE(fixture.categoryBox()->currentText(), QStringLiteral("Food"));

    QCOMPARE(fixture.labelText("labelCategoryTabCategoryTotal"), categoryLabel("Category Total: 30"));
    QCOMPARE(fixture.labelText("labelCategoryTabDaysUse"), categoryLabel("Days in use: 3"));
    QCOMPARE(fixture.labelText("labelCategoryTabCalanderDaysUse"), categoryLabel("Calander days in use: 5"));
    QCOMPARE(fixture.labelText("labelCategoryTabAvgDaysUse"), categoryLabel("Daily Average: 10"));
    QCOMPARE(fixture.labelText("labelCategoryTabAvgCalanderDaysUse"), categoryLabel("Daily Calander Average: 6"));
    QCOMPARE(fixture.labelText("labelCategoryTabCategoryPercent"), categoryLabel("% Contribution in Total: 25"));
    QCOMPARE(columnTexts(fixture.table("tableWidgetCategoryRecentEntries"), 1),
             (QStringList { "Fish", "Cheese", "Bread" }));
}

void TestHistoryWidget::categoryOfTwentyFiveOutOfTwoHundredContributesTwelveAndAHalfPerCent()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2025, 3, 1, 10), 25);
    fixture.add("Taxi", "Travel", at(2025, 3, 4, 10), 175);
    fixture.build();

    fixture.categoryBox()->setCurrentText("Food");
    QCOMPARE(fixture.labelText("labelCategoryTabCategoryPercent"), categoryLabel("% Contribution in Total: 12.5"));
    // Used at one date-time: no calendar span, an infinite calendar average.
    QCOMPARE(fixture.labelText("labelCategoryTabCalanderDaysUse"), categoryLabel("Calander days in use: 0"));
    QCOMPARE(fixture.labelText("labelCategoryTabAvgCalanderDaysUse"), categoryLabel("Daily Calander Average: inf"));
}

void TestHistoryWidget::categoryListsItsEntriesFromTheTenthNewestDateTime_data()
{
    QTest::addColumn<int>("dateTimes");
    QTest::addColumn<int>("rows");

    QTest::newRow("ten date-times: all") << 10 << 10;
    QTest::newRow("eleven date-times: the ten newest") << 11 << 10;
}

void TestHistoryWidget::categoryListsItsEntriesFromTheTenthNewestDateTime()
{
    QFETCH(int, dateTimes);
    QFETCH(int, rows);

    HistoryFixture fixture;
    for (int i = 0; i < dateTimes; ++i)
        fixture.add(QStringLiteral("Item %1").arg(i + 1), "Food", at(2025, 3, 1, 8).addDays(i), 1);
    fixture.build();

    QTableWidget *table = fixture.table("tableWidgetCategoryRecentEntries");
    QCOMPARE(table->rowCount(), rows);
    const QStringList items = columnTexts(table, 1);
    QCOMPARE(items.first(), QStringLiteral("Item %1").arg(dateTimes));
    QCOMPARE(items.last(), QStringLiteral("Item %1").arg(dateTimes - 9));
    QCOMPARE(items.contains("Item 1"), dateTimes <= 10);
    QCOMPARE(fixture.labelText("labelCategoryTabDaysUse"),
             categoryLabel(QStringLiteral("Days in use: %1").arg(dateTimes)));
}

void TestHistoryWidget::twoEntriesOfTheCategoryOnOneDayMakeOneGraphPoint()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2025, 3, 4, 9), 4);
    fixture.add("Cheese", "Food", at(2025, 3, 5, 9), 2);
    fixture.add("Fish", "Food", at(2025, 3, 5, 18), 3);
    fixture.build();

    QCOMPARE(savedGraphMismatch(fixture, categoryGraph,
                                { { textDate(QDate(2025, 3, 5)), "5" }, { textDate(QDate(2025, 3, 4)), "4" } }),
             QString());
    QVERIFY(qobject_cast<ZRLineGraph *>(fixture.chartIn("scrollAreaCategoryLineChart")));
    QCOMPARE(fixture.labelText("labelCategoryTabDaysUse"), categoryLabel("Days in use: 3"));
}

void TestHistoryWidget::choosingAnotherCategoryRecomputesTheTab()
{
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2025, 3, 1, 10), 5);
    fixture.add("Taxi", "Travel", at(2025, 3, 4, 10), 95);
    fixture.build();

    QComboBox *box = fixture.categoryBox();
    QCOMPARE(box->count(), 2);
    QVERIFY(box->findText("Food") >= 0);
    QVERIFY(box->findText("Travel") >= 0);

    box->setCurrentText("Food");
    QCOMPARE(fixture.labelText("labelCategoryTabCategoryTotal"), categoryLabel("Category Total: 5"));
    QCOMPARE(columnTexts(fixture.table("tableWidgetCategoryRecentEntries"), 1), QStringList { "Bread" });
    box->setCurrentText("Travel");
    QCOMPARE(fixture.labelText("labelCategoryTabCategoryTotal"), categoryLabel("Category Total: 95"));
    QCOMPARE(fixture.labelText("labelCategoryTabCategoryPercent"), categoryLabel("% Contribution in Total: 95"));
    QCOMPARE(columnTexts(fixture.table("tableWidgetCategoryRecentEntries"), 1), QStringList { "Taxi" });
}

void TestHistoryWidget::historyOpensThePageOnceAnEntryExists()
{
    MainWindowFixture f;
    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    f.click("pushButtonHistory");
    QCOMPARE(answerer.texts(), QStringList { "No Entries added. Kindly add entry first" });
    VERIFY_BOX_SHAPE(answerer.seen().constFirst(), BoxKind::Information);
    QVERIFY(!qobject_cast<HistoryWidget *>(f.page()));

    f.addEntry("Coffee", "Drinks", at(2026, 11, 15, 8, 30), 2.5);
    f.click("pushButtonHistory");

    QPointer<HistoryWidget> first = qobject_cast<HistoryWidget *>(f.page());
    QVERIFY(first);
    QCOMPARE(first->parentWidget(), f.host()->viewport());
    QCOMPARE(f.stack()->currentIndex(), 2);
    QVERIFY(!f.host()->widgetResizable());
    QCOMPARE(first->size(), QSize(888, 761));
    QCOMPARE(answerer.seen().size(), 1);

    // Every press builds a fresh page and drops the one before.
    f.click("pushButtonHistory");
    QVERIFY(!first);
    QVERIFY(qobject_cast<HistoryWidget *>(f.page()));
}

void TestHistoryWidget::tappingRowZeroOfEntriesShowsTheNewestEntryAndTappingAgainReplacesIt()
{
    MainWindowFixture f;
    f.addEntry("Bread", "Food", at(2026, 11, 14, 9), 3);
    f.addEntry("Coffee", "Drinks", at(2026, 11, 15, 8, 30), 2.5);
    f.addEntry("Ticket", "Travel", at(2026, 11, 13, 18), 40);
    QVERIFY(f.show());
    f.click("pushButtonHistory");
    auto *page = qobject_cast<HistoryWidget *>(f.page());
    QVERIFY(page);
    child<QTabWidget>(*page, "tabWidgetHistoryContainer")->setCurrentIndex(3);
    auto *table = child<QTableWidget>(*page, "tableWidgetAllEntries");
    auto *detailsArea = child<QScrollArea>(*page, "scrollAreaAllEntriesEntryDetails");
    QTRY_VERIFY(table->isVisible());

    const auto shownItem = [detailsArea]() -> QString {
        auto *details = qobject_cast<EntryDetailsWidget *>(detailsArea->widget());
        if (!details)
            return {};
        auto *fields = details->findChild<QTableWidget *>("tableWidget");
        auto *value = fields ? qobject_cast<QLabel *>(fields->cellWidget(0, 1)) : nullptr;
        return value ? value->text() : QString();
    };

    clickCell(table, 0, 2);
    QPointer<QWidget> firstDetails = detailsArea->widget();
    QVERIFY(qobject_cast<EntryDetailsWidget *>(firstDetails));
    QVERIFY2(shownItem().contains(" Coffee "), qPrintable(shownItem()));

    clickCell(table, 1, 4);
    QVERIFY(!firstDetails);
    QVERIFY2(shownItem().contains(" Bread "), qPrintable(shownItem()));
}

void TestHistoryWidget::textsTypedOnTheNewEntryPageShowLiterallyInEveryTableAndTheDetails_data()
{
    QTest::addColumn<QString>("text");
    for (const auto &hostile : hostileTexts())
        QTest::newRow(qPrintable(hostile.first)) << hostile.second;
}

void TestHistoryWidget::textsTypedOnTheNewEntryPageShowLiterallyInEveryTableAndTheDetails()
{
    QFETCH(QString, text);
    MainWindowFixture f;
    f.setUpFile();
    {
        // The same text as a category, so that the page offers it.
        DatabaseManager setUp(nullptr);
        QVERIFY(setUp.AddCategory(text));
    }
    QVERIFY(f.show());

    // Item, category and place typed on the new-entry page and saved.
    f.click("pushButtonNewEntry");
    auto *newEntry = qobject_cast<AddEntryWidget *>(f.page());
    QVERIFY(newEntry);
    child<QLineEdit>(*newEntry, "lineEditItemName")->setText(text);
    QTest::keyClicks(child<QLineEdit>(*newEntry, "lineEditAmount"), QStringLiteral("4.20"));
    child<QLineEdit>(*newEntry, "lineEditLocation")->setText(text);
    auto *categories = child<QComboBox>(*newEntry, "comboBoxCategory");
    categories->setCurrentIndex(categories->findText(text));
    QCOMPARE(categories->currentText(), text);
    MessageBoxAnswerer answerer;
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    child<QPushButton>(*newEntry, "pushButtonAdd")->click();
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(answerer.seen().size(), 2);
    QVERIFY(answerer.seen().at(0).text.startsWith(QStringLiteral("Details Entered - Item Name: ") + text +
                                                  QStringLiteral("  Price: 4.20 Category: ") + text +
                                                  QStringLiteral("  Date: ")));
    QCOMPARE(answerer.seen().at(1).text, QStringLiteral("Entry added to the database successfully"));

    // Back from the store unchanged.
    {
        DatabaseManager store(nullptr);
        const auto entries = owned(store.GetAllEntries());
        QCOMPARE(entries.size(), 1);
        QCOMPARE(entries[0]->ItemName, text);
        QCOMPARE(entries[0]->CategoryName, text);
        QCOMPARE(entries[0]->LocationText, text);
        QCOMPARE(entries[0]->Price, 4.2f);
    }

    // Shown as typed in every entry table of the history page.
    f.click("pushButtonHistory");
    auto *history = qobject_cast<HistoryWidget *>(f.page());
    QVERIFY(history);
    auto *tabs = child<QTabWidget>(*history, "tabWidgetHistoryContainer");
    for (int tab = 0; tab < tabs->count(); ++tab)
        tabs->setCurrentIndex(tab);
    int tablesShowingIt = 0;
    for (const QTableWidget *table : history->findChildren<QTableWidget *>()) {
        if (table->rowCount() == 0)
            continue;
        // The places table has the place first.
        if (table->objectName() == QLatin1String("tableWidgetPlaces")) {
            QCOMPARE(table->item(0, 0)->text(), text);
            continue;
        }
        ++tablesShowingIt;
        QCOMPARE(table->item(0, 1)->text(), text);
        QCOMPARE(table->item(0, 2)->text(), text);
        QCOMPARE(table->item(0, 5)->text(), text);
    }
    QCOMPARE(tablesShowingIt, 4);

    // And in the entry's details.
    tabs->setCurrentIndex(3);
    auto *table = child<QTableWidget>(*history, "tableWidgetAllEntries");
    QTRY_VERIFY(table->isVisible());
    clickCell(table, 0, 0);
    auto *details =
        qobject_cast<EntryDetailsWidget *>(child<QScrollArea>(*history, "scrollAreaAllEntriesEntryDetails")->widget());
    QVERIFY(details);
    auto *fields = child<QTableWidget>(*details, "tableWidget");
    for (int row : { 0, 1, 5 }) {
        const auto *label = qobject_cast<const QLabel *>(fields->cellWidget(row, 1));
        QVERIFY(label);
        // Rich text drops the blank that opens the cell; the text itself stays.
        QCOMPARE(plainText(label), text + QLatin1Char(' '));
    }

    // Every table of the file still stands.
    RawDatabase raw(f.home.databasePath());
    QStringList tables;
    for (const QVariantList &row :
         raw.rows(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name")))
        tables.append(row.at(0).toString());
    QStringList expected = { "Category", "Entry", "HistoricLocation", "ItemSubstitutes", "Items", "Mode",
                             "sqlite_sequence" };
    expected += migrationObjectNames(QStringLiteral("table"));
    expected.sort();
    QCOMPARE(tables, expected);
}

void TestHistoryWidget::tappingARowOfTheCategoryTableChangesNothing()
{
    MainWindowFixture f;
    f.addEntry("Bread", "Food", at(2026, 11, 14, 9), 3);
    f.addEntry("Cheese", "Food", at(2026, 11, 15, 9), 4);
    QVERIFY(f.show());
    f.click("pushButtonHistory");
    auto *page = qobject_cast<HistoryWidget *>(f.page());
    QVERIFY(page);
    auto *table = child<QTableWidget>(*page, "tableWidgetCategoryRecentEntries");
    QTRY_VERIFY(table->isVisible());
    QCOMPARE(table->rowCount(), 2);

    QSignalSpy clicked(table, &QTableWidget::cellClicked);
    QWidget *graph = child<QScrollArea>(*page, "scrollAreaCategoryLineChart")->widget();
    QWidget *details = child<QScrollArea>(*page, "scrollAreaAllEntriesEntryDetails")->widget();
    const QString total = child<QLabel>(*page, "labelCategoryTabCategoryTotal")->text();
    const QStringList firstRow = rowTexts(table, 0);

    clickCell(table, 1, 1);

    QCOMPARE(clicked.count(), 1);
    QCOMPARE(child<QTabWidget>(*page, "tabWidgetHistoryContainer")->currentIndex(), 0);
    QCOMPARE(child<QScrollArea>(*page, "scrollAreaCategoryLineChart")->widget(), graph);
    QCOMPARE(child<QScrollArea>(*page, "scrollAreaAllEntriesEntryDetails")->widget(), details);
    QCOMPARE(details->objectName(), QStringLiteral("scrollAreaWidgetContents_6"));
    QCOMPARE(child<QLabel>(*page, "labelCategoryTabCategoryTotal")->text(), total);
    QCOMPARE(rowTexts(table, 0), firstRow);
    QVERIFY(!page->findChild<EntryDetailsWidget *>());
}

void TestHistoryWidget::aCutOffCellOfEveryEntryTableTellsItsWholeText_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QByteArray>("table");
    QTest::newRow("category wise") << 0 << QByteArray("tableWidgetCategoryRecentEntries");
    QTest::newRow("date wise") << 1 << QByteArray("tableWidgetDattewiseTabEntries");
    QTest::newRow("total") << 2 << QByteArray("tableWidgetTotalTabEntries");
    QTest::newRow("entries") << 3 << QByteArray("tableWidgetAllEntries");
}

void TestHistoryWidget::aCutOffCellOfEveryEntryTableTellsItsWholeText()
{
    QFETCH(int, tab);
    QFETCH(QByteArray, table);

    HistoryFixture f;
    const QDateTime when = at(2026, 11, 15);
    f.add(QStringLiteral("Electricity bill"), QStringLiteral("Entertainment - Dining"), when, 84.5,
          QStringLiteral("Online banking"));
    HistoryWidget *page = f.build();
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page));
    f.tabs()->setCurrentIndex(tab);
    QTableWidget *entries = f.table(table.constData());
    QTRY_VERIFY(entries->isVisible());
    QCOMPARE(entries->rowCount(), 1);

    // Six stretched columns share the table's width: the date, the
    // category, the item and the place do not fit theirs.
    const QString date = when.toString(Qt::TextDate);
    QCOMPARE(entries->item(0, 4)->text(), date);
    QVERIFY(entries->fontMetrics().horizontalAdvance(date) > entries->columnWidth(4));
    QVERIFY(entries->fontMetrics().horizontalAdvance(QStringLiteral("Entertainment - Dining")) >
            entries->columnWidth(2));
    QCOMPARE(toolTipOfCell(entries, 0, 4), date);
    QCOMPARE(toolTipOfCell(entries, 0, 1), QStringLiteral("Electricity bill"));
    QCOMPARE(toolTipOfCell(entries, 0, 2), QStringLiteral("Entertainment - Dining"));
    QCOMPARE(toolTipOfCell(entries, 0, 5), QStringLiteral("Online banking"));
}

void TestHistoryWidget::aCellThatFitsHasNoToolTip()
{
    HistoryFixture f;
    f.add(QStringLiteral("Tea"), QStringLiteral("Food"), at(2026, 11, 15), 2);
    HistoryWidget *page = f.build();
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page));
    QTableWidget *entries = f.table("tableWidgetCategoryRecentEntries");

    // "1", "Tea", "Food" and "2" fit their columns with room to spare.
    for (const int column : { 0, 1, 2, 3 }) {
        QVERIFY(entries->fontMetrics().horizontalAdvance(entries->item(0, column)->text()) <
                entries->columnWidth(column) / 2);
        QCOMPARE(toolTipOfCell(entries, 0, column), QString());
    }
    // The date beside them does not.
    QCOMPARE(toolTipOfCell(entries, 0, 4), at(2026, 11, 15).toString(Qt::TextDate));
}

void TestHistoryWidget::aCutOffTextThatLooksLikeMarkupIsToldAsTyped()
{
    HistoryFixture f;
    const QString item = QStringLiteral("<b>Fish & chips</b> for two");
    f.add(item, QStringLiteral("Food"), at(2026, 11, 15), 12);
    HistoryWidget *page = f.build();
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page));
    QTableWidget *entries = f.table("tableWidgetCategoryRecentEntries");

    const QString tip = toolTipOfCell(entries, 0, 1);
    QVERIFY(!tip.isEmpty());
    QTextDocument shown;
    shown.setHtml(tip);
    QCOMPARE(shown.toPlainText(), item);
}

// ------------------------------------------------------------ the places tab

void TestHistoryWidget::placesTabIsFilledOnItsFirstVisitAndAgainAfterAWrite()
{
    HistoryFixture f;
    QVERIFY(addThreePlaces(f.store));
    StatementLog log;
    QVERIFY(log.isTracing());
    HistoryWidget *page = f.build();
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page));
    QTableWidget *places = f.table("tableWidgetPlaces");
    auto *map = f.child<QWebEngineView>("webViewPlaces");

    // Building the page asked nothing of the places and loaded no map.
    QCOMPARE(log.count(placesGrouped), 0);
    QCOMPARE(log.count(rememberedPlacesGrouped), 0);
    QCOMPARE(places->rowCount(), 0);
    QCOMPARE(places->columnCount(), 0);
    QVERIFY(map->url().isEmpty());
    QCOMPARE(markersOnMap(map), -1);

    f.tabs()->setCurrentIndex(4);
    QCOMPARE(log.count(placesGrouped), 1);
    QCOMPARE(log.count(rememberedPlacesGrouped), 1);
    QCOMPARE(places->rowCount(), 3);
    QTRY_COMPARE_WITH_TIMEOUT(markersOnMap(map), 2, webTimeoutMs);

    // Entries added since are there at the next visit, in the table and on
    // the map.
    f.tabs()->setCurrentIndex(3);
    QVERIFY(addThroughStore(f.store, "Ferry", at(2026, 12, 1), 5.0f, "Harbour", true, 103.85f, 1.26f));
    QCOMPARE(log.count(placesGrouped), 1);
    f.tabs()->setCurrentIndex(4);
    QCOMPARE(log.count(placesGrouped), 2);
    QCOMPARE(log.count(rememberedPlacesGrouped), 2);
    QCOMPARE(places->rowCount(), 4);
    QVERIFY(columnTexts(places, 0).contains("Harbour"));
    QTRY_COMPARE_WITH_TIMEOUT(markersOnMap(map), 3, webTimeoutMs);
    QVERIFY(!markerNamed(mapMarkers(map), "Harbour").isEmpty());
}

void TestHistoryWidget::placesTableListsEveryPlaceTextWithItsFiguresLargestTotalFirst()
{
    HistoryFixture f;
    QVERIFY(addThreePlaces(f.store));
    f.build();
    f.tabs()->setCurrentIndex(4);
    QTableWidget *places = f.table("tableWidgetPlaces");

    QCOMPARE(places->columnCount(), 5);
    QCOMPARE(headerTexts(places), placesTableHeaders);
    QCOMPARE(places->rowCount(), 3);
    // Orchard Road 40 + 2.5; the markup place 30; Koregaon Park 12.5 + 7.5.
    QCOMPARE(rowTexts(places, 0), (QStringList { "Orchard Road", "2", "42.5", "21.25", "Mon Mar 2 00:00:00 2026" }));
    QCOMPARE(rowTexts(places, 1), (QStringList { markupPlace, "1", "30", "30", "Mon Jun 1 20:00:00 2026" }));
    QCOMPARE(rowTexts(places, 2), (QStringList { "Koregaon Park", "2", "20", "10", "Sun Nov 15 13:00:00 2026" }));
    // The date in the form of the entry tables' dates.
    QCOMPARE(places->item(2, 4)->text(), at(2026, 11, 15, 13, 0).toString(Qt::TextDate));
    // The look of the other tables.
    QCOMPARE(places->styleSheet(), f.table("tableWidgetDattewiseTabEntries")->styleSheet());
    QCOMPARE(places->horizontalHeader()->sortIndicatorSection(), 2);
    QCOMPARE(places->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
    QVERIFY(places->isSortingEnabled());
    for (int row = 0; row < places->rowCount(); ++row) {
        for (int column = 0; column < places->columnCount(); ++column) {
            const QTableWidgetItem *item = places->item(row, column);
            QCOMPARE(item->foreground().color(), QColor(0xff, 0, 0));
            QVERIFY(!(item->flags() & Qt::ItemIsEditable));
        }
    }
}

void TestHistoryWidget::placesTableSortsEachColumnByItsValues()
{
    HistoryFixture f;
    // Ten entries at the bakery, two at the zoo, one at the airport: as text
    // "10" would sort between "1" and "2".
    for (int i = 0; i < 10; ++i)
        f.add("Roll", "Food", at(2026, 1, 1 + i), 0.5, "Bakery");
    f.add("Ticket", "Entertainment - Other", at(2026, 5, 3), 9, "Zoo");
    f.add("Ice cream", "Food", at(2026, 5, 3, 15), 4, "Zoo");
    f.add("Coffee", "Drinks", at(2025, 12, 24), 100, "Airport");
    QTableWidget *places = showPlacesTable(f);
    QVERIFY(places);
    QCOMPARE(columnTexts(places, 0), (QStringList { "Airport", "Zoo", "Bakery" }));
    QCOMPARE(columnTexts(places, 2), (QStringList { "100", "13", "5" }));

    QHeaderView *header = places->horizontalHeader();
    const auto clickHeader = [header](int column) {
        QTest::mouseClick(
            header->viewport(), Qt::LeftButton, Qt::NoModifier,
            QPoint(header->sectionViewportPosition(column) + header->sectionSize(column) / 2, header->height() / 2));
    };
    const auto sortedBy = [&](int column, Qt::SortOrder order) {
        if (header->sortIndicatorSection() != column)
            clickHeader(column);
        if (header->sortIndicatorOrder() != order)
            clickHeader(column);
        return header->sortIndicatorSection() == column && header->sortIndicatorOrder() == order;
    };

    QVERIFY(sortedBy(1, Qt::AscendingOrder));
    QCOMPARE(columnTexts(places, 1), (QStringList { "1", "2", "10" }));
    QCOMPARE(columnTexts(places, 0), (QStringList { "Airport", "Zoo", "Bakery" }));
    QVERIFY(sortedBy(2, Qt::AscendingOrder));
    QCOMPARE(columnTexts(places, 2), (QStringList { "5", "13", "100" }));
    QVERIFY(sortedBy(3, Qt::DescendingOrder));
    QCOMPARE(columnTexts(places, 3), (QStringList { "100", "6.5", "0.5" }));
    QVERIFY(sortedBy(4, Qt::AscendingOrder));
    QCOMPARE(columnTexts(places, 0), (QStringList { "Airport", "Bakery", "Zoo" }));
    QVERIFY(sortedBy(0, Qt::DescendingOrder));
    QCOMPARE(columnTexts(places, 0), (QStringList { "Zoo", "Bakery", "Airport" }));

    // The next visit keeps the order the user chose.
    f.tabs()->setCurrentIndex(3);
    f.tabs()->setCurrentIndex(4);
    QCOMPARE(header->sortIndicatorSection(), 0);
    QCOMPARE(columnTexts(places, 0), (QStringList { "Zoo", "Bakery", "Airport" }));
}

void TestHistoryWidget::placesTableDrawsItsTextInRed()
{
    HistoryFixture f;
    f.add("Coffee", "Drinks", at(2026, 11, 15), 2.5, "Cafe Blue");
    QTableWidget *places = showPlacesTable(f);
    QVERIFY(places);
    QCOMPARE(places->rowCount(), 1);
    for (int column = 0; column < places->columnCount(); ++column) {
        const TextInk ink = cellInk(places, 0, column);
        QVERIFY2(
            ink.red > 5 && ink.dark == 0,
            qPrintable(QStringLiteral("column %1: %2 red and %3 dark pixels").arg(column).arg(ink.red).arg(ink.dark)));
    }
    // On the tables' pale yellow.
    const QImage shot = places->viewport()->grab().toImage();
    const QRect cell = places->visualItemRect(places->item(0, 1));
    QCOMPARE(shot.pixelColor(cell.right() - 2, cell.bottom() - 2), QColor(254, 255, 189));
}

void TestHistoryWidget::aCutOffPlaceTellsItsWholeText()
{
    HistoryFixture f;
    const QString place = QStringLiteral("The little shop at the corner of the old market square, behind the fountain");
    f.add("Soap", "Household", at(2026, 11, 15), 3, place);
    QTableWidget *places = showPlacesTable(f);
    QVERIFY(places);

    QVERIFY(places->fontMetrics().horizontalAdvance(place) > places->columnWidth(0));
    QCOMPARE(toolTipOfCell(places, 0, 0), place);
    // The figures fit their columns.
    QCOMPARE(toolTipOfCell(places, 0, 1), QString());
    QCOMPARE(toolTipOfCell(places, 0, 4), QString());
}

void TestHistoryWidget::placesMapHasACircleAtEachRememberedPlaceWithItsFiguresAsText()
{
    HistoryFixture f;
    QVERIFY(addThreePlaces(f.store));
    QWebEngineView *map = showPlacesTab(f, 2);
    QVERIFY(map);

    // Orchard Road has no geolocation and is not on the map.
    const QVariantList markers = mapMarkers(map);
    QCOMPARE(markers.size(), 2);
    const QVariantMap koregaon = markerNamed(markers, "Koregaon Park");
    const QVariantMap markup = markerNamed(markers, markupPlace);
    QVERIFY(!koregaon.isEmpty());
    QVERIFY(!markup.isEmpty());
    QVERIFY(near(koregaon.value("lat").toDouble(), double(18.52f)));
    QVERIFY(near(koregaon.value("lng").toDouble(), double(73.85f)));
    QVERIFY(near(markup.value("lat").toDouble(), double(1.3521f)));
    QVERIFY(near(markup.value("lng").toDouble(), double(103.8198f)));

    // Each pop-up holds the name, the number of entries and the total, as
    // text: three lines and no element made of the markup place's name.
    QCOMPARE(koregaon.value("lines").toStringList(), (QStringList { "Koregaon Park", "Entries: 2", "Total: 20" }));
    QCOMPARE(markup.value("lines").toStringList(), (QStringList { markupPlace, "Entries: 1", "Total: 30" }));
    QCOMPARE(koregaon.value("elements").toInt(), 3);
    QCOMPARE(markup.value("elements").toInt(), 3);

    // Circles drawn as SVG, the larger total the larger circle.
    QVERIFY(koregaon.value("svgPath").toBool());
    QVERIFY(markup.value("svgPath").toBool());
    QCOMPARE(markup.value("radius").toDouble(), 30.0);
    QVERIFY(koregaon.value("radius").toDouble() < markup.value("radius").toDouble() - 4);

    QVariantMap view = mapView(map);
    QCOMPARE(view.value("svgPaths").toInt(), 2);
    QCOMPARE(view.value("inView").toInt(), 2);
    QVERIFY(view.value("zoom").toInt() < 16);
    // The page's own two scripts, and nothing that the name's ran.
    QCOMPARE(view.value("scripts").toInt(), 2);
    QCOMPARE(view.value("alerts").toInt(), 0);

    // Opened, the pop-up shows the name literally.
    QVERIFY(evaluate(map, PlacesMap::scriptCall(QStringLiteral("centreOnPlace"), { markupPlace })).toBool());
    view = mapView(map);
    QCOMPARE(view.value("popUp").toStringList(), (QStringList { markupPlace, "Entries: 1", "Total: 30" }));
    QCOMPARE(view.value("scripts").toInt(), 2);
    QCOMPARE(view.value("alerts").toInt(), 0);
}

void TestHistoryWidget::aSinglePlaceIsShownAtZoomSixteen()
{
    HistoryFixture f;
    QVERIFY(addThroughStore(f.store, "Lunch", at(2026, 11, 15), 12.5f, "Koregaon Park", true, 73.85f, 18.52f));
    QVERIFY(addThroughStore(f.store, "Shoes", at(2026, 3, 2), 40.0f, "Orchard Road"));
    QWebEngineView *map = showPlacesTab(f, 1);
    QVERIFY(map);

    const QVariantMap view = mapView(map);
    QCOMPARE(view.value("zoom").toInt(), 16);
    QVERIFY(near(view.value("lat").toDouble(), double(18.52f)));
    QVERIFY(near(view.value("lng").toDouble(), double(73.85f)));
    QCOMPARE(mapMarkers(map).constFirst().toMap().value("radius").toDouble(), 30.0);
}

void TestHistoryWidget::withoutRememberedPlacesTheMapStaysOnTheDefaultCentre()
{
    HistoryFixture f;
    QVERIFY(addThroughStore(f.store, "Shoes", at(2026, 3, 2), 40.0f, "Orchard Road"));
    QWebEngineView *map = showPlacesTab(f, 0);
    QVERIFY(map);

    QCOMPARE(f.table("tableWidgetPlaces")->rowCount(), 1);
    const QVariantMap view = mapView(map);
    QCOMPARE(view.value("zoom").toInt(), 16);
    QVERIFY(near(view.value("lat").toDouble(), 1.27899));
    QVERIFY(near(view.value("lng").toDouble(), 103.8488));
    QCOMPARE(view.value("svgPaths").toInt(), 0);
}

void TestHistoryWidget::tappingARowCentresTheMapOnItsPlaceAndOpensItsPopUp()
{
    HistoryFixture f;
    QVERIFY(addThreePlaces(f.store));
    QWebEngineView *map = showPlacesTab(f, 2);
    QVERIFY(map);
    QTableWidget *places = f.table("tableWidgetPlaces");

    // Fitted to both places, the map is centred on neither.
    const QVariantMap fitted = mapView(map);
    QVERIFY(!near(fitted.value("lat").toDouble(), double(18.52f)));
    QVERIFY(fitted.value("popUp").toStringList().isEmpty());

    QCOMPARE(places->item(2, 0)->text(), QStringLiteral("Koregaon Park"));
    clickCell(places, 2, 3);
    QTRY_COMPARE_WITH_TIMEOUT(pixelsFromCentre(map, "Koregaon Park"), 0, webTimeoutMs);
    QVariantMap view = mapView(map);
    QVERIFY(qAbs(view.value("lat").toDouble() - double(18.52f)) < 0.5);
    QVERIFY(qAbs(view.value("lng").toDouble() - double(73.85f)) < 0.5);
    QCOMPARE(view.value("zoom").toInt(), fitted.value("zoom").toInt());
    QCOMPARE(view.value("popUp").toStringList(), (QStringList { "Koregaon Park", "Entries: 2", "Total: 20" }));
    QVERIFY(markerNamed(mapMarkers(map), "Koregaon Park").value("open").toBool());

    clickCell(places, 1, 0);
    QTRY_COMPARE_WITH_TIMEOUT(pixelsFromCentre(map, markupPlace), 0, webTimeoutMs);
    view = mapView(map);
    QCOMPARE(view.value("popUp").toStringList(), (QStringList { markupPlace, "Entries: 1", "Total: 30" }));
    QCOMPARE(view.value("alerts").toInt(), 0);

    // A place without a geolocation is not on the map: its row leaves the
    // map as it is.
    QCOMPARE(places->item(0, 0)->text(), QStringLiteral("Orchard Road"));
    clickCell(places, 0, 0);
    clickCell(places, 1, 0);
    QCOMPARE(mapView(map), view);
}

void TestHistoryWidget::placesMapFetchesNothingButTilesAndOffersNoLinks()
{
    HistoryFixture f;
    QVERIFY(addThreePlaces(f.store));
    QWebEngineView *map = showPlacesTab(f, 2);
    QVERIFY(map);

    QTRY_VERIFY_WITH_TIMEOUT(!recorder.requests.isEmpty(), webTimeoutMs);
    for (const QString &request : std::as_const(recorder.requests))
        QVERIFY2(anyTileUrl.match(request).hasMatch(), qPrintable(request));
    // The attribution names the map's makers without a link to follow away
    // from the map.
    QCOMPARE(mapView(map).value("links").toInt(), 0);
    QVERIFY(evaluate(map, QStringLiteral("document.querySelector('.leaflet-control-attribution').textContent"))
                .toString()
                .contains(QStringLiteral("OpenStreetMap contributors")));
}

void TestHistoryWidget::markerRadiusGrowsWithTheTotal_data()
{
    QTest::addColumn<double>("total");
    QTest::addColumn<double>("largest");
    QTest::addColumn<double>("radius");

    // The area grows with the total: a quarter of the largest total is half
    // the way from the smallest circle (6) to the largest (30).
    QTest::newRow("the largest") << 250.0 << 250.0 << 30.0;
    QTest::newRow("a quarter of it") << 62.5 << 250.0 << 18.0;
    QTest::newRow("nothing") << 0.0 << 250.0 << 6.0;
    QTest::newRow("a refund") << -20.0 << 250.0 << 6.0;
    QTest::newRow("all totals nothing") << 0.0 << 0.0 << 6.0;
}

void TestHistoryWidget::markerRadiusGrowsWithTheTotal()
{
    QFETCH(double, total);
    QFETCH(double, largest);
    QFETCH(double, radius);
    QCOMPARE(PlacesMap::markerRadius(total, largest), radius);
}

void TestHistoryWidget::placesReachThePageAsEscapedJson()
{
    RememberedPlaceSpending place;
    place.LocationName = markupPlace + QChar(0x2028);
    place.LocationLatitude = 1.5f;
    place.LocationLongitude = 103.25f;
    place.NumberOfEntries = 3;
    place.Total = 1234567.0f;
    // Outside the globe: not drawn.
    RememberedPlaceSpending nowhere;
    nowhere.LocationName = QStringLiteral("Nowhere");
    nowhere.LocationLatitude = 95.0f;
    nowhere.Total = 1.0f;

    const QString call =
        PlacesMap::scriptCall(QStringLiteral("showPlaces"), { PlacesMap::placesData({ &place, &nowhere }) });
    QVERIFY(call.startsWith(QStringLiteral("showPlaces([{")));
    QVERIFY(call.endsWith(QStringLiteral("}]);")));
    QVERIFY(!call.contains(QLatin1Char('<')));
    QVERIFY(!call.contains(QChar(0x2028)));
    QVERIFY(call.contains(QStringLiteral("\\u003c/script>\\u003cscript>alert(1)\\u003c/script>\\u2028")));
    QVERIFY(!call.contains(QStringLiteral("Nowhere")));

    // Read back as JSON, it is the place as given.
    const QString literal = call.mid(int(qstrlen("showPlaces(")), call.size() - int(qstrlen("showPlaces(")) - 2);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(literal.toUtf8(), &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    const QJsonArray places = document.array();
    QCOMPARE(places.size(), 1);
    const QJsonObject read = places.at(0).toObject();
    QCOMPARE(read.value("name").toString(), place.LocationName);
    QCOMPARE(read.value("lat").toDouble(), 1.5);
    QCOMPARE(read.value("lng").toDouble(), 103.25);
    QCOMPARE(read.value("radius").toDouble(), 30.0);
    QCOMPARE(read.value("lines").toArray(), (QJsonArray { "Entries: 3", "Total: 1.23457e+06" }));
}

void TestHistoryWidget::graphsAndPiesFollowTheLookAndClassicKeepsTheGraphsColours()
{
    const auto restoreClassic = qScopeGuard([] { Look::apply(Look::Kind::Classic); });
    HistoryFixture fixture;
    fixture.add("Bread", "Food", at(2025, 3, 1), 3);
    fixture.add("Bread", "Food", at(2025, 3, 4), 5);
    fixture.add("Taxi", "Travel", at(2025, 4, 20), 7);
    fixture.build()->show();
    QVERIFY(QTest::qWaitForWindowExposed(fixture.page.get()));

    // Classic: the graph's described black ground.
    QImage saved = fixture.savedImage(categoryGraph);
    QCOMPARE(saved.pixelColor(saved.width() / 2, 2), QColor(Qt::black));

    for (const Look::Kind kind : { Look::Kind::Light, Look::Kind::Dark }) {
        Look::apply(kind);
        const QPalette look = Look::palette(kind);
        // The graph on screen takes the look at once.
        QWidget *graph = fixture.chartIn("scrollAreaCategoryLineChart");
        const QImage shown = graph->grab().toImage();
        QCOMPARE(shown.pixelColor(shown.width() / 2, 2), look.color(QPalette::Window));
        const QRect labels(0, 0, 40, shown.height() - 30);
        QVERIFY2(drawnContrast(shown, labels) >= 4.5, qPrintable(QString::number(drawnContrast(shown, labels))));

        // A tab shown again writes its file in the look.
        QFile::remove(fixture.home.filePath(QLatin1String(categoryGraph)));
        fixture.tabs()->setCurrentIndex(2);
        fixture.tabs()->setCurrentIndex(0);
        QTRY_VERIFY(fixture.fileExists(categoryGraph));
        saved = fixture.savedImage(categoryGraph);
        QCOMPARE(saved.pixelColor(saved.width() / 2, 2), look.color(QPalette::Window));
        // The line stands out from the plot as a graphic must (3 to 1).
        const Look::GraphColours colours = Look::graphColours();
        QVERIFY(contrastRatio(colours.line, colours.plot) >= 3.0);
        QVERIFY(contrastRatio(colours.text, colours.background) >= 4.5);

        // The pie's legend reads on the look's ground.
        fixture.tabs()->setCurrentIndex(2);
        PieWidget *pie = fixture.pieIn("scrollAreaTotalPieChartCategories");
        QVERIFY(pie);
        const QImage piePicture = pie->grab().toImage();
        const QRect legend(pie->height() + 10 + 30, 0, pie->width() - pie->height() - 40, pie->height());
        QCOMPARE(groundColour(piePicture, legend), look.color(QPalette::Window));
        QVERIFY2(drawnContrast(piePicture, legend) >= 4.5,
                 qPrintable(QString::number(drawnContrast(piePicture, legend))));
        fixture.tabs()->setCurrentIndex(0);
    }
    fixture.page->close();
}

QTEST_MAIN(TestHistoryWidget)

#include "tst_historywidget.moc"
