// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "linegraph.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QSize>
#include <QStringList>

class QFontMetrics;
class QPainter;

// Data and drawing of a ZRLineGraph; the widget owns exactly one.
class ZRLineGraphPrivate
{
public:
    // Where one picture puts its parts; every coordinate is in picture pixels.
    struct Layout
    {
        QSize xSize;
        QSize ySize;
        QStringList xVals; // x labels drawn, left to right
        QStringList yVals; // y labels drawn, top to bottom
        int startX = 0;
        int startY = 0;
        int areaWidth = 0;
        int areaHeight = 0;
        int xSpacing = 0;
        int ySpacing = 0;
    };

    ZRLineGraphPrivate() = default;

    QStringList xValues(int visibleVals) const;
    QStringList yValues(int visibleVals) const;
    QPoint graphPoint(int index, const QStringList &xVals, const QStringList &yVals, int xVisibleVals, int yVisibleVals,
                      int xSpacing, int ySpacing) const;
    void valuesSizes(const QFontMetrics &fontMetrics, QSize *xSize, QSize *ySize) const;
    void clearBuffer();
    void render(const QSize &size);
    void render(QPainter *p, const QSize &size);
    bool save(const QString &fileName, const QSize &size);

    // The label lists and geometry that render() uses for a picture of this size.
    Layout layout(const QFontMetrics &fontMetrics, const QSize &size) const;

    // Keeps every step-th value of a list, always ending on its last value.
    static QStringList thinValues(const QStringList &values, int visibleVals);
    // Position of the point in column xIndex of xCount and row yIndex of yCount,
    // relative to (startX, 0).
    static QPoint slotPoint(int xIndex, int yIndex, int xCount, int yCount, int xVisibleVals, int yVisibleVals,
                            int xSpacing, int ySpacing);

    QList<ZRLineGraphData> data;
    QColor graphBorder;
    QColor textColor;
    QColor graphLine;
    QColor bgBorder;
    QColor graphBg;
    QColor bgColor;
    QImage buffer;
    bool sortX = false;
    bool sortY = false;

private:
    Layout layout(const QFontMetrics &fontMetrics, const QSize &size, const QStringList &allX,
                  const QStringList &allY) const;
    // Distinct texts in order of first appearance, sorted when asked to.
    QStringList distinctValues(bool useY) const;
};
