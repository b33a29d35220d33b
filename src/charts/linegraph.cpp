// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "linegraph.h"
#include "linegraph_p.h"

#include <QFont>
#include <QFontMetrics>
#include <QHash>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// A text with what both comparators need from it, worked out once, so that
// sorting thousands of values does not parse every text on every comparison.
struct SortKey
{
    QString text;
    QString lower;
    double number = 0;
    bool isNumber = false;
};

SortKey sortKey(const QString &text)
{
    SortKey key;
    key.text = text;
    key.lower = text.toLower();
    key.number = text.toDouble(&key.isNumber);
    return key;
}

bool keyLessThan(const SortKey &k1, const SortKey &k2)
{
    if (k1.isNumber && k2.isNumber)
        return k1.number < k2.number;
    return k1.lower < k2.lower;
}

bool keyGreatThan(const SortKey &k1, const SortKey &k2)
{
    if (k1.isNumber && k2.isNumber)
        return k1.number > k2.number;
    return k1.lower > k2.lower;
}

// A stable merge sort that needs nothing of its comparator but an answer:
// the graph's comparators are no strict weak order when numbers and texts
// mix (9 < 10 < 1a < 9), and every standard-library sort requires one. The
// same values in the same order always come out in the same order.
template<typename Less> void mergeSort(std::vector<SortKey> &keys, Less less)
{
    const size_t count = keys.size();
    std::vector<SortKey> merged(count);
    for (size_t width = 1; width < count; width *= 2) {
        for (size_t low = 0; low < count; low += 2 * width) {
            const size_t middle = std::min(low + width, count);
            const size_t high = std::min(low + 2 * width, count);
            size_t left = low;
            size_t right = middle;
            size_t out = low;
            // The right run's key goes first only when it is less: equal keys
            // keep their order.
            while (left < middle && right < high)
                merged[out++] = std::move(less(keys[right], keys[left]) ? keys[right++] : keys[left++]);
            while (left < middle)
                merged[out++] = std::move(keys[left++]);
            while (right < high)
                merged[out++] = std::move(keys[right++]);
        }
        keys.swap(merged);
    }
}

} // namespace

bool caseInsensitiveLessThan(const QString &s1, const QString &s2)
{
    return keyLessThan(sortKey(s1), sortKey(s2));
}

bool caseInsensitiveGreatThan(const QString &s1, const QString &s2)
{
    return keyGreatThan(sortKey(s1), sortKey(s2));
}

ZRLineGraphData::ZRLineGraphData(const QString &xValue, const QString &yValue) : m_xValue(xValue), m_yValue(yValue) { }

// ZRLineGraphPrivate

QStringList ZRLineGraphPrivate::distinctValues(bool useY) const
{
    QStringList values;
    QSet<QString> seen;
    for (const ZRLineGraphData &point : data) {
        const QString &text = useY ? point.y() : point.x();
        if (seen.contains(text))
            continue;
        seen.insert(text);
        values.append(text);
    }
    if (!(useY ? sortY : sortX))
        return values;

    std::vector<SortKey> keys;
    keys.reserve(values.size());
    for (const QString &text : std::as_const(values))
        keys.push_back(sortKey(text));
    // y runs descending so that the greatest value is at the top of the graph.
    mergeSort(keys, useY ? keyGreatThan : keyLessThan);
    values.clear();
    for (const SortKey &key : keys)
        values.append(key.text);
    return values;
}

QStringList ZRLineGraphPrivate::thinValues(const QStringList &values, int visibleVals)
{
    // Without room for a single label only the last value is kept; a negative
    // room leaves the list as it is.
    if (values.isEmpty() || visibleVals < 0)
        return values;
    if (visibleVals == 0)
        return QStringList { values.last() };

    const int rmStep = int(std::ceil(double(float(values.size()) / float(visibleVals))));
    if (rmStep <= 1)
        return values;

    QStringList thinned;
    for (int i = 0; i < values.size(); i += rmStep)
        thinned.append(values.at(i));
    // The last value is always labelled, at the cost of the last regular
    // sample when room is short.
    if (thinned.last() != values.last()) {
        if (thinned.size() >= visibleVals)
            thinned.removeLast();
        thinned.append(values.last());
    }
    return thinned;
}

