// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "databasemanager.h"
#include "entrydetailswidget.h"

#include "celltooltip.h"
#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"
#include "webenginesanitizeroptions.h"
#include "webviewtest.h"
#include "widgettest.h"

#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QRegularExpression>
#include <QScrollArea>
#include <QSignalSpy>
#include <QTableWidget>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineView>
#include <QtTest>

#include <memory>

struct StoredEntry
{
    QString item;
    QString category;
    QDateTime when;
    double price;
    QString location;
    bool geo;
    double longitude;
    double latitude;
};
Q_DECLARE_METATYPE(StoredEntry)

namespace {

// The map page reports load failures (failed images, scripts, styles) and
// uncaught script errors into window.testFailedLoads, from its very start.
const char failureRecorderScript[] = R"(
window.testFailedLoads = [];
window.addEventListener('error', function (event) {
    var target = event.target;
    if (target && target !== window)
        window.testFailedLoads.push(String(target.src || target.href || target.tagName));
    else
        window.testFailedLoads.push('script error: ' + event.message);
}, true);
)";

const QRegularExpression tileUrl(QStringLiteral(R"(^https://tile\.openstreetmap\.org/16/\d+/\d+\.png$)"));

// Messages that the pages' scripts write to the console arrive in the "js"
// logging category. They are collected here, not printed, and each test
// checks them in cleanup().
QtMessageHandler passOn = nullptr;
QStringList consoleMessages;

void recordConsoleMessages(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (context.category && qstrcmp(context.category, "js") == 0) {
        consoleMessages.append(message);
        return;
    }
    passOn(type, context, message);
}

const StoredEntry lunchInPune { QStringLiteral("Lunch"),
                                QStringLiteral("Food"),
                                QDateTime(QDate(2026, 11, 15), QTime(13, 8, 59)),
                                12.5,
                                QStringLiteral("Koregaon Park"),
                                true,
                                73.85,
                                18.52 };

// Coordinates are stored, but the entry says geolocation is off.
const StoredEntry busTicket { QStringLiteral("Bus ticket"),
                              QStringLiteral("Travel"),
                              QDateTime(QDate(2026, 3, 2), QTime(0, 0)),
                              12,
                              QStringLiteral("Orchard Road"),
                              false,
                              103.0,
                              1.3 };

bool store(const TempHome &home, const StoredEntry &entry)
{
    RawDatabase raw(home.databasePath());
    return raw.insertEntry(entry.item, entry.category, entry.when, entry.price, entry.location, entry.geo,
                           entry.longitude, entry.latitude) > 0;
}

QTableWidget *table(const EntryDetailsWidget &page)
{
    return page.findChild<QTableWidget *>(QStringLiteral("tableWidget"));
}

QWebEngineView *webView(const EntryDetailsWidget &page)
{
    return page.findChild<QWebEngineView *>(QStringLiteral("webView"));
}

QString cellText(const EntryDetailsWidget &page, int row, int column)
{
    const auto *label = qobject_cast<const QLabel *>(table(page)->cellWidget(row, column));
    return label ? label->text() : QStringLiteral("<no label>");
}

QStringList cellTexts(const EntryDetailsWidget &page)
{
    QStringList texts;
    for (int row = 0; row < table(page)->rowCount(); ++row) {
        for (int column = 0; column < table(page)->columnCount(); ++column)
            texts.append(cellText(page, row, column));
    }
    return texts;
}

QString value(const QString &text)
{
    return QStringLiteral("<font color=#aa00ff> %1 </font>").arg(text);
}

