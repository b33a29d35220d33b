// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "pagestyle.h"

#include <QPainter>
#include <QStyleOption>

PageStyle::PageStyle(const QString &key) : QProxyStyle(key) { }

void PageStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                              const QWidget *widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element != PE_IndicatorCheckBox || option->palette.base().color().lightness() >= 128)
        return;
    // The edge in the colour the tick is drawn in (the light text of the
    // pages), one pixel inside the box so that no style clips it.
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(option->palette.text().color(), 1));
    painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    painter->restore();
}

QRect PageStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl subControl,
                                const QWidget *widget) const
{
    QRect rect = QProxyStyle::subControlRect(control, option, subControl, widget);
    if (control != CC_GroupBox || subControl != SC_GroupBoxLabel)
        return rect;
    const auto *box = qstyleoption_cast<const QStyleOptionGroupBox *>(option);
    if (!box)
        return rect;
    const int needed = box->fontMetrics.size(Qt::TextShowMnemonic, box->text).width();
    if (rect.width() < needed)
        rect.setWidth(needed);
    return rect;
}
