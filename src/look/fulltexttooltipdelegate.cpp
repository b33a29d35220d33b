// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "fulltexttooltipdelegate.h"

#include "look.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QLabel>
#include <QTextDocumentFragment>
#include <QToolTip>

namespace {

QString labelText(const QLabel *label)
{
    const bool richText = label->textFormat() == Qt::RichText ||
        (label->textFormat() == Qt::AutoText && Qt::mightBeRichText(label->text()));
    const QString text = richText ? QTextDocumentFragment::fromHtml(label->text()).toPlainText() : label->text();
    // The cells pad their texts with a blank on either side.
    return text.trimmed();
}

} // namespace

FullTextToolTipDelegate::FullTextToolTipDelegate(QObject *parent) : QStyledItemDelegate(parent) { }

void FullTextToolTipDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (Look::shown() == Look::Kind::Classic || !index.data(Qt::ForegroundRole).isValid())
        return;
    QPalette &palette = option->palette;
    const QColor ground = (option->features & QStyleOptionViewItem::Alternate) ? palette.color(QPalette::AlternateBase)
                                                                               : palette.color(QPalette::Base);
    palette.setColor(QPalette::Text, Look::readable(palette.color(QPalette::Text), ground));
}

QString FullTextToolTipDelegate::cutOffText(const QAbstractItemView *view, const QStyleOptionViewItem &option,
                                            const QModelIndex &index) const
{
    if (const auto *label = qobject_cast<const QLabel *>(view->indexWidget(index)))
        return label->sizeHint().width() > label->width() ? labelText(label) : QString();

    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    if (cell.text.isEmpty())
        return QString();
    // The room the style leaves the text, as it measures it when it paints
    // the cell and elides what does not fit.
    const QStyle *style = view->style();
    const QRect textRect = style->subElementRect(QStyle::SE_ItemViewItemText, &cell, view);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, view) + 1;
    if (cell.fontMetrics.horizontalAdvance(cell.text) <= textRect.width() - 2 * margin)
        return QString();
    return cell.text.trimmed();
}

bool FullTextToolTipDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                        const QModelIndex &index)
{
    // A tool tip of the cell's own stays the cell's.
    if (event->type() != QEvent::ToolTip || !view || !index.isValid() || index.data(Qt::ToolTipRole).isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);

    QString tip = cutOffText(view, option, index);
    if (tip.isEmpty()) {
        QToolTip::hideText();
        event->ignore();
        return true;
    }
    // Shown as typed, even where the text looks like markup.
    if (Qt::mightBeRichText(tip))
        tip = Qt::convertFromPlainText(tip, Qt::WhiteSpaceNoWrap);
    // Shown for the viewport, where the cell lies, so that the tip goes as the
    // pointer leaves the cell.
    QToolTip::showText(event->globalPos(), tip, view->viewport(), view->visualRect(index));
    return true;
}