QString mapTemplate()
{
    QFile file(QStringLiteral(":/Images/GetStaticGoogleMap.html"));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

bool mapIsBuilt(QWebEngineView *view)
{
    return evaluate(view, QStringLiteral("typeof window.map === 'object' && typeof window.marker === 'object'"))
        .toBool();
}

QVariantMap mapState(QWebEngineView *view)
{
    return evaluate(view, QStringLiteral(R"((function () {
        var centre = window.map.getCenter();
        var position = window.marker.getLatLng();
        var icon = window.marker.getElement();
        var shadow = document.querySelector('.leaflet-marker-shadow');
        return {
            lat: centre.lat, lng: centre.lng, zoom: window.map.getZoom(),
            markerLat: position.lat, markerLng: position.lng,
            title: window.marker.options.title, iconTitle: icon.title,
            iconLoaded: icon.complete && icon.naturalWidth > 0, iconWidth: icon.naturalWidth,
            shadowLoaded: !!shadow && shadow.complete && shadow.naturalWidth > 0,
            canvasHeight: document.getElementById('map_canvas').clientHeight,
            pageHeight: window.innerHeight
        };
    })())"))
        .toMap();
}

} // namespace

class TestEntryDetailsWidget : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void formHasTheDesignedWidgetsGeometryAndStyle();
    void tableHasTwoColumnsEightRowsAndTheDesignedHeaders();
    void tableShowsEveryFieldOfTheEntry_data();
    void tableShowsEveryFieldOfTheEntry();
    void textsShowAsTypedInsideTheColouredCells_data();
    void textsShowAsTypedInsideTheColouredCells();
    void priceShowsWithSixSignificantDigits_data();
    void priceShowsWithSixSignificantDigits();
    void entryWithoutGeolocationShowsDashesAndTheDefaultPlace();
    void entryWithGeolocationShowsLatitudeUnderLongitudeAndLongitudeUnderLatitude();
    void positionSelectsTheEntryInNewestFirstOrder();
    void positionPastTheEndLeavesTheTableEmptyAndTheMapBlank();

    void mapPageIsTheTemplateWithItsMarkersFilled_data();
    void mapPageIsTheTemplateWithItsMarkersFilled();
    void webViewShowsTheMapCentredOnTheEntryWithAPinTitledA_data();
    void webViewShowsTheMapCentredOnTheEntryWithAPinTitledA();
    void mapPageFetchesNothingButTiles();
    void withoutNetworkThePageStillLoadsAndTheTableIsUnaffected();

    void everyCellIsWholeAndNeedsNoToolTip();

private:
    RequestRecorder recorder;
};

void TestEntryDetailsWidget::initTestCase()
{
    WidgetTest::initTestCase();
    passOn = qInstallMessageHandler(recordConsoleMessages);
    QWebEngineProfile *profile = QWebEngineProfile::defaultProfile();
    profile->setUrlRequestInterceptor(&recorder);
    QWebEngineScript script;
    script.setName(QStringLiteral("failure recorder"));
    script.setSourceCode(QString::fromLatin1(failureRecorderScript));
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::MainWorld);
    script.setRunsOnSubFrames(false);
    profile->scripts()->insert(script);
}

void TestEntryDetailsWidget::init()
{
    recorder.requests.clear();
    consoleMessages.clear();
}

void TestEntryDetailsWidget::cleanup()
{
    hideToolTip();
    VERIFY_NO_WIDGETS_LEFT();
    QVERIFY2(consoleMessages.isEmpty(), qPrintable(consoleMessages.join(QLatin1Char('\n'))));
}

void TestEntryDetailsWidget::cleanupTestCase()
{
    QWebEngineProfile::defaultProfile()->setUrlRequestInterceptor(nullptr);
    QWebEngineProfile::defaultProfile()->scripts()->clear();
    qInstallMessageHandler(passOn);
}

void TestEntryDetailsWidget::formHasTheDesignedWidgetsGeometryAndStyle()
{
    TempHome home;
    DatabaseManager manager(nullptr);
    QVERIFY(store(home, lunchInPune));
    const EntryDetailsWidget page(0, &manager, nullptr);

    QCOMPARE(page.objectName(), QStringLiteral("EntryDetailsWidget"));
    QCOMPARE(page.windowTitle(), QStringLiteral("Form"));
    QCOMPARE(page.size(), QSize(888, 761));
    QCOMPARE(page.styleSheet(), QStringLiteral("background-color: rgb(0, 0, 0);"));

    const auto *scrollArea = page.findChild<QScrollArea *>(QStringLiteral("scrollArea"));
    QVERIFY(scrollArea);
    QCOMPARE(scrollArea->geometry(), QRect(10, 10, 871, 741));
    QVERIFY(scrollArea->widgetResizable());
    QCOMPARE(scrollArea->widget()->objectName(), QStringLiteral("scrollAreaWidgetContents"));

    QCOMPARE(table(page)->parentWidget(), scrollArea->widget());
    QCOMPARE(table(page)->geometry(), QRect(0, 0, 291, 291));
    QCOMPARE(table(page)->styleSheet(),
             QStringLiteral("border-color: rgb(255, 255, 127);\nselection-color: rgb(255, 255, "
                            "127);\ngridline-color: rgb(188, 188, 188);"));

    QVERIFY(webView(page));
    QCOMPARE(webView(page)->parentWidget(), scrollArea->widget());
    QCOMPARE(webView(page)->geometry(), QRect(300, 10, 421, 271));
}