QStringList ZRLineGraphPrivate::xValues(int visibleVals) const
{
    return thinValues(distinctValues(false), visibleVals);
}

QStringList ZRLineGraphPrivate::yValues(int visibleVals) const
{
    return thinValues(distinctValues(true), visibleVals);
}

QPoint ZRLineGraphPrivate::slotPoint(int xIndex, int yIndex, int xCount, int yCount, int xVisibleVals, int yVisibleVals,
                                     int xSpacing, int ySpacing)
{
    // After thinning the points spread over the full width while the labels
    // keep their slots, so a label need not sit right under its point.
    const float xFactor = xCount > 0 ? float(xVisibleVals) / float(xCount) : 0.0f;
    const float yFactor = yCount > 0 ? float(yVisibleVals) / float(yCount) : 0.0f;
    const int x = int(float(xIndex) * (float(xSpacing) * xFactor));
    const int y = int(float(yIndex) * (float(ySpacing) * yFactor));
    return QPoint(int(float(x) + float(xSpacing / 2) * xFactor), int(float(y) + float(ySpacing / 2) * yFactor));
}

QPoint ZRLineGraphPrivate::graphPoint(int index, const QStringList &xVals, const QStringList &yVals, int xVisibleVals,
                                      int yVisibleVals, int xSpacing, int ySpacing) const
{
    const ZRLineGraphData &point = data.at(index);
    return slotPoint(int(xVals.indexOf(point.x())), int(yVals.indexOf(point.y())), int(xVals.size()), int(yVals.size()),
                     xVisibleVals, yVisibleVals, xSpacing, ySpacing);
}

void ZRLineGraphPrivate::valuesSizes(const QFontMetrics &fontMetrics, QSize *xSize, QSize *ySize) const
{
    *xSize = QSize(0, fontMetrics.xHeight());
    *ySize = QSize(0, fontMetrics.xHeight());
    for (const ZRLineGraphData &point : data) {
        xSize->setWidth(qMax(xSize->width(), fontMetrics.horizontalAdvance(point.x())));
        ySize->setWidth(qMax(ySize->width(), fontMetrics.horizontalAdvance(point.y())));
    }
    *xSize += QSize(18, 14);
    *ySize += QSize(18, 14);
}

ZRLineGraphPrivate::Layout ZRLineGraphPrivate::layout(const QFontMetrics &fontMetrics, const QSize &size) const
{
    return layout(fontMetrics, size, distinctValues(false), distinctValues(true));
}

ZRLineGraphPrivate::Layout ZRLineGraphPrivate::layout(const QFontMetrics &fontMetrics, const QSize &size,
                                                      const QStringList &allX, const QStringList &allY) const
{
    Layout l;
    valuesSizes(fontMetrics, &l.xSize, &l.ySize);
    const int height = size.height() - 20;
    const int width = size.width() - 20;
    const int n = int(data.size());

    // Bounded by the number of points, not by the number of distinct values.
    const int yVisibleItems = qMin(n, (height - l.xSize.height()) / l.ySize.height());
    const int xVisibleItems = qMin(n, (width - l.ySize.width()) / l.xSize.width());
    l.yVals = thinValues(allY, yVisibleItems);
    l.xVals = thinValues(allX, xVisibleItems);

    l.areaHeight = height - l.ySize.height();
    l.areaWidth = width - l.ySize.width();
    l.startX = l.ySize.width() + 5;
    l.startY = 10;
    l.ySpacing = l.yVals.isEmpty() ? 0 : l.areaHeight / int(l.yVals.size());
    l.xSpacing = l.xVals.isEmpty() ? 0 : l.areaWidth / int(l.xVals.size());
    return l;
}

void ZRLineGraphPrivate::clearBuffer()
{
    if (!buffer.isNull())
        buffer = QImage();
}

void ZRLineGraphPrivate::render(const QSize &size)
{
    buffer = QImage(size, QImage::Format_ARGB32_Premultiplied);
    if (buffer.isNull())
        return;
    buffer.fill(Qt::transparent);
    QPainter p(&buffer);
    p.setRenderHint(QPainter::Antialiasing);
    render(&p, size);
    p.end();
}

