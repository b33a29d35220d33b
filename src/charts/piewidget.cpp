// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "piewidget.h"

#include <QColor>
#include <QFontMetrics>
#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>
#include <QStringList>

#include <algorithm>
#include <limits>

PieWidget::PieWidget(QWidget *parent) : QWidget(parent)
{
    setAccessibleName(tr("Pie chart"));
}

void PieWidget::addEntry(const QString &key, int val)
{
    // A label seen before takes the new value; nothing is summed and no repaint
    // is asked for.
    values.insert(key, val);

    qint64 total = 0;
    for (const int value : std::as_const(values))
        total += value;
    QStringList slices;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        const double share = total > 0 ? 100.0 * it.value() / double(total) : 0.0;
        slices.append(tr("%1: %2%").arg(it.key(), QString::number(share, 'g', 3)));
    }
    setAccessibleDescription(slices.join(QStringLiteral("; ")));
}

QSize PieWidget::sizeHint() const
{
    return minimumSizeHint();
}

QSize PieWidget::minimumSizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    const int fh = metrics.height();
    // One legend row plus one row of spacing per entry.
    const int height = int(values.size()) * 2 * fh;
    int longest = 0;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        longest = qMax(longest, metrics.horizontalAdvance(it.key()));
    // The pie is a square as tall as the widget, hence the height term.
    const int width = longest + height + metrics.horizontalAdvance(QLatin1Char('x')) + 20;
    return QSize(width, height);
}

QList<int> PieWidget::pieSpans(const QList<int> &values)
{
    // Added in 64 bits: two slices near the largest int would overflow an int.
    qint64 total = 0;
    for (int value : values)
        total += value;
    QList<int> spans;
    if (total == 0)
        return spans;
    spans.reserve(values.size());
    // Values of both signs can make a share of many turns; beyond the range of
    // an int a span takes the nearest int.
    constexpr double smallest = std::numeric_limits<int>::min();
    constexpr double largest = std::numeric_limits<int>::max();
    for (int value : values)
        spans.append(int(std::clamp(double(value) / double(total) * 5760, smallest, largest)));
    return spans;
}

void PieWidget::paintEvent(QPaintEvent *)
{
    QList<int> amounts;
    QStringList labels;
    amounts.reserve(values.size());
    labels.reserve(values.size());
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        labels.append(it.key());
        amounts.append(it.value());
    }
    const QList<int> spans = pieSpans(amounts);

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);

    // Restarting at the same index on every paint keeps each entry's colour
    // stable between repaints.
    const QStringList colorNames = QColor::colorNames();
    int colorPos = firstColorIndex;

    const int side = height();
    const QRect pieRect(0, 0, side, side);
    QRect legendRect = rect();
    legendRect.setLeft(pieRect.width());
    legendRect.adjust(10, 10, -10, -10);

    const QFontMetrics metrics = fontMetrics();
    const int fh = metrics.height();
    const int xWidth = metrics.horizontalAdvance(QLatin1Char('x'));

    // Kept within one turn, which draws the same pie: many spans of many
    // turns would overflow an int.
    int lastAngleOffset = 0;
    int currentPos = 0;
    for (int i = 0; i < labels.size(); ++i) {
        const QColor color(colorNames.at(colorPos % colorNames.size()));
        ++colorPos;

        // The focus in the corner gives every slice a light sheen towards the
        // upper left.
        QRadialGradient sheen(pieRect.center(), pieRect.width() / 2, pieRect.topLeft());
        sheen.setColorAt(0, Qt::white);
        sheen.setColorAt(1, color);

        const QPen pen = painter.pen();
        painter.setPen(Qt::NoPen);
        // With a zero total there are no spans: no slice, but still the legend.
        if (!spans.isEmpty()) {
            painter.setBrush(sheen);
            painter.drawPie(pieRect, lastAngleOffset, spans.at(i));
            lastAngleOffset = int((qint64(lastAngleOffset) + spans.at(i)) % 5760);
        }

        const QRect swatch = QRect(0, currentPos * 2 * fh, fh, fh).translated(legendRect.topLeft());
        ++currentPos;
        QLinearGradient swatchGradient(swatch.topLeft(), swatch.bottomRight());
        swatchGradient.setColorAt(0, color);
        swatchGradient.setColorAt(1, Qt::white);
        painter.setBrush(swatchGradient);
        painter.drawRect(swatch);

        const QRect labelRect(swatch.topRight() + QPoint(xWidth, 0), QPoint(legendRect.right(), swatch.bottom()));
        painter.setPen(pen);
        painter.drawText(labelRect, Qt::AlignVCenter | Qt::AlignLeft, labels.at(i));
    }
    painter.end();
}