void TestEntryDetailsWidget::tableHasTwoColumnsEightRowsAndTheDesignedHeaders()
{
    TempHome home;
    DatabaseManager manager(nullptr);
    QVERIFY(store(home, lunchInPune));
    const EntryDetailsWidget page(0, &manager, nullptr);

    QCOMPARE(table(page)->columnCount(), 2);
    QCOMPARE(table(page)->rowCount(), 8);
    QCOMPARE(table(page)->horizontalHeaderItem(0)->text(), QStringLiteral("Item Name"));
    QCOMPARE(table(page)->horizontalHeaderItem(1)->text(), QStringLiteral("Value"));
    // Fitted to their contents: each column as wide as its widest cell.
    const QHeaderView *header = table(page)->horizontalHeader();
    QCOMPARE(header->sectionResizeMode(0), QHeaderView::Interactive);
    for (int column = 0; column < 2; ++column) {
        int widest = 0;
        for (int row = 0; row < 8; ++row)
            widest = std::max(widest, table(page)->cellWidget(row, column)->sizeHint().width());
        QVERIFY(widest > header->defaultSectionSize());
        QVERIFY2(header->sectionSize(column) >= widest, qPrintable(QString::number(column)));
    }
}

void TestEntryDetailsWidget::tableShowsEveryFieldOfTheEntry_data()
{
    QTest::addColumn<StoredEntry>("entry");
    QTest::addColumn<QStringList>("cells");

    QTest::newRow("with geolocation") << lunchInPune
                                      << QStringList {
                                             QStringLiteral("<font color=#aa00ff> Item Name </font>"),
                                             QStringLiteral("<font color=#aa00ff> Lunch </font>"),
                                             QStringLiteral("<font color=#aa00ff> Category Name </font>"),
                                             QStringLiteral("<font color=#aa00ff> Food </font>"),
                                             QStringLiteral("<font color=#aa00ff> Price </font>"),
                                             QStringLiteral("<font color=#aa00ff> 12.5 </font>"),
                                             QStringLiteral("<font color=#aa00ff> Transaction Date </font>"),
                                             QStringLiteral("<font color=#aa00ff> Sun Nov 15 13:08:59 2026 </font>"),
                                             QStringLiteral("<font color=#aa00ff> GeoLocation Enabled </font>"),
                                             QStringLiteral("<font color=#aa00ff> True </font>"),
                                             QStringLiteral("<font color=#aa00ff> Location Text </font>"),
                                             QStringLiteral("<font color=#aa00ff> Koregaon Park </font>"),
                                             QStringLiteral("<font color=#aa00ff> Longitude </font>"),
                                             QStringLiteral("<font color=#aa00ff> 18.52 </font>"),
                                             QStringLiteral("<font color=#aa00ff> Latitude </font>"),
                                             QStringLiteral("<font color=#aa00ff> 73.85 </font>"),
                                         };
    QTest::newRow("without geolocation") << busTicket
                                         << QStringList {
                                                QStringLiteral("<font color=#aa00ff> Item Name </font>"),
                                                QStringLiteral("<font color=#aa00ff> Bus ticket </font>"),
                                                QStringLiteral("<font color=#aa00ff> Category Name </font>"),
                                                QStringLiteral("<font color=#aa00ff> Travel </font>"),
                                                QStringLiteral("<font color=#aa00ff> Price </font>"),
                                                QStringLiteral("<font color=#aa00ff> 12 </font>"),
                                                QStringLiteral("<font color=#aa00ff> Transaction Date </font>"),
                                                QStringLiteral("<font color=#aa00ff> Mon Mar 2 00:00:00 2026 </font>"),
                                                QStringLiteral("<font color=#aa00ff> GeoLocation Enabled </font>"),
                                                QStringLiteral("<font color=#aa00ff> False </font>"),
                                                QStringLiteral("<font color=#aa00ff> Location Text </font>"),
                                                QStringLiteral("<font color=#aa00ff> Orchard Road </font>"),
                                                QStringLiteral("<font color=#aa00ff> Longitude </font>"),
                                                QStringLiteral("<font color=#aa00ff>  -  </font>"),
                                                QStringLiteral("<font color=#aa00ff> Latitude </font>"),
                                                QStringLiteral("<font color=#aa00ff>  -  </font>"),
                                            };
}

