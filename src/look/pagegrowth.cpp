// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "pagegrowth.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTableView>

#include <algorithm>
#include <climits>

namespace {

// What the form gave a widget, kept on the widget itself so that it goes
// with it.
const char designedProperty[] = "_ledgerly_designedGeometry";
// A widget whose children this keeper lays out.
const char containerProperty[] = "_ledgerly_growthContainer";

// `coordinate` moved by its share of `growth` spread evenly over the span
// from `start` to `end`.
int spread(int coordinate, int start, int end, int growth)
{
    if (growth == 0 || end <= start)
        return coordinate;
    const double share = std::clamp(double(coordinate - start) / double(end - start), 0.0, 1.0);
    return coordinate + qRound(growth * share);
}

// The tab widget whose page `widget` is, if it is one.
const QTabWidget *tabWidgetOf(const QWidget *widget)
{
    const QWidget *stack = widget->parentWidget();
    if (!qobject_cast<const QStackedWidget *>(stack))
        return nullptr;
    const auto *tabs = qobject_cast<const QTabWidget *>(stack->parentWidget());
    return tabs && tabs->indexOf(const_cast<QWidget *>(widget)) >= 0 ? tabs : nullptr;
}

// A plain widget that holds others by fixed geometry.
bool holdsWidgets(const QWidget *widget)
{
    const QMetaObject *kind = widget->metaObject();
    return (kind == &QWidget::staticMetaObject || kind == &QFrame::staticMetaObject ||
            kind == &QGroupBox::staticMetaObject) &&
        !widget->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly).isEmpty();
}

// A table whose columns do not stretch by themselves shares the width it
// gains (or gives back) among them.
void shareWidthAmongColumns(QTableView *table, int change)
{
    QHeaderView *header = table->horizontalHeader();
    if (change == 0 || header->stretchLastSection())
        return;
    QList<int> columns;
    for (int column = 0; column < header->count(); ++column) {
        if (header->isSectionHidden(column))
            continue;
        const QHeaderView::ResizeMode mode = header->sectionResizeMode(column);
        if (mode == QHeaderView::Stretch || mode == QHeaderView::ResizeToContents)
            return;
        columns.append(column);
    }
    if (columns.isEmpty())
        return;
    const int count = int(columns.size());
    for (int i = 0; i < count; ++i) {
        const int part = change / count + (i < std::abs(change % count) ? (change < 0 ? -1 : 1) : 0);
        header->resizeSection(columns.at(i),
                              std::max(header->minimumSectionSize(), header->sectionSize(columns.at(i)) + part));
    }
}

} // namespace

PageGrowth::Role PageGrowth::role(const QWidget *widget)
{
    if (qobject_cast<const QAbstractScrollArea *>(widget) || qobject_cast<const QTabWidget *>(widget) ||
        widget->inherits("QWebEngineView"))
        return Role::Area;
    if (qobject_cast<const QLineEdit *>(widget) || qobject_cast<const QComboBox *>(widget) ||
        qobject_cast<const QAbstractSpinBox *>(widget))
        return Role::Field;
    return Role::Fixed;
}

QRect PageGrowth::grown(const QRect &designed, const QSize &current, Role role, const QSize &growth,
                        const QPoint &spanX, const QPoint &spanY)
{
    const auto alongX = [&](int x) { return spread(x, spanX.x(), spanX.y(), growth.width()); };
    const auto alongY = [&](int y) { return spread(y, spanY.x(), spanY.y(), growth.height()); };
    // A widget that keeps its size along an axis moves as its middle does,
    // so that one centred under a growing field stays centred.
    const int middleX = designed.x() + designed.width() / 2;
    const int middleY = designed.y() + designed.height() / 2;
    const int fixedLeft = designed.x() + alongX(middleX) - middleX;
    const int fixedTop = designed.y() + alongY(middleY) - middleY;

    switch (role) {
    case Role::Area: {
        const int left = alongX(designed.x());
        const int top = alongY(designed.y());
        return QRect(left, top, alongX(designed.x() + designed.width()) - left,
                     alongY(designed.y() + designed.height()) - top);
    }
    case Role::Field: {
        const int left = alongX(designed.x());
        return QRect(left, fixedTop, alongX(designed.x() + designed.width()) - left, current.height());
    }
    case Role::Fixed:
        break;
    }
    return QRect(QPoint(fixedLeft, fixedTop), current);
}

