// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "graphpicture.h"

#include <QFontMetrics>
#include <QPainter>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

const QColor defaultBackground(0, 0, 0);
const QColor defaultPlot(63, 63, 63);
const QColor defaultLine(246, 146, 64);

// Numbers by value, other texts by their lower-case form.
bool lessThan(const QString &a, const QString &b)
{
    bool aIsNumber = false;
    bool bIsNumber = false;
    const double x = a.toDouble(&aIsNumber);
    const double y = b.toDouble(&bIsNumber);
    if (aIsNumber && bIsNumber)
        return x < y;
    return a.toLower() < b.toLower();
}

bool greaterThan(const QString &a, const QString &b)
{
    return lessThan(b, a);
}

QStringList distinctTexts(const GraphPoints &points, bool useY, bool sort)
{
    QStringList texts;
    for (const auto &point : points) {
        const QString &text = useY ? point.second : point.first;
        if (!texts.contains(text))
            texts.append(text);
    }
    // y runs from the greatest value at the top down.
    if (sort)
        std::stable_sort(texts.begin(), texts.end(), useY ? greaterThan : lessThan);
    return texts;
}

// Every step-th text from the first, where step is the count divided by the
// room, rounded up; the last text is always kept, in place of the last
// sample when the room is full. No room keeps only the last text; room
// below zero keeps all.
QStringList thinned(const QStringList &texts, int room)
{
    if (texts.isEmpty() || room < 0)
        return texts;
    if (room == 0)
        return { texts.last() };
    const int step = int(std::ceil(double(float(texts.size()) / float(room))));
    if (step <= 1)
        return texts;
    QStringList kept;
    for (int i = 0; i < texts.size(); i += step)
        kept.append(texts.at(i));
    if (kept.last() != texts.last()) {
        if (kept.size() >= room)
            kept.removeLast();
        kept.append(texts.last());
    }
    return kept;
}

bool isOrange(const QColor &pixel)
{
    // The line's orange and its blends with the greys and black around it
    // are the only colours of the default look whose red exceeds its blue.
    return pixel.red() - pixel.blue() > 30;
}

double distanceToSegment(const QPointF &p, const QPointF &a, const QPointF &b)
{
    const QPointF ab = b - a;
    const double length2 = QPointF::dotProduct(ab, ab);
    const double t = length2 > 0 ? std::clamp(QPointF::dotProduct(p - a, ab) / length2, 0.0, 1.0) : 0.0;
    const QPointF nearest = a + t * ab;
    return std::hypot(p.x() - nearest.x(), p.y() - nearest.y());
}

QString colourText(const QColor &colour)
{
    return QStringLiteral("(%1, %2, %3)").arg(colour.red()).arg(colour.green()).arg(colour.blue());
}

} // namespace

