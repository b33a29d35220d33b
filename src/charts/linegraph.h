// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QColor>
#include <QSize>
#include <QString>
#include <QWidget>

#include <memory>

class ZRLineGraphPrivate;

// One point of a line graph: its x text (a date, a period) and its y text (an amount).
class ZRLineGraphData
{
public:
    ZRLineGraphData(const QString &xValue, const QString &yValue);

    const QString &x() const { return m_xValue; }
    const QString &y() const { return m_yValue; }
    void setX(const QString &xValue) { m_xValue = xValue; }
    void setY(const QString &yValue) { m_yValue = yValue; }

private:
    QString m_xValue;
    QString m_yValue;
};

// Sort orders of the graph's value texts: numerically when both texts are
// numbers, otherwise as lower-cased text.
bool caseInsensitiveLessThan(const QString &s1, const QString &s2);
bool caseInsensitiveGreatThan(const QString &s1, const QString &s2);

// A self-painting line graph with ordinal axes over text points; it can also
// write the same picture at any size into an image file.
class ZRLineGraph : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(ZRLineGraph)

public:
    explicit ZRLineGraph(QWidget *parent = nullptr);
    ~ZRLineGraph() override;

    void append(const ZRLineGraphData &value);
    void insert(int index, const ZRLineGraphData &value);

    // Renders a fresh picture of the given size, independent of the widget's
    // own cached picture, and writes it with the format of the file's suffix.
    bool save(const QString &fileName, const QSize &size);

    // What a screen reader is told of the graph: the number of points, the
    // first and last labels, and the lowest and highest values.
    static QString description(const QList<ZRLineGraphData> &points);

    bool sortX() const;
    bool sortY() const;
    void setSortX(bool sort);
    void setSortY(bool sort);

    void setGraphBorder(const QColor &color);
    void setGraphBackground(const QColor &color);
    void setTextColor(const QColor &color);
    void setGraphLine(const QColor &color);
    void setBackground(const QColor &color);
    void setBorder(const QColor &color);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    std::unique_ptr<ZRLineGraphPrivate> d;
};
