// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "records.h"
#include "textnumbers.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <vector>

class QTableWidget;

// What an entry table shows (number, item, category, price, date-time,
// place), kept once for the whole table in a compact form. The table's
// cells are items of the table like any other, red and read-only, but hold
// nothing of their own: each answers its text from here. The history page
// can hold two tables of ten years of entries; a cell holding its own text
// and value costs half as much again as one that asks, and the records read
// from the store as much again while they are all held. These rows are a
// child of their table and live as long as it.
class EntryTableRows : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(EntryTableRows)

public:
    // The columns of an entry table.
    enum Column { Number, ItemName, Category, Price, DateTime, Place, ColumnCount };

    // Rows read for a table, before they show in it. Each row holds three
    // numbers for its names, which repeat a few hundred texts over the rows,
    // the price and the date-time.
    class Rows
    {
    public:
        void append(const Entry &entry);
        void clear();
        // Drops what only appending needs, once no row is to come.
        void squeeze();
        int size() const { return int(rows.size()); }
        bool isEmpty() const { return rows.empty(); }
        // The text of a cell as the table shows it; empty outside the rows.
        QString text(int row, int column) const;

    private:
        struct Row
        {
            int itemName;
            int category;
            int place;
            float price;
            QDateTime when;
        };
        std::vector<Row> rows;
        TextNumbers texts;
    };

    // The rows of `table`, made empty on first use.
    static EntryTableRows *of(QTableWidget *table);

    // Gives the table one row of cells for each of `rows`, which it keeps;
    // the rows shown until then and their cells go. The table must have the
    // columns already, and keep sorting off.
    void show(Rows rows);
    // Forgets the rows; the table is to be emptied with them.
    void clear();

    const Rows &shown() const { return rows; }

private:
    explicit EntryTableRows(QTableWidget *table);
    ~EntryTableRows() override;

    QTableWidget *table;
    Rows rows;
};
