// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QColor>
#include <QFontMetrics>
#include <QImage>
#include <QList>
#include <QPair>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

// Where a line graph puts its parts in a picture of a given size, worked out
// here from the graph's drawing rules (label sizes from the font metrics,
// room for labels, thinning, spacing, the position of each point), never
// taken from the graph itself.
struct GraphPictureLayout
{
    QSize xLabelSize;
    QSize yLabelSize;
    QStringList xLabels; // drawn, left to right
    QStringList yLabels; // drawn, top to bottom
    QRect plotArea;
    int xSpacing = 0;
    int ySpacing = 0;
    QList<QPoint> dots; // one per point, in the order given
};

using GraphPoints = QList<QPair<QString, QString>>;

// The metrics of the font a graph's picture is drawn with: the painter's
// default family at 12 points, on an image.
QFontMetrics graphPictureFontMetrics();

GraphPictureLayout expectedGraphLayout(const GraphPoints &points, const QSize &size, bool sortX, bool sortY);

// Empty when a picture in the graph's default colours shows this layout:
// the black fill inside the picture's outline, the dark grey plot area, an
// orange dot at every point inside the plot area, and orange nowhere but
// on the dots and on the line between neighbours. Otherwise what differs.
QString graphPictureMismatch(const QImage &picture, const GraphPictureLayout &layout);
