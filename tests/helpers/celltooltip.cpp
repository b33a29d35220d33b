// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "celltooltip.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QTest>
#include <QToolTip>

QString toolTipOfCell(QAbstractItemView *view, int row, int column)
{
    hideToolTip();
    const QRect cell = view->visualRect(view->model()->index(row, column));
    const QPoint centre = cell.center();
    QWidget *target = view->viewport()->childAt(centre);
    if (!target)
        target = view->viewport();
    const QPoint local = target->mapFrom(view->viewport(), centre);
    QHelpEvent event(QEvent::ToolTip, local, target->mapToGlobal(local));
    QApplication::sendEvent(target, &event);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

void hideToolTip()
{
    // hideText() lets the tip fade for a moment; closing it is at once.
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (widget->inherits("QTipLabel"))
            widget->close();
    }
    QToolTip::hideText();
}
