// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QObject>
#include <QRect>
#include <QSize>

class QWidget;

// Lets a page laid out by fixed geometry use a larger room than it was
// designed for. Tables, graph and chart areas and maps grow right and down,
// input fields grow wider, and labels, buttons and check boxes keep their
// size; every widget keeps its distance from the edges of the part of the
// page it stands in. At its designed size, or smaller, a page shows every
// widget exactly where its form put it.
class PageGrowth : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(PageGrowth)

public:
    // How a widget takes the room its container gains along each axis.
    enum class Role {
        Fixed, // keeps its size (labels, buttons, check boxes)
        Field, // grows wider only (line edits, combo and date boxes)
        Area, // grows wider and taller (tables, scroll areas, tabs, maps)
    };
    static Role role(const QWidget *widget);

    // Where a widget designed at `designed` goes when its container has
    // grown by `growth`. `spanX` and `spanY` are the designed extents (left
    // and right, top and bottom, as a QPoint of start and end) over which
    // the container's growth is spread: everything before a span's start
    // stays, everything after it moves by the whole growth, and what lies
    // inside moves in proportion. `current` is the size the widget has now;
    // a Fixed widget keeps it (a label may have widened to its text).
    static QRect grown(const QRect &designed, const QSize &current, Role role, const QSize &growth, const QPoint &spanX,
                       const QPoint &spanY);

    // Records `page` and every widget on it, down through its scroll areas'
    // contents and its tab pages, as designed, and lays them out again
    // whenever the page or one of those containers is resized. The growth
    // keeper is a child of `page`.
    static void install(QWidget *page);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit PageGrowth(QWidget *page);
    void record(QWidget *container);
    void layOut(QWidget *container);
    static QSize growthOf(const QWidget *container);
};
