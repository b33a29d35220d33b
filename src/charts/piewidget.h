// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QWidget>

// A self-painting pie of labelled integer values with a colour legend beside it.
class PieWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(PieWidget)

public:
    explicit PieWidget(QWidget *parent = nullptr);

    // Also tells a screen reader the slices with their shares of the whole.
    void addEntry(const QString &key, int val);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    // The labels and values in the order the pie draws them (slice i and
    // legend row i come from the i-th entry).
    const QHash<QString, int> &entries() const { return values; }

    // Span of each slice in sixteenths of a degree, in the order given. Each
    // span is truncated, so together they may fall a little short of a full
    // turn. A zero total yields no span at all.
    static QList<int> pieSpans(const QList<int> &values);

    // Colour index of the first slice into QColor::colorNames().
    static constexpr int firstColorIndex = 13;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QHash<QString, int> values;
};
