// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QStyledItemDelegate>

// Draws cells as the default delegate does and, when the view cuts a cell's
// text off, shows the whole text as the cell's tool tip. A cell whose text
// fits has none. Cells shown by a label (QAbstractItemView::setIndexWidget)
// are judged by the label's own text and width.
class FullTextToolTipDelegate : public QStyledItemDelegate
{
    Q_OBJECT
    Q_DISABLE_COPY(FullTextToolTipDelegate)

public:
    explicit FullTextToolTipDelegate(QObject *parent);

    // Text coloured by the cell (the entry tables' red) stays its colour in
    // Classic and becomes a shade of it readable on the cell in the other
    // looks.
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

    // The whole text of the cell when `view` cuts it off; empty when it fits.
    QString cutOffText(const QAbstractItemView *view, const QStyleOptionViewItem &option,
                       const QModelIndex &index) const;
};
