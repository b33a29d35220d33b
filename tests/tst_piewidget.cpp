// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "piewidget.h"
#include "testsupport.h"
#include "widgettest.h"

#include <QAccessible>
#include <QColor>
#include <QFontMetrics>
#include <QImage>
#include <QtMath>
#include <QtTest>

#include <limits>

namespace {

const QColor background(1, 2, 3);

// The widget's own picture over a known background.
QImage picture(PieWidget &pie, QWidget::RenderFlags flags = QWidget::RenderFlags())
{
    QImage image(pie.size(), QImage::Format_ARGB32);
    image.fill(background);
    pie.render(&image, QPoint(), QRegion(), flags);
    return image;
}

QColor namedColor(int index)
{
    const QStringList names = QColor::colorNames();
    return QColor(names.at(index % names.size()));
}

// Where a pixel lies on the way from base (0) to white (1), or -1 when it is
// not on that way at all.
double sheenPosition(const QColor &pixel, const QColor &base)
{
    const int channels[3] = { base.red(), base.green(), base.blue() };
    const int values[3] = { pixel.red(), pixel.green(), pixel.blue() };
    int widest = 0;
    for (int c = 1; c < 3; ++c) {
        if (255 - channels[c] > 255 - channels[widest])
            widest = c;
    }
    const double t = double(values[widest] - channels[widest]) / (255 - channels[widest]);
    if (t < -0.03 || t > 1.03)
        return -1;
    for (int c = 0; c < 3; ++c) {
        const double expected = channels[c] + t * (255 - channels[c]);
        if (qAbs(expected - values[c]) > 6)
            return -1;
    }
    return t;
}

bool onSheen(const QColor &pixel, const QColor &base)
{
    return sheenPosition(pixel, base) >= 0;
}

// A point of the pie of a widget of height side, at the angle in degrees
// (counter-clockwise from three o'clock) and the fraction of the radius.
QPoint piePoint(int side, double degrees, double fraction)
{
    const double r = side / 2.0 * fraction;
    const double a = qDegreesToRadians(degrees);
    return QPoint(qRound(side / 2.0 + r * qCos(a)), qRound(side / 2.0 - r * qSin(a)));
}

struct Entry
{
    QString label;
    int value;
};

QList<Entry> drawingOrder(const PieWidget &pie)
{
    QList<Entry> order;
    const QHash<QString, int> &entries = pie.entries();
    for (auto it = entries.cbegin(); it != entries.cend(); ++it)
        order.append({ it.key(), it.value() });
    return order;
}

} // namespace