void TestEntryDetailsWidget::tableShowsEveryFieldOfTheEntry()
{
    QFETCH(StoredEntry, entry);
    QFETCH(QStringList, cells);

    TempHome home;
    DatabaseManager manager(nullptr);
    QVERIFY(store(home, entry));
    const EntryDetailsWidget page(0, &manager, nullptr);

    QCOMPARE(cellTexts(page), cells);
}

void TestEntryDetailsWidget::textsShowAsTypedInsideTheColouredCells_data()
{
    QTest::addColumn<QString>("text");
    for (const auto &hostile : hostileTexts())
        QTest::newRow(qPrintable(hostile.first)) << hostile.second;
}

void TestEntryDetailsWidget::textsShowAsTypedInsideTheColouredCells()
{
    QFETCH(QString, text);
    TempHome home;
    DatabaseManager manager(nullptr);
    Entry entry;
    entry.ItemName = text;
    entry.CategoryName = text;
    entry.LocationText = text;
    entry.TransactDateTime = QDateTime(QDate(2026, 11, 15), QTime(13, 8, 59));
    entry.Price = 12.5f;
    QVERIFY(manager.AddEntry(&entry));
    const EntryDetailsWidget page(0, &manager, nullptr);

    // Item name, category and place: the text escaped inside the cell's
    // unchanged markup, so that what shows is the text itself.
    for (int row : { 0, 1, 5 }) {
        QCOMPARE(cellText(page, row, 1),
                 QStringLiteral("<font color=#aa00ff> ") + text.toHtmlEscaped() + QStringLiteral(" </font>"));
        const auto *label = qobject_cast<const QLabel *>(table(page)->cellWidget(row, 1));
        // Rich text drops the blank that opens a block; the text itself stays.
        QCOMPARE(plainText(label), text + QLatin1Char(' '));
    }
    QCOMPARE(cellText(page, 2, 1), value(QStringLiteral("12.5")));
}

void TestEntryDetailsWidget::priceShowsWithSixSignificantDigits_data()
{
    QTest::addColumn<double>("price");
    QTest::addColumn<QString>("shown");

    QTest::newRow("whole number") << 12.0 << QStringLiteral("12");
    QTest::newRow("one decimal") << 12.5 << QStringLiteral("12.5");
    QTest::newRow("a million or more in exponent form") << 1234567.0 << QStringLiteral("1.23457e+06");
}

void TestEntryDetailsWidget::priceShowsWithSixSignificantDigits()
{
    QFETCH(double, price);
    QFETCH(QString, shown);

    TempHome home;
    DatabaseManager manager(nullptr);
    StoredEntry entry = lunchInPune;
    entry.price = price;
    QVERIFY(store(home, entry));
    const EntryDetailsWidget page(0, &manager, nullptr);

    QCOMPARE(cellText(page, 2, 0), QStringLiteral("<font color=#aa00ff> Price </font>"));
    QCOMPARE(cellText(page, 2, 1), value(shown));
}

