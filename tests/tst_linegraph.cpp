// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "linegraph.h"
#include "linegraph_p.h"

#include "graphpicture.h"
#include "testsupport.h"
#include "widgettest.h"

#include <QAccessible>
#include <QDate>
#include <QFile>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QtTest>

namespace {

using Points = GraphPoints;

const QColor sentinel(1, 2, 3);
const QColor border(255, 0, 0);
const QColor plot(0, 0, 255);
const QColor line(0, 255, 0);
const QColor text(255, 255, 0);

void fill(ZRLineGraph &graph, const Points &points)
{
    for (const auto &point : points)
        graph.append(ZRLineGraphData(point.first, point.second));
}

// A private part holding the same points as a graph filled with fill().
ZRLineGraphPrivate mirror(const Points &points, bool sortX = false, bool sortY = false)
{
    ZRLineGraphPrivate d;
    for (const auto &point : points)
        d.data.append(ZRLineGraphData(point.first, point.second));
    d.sortX = sortX;
    d.sortY = sortY;
    return d;
}

// The font metrics a picture of the graph is laid out with.
QFontMetrics pictureMetrics()
{
    return graphPictureFontMetrics();
}

// Colours that tell the parts of the picture apart.
void useDistinctColours(ZRLineGraph &graph)
{
    graph.setGraphBorder(border);
    graph.setGraphBackground(plot);
    graph.setGraphLine(line);
    graph.setTextColor(text);
}

QImage picture(ZRLineGraph &graph, const QRegion &region = QRegion())
{
    QImage image(graph.size(), QImage::Format_ARGB32);
    image.fill(sentinel);
    graph.render(&image, QPoint(), region, QWidget::RenderFlags());
    return image;
}

QImage saved(ZRLineGraph &graph, const QSize &size)
{
    QTemporaryDir dir;
    const QString fileName = dir.filePath("graph.png");
    if (!graph.save(fileName, size))
        return QImage();
    return QImage(fileName).convertToFormat(QImage::Format_ARGB32);
}

QStringList names(const QStringList &all, const QList<int> &indices)
{
    QStringList result;
    for (int index : indices)
        result.append(all.at(index));
    return result;
}

bool isGreyAtLeast(const QColor &color, int level)
{
    return color.red() == color.green() && color.green() == color.blue() && color.red() >= level;
}

// Rows of one column whose red channel shows a grid line (drawn in red).
QList<int> redRows(const QImage &image, int x, int top, int bottom)
{
    QList<int> rows;
    for (int y = top; y < bottom; ++y) {
        if (image.pixelColor(x, y).red() > 60)
            rows.append(y);
    }
    return rows;
}

QRect textBounds(const QImage &image, const QRect &area)
{
    QRect bounds;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c.red() > 60 && c.green() > 60 && c.blue() < 60)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

const Points threeDays = { { "Mon", "5" }, { "Tue", "40" }, { "Wed", "300" } };

} // namespace

