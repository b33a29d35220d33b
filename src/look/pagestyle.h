// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QProxyStyle>

// The desktop's own style, with one change for the black pages: a check box
// whose ground is dark gets a light edge.
//
// A page's style sheet paints every widget on it black, and a style sheet's
// background colour becomes the widget's Base and Window colours too. The
// desktop style fills the box of a check box with Base and edges it with a
// darker shade of Window, so on a page an unticked box was black on black:
// only its caption could be seen. Everything else is drawn by the desktop
// style, untouched.
//
// And a group box's title gets the room its text needs: the desktop style
// measures it a few pixels short at the pages' font and cuts its last letter.
class PageStyle : public QProxyStyle
{
    Q_OBJECT

public:
    // A proxy of the style that `key` names (QStyleFactory's keys).
    explicit PageStyle(const QString &key);

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl subControl,
                         const QWidget *widget = nullptr) const override;
};