void TestEntryDetailsWidget::entryWithoutGeolocationShowsDashesAndTheDefaultPlace()
{
    TempHome home;
    DatabaseManager manager(nullptr);
    QVERIFY(store(home, busTicket));
    const EntryDetailsWidget page(0, &manager, nullptr);

    QCOMPARE(cellText(page, 4, 1), value(QStringLiteral("False")));
    QCOMPARE(cellText(page, 6, 1), value(QStringLiteral(" - ")));
    QCOMPARE(cellText(page, 7, 1), value(QStringLiteral(" - ")));

    const auto entries = owned(manager.GetAllEntries());
    QCOMPARE(entries.size(), 1);
    const QString html = EntryDetailsWidget::mapPageHtml(*entries[0]);
    QVERIFY(html.contains(QStringLiteral("L.latLng(1.27899,103.8488)")));
}

void TestEntryDetailsWidget::entryWithGeolocationShowsLatitudeUnderLongitudeAndLongitudeUnderLatitude()
{
    TempHome home;
    DatabaseManager manager(nullptr);
    QVERIFY(store(home, lunchInPune));
    const EntryDetailsWidget page(0, &manager, nullptr);

    QCOMPARE(cellText(page, 6, 0), QStringLiteral("<font color=#aa00ff> Longitude </font>"));
    QCOMPARE(cellText(page, 6, 1), value(QStringLiteral("18.52")));
    QCOMPARE(cellText(page, 7, 0), QStringLiteral("<font color=#aa00ff> Latitude </font>"));
    QCOMPARE(cellText(page, 7, 1), value(QStringLiteral("73.85")));

    const auto entries = owned(manager.GetAllEntries());
    QCOMPARE(entries.size(), 1);
    const QString html = EntryDetailsWidget::mapPageHtml(*entries[0]);
    QVERIFY(html.contains(QStringLiteral("L.latLng(18.52,73.85)")));
}

void TestEntryDetailsWidget::positionSelectsTheEntryInNewestFirstOrder()
{
    TempHome home;
    DatabaseManager manager(nullptr);
    StoredEntry oldest = busTicket;
    oldest.item = QStringLiteral("Oldest");
    oldest.when = QDateTime(QDate(2025, 1, 1), QTime(9, 0));
    StoredEntry newest = busTicket;
    newest.item = QStringLiteral("Newest");
    newest.when = QDateTime(QDate(2027, 1, 1), QTime(9, 0));
    QVERIFY(store(home, oldest));
    QVERIFY(store(home, newest));
    QVERIFY(store(home, lunchInPune));

    const EntryDetailsWidget first(0, &manager, nullptr);
    const EntryDetailsWidget second(1, &manager, nullptr);
    const EntryDetailsWidget third(2, &manager, nullptr);
    QCOMPARE(cellText(first, 0, 1), value(QStringLiteral("Newest")));
    QCOMPARE(cellText(second, 0, 1), value(QStringLiteral("Lunch")));
    QCOMPARE(cellText(third, 0, 1), value(QStringLiteral("Oldest")));
}

void TestEntryDetailsWidget::positionPastTheEndLeavesTheTableEmptyAndTheMapBlank()
{
    TempHome home;
    DatabaseManager manager(nullptr);
    QVERIFY(store(home, lunchInPune));
    const EntryDetailsWidget page(1, &manager, nullptr);

    QCOMPARE(table(page)->rowCount(), 0);
    QCOMPARE(webView(page)->url(), QUrl(QStringLiteral("about:blank")));
}

void TestEntryDetailsWidget::mapPageIsTheTemplateWithItsMarkersFilled_data()
{
    QTest::addColumn<StoredEntry>("entry");
    QTest::addColumn<QString>("latitude");
    QTest::addColumn<QString>("longitude");

    QTest::newRow("geolocation") << lunchInPune << QStringLiteral("18.52") << QStringLiteral("73.85");
    QTest::newRow("no geolocation: the default place")
        << busTicket << QStringLiteral("1.27899") << QStringLiteral("103.8488");
    StoredEntry singapore = lunchInPune;
    singapore.latitude = 1.27899;
    singapore.longitude = 103.8488;
    QTest::newRow("geolocation with six significant digits")
        << singapore << QStringLiteral("1.27899") << QStringLiteral("103.849");
}