void ZRLineGraphPrivate::render(QPainter *p, const QSize &size)
{
    p->setBrush(QBrush(bgColor));
    p->setPen(bgBorder);
    p->drawRect(0, 0, size.width(), size.height());

    p->setFont(QFont(p->font().family(), 12));

    // The full lists serve both the labels (thinned) and the points (whole).
    const QStringList allX = distinctValues(false);
    const QStringList allY = distinctValues(true);
    const Layout l = layout(p->fontMetrics(), size, allX, allY);

    p->setPen(Qt::NoPen);
    p->setBrush(QBrush(graphBg));
    p->drawRect(l.startX, l.startY, l.areaWidth, l.areaHeight);

    p->setPen(graphBorder);
    p->setBrush(Qt::NoBrush);
    p->drawLine(l.startX, l.startY, l.startX, l.startY + l.areaHeight);

    // Label rows and grid lines are measured from the top of the picture, not
    // from the plot area, which leaves the grid 10 pixels above the area's
    // rows; the points below share that origin.
    for (int i = 0; i < l.yVals.size(); ++i) {
        p->setPen(textColor);
        p->drawText(QRect(0, i * l.ySpacing, l.ySize.width(), l.ySpacing), Qt::AlignRight | Qt::AlignVCenter,
                    l.yVals.at(i));
        p->setPen(graphBorder);
        const int gridY = i * l.ySpacing + l.ySpacing / 2;
        p->drawLine(l.startX, gridY, l.startX + l.areaWidth, gridY);
    }

    p->setPen(textColor);
    for (int j = 0; j < l.xVals.size(); ++j) {
        p->drawText(QRect(l.startX + j * l.xSpacing, l.startY + l.areaHeight + 5, l.xSpacing, l.xSize.height()),
                    Qt::AlignCenter, l.xVals.at(j));
    }

    if (data.isEmpty())
        return;

    // Look-ups by text through hashes keep a long daily graph linear; the
    // lists hold each text once, so the first match is the only match.
    QHash<QString, int> xIndex;
    QHash<QString, int> yIndex;
    xIndex.reserve(allX.size());
    yIndex.reserve(allY.size());
    for (int i = 0; i < allX.size(); ++i)
        xIndex.insert(allX.at(i), i);
    for (int i = 0; i < allY.size(); ++i)
        yIndex.insert(allY.at(i), i);

    QList<QPoint> positions;
    positions.reserve(data.size());
    const QPoint origin(l.startX, 0);
    for (const ZRLineGraphData &point : std::as_const(data)) {
        positions.append(origin +
                         slotPoint(xIndex.value(point.x(), -1), yIndex.value(point.y(), -1), int(allX.size()),
                                   int(allY.size()), int(l.xVals.size()), int(l.yVals.size()), l.xSpacing, l.ySpacing));
    }

    p->setPen(QPen(QBrush(graphLine), 3, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    p->setBrush(Qt::NoBrush);
    p->setClipRect(QRect(l.startX, l.startY, l.areaWidth, l.areaHeight), Qt::ReplaceClip);
    // One path through thousands of points that zigzag across the whole height
    // makes the rasterizer walk every edge on every row (seconds for ten years
    // of days). Runs of a few segments keep it linear; each run ends on a point
    // whose dot, drawn next, covers the cap and the join there.
    const int segmentsPerRun = 16;
    for (int first = 0; first + 1 < positions.size(); first += segmentsPerRun) {
        QPainterPath path(positions.at(first));
        const int last = qMin(first + segmentsPerRun, int(positions.size()) - 1);
        for (int i = first + 1; i <= last; ++i)
            path.lineTo(positions.at(i));
        p->drawPath(path);
    }

    // The clip stays, so dots beyond the plot area are cut off.
    p->setPen(Qt::NoPen);
    p->setBrush(QBrush(graphLine));
    for (const QPoint &q : std::as_const(positions))
        p->drawEllipse(QRect(q - QPoint(5, 5), QSize(10, 10)));
}

bool ZRLineGraphPrivate::save(const QString &fileName, const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return false;
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    render(&p, size);
    p.end();
    return image.save(fileName);
}

// ZRLineGraph

ZRLineGraph::ZRLineGraph(QWidget *parent) : QWidget(parent), d(std::make_unique<ZRLineGraphPrivate>())
{
    setAccessibleName(tr("Line graph"));
    d->sortX = false;
    d->sortY = false;
    d->graphBorder = QColor(134, 134, 134);
    d->textColor = QColor(255, 255, 255);
    d->graphLine = QColor(246, 146, 64);
    d->graphBg = QColor(63, 63, 63);
    d->bgBorder = QColor(255, 255, 255);
    d->bgColor = QColor(0, 0, 0);
}

ZRLineGraph::~ZRLineGraph() = default;

QString ZRLineGraph::description(const QList<ZRLineGraphData> &points)
{
    if (points.isEmpty())
        return tr("No points");
    bool anyValue = false;
    double lowest = 0;
    double highest = 0;
    QString lowestText;
    QString highestText;
    for (const ZRLineGraphData &point : points) {
        bool isNumber = false;
        const double value = point.y().toDouble(&isNumber);
        if (!isNumber)
            continue;
        if (!anyValue || value < lowest) {
            lowest = value;
            lowestText = point.y();
        }
        if (!anyValue || value > highest) {
            highest = value;
            highestText = point.y();
        }
        anyValue = true;
    }
    QString text = points.size() == 1
        ? tr("1 point from %1 to %2").arg(points.constFirst().x(), points.constLast().x())
        : tr("%1 points from %2 to %3")
              .arg(QString::number(points.size()), points.constFirst().x(), points.constLast().x());
    if (anyValue)
        text += tr("; lowest %1, highest %2").arg(lowestText, highestText);
    return text;
}

void ZRLineGraph::showEvent(QShowEvent *event)
{
    // Told as the graph shows, when its points are all in.
    setAccessibleDescription(description(d->data));
    QWidget::showEvent(event);
}

void ZRLineGraph::append(const ZRLineGraphData &value)
{
    d->data.append(value);
    d->clearBuffer();
}

void ZRLineGraph::insert(int index, const ZRLineGraphData &value)
{
    d->data.insert(index, value);
    d->clearBuffer();
}

bool ZRLineGraph::save(const QString &fileName, const QSize &size)
{
    return d->save(fileName, size);
}

bool ZRLineGraph::sortX() const
{
    return d->sortX;
}

bool ZRLineGraph::sortY() const
{
    return d->sortY;
}

void ZRLineGraph::setSortX(bool sort)
{
    d->sortX = sort;
    d->clearBuffer();
}

void ZRLineGraph::setSortY(bool sort)
{
    d->sortY = sort;
    d->clearBuffer();
}

void ZRLineGraph::setGraphBorder(const QColor &color)
{
    d->graphBorder = color;
    d->clearBuffer();
}

void ZRLineGraph::setGraphBackground(const QColor &color)
{
    d->graphBg = color;
    d->clearBuffer();
}

void ZRLineGraph::setTextColor(const QColor &color)
{
    d->textColor = color;
    d->clearBuffer();
}

void ZRLineGraph::setGraphLine(const QColor &color)
{
    d->graphLine = color;
    d->clearBuffer();
}

void ZRLineGraph::setBackground(const QColor &color)
{
    d->bgColor = color;
    d->clearBuffer();
}

void ZRLineGraph::setBorder(const QColor &color)
{
    d->bgBorder = color;
    d->clearBuffer();
}

void ZRLineGraph::resizeEvent(QResizeEvent *event)
{
    d->clearBuffer();
    QWidget::resizeEvent(event);
}

void ZRLineGraph::paintEvent(QPaintEvent *event)
{
    // Sized from the exposed rectangle, not from the widget: after a partial
    // exposure the picture keeps that smaller layout until the next change.
    if (d->buffer.isNull())
        d->render(event->rect().size());
    QPainter p(this);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.drawImage(event->rect(), d->buffer, event->rect());
    p.end();
    QWidget::paintEvent(event);
}