void PageGrowth::install(QWidget *page)
{
    new PageGrowth(page);
}

PageGrowth::PageGrowth(QWidget *page) : QObject(page)
{
    page->setProperty(designedProperty, page->geometry());
    record(page);
}

void PageGrowth::record(QWidget *container)
{
    container->installEventFilter(this);
    // Widgets in a layout are placed by it.
    if (container->layout())
        return;
    container->setProperty(containerProperty, true);
    const QList<QWidget *> children = container->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget *child : children) {
        if (child->isWindow())
            continue;
        child->setProperty(designedProperty, child->geometry());
        if (auto *area = qobject_cast<QScrollArea *>(child)) {
            // A scroll area that keeps its contents at their own size has
            // them grow with it; one that fits them to itself does that alone.
            if (QWidget *contents = area->widget()) {
                contents->setProperty(designedProperty, contents->geometry());
                if (!area->widgetResizable())
                    area->installEventFilter(this);
                record(contents);
            }
        } else if (auto *tabs = qobject_cast<QTabWidget *>(child)) {
            for (int index = 0; index < tabs->count(); ++index)
                record(tabs->widget(index));
        } else if (holdsWidgets(child)) {
            record(child);
        }
    }
}

QSize PageGrowth::growthOf(const QWidget *container)
{
    // A tab page's own size depends on the style's tab bar: it grows as its
    // tab widget does.
    if (const QTabWidget *tabs = tabWidgetOf(container))
        return growthOf(tabs);
    const QVariant designed = container->property(designedProperty);
    if (!designed.isValid())
        return QSize(0, 0);
    const QSize growth = container->size() - designed.toRect().size();
    return growth.expandedTo(QSize(0, 0));
}

void PageGrowth::layOut(QWidget *container)
{
    const QSize growth = growthOf(container);
    QList<QWidget *> placed;
    // The parts of the container over which its growth is spread: across,
    // what grows wider; down, what grows taller.
    int left = INT_MAX, right = INT_MIN, top = INT_MAX, bottom = INT_MIN;
    const QList<QWidget *> children = container->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget *child : children) {
        const QVariant designed = child->property(designedProperty);
        if (child->isWindow() || !designed.isValid())
            continue;
        placed.append(child);
        const QRect rect = designed.toRect();
        const Role kind = role(child);
        if (kind != Role::Fixed) {
            left = std::min(left, rect.x());
            right = std::max(right, rect.x() + rect.width());
        }
        if (kind == Role::Area) {
            top = std::min(top, rect.y());
            bottom = std::max(bottom, rect.y() + rect.height());
        }
    }
    for (QWidget *child : std::as_const(placed)) {
        const QRect target = grown(child->property(designedProperty).toRect(), child->size(), role(child), growth,
                                   QPoint(left, right), QPoint(top, bottom));
        if (target == child->geometry())
            continue;
        const int widthBefore = child->width();
        child->setGeometry(target);
        if (auto *table = qobject_cast<QTableView *>(child))
            shareWidthAmongColumns(table, target.width() - widthBefore);
    }
}

bool PageGrowth::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show) {
        auto *widget = static_cast<QWidget *>(watched);
        if (auto *area = qobject_cast<QScrollArea *>(widget); area && event->type() == QEvent::Resize) {
            QWidget *contents = area->widget();
            const QVariant designed = contents ? contents->property(designedProperty) : QVariant();
            if (designed.isValid() && !area->widgetResizable())
                contents->resize(designed.toRect().size() + growthOf(area));
        }
        if (widget->property(containerProperty).toBool())
            layOut(widget);
    }
    return QObject::eventFilter(watched, event);
}