void TestEntryDetailsWidget::mapPageIsTheTemplateWithItsMarkersFilled()
{
    QFETCH(StoredEntry, entry);
    QFETCH(QString, latitude);
    QFETCH(QString, longitude);

    TempHome home;
    DatabaseManager manager(nullptr);
    QVERIFY(store(home, entry));
    const auto entries = owned(manager.GetAllEntries());
    QCOMPARE(entries.size(), 1);
    const QString html = EntryDetailsWidget::mapPageHtml(*entries[0]);

    QVERIFY(!html.contains(QLatin1String("[Lat]")));
    QVERIFY(!html.contains(QLatin1String("[Long]")));
    QVERIFY(html.contains(QStringLiteral("L.latLng(%1,%2);\r\n").arg(latitude, longitude)));
    QString expected = mapTemplate();
    QCOMPARE(expected.count(QLatin1String("[Lat]")), 1);
    QCOMPARE(expected.count(QLatin1String("[Long]")), 1);
    expected.replace(QLatin1String("[Lat]"), latitude).replace(QLatin1String("[Long]"), longitude);
    QVERIFY(html == expected);
}

void TestEntryDetailsWidget::webViewShowsTheMapCentredOnTheEntryWithAPinTitledA_data()
{
    QTest::addColumn<StoredEntry>("entry");
    QTest::addColumn<QString>("scriptPosition");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");

    QTest::newRow("geolocation") << lunchInPune << QStringLiteral("L.latLng(18.52,73.85)") << 18.52 << 73.85;
    QTest::newRow("no geolocation: the default place")
        << busTicket << QStringLiteral("L.latLng(1.27899,103.8488)") << 1.27899 << 103.8488;
    StoredEntry singapore = lunchInPune;
    singapore.latitude = 1.27899;
    singapore.longitude = 103.8488;
    QTest::newRow("geolocation with six significant digits")
        << singapore << QStringLiteral("L.latLng(1.27899,103.849)") << 1.27899 << 103.849;
}

void TestEntryDetailsWidget::webViewShowsTheMapCentredOnTheEntryWithAPinTitledA()
{
    QFETCH(StoredEntry, entry);
    QFETCH(QString, scriptPosition);
    QFETCH(double, latitude);
    QFETCH(double, longitude);

    TempHome home;
    DatabaseManager manager(nullptr);
    QVERIFY(store(home, entry));
    EntryDetailsWidget page(0, &manager, nullptr);
    QWebEngineView *view = webView(page);
    QSignalSpy loads(view, &QWebEngineView::loadFinished);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));

    QTRY_VERIFY_WITH_TIMEOUT(loads.contains(QVariantList { true }), webTimeoutMs);
    QTRY_VERIFY_WITH_TIMEOUT(mapIsBuilt(view), webTimeoutMs);
    const QString source = QStringLiteral("document.documentElement.outerHTML.indexOf('%1') >= 0").arg(scriptPosition);
    QVERIFY(evaluate(view, source).toBool());

    QTRY_VERIFY_WITH_TIMEOUT(mapState(view).value(QStringLiteral("iconLoaded")).toBool(), webTimeoutMs);
    QTRY_VERIFY_WITH_TIMEOUT(mapState(view).value(QStringLiteral("shadowLoaded")).toBool(), webTimeoutMs);
    const QVariantMap state = mapState(view);
    QVERIFY2(qAbs(state.value(QStringLiteral("lat")).toDouble() - latitude) < 1e-9,
             qPrintable(state.value(QStringLiteral("lat")).toString()));
    QVERIFY2(qAbs(state.value(QStringLiteral("lng")).toDouble() - longitude) < 1e-9,
             qPrintable(state.value(QStringLiteral("lng")).toString()));
    QCOMPARE(state.value(QStringLiteral("zoom")).toInt(), 16);
    QCOMPARE(state.value(QStringLiteral("markerLat")).toDouble(), latitude);
    QCOMPARE(state.value(QStringLiteral("markerLng")).toDouble(), longitude);
    QCOMPARE(state.value(QStringLiteral("title")).toString(), QStringLiteral("a"));
    QCOMPARE(state.value(QStringLiteral("iconTitle")).toString(), QStringLiteral("a"));
    QCOMPARE(state.value(QStringLiteral("iconWidth")).toInt(), 25);
    // The map canvas fills the page.
    QVERIFY(state.value(QStringLiteral("pageHeight")).toInt() > 0);
    QCOMPARE(state.value(QStringLiteral("canvasHeight")).toInt(), state.value(QStringLiteral("pageHeight")).toInt());
}