QFontMetrics graphPictureFontMetrics()
{
    QImage image(10, 10, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setFont(QFont(painter.font().family(), 12));
    const QFontMetrics metrics = painter.fontMetrics();
    painter.end();
    return metrics;
}

GraphPictureLayout expectedGraphLayout(const GraphPoints &points, const QSize &size, bool sortX, bool sortY)
{
    const QFontMetrics metrics = graphPictureFontMetrics();
    GraphPictureLayout l;
    // Each label box: the widest text plus 18, the x-height plus 14.
    int widestX = 0;
    int widestY = 0;
    for (const auto &point : points) {
        widestX = qMax(widestX, metrics.horizontalAdvance(point.first));
        widestY = qMax(widestY, metrics.horizontalAdvance(point.second));
    }
    l.xLabelSize = QSize(widestX + 18, metrics.xHeight() + 14);
    l.yLabelSize = QSize(widestY + 18, metrics.xHeight() + 14);

    // A margin of 20 on each axis; room for labels bounded by the points.
    const int height = size.height() - 20;
    const int width = size.width() - 20;
    const int n = int(points.size());
    const QStringList allX = distinctTexts(points, false, sortX);
    const QStringList allY = distinctTexts(points, true, sortY);
    l.yLabels = thinned(allY, qMin(n, (height - l.xLabelSize.height()) / l.yLabelSize.height()));
    l.xLabels = thinned(allX, qMin(n, (width - l.yLabelSize.width()) / l.xLabelSize.width()));

    // The plot area sits right of the y labels, 10 below the top.
    l.plotArea = QRect(l.yLabelSize.width() + 5, 10, width - l.yLabelSize.width(), height - l.yLabelSize.height());
    l.ySpacing = l.yLabels.isEmpty() ? 0 : l.plotArea.height() / int(l.yLabels.size());
    l.xSpacing = l.xLabels.isEmpty() ? 0 : l.plotArea.width() / int(l.xLabels.size());

    // A point takes the rank of its texts among all of them; the ranks are
    // spread over the labels' room, and rows count from the picture's top.
    const float xFactor = allX.isEmpty() ? 0.0f : float(l.xLabels.size()) / float(allX.size());
    const float yFactor = allY.isEmpty() ? 0.0f : float(l.yLabels.size()) / float(allY.size());
    for (const auto &point : points) {
        const int x = int(float(allX.indexOf(point.first)) * (float(l.xSpacing) * xFactor));
        const int y = int(float(allY.indexOf(point.second)) * (float(l.ySpacing) * yFactor));
        l.dots.append(QPoint(l.plotArea.left() + int(float(x) + float(l.xSpacing / 2) * xFactor),
                             int(float(y) + float(l.ySpacing / 2) * yFactor)));
    }
    return l;
}

QString graphPictureMismatch(const QImage &picture, const GraphPictureLayout &layout)
{
    const QImage image = picture.convertToFormat(QImage::Format_ARGB32);
    if (image.isNull())
        return QStringLiteral("no picture");
    QStringList differences;
    const QPoint background(2, image.height() - 3);
    if (image.pixelColor(background) != defaultBackground)
        differences.append(QStringLiteral("background at (2, %1) is %2")
                               .arg(background.y())
                               .arg(colourText(image.pixelColor(background))));
    const QPoint plot = layout.plotArea.bottomRight() - QPoint(2, 2);
    if (image.pixelColor(plot) != defaultPlot)
        differences.append(QStringLiteral("plot area at (%1, %2) is %3")
                               .arg(plot.x())
                               .arg(plot.y())
                               .arg(colourText(image.pixelColor(plot))));

    for (int i = 0; i < layout.dots.size(); ++i) {
        const QPoint dot = layout.dots.at(i);
        // Dots outside the plot area are cut off.
        if (layout.plotArea.contains(dot) && image.pixelColor(dot) != defaultLine)
            differences.append(QStringLiteral("dot %1 at (%2, %3) is %4")
                                   .arg(i)
                                   .arg(dot.x())
                                   .arg(dot.y())
                                   .arg(colourText(image.pixelColor(dot))));
    }

    // A dot has a radius of 5 around its point and the line a width of 3,
    // both smoothed; points lie on pixel corners.
    int stray = 0;
    QPoint firstStray;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (!isOrange(image.pixelColor(x, y)))
                continue;
            const QPointF centre(x + 0.5, y + 0.5);
            bool reached = false;
            for (int i = 0; i < layout.dots.size() && !reached; ++i) {
                const QPointF from(layout.dots.at(i));
                const QPointF to(layout.dots.at(qMin(i + 1, int(layout.dots.size()) - 1)));
                reached = distanceToSegment(centre, from, to) < 6.5;
            }
            if (!reached && stray++ == 0)
                firstStray = QPoint(x, y);
        }
    }
    if (stray > 0)
        differences.append(QStringLiteral("%1 orange pixels away from the dots and the line, the first at (%2, %3)")
                               .arg(stray)
                               .arg(firstStray.x())
                               .arg(firstStray.y()));
    return differences.join(QStringLiteral("; "));
}