class TestPieWidget : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    void cleanup() { VERIFY_NO_WIDGETS_LEFT(); }

    void sizeHintIsTheLegendHeightAndThePieBesideTheLongestLabel()
    {
        PieWidget pie;
        pie.addEntry("Food", 10);
        pie.addEntry("Entertainment and leisure", 20);
        pie.addEntry("Rent", 30);
        const QFontMetrics metrics = pie.fontMetrics();
        const int height = 3 * 2 * metrics.height();
        const int longest = metrics.horizontalAdvance("Entertainment and leisure");
        const QSize expected(longest + height + metrics.horizontalAdvance("x") + 20, height);
        QCOMPARE(pie.minimumSizeHint(), expected);
        QCOMPARE(pie.sizeHint(), expected);
    }

    void anEmptyPieHintsOnlyTheMarginAndPaintsNothing()
    {
        PieWidget pie;
        QCOMPARE(pie.sizeHint(), QSize(pie.fontMetrics().horizontalAdvance("x") + 20, 0));
        pie.resize(300, 200);
        const QImage image = picture(pie);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                QCOMPARE(image.pixelColor(x, y), background);
        }
    }

    void spansFollowEachValuesShareOfTheTotal_data()
    {
        QTest::addColumn<QList<int>>("values");
        QTest::addColumn<QList<int>>("spans");
        QTest::newRow("a single value is a full turn") << QList<int> { 7 } << QList<int> { 5760 };
        QTest::newRow("three equal values") << QList<int> { 1, 1, 1 } << QList<int> { 1920, 1920, 1920 };
        QTest::newRow("one and two") << QList<int> { 1, 2 } << QList<int> { 1920, 3840 };
        QTest::newRow("seven equal values are truncated")
            << QList<int> { 1, 1, 1, 1, 1, 1, 1 } << QList<int> { 822, 822, 822, 822, 822, 822, 822 };
        QTest::newRow("a zero value has no span") << QList<int> { 0, 5 } << QList<int> { 0, 5760 };
        QTest::newRow("a negative value turns the other way and reduces the total")
            << QList<int> { 3, -1 } << QList<int> { 8640, -2880 };
        QTest::newRow("all values zero") << QList<int> { 0, 0 } << QList<int> {};
        QTest::newRow("values that cancel out") << QList<int> { 4, -4 } << QList<int> {};
        QTest::newRow("no values") << QList<int> {} << QList<int> {};
        // The total of two values near the largest int does not fit an int.
        QTest::newRow("two of the largest values share the turn")
            << QList<int> { std::numeric_limits<int>::max(), std::numeric_limits<int>::max() }
            << QList<int> { 2880, 2880 };
        // A total of 1 makes shares of hundreds of millions of turns.
        QTest::newRow("shares beyond an int take the nearest int")
            << QList<int> { std::numeric_limits<int>::max(), 1 - std::numeric_limits<int>::max() }
            << QList<int> { std::numeric_limits<int>::max(), std::numeric_limits<int>::min() };
    }

    void aPieOfValuesBeyondEveryTurnStillDrawsItsLegend()
    {
        // The same shares painted: every angle stays defined, and the legend
        // shows both rows.
        PieWidget pie;
        pie.addEntry(QStringLiteral("Huge"), std::numeric_limits<int>::max());
        pie.addEntry(QStringLiteral("Refund"), 1 - std::numeric_limits<int>::max());
        pie.addEntry(QStringLiteral("Small"), 7);
        pie.resize(pie.sizeHint().width() + 100, qMax(pie.sizeHint().height(), 60));
        const QImage image = pie.grab().toImage();
        const int fh = pie.fontMetrics().height();
        const int legendX = pie.height() + 10;
        for (int row = 0; row < 3; ++row) {
            const QColor swatch = image.pixelColor(legendX + 1, 10 + row * 2 * fh + 1);
            QVERIFY2(swatch != image.pixelColor(pie.width() - 1, pie.height() - 1),
                     qPrintable(QStringLiteral("legend row %1 is not drawn").arg(row)));
        }
    }

    void spansFollowEachValuesShareOfTheTotal()
    {
        QFETCH(QList<int>, values);
        QFETCH(QList<int>, spans);
        QCOMPARE(PieWidget::pieSpans(values), spans);
    }

    void sevenEqualValuesLeaveASixUnitGap()
    {
        const QList<int> spans = PieWidget::pieSpans({ 1, 1, 1, 1, 1, 1, 1 });
        int sum = 0;
        for (int span : spans)
            sum += span;
        QCOMPARE(5760 - sum, 6);
    }

    void aSingleEntryIsAFullDiscWithOneLegendRow()
    {
        PieWidget pie;
        pie.addEntry("Food", 42);
        pie.resize(400, 200);
        const QImage image = picture(pie);
        const QColor cadetBlue("cadetblue");
        for (int degrees = 0; degrees < 360; degrees += 15) {
            const QPoint p = piePoint(200, degrees, 0.9);
            QVERIFY2(onSheen(image.pixelColor(p), cadetBlue), qPrintable(QString::number(degrees)));
        }
        // Just below three o'clock, where a truncated pie would leave its gap.
        QVERIFY(onSheen(image.pixelColor(piePoint(200, -0.5, 0.9)), cadetBlue));

        const int fh = pie.fontMetrics().height();
        QVERIFY(onSheen(image.pixelColor(200 + 10 + 1, 10 + 1), cadetBlue));
        QCOMPARE(image.pixelColor(200 + 10 + 1, 10 + 2 * fh + 1), background);
    }

    void theFirstSliceIsCadetBlueTurningWhiteTowardsTheUpperLeft()
    {
        PieWidget pie;
        pie.addEntry("Rent", 3);
        pie.resize(200, 200);
        const QImage image = picture(pie);
        const QColor cadetBlue("cadetblue");
        QCOMPARE(cadetBlue, QColor(95, 158, 160));

        // Along the diagonal from the lower right rim to the upper left rim the
        // colour stays on the way from cadet blue to white and only gets lighter.
        double previous = -1;
        for (double fraction = -0.95; fraction <= 0.95; fraction += 0.1) {
            const double t = sheenPosition(image.pixelColor(piePoint(200, 135, fraction)), cadetBlue);
            QVERIFY2(t >= 0, qPrintable(QString::number(fraction)));
            QVERIFY(t >= previous - 0.01);
            previous = t;
        }
        QVERIFY(sheenPosition(image.pixelColor(piePoint(200, 315, 0.95)), cadetBlue) < 0.25);
        QVERIFY(sheenPosition(image.pixelColor(piePoint(200, 135, 0.9)), cadetBlue) > 0.8);
    }

    void slicesAndLegendRowsTakeConsecutiveNamedColoursFromTheFourteenth()
    {
        PieWidget pie;
        pie.addEntry("Food", 1);
        pie.addEntry("Rent", 2);
        pie.addEntry("Travel", 3);
        pie.resize(420, 240);
        const QImage image = picture(pie);
        const QList<Entry> order = drawingOrder(pie);
        QCOMPARE(order.size(), 3);
        const QList<int> spans = PieWidget::pieSpans({ order[0].value, order[1].value, order[2].value });

        const int side = 240;
        const int fh = pie.fontMetrics().height();
        int start = 0;
        for (int i = 0; i < order.size(); ++i) {
            const QColor color = namedColor(13 + i);
            // The middle of the slice, away from the white focus.
            const double middle = (start + spans[i] / 2.0) / 16.0;
            start += spans[i];
            QVERIFY2(onSheen(image.pixelColor(piePoint(side, middle, 0.85)), color), qPrintable(order[i].label));

            const QPoint swatch(side + 10, 10 + i * 2 * fh);
            const double topLeft = sheenPosition(image.pixelColor(swatch + QPoint(1, 1)), color);
            const double bottomRight = sheenPosition(image.pixelColor(swatch + QPoint(fh - 2, fh - 2)), color);
            QVERIFY2(topLeft >= 0 && topLeft < 0.25, qPrintable(order[i].label));
            QVERIFY2(bottomRight > 0.75, qPrintable(order[i].label));
            // A row of spacing below each swatch.
            QCOMPARE(image.pixelColor(swatch + QPoint(fh / 2, fh + 2)), background);
        }
        QCOMPARE(namedColor(13).name(), QColor("cadetblue").name());
    }

    void coloursRestartAtTheSameIndexOnEveryPaint()
    {
        PieWidget pie;
        pie.addEntry("Food", 1);
        pie.addEntry("Rent", 1);
        pie.resize(300, 100);
        const QImage first = picture(pie);
        const QImage second = picture(pie);
        QCOMPARE(second, first);
        QVERIFY(onSheen(second.pixelColor(100 + 10 + 1, 10 + 1), QColor("cadetblue")));
    }

    void theFirstDrawnEntryIsCadetBlueWhateverItsLabel()
    {
        const QStringList labelSets[] = { QStringList { "Food", "Rent" }, QStringList { "Zebra", "Apple", "Mango" } };
        for (const QStringList &labels : labelSets) {
            PieWidget pie;
            for (const QString &label : labels)
                pie.addEntry(label, 1);
            pie.resize(300, 150);
            const QImage image = picture(pie);
            const int fh = pie.fontMetrics().height();
            for (int i = 0; i < labels.size(); ++i) {
                const QColor swatch = image.pixelColor(150 + 10 + 1, 10 + i * 2 * fh + 1);
                QVERIFY2(onSheen(swatch, namedColor(13 + i)), qPrintable(labels.join(',')));
            }
        }
    }

    void addingALabelTwiceKeepsOnlyTheLaterValue()
    {
        PieWidget pie;
        pie.addEntry("Food", 1);
        pie.addEntry("Rent", 1);
        pie.addEntry("Food", 3);
        QCOMPARE(pie.entries().size(), 2);
        QCOMPARE(pie.entries().value("Food"), 3);
        QCOMPARE(pie.sizeHint().height(), 2 * 2 * pie.fontMetrics().height());

        // Food now holds three quarters of the pie, not a half or four fifths.
        pie.resize(200, 200);
        const QImage image = picture(pie);
        const QList<Entry> order = drawingOrder(pie);
        const int foodIndex = order[0].label == "Food" ? 0 : 1;
        const double foodStart = foodIndex == 0 ? 0 : 90;
        const QColor foodColor = namedColor(13 + foodIndex);
        const QColor rentColor = namedColor(13 + 1 - foodIndex);
        QVERIFY(onSheen(image.pixelColor(piePoint(200, foodStart + 260, 0.85)), foodColor));
        QVERIFY(onSheen(image.pixelColor(piePoint(200, foodStart + 280, 0.85)), rentColor));
    }

    void aNegativeValueIsDrawnClockwise()
    {
        // The negative slice shows only when it is drawn last; the map's order
        // depends on the labels, so take the first pair that puts it there.
        for (int attempt = 0; attempt < 64; ++attempt) {
            PieWidget pie;
            const QString refund = QString("Refund %1").arg(attempt);
            pie.addEntry(QString("Food %1").arg(attempt), 3);
            pie.addEntry(refund, -1);
            if (drawingOrder(pie).last().label != refund)
                continue;
            pie.resize(200, 200);
            const QImage image = picture(pie);
            // Food turns one and a half times from three o'clock and ends at
            // nine; the refund turns back clockwise over the top half.
            const QColor foodColor = namedColor(13);
            const QColor refundColor = namedColor(14);
            QVERIFY(onSheen(image.pixelColor(piePoint(200, 90, 0.85)), refundColor));
            QVERIFY(onSheen(image.pixelColor(piePoint(200, 30, 0.85)), refundColor));
            QVERIFY(onSheen(image.pixelColor(piePoint(200, 150, 0.85)), refundColor));
            QVERIFY(onSheen(image.pixelColor(piePoint(200, 270, 0.85)), foodColor));
            QVERIFY(onSheen(image.pixelColor(piePoint(200, 210, 0.85)), foodColor));
            return;
        }
        QFAIL("no label put the refund last in drawing order");
    }

    void aZeroTotalDrawsNoSliceButStillTheLegend()
    {
        PieWidget pie;
        pie.addEntry("Food", 5);
        pie.addEntry("Refund", -5);
        pie.resize(300, 100);
        const QImage image = picture(pie);
        for (int degrees = 0; degrees < 360; degrees += 30)
            QCOMPARE(image.pixelColor(piePoint(100, degrees, 0.5)), background);
        QCOMPARE(image.pixelColor(50, 50), background);
        const int fh = pie.fontMetrics().height();
        QVERIFY(onSheen(image.pixelColor(100 + 10 + 1, 10 + 1), namedColor(13)));
        QVERIFY(onSheen(image.pixelColor(100 + 10 + 1, 10 + 2 * fh + 1), namedColor(14)));
    }

    void thePieIsASquareAsTallAsTheWidgetWhateverItsWidth()
    {
        PieWidget wide;
        wide.addEntry("Food", 1);
        wide.resize(500, 160);
        const QImage wideImage = picture(wide);
        QVERIFY(onSheen(wideImage.pixelColor(155, 80), namedColor(13)));
        QCOMPARE(wideImage.pixelColor(165, 80), background);
        QVERIFY(onSheen(wideImage.pixelColor(80, 3), namedColor(13)));
        // The corners of the square lie outside the disc.
        QCOMPARE(wideImage.pixelColor(3, 3), background);
        QCOMPARE(wideImage.pixelColor(156, 156), background);

        // Narrower than the pie: the disc is cut at the right edge and the
        // legend, at x = 170, lies outside the picture.
        PieWidget narrow;
        narrow.addEntry("Food", 1);
        narrow.resize(120, 160);
        const QImage narrowImage = picture(narrow);
        for (int y = 40; y < 120; y += 10)
            QVERIFY(onSheen(narrowImage.pixelColor(119, y), namedColor(13)));
    }

    void theLegendWritesOnlyTheLabelBesideItsSwatch()
    {
        PieWidget pie;
        pie.addEntry("WWWW", 1);
        pie.resize(400, 100);
        const QImage image = picture(pie, QWidget::DrawWindowBackground);
        const QFontMetrics metrics = pie.fontMetrics();
        const int fh = metrics.height();
        const int textLeft = 100 + 10 + fh + metrics.horizontalAdvance("x");
        const int textRight = textLeft + metrics.horizontalAdvance("WWWW");
        const QColor window = pie.palette().color(QPalette::Window);
        auto inkBetween = [&](int left, int right) {
            int ink = 0;
            for (int y = 10; y < 10 + fh; ++y) {
                for (int x = left; x < right; ++x) {
                    if (image.pixelColor(x, y) != window)
                        ++ink;
                }
            }
            return ink;
        };
        QVERIFY(inkBetween(textLeft, textRight) > 20);
        // No value or share after the label.
        QCOMPARE(inkBetween(textRight + 2, 390), 0);
    }

    void aScreenReaderHearsPieChartAndEachSliceWithItsShare()
    {
        PieWidget pie;
        pie.addEntry(QStringLiteral("Food"), 30);
        pie.addEntry(QStringLiteral("Travel"), 60);
        pie.addEntry(QStringLiteral("Rent"), 10);
        pie.resize(300, 150);
        pie.show();
        QVERIFY(QTest::qWaitForWindowExposed(&pie));
        QAccessibleInterface *told = QAccessible::queryAccessibleInterface(&pie);
        QVERIFY(told);
        QCOMPARE(told->text(QAccessible::Name), QStringLiteral("Pie chart"));
        const QString description = told->text(QAccessible::Description);
        // Thirty of a hundred is 30 per cent, and so on, in no set order.
        QStringList slices = description.split(QStringLiteral("; "));
        slices.sort();
        QCOMPARE(slices, QStringList({ "Food: 30%", "Rent: 10%", "Travel: 60%" }));

        // A third is told to three digits.
        PieWidget thirds;
        thirds.addEntry(QStringLiteral("Food"), 1);
        thirds.addEntry(QStringLiteral("Travel"), 2);
        QVERIFY(thirds.accessibleDescription().contains(QStringLiteral("Food: 33.3%")));
        QVERIFY(thirds.accessibleDescription().contains(QStringLiteral("Travel: 66.7%")));
        pie.close();
    }

    // Last, after every chart above was drawn: the charts need no web
    // engine, which only the maps link.
    void theChartsRunWithoutTheWebEngine() { QCOMPARE(loadedWebEngineLibraries(), QStringList()); }
};

QTEST_MAIN(TestPieWidget)
#include "tst_piewidget.moc"