void TestEntryDetailsWidget::mapPageFetchesNothingButTiles()
{
    TempHome home;
    DatabaseManager manager(nullptr);
    QVERIFY(store(home, lunchInPune));
    EntryDetailsWidget page(0, &manager, nullptr);
    QWebEngineView *view = webView(page);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    QTRY_VERIFY_WITH_TIMEOUT(mapIsBuilt(view), webTimeoutMs);
    QTRY_VERIFY_WITH_TIMEOUT(mapState(view).value(QStringLiteral("iconLoaded")).toBool(), webTimeoutMs);

    // The visible tiles are asked for, and fail without a network.
    QTRY_VERIFY_WITH_TIMEOUT(!recorder.requests.isEmpty(), webTimeoutMs);
    QTRY_VERIFY_WITH_TIMEOUT(!evaluate(view, QStringLiteral("window.testFailedLoads")).toStringList().isEmpty(),
                             webTimeoutMs);
    for (const QString &request : qAsConst(recorder.requests))
        QVERIFY2(tileUrl.match(request).hasMatch(), qPrintable(request));
    const QStringList failures = evaluate(view, QStringLiteral("window.testFailedLoads")).toStringList();
    for (const QString &failure : failures)
        QVERIFY2(tileUrl.match(failure).hasMatch(), qPrintable(failure));
}

void TestEntryDetailsWidget::withoutNetworkThePageStillLoadsAndTheTableIsUnaffected()
{
    TempHome home;
    DatabaseManager manager(nullptr);
    QVERIFY(store(home, lunchInPune));
    EntryDetailsWidget page(0, &manager, nullptr);
    QWebEngineView *view = webView(page);
    QSignalSpy loads(view, &QWebEngineView::loadFinished);
    const QStringList before = cellTexts(page);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));

    QTRY_VERIFY_WITH_TIMEOUT(loads.contains(QVariantList { true }), webTimeoutMs);
    QTRY_VERIFY_WITH_TIMEOUT(!recorder.requests.isEmpty(), webTimeoutMs);
    QTRY_VERIFY_WITH_TIMEOUT(!evaluate(view, QStringLiteral("window.testFailedLoads")).toStringList().isEmpty(),
                             webTimeoutMs);
    QVERIFY(mapIsBuilt(view));
    QCOMPARE(mapState(view).value(QStringLiteral("zoom")).toInt(), 16);

    QCOMPARE(cellTexts(page), before);
    QCOMPARE(cellText(page, 0, 1), value(QStringLiteral("Lunch")));
    QCOMPARE(cellText(page, 7, 1), value(QStringLiteral("73.85")));
}

void TestEntryDetailsWidget::everyCellIsWholeAndNeedsNoToolTip()
{
    TempHome home;
    DatabaseManager manager(nullptr);
    QVERIFY(store(home, lunchInPune));
    EntryDetailsWidget page(0, &manager, nullptr);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    QTableWidget *fields = table(page);

    // The columns fit their contents: the date and the longest label, which
    // a column of the default width cut off, are whole, and no cell needs
    // a tool tip to tell its text.
    for (int row = 0; row < fields->rowCount(); ++row) {
        for (int column = 0; column < 2; ++column) {
            const QWidget *cell = fields->cellWidget(row, column);
            QVERIFY2(cell->sizeHint().width() <= cell->width(),
                     qPrintable(QStringLiteral("%1,%2").arg(row).arg(column)));
            QCOMPARE(toolTipOfCell(fields, row, column), QString());
        }
    }
    QVERIFY(fields->cellWidget(3, 1)->width() > fields->horizontalHeader()->defaultSectionSize());
}

QTEST_MAIN(TestEntryDetailsWidget)
#include "tst_entrydetailswidget.moc"