class TestLineGraph : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    void cleanup() { VERIFY_NO_WIDGETS_LEFT(); }

    // Value lists

    void thinningKeepsEveryStepthValueAndAlwaysTheLast_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("visibleVals");
        QTest::addColumn<QList<int>>("kept");
        QTest::newRow("10 values with room for 4: step 3") << 10 << 4 << QList<int> { 0, 3, 6, 9 };
        QTest::newRow("10 values with room for 6: step 2, last appended") << 10 << 6 << QList<int> { 0, 2, 4, 6, 8, 9 };
        QTest::newRow("30 values with room for 8: step 4, 28 gives way to 29")
            << 30 << 8 << QList<int> { 0, 4, 8, 12, 16, 20, 24, 29 };
        QTest::newRow("room for every value") << 5 << 5 << QList<int> { 0, 1, 2, 3, 4 };
        QTest::newRow("more room than values") << 3 << 9 << QList<int> { 0, 1, 2 };
        QTest::newRow("no room keeps only the last value") << 10 << 0 << QList<int> { 9 };
        QTest::newRow("no room and one value") << 1 << 0 << QList<int> { 0 };
        QTest::newRow("negative room keeps every value") << 4 << -3 << QList<int> { 0, 1, 2, 3 };
        QTest::newRow("no values and no room") << 0 << 0 << QList<int> {};
        QTest::newRow("no values") << 0 << 4 << QList<int> {};
    }

    void thinningKeepsEveryStepthValueAndAlwaysTheLast()
    {
        QFETCH(int, count);
        QFETCH(int, visibleVals);
        QFETCH(QList<int>, kept);
        Points points;
        QStringList all;
        for (int i = 0; i < count; ++i) {
            all.append(QString("v%1").arg(i));
            points.append({ all.last(), all.last() });
        }
        const ZRLineGraphPrivate d = mirror(points);
        QCOMPARE(d.xValues(visibleVals), names(all, kept));
        QCOMPARE(d.yValues(visibleVals), names(all, kept));
    }

    void valuesAreCollectedOnceInOrderOfFirstAppearance()
    {
        const ZRLineGraphPrivate d =
            mirror({ { "Tue", "5" }, { "Mon", "40" }, { "Tue", "5" }, { "Wed", "300" }, { "Mon", "5" } });
        QCOMPARE(d.xValues(10), QStringList({ "Tue", "Mon", "Wed" }));
        QCOMPARE(d.yValues(10), QStringList({ "5", "40", "300" }));
    }

    void sortedYRunsFromTheGreatestNumberDown()
    {
        const Points points = { { "a", "40" }, { "b", "5" }, { "c", "300" } };
        QCOMPARE(mirror(points, false, true).yValues(3), QStringList({ "300", "40", "5" }));
        QCOMPARE(mirror(points, false, false).yValues(3), QStringList({ "40", "5", "300" }));
    }

    void sortedXRunsFromTheSmallestNumberUp()
    {
        const Points points = { { "10", "a" }, { "9", "b" }, { "100", "c" } };
        QCOMPARE(mirror(points, true, false).xValues(3), QStringList({ "9", "10", "100" }));
        QCOMPARE(mirror(points, false, false).xValues(3), QStringList({ "10", "9", "100" }));
    }

    void comparatorsCompareNumbersAsNumbersAndOtherTextsCaseInsensitively_data()
    {
        QTest::addColumn<QString>("s1");
        QTest::addColumn<QString>("s2");
        QTest::addColumn<bool>("less");
        QTest::addColumn<bool>("greater");
        QTest::newRow("5 before 40 as numbers") << "5"
                                                << "40" << true << false;
        QTest::newRow("300 after 40 as numbers") << "300"
                                                 << "40" << false << true;
        QTest::newRow("decimals and exponents") << "1e3"
                                                << "999.5" << false << true;
        QTest::newRow("negative numbers") << "-2"
                                          << "1" << true << false;
        QTest::newRow("a number and a text compare as text") << "5"
                                                             << "40x" << false << true;
        QTest::newRow("texts ignore case") << "apple"
                                           << "Banana" << true << false;
        QTest::newRow("texts that differ only in case are equal") << "Food"
                                                                  << "food" << false << false;
        QTest::newRow("equal numbers written differently") << "2.50"
                                                           << "2.5" << false << false;
    }

    void comparatorsCompareNumbersAsNumbersAndOtherTextsCaseInsensitively()
    {
        QFETCH(QString, s1);
        QFETCH(QString, s2);
        QFETCH(bool, less);
        QFETCH(bool, greater);
        QCOMPARE(caseInsensitiveLessThan(s1, s2), less);
        QCOMPARE(caseInsensitiveGreatThan(s1, s2), greater);
    }

    void foodAndFoodAreTwoValuesThatSortNextToEachOther()
    {
        const Points points = { { "food", "food" }, { "Apple", "Apple" }, { "Food", "Food" }, { "bread", "bread" } };
        QCOMPARE(mirror(points).xValues(4), QStringList({ "food", "Apple", "Food", "bread" }));

        const QStringList x = mirror(points, true, false).xValues(4);
        QCOMPARE(x.size(), 4);
        QCOMPARE(x.mid(0, 2), QStringList({ "Apple", "bread" }));
        QCOMPARE(QSet<QString>(x.begin() + 2, x.end()), QSet<QString>({ "Food", "food" }));

        const QStringList y = mirror(points, false, true).yValues(4);
        QCOMPARE(QSet<QString>(y.begin(), y.begin() + 2), QSet<QString>({ "Food", "food" }));
        QCOMPARE(y.mid(2), QStringList({ "bread", "Apple" }));
    }

    void aMixOfNumbersAndTextsSortsWithoutLosingValues()
    {
        // These texts order in a circle (9 < 10 < 1a < 9); sorting must still
        // keep each value once.
        Points points;
        for (const char *value : { "10", "9", "1a", "100", "b", "2", "1b", "0", "a", "11" })
            points.append({ QString(value), QString(value) });
        for (int i = 0; i < 200; ++i)
            points.append({ QString("%1x").arg(i), QString::number(i % 37) + (i % 3 ? "" : "z") });
        const ZRLineGraphPrivate d = mirror(points, true, true);
        const QStringList unsortedX = mirror(points).xValues(int(points.size()));
        const QStringList sortedX = d.xValues(int(points.size()));
        QCOMPARE(QSet<QString>(sortedX.begin(), sortedX.end()), QSet<QString>(unsortedX.begin(), unsortedX.end()));
        QCOMPARE(sortedX.size(), unsortedX.size());
    }

    void numbersAndTextsInOneListSortTheSameWayEveryTime()
    {
        // 5 and "5" are one text; "05" is the number 5 again; "abc" is no
        // number, so it is compared as text with each of the others ('a'
        // comes after every digit). Descending, the merge goes:
        //   runs of one:  [5, 05] keep their order (5 > 5 is false),
        //                 [abc, 40] too ("40" > "abc" is false as text),
        //                 [300];
        //   runs of two:  abc before 5 (as text), 40 before 5, then 5, 05;
        //   runs of four: abc before 300 (as text), 300 before 40.
        const Points points = {
            { "a", "5" }, { "b", "5" }, { "c", "05" }, { "d", "abc" }, { "e", "40" }, { "f", "300" }
        };
        const QStringList expected = { "abc", "300", "40", "5", "05" };
        for (int run = 0; run < 20; ++run)
            QCOMPARE(mirror(points, false, true).yValues(6), expected);
        // The numbers among themselves run from the greatest down; equal
        // numbers keep their order of first appearance.
        const QStringList sorted = mirror(points, false, true).yValues(6);
        QVERIFY(sorted.indexOf("300") < sorted.indexOf("40"));
        QVERIFY(sorted.indexOf("40") < sorted.indexOf("5"));
        QVERIFY(sorted.indexOf("5") < sorted.indexOf("05"));
    }

    // Geometry

    void pointsSitInTheMiddleOfTheirSlotsAndSpreadAfterThinning_data()
    {
        QTest::addColumn<int>("xIndex");
        QTest::addColumn<int>("yIndex");
        QTest::addColumn<int>("xCount");
        QTest::addColumn<int>("yCount");
        QTest::addColumn<int>("xVisible");
        QTest::addColumn<int>("yVisible");
        QTest::addColumn<int>("xSpacing");
        QTest::addColumn<int>("ySpacing");
        QTest::addColumn<QPoint>("position");
        QTest::newRow("first slot") << 0 << 0 << 3 << 3 << 3 << 3 << 100 << 60 << QPoint(50, 30);
        QTest::newRow("third column, second row") << 2 << 1 << 3 << 3 << 3 << 3 << 100 << 60 << QPoint(250, 90);
        QTest::newRow("odd spacings halve downwards") << 1 << 1 << 2 << 2 << 2 << 2 << 31 << 21 << QPoint(46, 31);
        QTest::newRow("four labels for ten values: the last point")
            << 9 << 0 << 10 << 1 << 4 << 1 << 50 << 60 << QPoint(190, 30);
        QTest::newRow("four labels for ten values: truncated twice")
            << 3 << 0 << 10 << 1 << 4 << 1 << 33 << 10 << QPoint(45, 5);
        QTest::newRow("thinned rows") << 5 << 7 << 6 << 8 << 6 << 3 << 40 << 50 << QPoint(220, 140);
    }

    void pointsSitInTheMiddleOfTheirSlotsAndSpreadAfterThinning()
    {
        QFETCH(int, xIndex);
        QFETCH(int, yIndex);
        QFETCH(int, xCount);
        QFETCH(int, yCount);
        QFETCH(int, xVisible);
        QFETCH(int, yVisible);
        QFETCH(int, xSpacing);
        QFETCH(int, ySpacing);
        QFETCH(QPoint, position);
        QCOMPARE(ZRLineGraphPrivate::slotPoint(xIndex, yIndex, xCount, yCount, xVisible, yVisible, xSpacing, ySpacing),
                 position);
    }

    void graphPointFindsTheTextsCaseSensitively()
    {
        const ZRLineGraphPrivate d = mirror({ { "food", "1" }, { "Food", "2" }, { "Rent", "3" } });
        const QStringList xVals = { "food", "Food", "Rent" };
        const QStringList yVals = { "3", "2", "1" };
        QCOMPARE(d.graphPoint(1, xVals, yVals, 3, 3, 100, 60), QPoint(150, 90));
        QCOMPARE(d.graphPoint(0, xVals, yVals, 3, 3, 100, 60), QPoint(50, 150));
        QCOMPARE(d.graphPoint(2, xVals, yVals, 3, 3, 100, 60), QPoint(250, 30));
    }

    void labelSizesAreTheWidestTextsPlusMargins()
    {
        const QFontMetrics metrics = pictureMetrics();
        const ZRLineGraphPrivate d = mirror({ { "Mon", "5" }, { "Wednesday", "1234.5" }, { "Tue", "40" } });
        QSize xSize;
        QSize ySize;
        d.valuesSizes(metrics, &xSize, &ySize);
        QCOMPARE(xSize, QSize(metrics.horizontalAdvance("Wednesday") + 18, metrics.xHeight() + 14));
        QCOMPARE(ySize, QSize(metrics.horizontalAdvance("1234.5") + 18, metrics.xHeight() + 14));

        ZRLineGraphPrivate empty;
        empty.valuesSizes(metrics, &xSize, &ySize);
        QCOMPARE(xSize, QSize(18, metrics.xHeight() + 14));
        QCOMPARE(ySize, QSize(18, metrics.xHeight() + 14));
    }

    void layoutFollowsThePictureSizeAndTheLabelSizes()
    {
        const ZRLineGraphPrivate d = mirror(threeDays, false, true);
        const QFontMetrics metrics = pictureMetrics();
        const ZRLineGraphPrivate::Layout l = d.layout(metrics, QSize(400, 300));
        const QSize ySize(metrics.horizontalAdvance("300") + 18, metrics.xHeight() + 14);
        const QSize xSize(metrics.horizontalAdvance("Wed") + 18, metrics.xHeight() + 14);
        QCOMPARE(l.startX, ySize.width() + 5);
        QCOMPARE(l.startY, 10);
        QCOMPARE(l.areaWidth, 380 - ySize.width());
        QCOMPARE(l.areaHeight, 280 - ySize.height());
        QCOMPARE(l.xVals, QStringList({ "Mon", "Tue", "Wed" }));
        QCOMPARE(l.yVals, QStringList({ "300", "40", "5" }));
        QCOMPARE(l.xSpacing, (380 - ySize.width()) / 3);
        QCOMPARE(l.ySpacing, (280 - ySize.height()) / 3);
        QVERIFY(xSize.width() * 3 <= l.areaWidth);
    }

    void labelRoomIsBoundedByThePointsAndThinnedToThePicture()
    {
        Points points;
        for (int i = 0; i < 30; ++i)
            points.append({ QString("Day %1").arg(i, 2, 10, QLatin1Char('0')), QString::number(i * 10) });
        const ZRLineGraphPrivate d = mirror(points);
        const QFontMetrics metrics = pictureMetrics();
        const ZRLineGraphPrivate::Layout l = d.layout(metrics, QSize(400, 300));
        QSize xSize;
        QSize ySize;
        d.valuesSizes(metrics, &xSize, &ySize);
        const int xRoom = (380 - ySize.width()) / xSize.width();
        const int yRoom = (280 - xSize.height()) / ySize.height();
        QVERIFY(xRoom < 30);
        QVERIFY(yRoom < 30);
        const GraphPictureLayout expected = expectedGraphLayout(points, QSize(400, 300), false, false);
        QCOMPARE(l.xVals, expected.xLabels);
        QCOMPARE(l.yVals, expected.yLabels);
        QVERIFY(expected.xLabels.size() <= xRoom);
        QVERIFY(expected.yLabels.size() <= yRoom);
        QCOMPARE(l.xVals.last(), QString("Day 29"));
        QCOMPARE(l.yVals.last(), QString("290"));
    }

    void aTenYearDailyGraphStillLabelsItsLastDay()
    {
        Points points;
        const QDate first(2016, 1, 1);
        for (int i = 0; i < 3650; ++i)
            points.append({ first.addDays(i).toString(Qt::TextDate), QString::number(i * 1.25 + 0.5) });
        const ZRLineGraphPrivate d = mirror(points, false, true);
        const ZRLineGraphPrivate::Layout l = d.layout(pictureMetrics(), QSize(821, 321));
        QVERIFY(l.xVals.size() > 1);
        QVERIFY(l.xVals.size() < 20);
        QCOMPARE(l.xVals.first(), first.toString(Qt::TextDate));
        QCOMPARE(l.xVals.last(), first.addDays(3649).toString(Qt::TextDate));
        QCOMPARE(l.yVals.first(), QString::number(3649 * 1.25 + 0.5));
        QCOMPARE(l.yVals.last(), QString("0.5"));
    }

    void aPictureTooSmallForOneLabelKeepsOnlyTheLastValue()
    {
        const ZRLineGraphPrivate d = mirror(threeDays, false, true);
        const QFontMetrics metrics = pictureMetrics();
        QSize xSize;
        QSize ySize;
        d.valuesSizes(metrics, &xSize, &ySize);

        // Room for no row at all: only the last (smallest) y value is labelled.
        const QSize noRoom(400, 20 + xSize.height() + ySize.height() / 2);
        QCOMPARE(d.layout(metrics, noRoom).yVals, QStringList({ "5" }));
        // Less than no room (the division goes negative): every value is kept.
        const QSize belowNoRoom(400, 20);
        QVERIFY((belowNoRoom.height() - 20 - xSize.height()) / ySize.height() < 0);
        QCOMPARE(d.layout(metrics, belowNoRoom).yVals, QStringList({ "300", "40", "5" }));

        ZRLineGraph graph;
        fill(graph, threeDays);
        graph.setSortY(true);
        for (const QSize &size : { noRoom, belowNoRoom, QSize(1, 1) })
            QCOMPARE(saved(graph, size).size(), size);
    }

    // Pictures

    void anEmptyGraphShowsOnlyTheFillTheOutlineThePlotAreaAndTheAxis()
    {
        ZRLineGraph graph;
        graph.resize(400, 300);
        const QImage image = picture(graph);
        const GraphPictureLayout l = expectedGraphLayout({}, QSize(400, 300), false, false);
        const QRect area = l.plotArea;
        QCOMPARE(area.left(), 18 + 5);

        // Black fill inside a white outline.
        QCOMPARE(image.pixelColor(5, 5), QColor(0, 0, 0));
        QCOMPARE(image.pixelColor(392, 150), QColor(0, 0, 0));
        QVERIFY(isGreyAtLeast(image.pixelColor(0, 150), 100));
        QVERIFY(isGreyAtLeast(image.pixelColor(399, 150), 100));
        QVERIFY(isGreyAtLeast(image.pixelColor(200, 0), 100));
        QVERIFY(isGreyAtLeast(image.pixelColor(200, 299), 100));

        // The y axis in the grid colour on the left edge of the plot area.
        const int middle = area.center().y();
        QVERIFY(isGreyAtLeast(image.pixelColor(area.left(), middle), 63 + 20));
        QCOMPARE(image.pixelColor(area.left() - 3, middle), QColor(0, 0, 0));

        // Everything else in the plot area is plain grey: no grid, line or dot.
        for (int y = area.top() + 2; y < area.bottom() - 1; ++y) {
            for (int x = area.left() + 2; x < area.right() - 1; ++x)
                QCOMPARE(image.pixelColor(x, y), QColor(63, 63, 63));
        }
        // And no label, neither left of the area nor below it.
        for (int y = 2; y < 298; ++y) {
            for (int x = 2; x < area.left() - 2; ++x)
                QCOMPARE(image.pixelColor(x, y), QColor(0, 0, 0));
        }
        for (int y = area.bottom() + 3; y < 298; ++y) {
            for (int x = 2; x < 398; ++x)
                QCOMPARE(image.pixelColor(x, y), QColor(0, 0, 0));
        }
    }

    void onePointHasOneLabelEachOneGridLineAndADotOnIt()
    {
        ZRLineGraph graph;
        useDistinctColours(graph);
        fill(graph, { { "Mon", "12.5" } });
        graph.resize(400, 300);
        const QImage image = picture(graph);

        // One label each way, so one slot: the area left of the y label box
        // (its widest text plus 18 wide, the x-height plus 14 high) and above
        // the x labels, within a margin of 20; the dot in the slot's middle.
        const QFontMetrics metrics = pictureMetrics();
        const QSize ySize(metrics.horizontalAdvance("12.5") + 18, metrics.xHeight() + 14);
        struct
        {
            int startX, startY, areaWidth, areaHeight, xSpacing, ySpacing;
        } l;
        l.startX = ySize.width() + 5;
        l.startY = 10;
        l.areaWidth = 400 - 20 - ySize.width();
        l.areaHeight = 300 - 20 - ySize.height();
        l.xSpacing = l.areaWidth;
        l.ySpacing = l.areaHeight;
        const QPoint dot(l.startX + l.xSpacing / 2, l.ySpacing / 2);
        QCOMPARE(image.pixelColor(dot), line);
        QCOMPARE(image.pixelColor(dot + QPoint(3, 0)), line);
        QCOMPARE(image.pixelColor(dot + QPoint(0, 3)), line);

        // One grid line, through the dot.
        const int gridY = l.ySpacing / 2;
        QCOMPARE(redRows(image, l.startX + 5, l.startY, l.startY + l.areaHeight), QList<int>({ gridY - 1, gridY }));

        // No segment: the line colour is only found on the dot.
        for (int y = l.startY; y < l.startY + l.areaHeight; ++y) {
            for (int x = l.startX; x < l.startX + l.areaWidth; ++x) {
                if (qAbs(x - dot.x()) > 6 || qAbs(y - dot.y()) > 6)
                    QVERIFY(image.pixelColor(x, y).green() == 0);
            }
        }

        // One y label, right-aligned left of the area in its row, and one x label under the area.
        const QRect yText = textBounds(image, QRect(1, 1, l.startX - 2, 298));
        QVERIFY(!yText.isEmpty());
        QVERIFY(yText.top() >= 0 && yText.bottom() < l.ySpacing);
        QVERIFY(yText.right() < ySize.width() && yText.right() >= ySize.width() - 4);
        const QRect xText =
            textBounds(image, QRect(l.startX, l.startY + l.areaHeight + 1, l.areaWidth, 298 - l.startY - l.areaHeight));
        QVERIFY(!xText.isEmpty());
        QVERIFY(qAbs(xText.center().x() - dot.x()) <= 2);
    }

    void twoPointsTakeTheMiddlesOfTwoSlotsEachWay()
    {
        ZRLineGraph graph;
        useDistinctColours(graph);
        fill(graph, { { "Mon", "5" }, { "Tue", "40" } });
        graph.setSortY(true);
        graph.resize(400, 300);
        const QImage image = picture(graph);

        // Two labels each way: two columns and two rows of the plot area,
        // 40 on top; each dot in the middle of its column and its row.
        const QFontMetrics metrics = pictureMetrics();
        const QSize xSize(metrics.horizontalAdvance("Mon") + 18, metrics.xHeight() + 14);
        const QSize ySize(metrics.horizontalAdvance("40") + 18, metrics.xHeight() + 14);
        QVERIFY(metrics.horizontalAdvance("Tue") <= xSize.width() - 18);
        const int startX = ySize.width() + 5;
        const int xSpacing = (400 - 20 - ySize.width()) / 2;
        const int ySpacing = (300 - 20 - ySize.height()) / 2;
        const QPoint monday(startX + xSpacing / 2, ySpacing + ySpacing / 2);
        const QPoint tuesday(startX + xSpacing + xSpacing / 2, ySpacing / 2);

        QCOMPARE(image.pixelColor(monday), line);
        QCOMPARE(image.pixelColor(tuesday), line);
        // The line between them, and nothing in the other two slots.
        QVERIFY(image.pixelColor((monday + tuesday) / 2).green() > 200);
        QCOMPARE(image.pixelColor(monday.x(), tuesday.y()).green(), 0);
        QCOMPARE(image.pixelColor(tuesday.x(), monday.y()).green(), 0);
        QCOMPARE(expectedGraphLayout({ { "Mon", "5" }, { "Tue", "40" } }, QSize(400, 300), false, true).dots,
                 QList<QPoint>({ monday, tuesday }));
    }

    void aThinnedGraphSpreadsItsDotsOverTheLabelsRoom()
    {
        // Thirty days do not fit under a graph 400 wide: some labels go, and
        // the thirty dots spread evenly over the room of those that stay.
        Points points;
        for (int i = 0; i < 30; ++i)
            points.append({ QString("Day %1").arg(i, 2, 10, QLatin1Char('0')), QString::number(i % 7 * 10) });
        ZRLineGraph graph;
        fill(graph, points);
        graph.setSortY(true);
        graph.resize(400, 300);
        const GraphPictureLayout expected = expectedGraphLayout(points, QSize(400, 300), false, true);
        QVERIFY(expected.xLabels.size() < 30);
        QCOMPARE(expected.xLabels.last(), QString("Day 29"));
        QCOMPARE(graphPictureMismatch(picture(graph), expected), QString());
        QCOMPARE(graphPictureMismatch(saved(graph, QSize(400, 300)), expected), QString());

        // The same dots laid out without thinning would stand elsewhere.
        GraphPictureLayout unthinned = expected;
        for (int i = 0; i < 30; ++i)
            unthinned.dots[i].setX(expected.plotArea.left() + i * (expected.plotArea.width() / 30) +
                                   expected.plotArea.width() / 60);
        QVERIFY(!graphPictureMismatch(picture(graph), unthinned).isEmpty());
    }

    void gridLinesAndLabelRowsAreMeasuredFromTheTopOfThePicture()
    {
        ZRLineGraph graph;
        useDistinctColours(graph);
        fill(graph, threeDays);
        graph.setSortY(true);
        graph.resize(400, 300);
        const QImage image = picture(graph);
        const GraphPictureLayout layout = expectedGraphLayout(threeDays, QSize(400, 300), false, true);
        QCOMPARE(layout.yLabels.size(), 3);
        const QRect area = layout.plotArea;
        struct
        {
            int startX, startY, areaWidth, areaHeight, ySpacing;
        } l { area.left(), area.top(), area.width(), area.height(), layout.ySpacing };

        QList<int> expected;
        for (int i = 0; i < 3; ++i)
            expected << i * l.ySpacing + l.ySpacing / 2 - 1 << i * l.ySpacing + l.ySpacing / 2;
        QCOMPARE(redRows(image, l.startX + 5, 1, l.startY + l.areaHeight), expected);
        QCOMPARE(redRows(image, l.startX + l.areaWidth - 3, 1, l.startY + l.areaHeight), expected);

        for (int i = 0; i < 3; ++i) {
            const QRect label = textBounds(image, QRect(1, i * l.ySpacing, l.startX - 2, l.ySpacing));
            QVERIFY(!label.isEmpty());
            QVERIFY(qAbs(label.center().y() - (i * l.ySpacing + l.ySpacing / 2)) <= 2);
        }
    }

    void sortedYPutsTheGreatestValueOnTop()
    {
        for (bool sortY : { true, false }) {
            ZRLineGraph graph;
            useDistinctColours(graph);
            fill(graph, threeDays);
            graph.setSortY(sortY);
            QCOMPARE(graph.sortY(), sortY);
            graph.resize(400, 300);
            const QImage image = picture(graph);
            const GraphPictureLayout l = expectedGraphLayout(threeDays, QSize(400, 300), false, sortY);
            const int top = l.ySpacing / 2;
            const int bottom = 2 * l.ySpacing + l.ySpacing / 2;
            const int monday = l.plotArea.left() + l.xSpacing / 2;
            const int wednesday = l.plotArea.left() + 2 * l.xSpacing + l.xSpacing / 2;
            QCOMPARE(l.dots.at(0), QPoint(monday, sortY ? bottom : top));
            QCOMPARE(l.dots.at(2), QPoint(wednesday, sortY ? top : bottom));
            QCOMPARE(image.pixelColor(wednesday, sortY ? top : bottom), line);
            QCOMPARE(image.pixelColor(monday, sortY ? bottom : top), line);
            QCOMPARE(image.pixelColor(wednesday, sortY ? bottom : top).green(), 0);
        }
    }

    void pointsWithTheSameXShareAColumnAndWithTheSameYARow()
    {
        const Points points = { { "Mon", "5" }, { "Mon", "7" }, { "Tue", "7" } };
        const GraphPictureLayout l = expectedGraphLayout(points, QSize(400, 300), false, false);
        QCOMPARE(l.xLabels, QStringList({ "Mon", "Tue" }));
        QCOMPARE(l.yLabels, QStringList({ "5", "7" }));
        const QList<QPoint> positions = l.dots;
        QCOMPARE(positions[0].x(), positions[1].x());
        QCOMPARE(positions[1].y(), positions[2].y());
        QVERIFY(positions[0].y() != positions[1].y());
        QVERIFY(positions[1].x() != positions[2].x());

        ZRLineGraph graph;
        useDistinctColours(graph);
        fill(graph, points);
        graph.resize(400, 300);
        const QImage image = picture(graph);
        for (const QPoint &position : positions)
            QCOMPARE(image.pixelColor(position), line);
        // No point at (Tue, 5).
        QCOMPARE(image.pixelColor(positions[2].x(), positions[0].y()).green(), 0);
    }

    void theLineJoinsThePointsInListOrder()
    {
        // Sorted x puts the second point in the last column: the line goes
        // right, then back left, and never straight from the first point to
        // the third.
        const Points points = { { "1", "a" }, { "3", "b" }, { "2", "c" } };
        ZRLineGraph graph;
        useDistinctColours(graph);
        fill(graph, points);
        graph.setSortX(true);
        QVERIFY(graph.sortX());
        graph.resize(400, 300);
        const QImage image = picture(graph);
        const GraphPictureLayout l = expectedGraphLayout(points, QSize(400, 300), true, false);
        auto column = [&](double c) { return l.plotArea.left() + int(c * l.xSpacing) + l.xSpacing / 2; };
        auto row = [&](double r) { return int(r * l.ySpacing) + l.ySpacing / 2; };
        QCOMPARE(image.pixelColor(column(0), row(0)), line);
        QCOMPARE(image.pixelColor(column(2), row(1)), line);
        QCOMPARE(image.pixelColor(column(1), row(2)), line);
        QCOMPARE(image.pixelColor(column(1), row(0.5)), line);
        QCOMPARE(image.pixelColor(column(1.5), row(1.5)), line);
        QCOMPARE(image.pixelColor(column(0.5), row(1)).green(), 0);
    }

    void aLongLineJoinsEveryPairOfNeighbours()
    {
        Points points;
        for (int i = 0; i < 40; ++i)
            points.append({ QString("d%1").arg(i, 2, 10, QLatin1Char('0')), QString::number(i % 2 ? 100 : 1) });
        ZRLineGraph graph;
        useDistinctColours(graph);
        fill(graph, points);
        graph.setSortY(true);
        graph.resize(820, 200);
        const QImage image = picture(graph);
        // Forty days cannot all be labelled: the dots spread over the labels' room.
        const GraphPictureLayout l = expectedGraphLayout(points, QSize(820, 200), false, true);
        QVERIFY(l.xLabels.size() < 40);
        QPoint previous;
        for (int i = 0; i < points.size(); ++i) {
            const QPoint position = l.dots.at(i);
            QCOMPARE(image.pixelColor(position), line);
            if (i > 0) {
                // Slanted segments cover their middle pixel almost, not quite, fully.
                const QColor middle = image.pixelColor((previous + position) / 2);
                QVERIFY2(middle.green() > 200 && middle.red() < 40 && middle.blue() < 60,
                         qPrintable(QString::number(i)));
            }
            previous = position;
        }
    }

    void insertPutsAPointAtTheGivenPlaceInTheList()
    {
        ZRLineGraph inserted;
        inserted.append(ZRLineGraphData("Mon", "1"));
        inserted.append(ZRLineGraphData("Wed", "3"));
        inserted.insert(1, ZRLineGraphData("Tue", "2"));
        ZRLineGraph inOrder;
        fill(inOrder, { { "Mon", "1" }, { "Tue", "2" }, { "Wed", "3" } });
        ZRLineGraph appended;
        fill(appended, { { "Mon", "1" }, { "Wed", "3" }, { "Tue", "2" } });
        for (ZRLineGraph *graph : { &inserted, &inOrder, &appended })
            graph->resize(300, 200);
        QCOMPARE(picture(inserted), picture(inOrder));
        QVERIFY(picture(inserted) != picture(appended));
    }

    void dataKeepsItsTextsAndCanChangeThem()
    {
        ZRLineGraphData point("Mon", "5");
        QCOMPARE(point.x(), QString("Mon"));
        QCOMPARE(point.y(), QString("5"));
        point.setX("Tue");
        point.setY("40");
        const ZRLineGraphData copy = point;
        QCOMPARE(copy.x(), QString("Tue"));
        QCOMPARE(copy.y(), QString("40"));
    }

    // Cache

    void theCacheIsSizedFromThePaintEventsRectangle()
    {
        ZRLineGraph graph;
        fill(graph, threeDays);
        graph.resize(400, 300);
        picture(graph, QRegion(0, 0, 200, 100));
        // The whole widget now shows the picture laid out for 200 x 100.
        const QImage image = picture(graph);
        const QImage small = saved(graph, QSize(200, 100));
        QCOMPARE(image.copy(0, 0, 200, 100), small);
        QVERIFY(isGreyAtLeast(image.pixelColor(199, 50), 100));

        // A resize lays it out for the whole widget again.
        graph.resize(401, 300);
        QCOMPARE(picture(graph), saved(graph, QSize(401, 300)));
    }

    void repaintsCopyTheCachedPictureUntilTheGraphChanges_data()
    {
        QTest::addColumn<QString>("change");
        for (const char *change : { "append", "insert", "setSortX", "setSortY", "setGraphBorder", "setGraphBackground",
                                    "setTextColor", "setGraphLine", "setBackground", "setBorder", "resize" })
            QTest::newRow(change) << QString(change);
    }

    void repaintsCopyTheCachedPictureUntilTheGraphChanges()
    {
        QFETCH(QString, change);
        ZRLineGraph graph;
        fill(graph, { { "b", "5" }, { "a", "40" }, { "c", "300" } });
        graph.resize(400, 300);
        const QImage full = picture(graph);
        const QRegion corner(0, 0, 200, 100);

        // An exposure of a corner copies from the whole picture.
        QCOMPARE(picture(graph, corner).copy(0, 0, 200, 100), full.copy(0, 0, 200, 100));
        QVERIFY(full.copy(0, 0, 200, 100) != saved(graph, QSize(200, 100)));

        if (change == "append")
            graph.append(ZRLineGraphData("d", "7"));
        else if (change == "insert")
            graph.insert(0, ZRLineGraphData("d", "7"));
        else if (change == "setSortX")
            graph.setSortX(true);
        else if (change == "setSortY")
            graph.setSortY(true);
        else if (change == "setGraphBorder")
            graph.setGraphBorder(Qt::red);
        else if (change == "setGraphBackground")
            graph.setGraphBackground(Qt::blue);
        else if (change == "setTextColor")
            graph.setTextColor(Qt::yellow);
        else if (change == "setGraphLine")
            graph.setGraphLine(Qt::green);
        else if (change == "setBackground")
            graph.setBackground(Qt::darkCyan);
        else if (change == "setBorder")
            graph.setBorder(Qt::magenta);
        else if (change == "resize")
            graph.resize(410, 300);
        else
            QFAIL("unknown change");

        // The next exposure renders afresh, at the exposed size.
        QCOMPARE(picture(graph, corner).copy(0, 0, 200, 100), saved(graph, QSize(200, 100)));
    }

    void theDefaultLookIsAnOrangeLineOnDarkGreyInsideBlack()
    {
        ZRLineGraph graph;
        fill(graph, { { "Mon", "1" } });
        QVERIFY(!graph.sortX());
        QVERIFY(!graph.sortY());
        graph.resize(300, 200);
        const QImage image = picture(graph);
        const GraphPictureLayout l = expectedGraphLayout({ { "Mon", "1" } }, QSize(300, 200), false, false);
        QCOMPARE(graphPictureMismatch(image, l), QString());
        QCOMPARE(image.pixelColor(l.dots.at(0)), QColor(246, 146, 64));
        QCOMPARE(image.pixelColor(l.plotArea.center().x(), l.plotArea.bottom() - 4), QColor(63, 63, 63));
        QCOMPARE(image.pixelColor(5, 195), QColor(0, 0, 0));
        // The grid line: half of (134, 134, 134) on each of two rows of grey.
        const QColor grid = image.pixelColor(l.plotArea.left() + 5, l.ySpacing / 2);
        QVERIFY(isGreyAtLeast(grid, 90));
        QVERIFY(grid.red() < 134);
        int white = 0;
        for (int y = 1; y < l.ySpacing; ++y) {
            for (int x = 1; x < l.plotArea.left() - 3; ++x)
                white += image.pixelColor(x, y) == QColor(255, 255, 255) ? 1 : 0;
        }
        QVERIFY(white > 3);
    }

    // Saving

    void saveWritesAPictureOfTheRequestedSizeAndLeavesTheWidgetsPictureAlone()
    {
        ZRLineGraph graph;
        fill(graph, threeDays);
        graph.setSortY(true);
        graph.resize(400, 300);
        const QImage before = picture(graph);

        QTemporaryDir dir;
        const QString fileName = dir.filePath("QtDateWiseDailyLineGraph.png");
        QVERIFY(graph.save(fileName, QSize(640, 200)));
        QFile file(fileName);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.read(8).startsWith("\x89PNG"));
        const QImage written(fileName);
        QCOMPARE(written.size(), QSize(640, 200));
        // Laid out for its own size: the outline runs along its right edge,
        // and the plot area and the dots stand where the rules put them.
        QVERIFY(isGreyAtLeast(written.pixelColor(639, 100), 100));
        QCOMPARE(written.pixelColor(632, 100), QColor(0, 0, 0));
        QCOMPARE(graphPictureMismatch(written, expectedGraphLayout(threeDays, QSize(640, 200), false, true)),
                 QString());

        // The widget still copies the picture it had, even for a partial exposure.
        QCOMPARE(picture(graph, QRegion(0, 0, 200, 100)).copy(0, 0, 200, 100), before.copy(0, 0, 200, 100));
        QCOMPARE(picture(graph), before);
        // At the widget's size the saved picture is the widget's picture.
        QCOMPARE(saved(graph, QSize(400, 300)), before);
    }

    void aSavedGraphIsNotABlankPicture()
    {
        ZRLineGraph graph;
        fill(graph, threeDays);
        graph.setSortY(true);
        const QImage written = saved(graph, QSize(401, 281));
        QCOMPARE(written.size(), QSize(401, 281));
        QCOMPARE(graphPictureMismatch(written, expectedGraphLayout(threeDays, QSize(401, 281), false, true)),
                 QString());
        // Checked the other way round: a black picture shows no graph.
        QImage black(401, 281, QImage::Format_ARGB32);
        black.fill(Qt::black);
        QVERIFY(!graphPictureMismatch(black, expectedGraphLayout(threeDays, QSize(401, 281), false, true)).isEmpty());
    }

    void saveTakesTheFormatFromTheSuffix()
    {
        ZRLineGraph graph;
        fill(graph, threeDays);
        QTemporaryDir dir;
        const QString fileName = dir.filePath("graph.bmp");
        QVERIFY(graph.save(fileName, QSize(120, 80)));
        QFile file(fileName);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.read(2), QByteArray("BM"));
        QCOMPARE(QImage(fileName).size(), QSize(120, 80));
    }

    void saveReportsAFailedWrite()
    {
        ZRLineGraph graph;
        fill(graph, threeDays);
        const QString missingDir = "/nonexistent-ledgerly-dir/graph.png";
        QVERIFY(!graph.save(missingDir, QSize(200, 100)));
        QVERIFY(!QFile::exists(missingDir));
        QVERIFY(!graph.save("/proc/ledgerly-graph.png", QSize(200, 100)));
        QTemporaryDir dir;
        QVERIFY(!graph.save(dir.filePath("empty.png"), QSize(0, 0)));
        QVERIFY(!QFile::exists(dir.filePath("empty.png")));
    }

    void aScreenReaderHearsTheGraphsPointsLabelsAndRange()
    {
        ZRLineGraph graph;
        graph.append(ZRLineGraphData(QStringLiteral("Mon Mar 2 2026"), QStringLiteral("12.5")));
        graph.append(ZRLineGraphData(QStringLiteral("Tue Mar 3 2026"), QStringLiteral("3")));
        graph.append(ZRLineGraphData(QStringLiteral("Wed Mar 4 2026"), QStringLiteral("40")));
        graph.append(ZRLineGraphData(QStringLiteral("Thu Mar 5 2026"), QStringLiteral("7")));
        graph.resize(401, 281);
        graph.show();
        QVERIFY(QTest::qWaitForWindowExposed(&graph));
        QAccessibleInterface *told = QAccessible::queryAccessibleInterface(&graph);
        QVERIFY(told);
        QCOMPARE(told->text(QAccessible::Name), QStringLiteral("Line graph"));
        // Compared as numbers: "40" is the highest though "7" sorts after it.
        QCOMPARE(told->text(QAccessible::Description),
                 QStringLiteral("4 points from Mon Mar 2 2026 to Thu Mar 5 2026; lowest 3, highest 40"));
        QCOMPARE(ZRLineGraph::description({}), QStringLiteral("No points"));
        QCOMPARE(ZRLineGraph::description({ ZRLineGraphData(QStringLiteral("Food"), QStringLiteral("2")) }),
                 QStringLiteral("1 point from Food to Food; lowest 2, highest 2"));
        graph.close();
    }

    // Last, after every chart above was drawn: the charts need no web
    // engine, which only the maps link.
    void theChartsRunWithoutTheWebEngine() { QCOMPARE(loadedWebEngineLibraries(), QStringList()); }
};

QTEST_MAIN(TestLineGraph)
#include "tst_linegraph.moc"
