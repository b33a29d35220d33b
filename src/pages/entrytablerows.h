// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "entryquery.h"
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
        void append(const EntryLine &line);
        void clear();
        // Drops what only appending needs, once no row is to come.
        void squeeze();
        int size() const { return int(rows.size()); }
        bool isEmpty() const { return rows.empty(); }
        // The text of a cell as the table shows it; empty outside the rows.
        QString text(int row, int column) const;

    private:
        // The date-time is kept as its date and time of day, a local
        // date-time being made of them only for a cell that shows it;
        // one that is not a local date-time of the file's own form is
        // kept whole beside the rows.
        struct Row
        {
            int itemName;
            int category;
            int place;
            float price;
            qint32 day;
            qint32 msecsOfDay;
        };
        static constexpr qint32 KeptWhole = -1;
        void append(const QString &itemName, const QString &category, const QString &place, float price,
                    const QDate &date, const QTime &time, const QDateTime &whole);

        std::vector<Row> rows;
        TextNumbers texts;
        QHash<int, QDateTime> wholeDateTimes;
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
