// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "entrytablerows.h"

#include "format.h"

#include <QBrush>
#include <QHash>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QTableWidgetItem>

#include <memory>
#include <new>

namespace {

// The rows of each table that has them, for the cells to find theirs.
QHash<const QTableWidget *, const EntryTableRows *> &rowsOfTables()
{
    static QHash<const QTableWidget *, const EntryTableRows *> tables;
    return tables;
}

// Where the cells of the entry tables live: blocks of equal slots handed out
// and taken back without the allocator's own bookkeeping. The allocator
// would round each cell up and add a header, a quarter more per cell over
// hundreds of thousands of cells; a freed slot goes to the next cell made,
// and the blocks go back once no cell is left. Cells are made and freed on
// the GUI thread only.
template<std::size_t SlotSize> class SlotStorage
{
public:
    void *take()
    {
        if (!freeSlots) {
            auto block = std::make_unique<Slot[]>(SlotsPerBlock);
            for (std::size_t i = 0; i < SlotsPerBlock; ++i) {
                block[i].next = freeSlots;
                freeSlots = &block[i];
            }
            blocks.push_back(std::move(block));
        }
        Slot *slot = freeSlots;
        freeSlots = slot->next;
        ++inUse;
        return slot;
    }

    void give(void *pointer)
    {
        auto *slot = static_cast<Slot *>(pointer);
        slot->next = freeSlots;
        freeSlots = slot;
        if (--inUse == 0) {
            freeSlots = nullptr;
            blocks.clear();
        }
    }

private:
    union Slot {
        Slot *next;
        alignas(std::max_align_t) unsigned char bytes[SlotSize];
    };
    static constexpr std::size_t SlotsPerBlock = 1024;

    std::vector<std::unique_ptr<Slot[]>> blocks;
    Slot *freeSlots = nullptr;
    std::size_t inUse = 0;
};

// One cell of an entry table: red, read-only, its text from the table's
// rows. Anything set on it later (a text, a colour) is kept and read first,
// as on any item.
class EntryCell final : public QTableWidgetItem
{
public:
    EntryCell() { setFlags(flags() & ~Qt::ItemIsEditable); }

    QVariant data(int role) const override
    {
        QVariant stored = QTableWidgetItem::data(role);
        if (stored.isValid())
            return stored;
        if (role == Qt::DisplayRole || role == Qt::EditRole) {
            const EntryTableRows *rows = rowsOfTables().value(tableWidget());
            return rows ? rows->shown().text(row(), column()) : QString();
        }
        if (role == Qt::ForegroundRole)
            return QBrush(QColor(0xff, 0x00, 0x00));
        return stored;
    }

    // A copy stands on its own, away from the table's rows.
    QTableWidgetItem *clone() const override
    {
        auto *copy = new QTableWidgetItem(text());
        copy->setForeground(foreground());
        copy->setFlags(flags());
        return copy;
    }

    static void *operator new(std::size_t size)
    {
        Q_ASSERT(size == sizeof(EntryCell));
        Q_UNUSED(size)
        return storage().take();
    }

    static void operator delete(void *pointer) { storage().give(pointer); }

private:
    // Everything a cell is lies in the item it derives from.
    static SlotStorage<sizeof(QTableWidgetItem)> &storage()
    {
        static SlotStorage<sizeof(QTableWidgetItem)> cells;
        return cells;
    }
};
static_assert(sizeof(EntryCell) == sizeof(QTableWidgetItem));

} // namespace

void EntryTableRows::Rows::append(const Entry &entry)
{
    const QDateTime &when = entry.TransactDateTime;
    append(entry.ItemName, entry.CategoryName, entry.LocationText, entry.Price, when.date(), when.time(), when);
}

void EntryTableRows::Rows::append(const EntryLine &line)
{
    append(line.ItemName, line.CategoryName, line.LocationText, line.Price, line.storedDate, line.storedTime,
           line.other);
}

void EntryTableRows::Rows::append(const QString &itemName, const QString &category, const QString &place,
                                  float price, const QDate &date, const QTime &time, const QDateTime &whole)
{
    // Kept as date and time only where making the local date-time of them
    // again gives this very one: a local one read from the file's own form
    // or given as such. Any other (another zone, invalid) is kept whole.
    const bool asDateAndTime =
        date.isValid() && time.isValid() && (!whole.isValid() || whole.timeSpec() == Qt::LocalTime);
    const int row = size();
    if (!asDateAndTime)
        wholeDateTimes.insert(row, whole);
    rows.push_back({ texts.numberOf(itemName), texts.numberOf(category), texts.numberOf(place), price,
                     asDateAndTime ? qint32(date.toJulianDay()) : KeptWhole,
                     asDateAndTime ? time.msecsSinceStartOfDay() : KeptWhole });
}

void EntryTableRows::Rows::clear()
{
    std::vector<Row>().swap(rows);
    texts.clear();
    wholeDateTimes.clear();
}

void EntryTableRows::Rows::squeeze()
{
    texts.forgetLookups();
    rows.shrink_to_fit();
}

QString EntryTableRows::Rows::text(int row, int column) const
{
    if (row < 0 || row >= size())
        return QString();
    const Row &shown = rows[std::size_t(row)];
    switch (column) {
    case Number:
        return QString::number(row + 1);
    case ItemName:
        return texts.text(shown.itemName);
    case Category:
        return texts.text(shown.category);
    case Price:
        return Format::number(double(shown.price));
    case DateTime:
        if (shown.day == KeptWhole)
            return Format::dateTime(wholeDateTimes.value(row));
        return Format::dateTime(
            QDateTime(QDate::fromJulianDay(shown.day), QTime::fromMSecsSinceStartOfDay(shown.msecsOfDay)));
    case Place:
        return texts.text(shown.place);
    default:
        return QString();
    }
}

EntryTableRows::EntryTableRows(QTableWidget *table) : QObject(table), table(table)
{
    rowsOfTables().insert(table, this);
}

EntryTableRows::~EntryTableRows()
{
    rowsOfTables().remove(table);
}

EntryTableRows *EntryTableRows::of(QTableWidget *table)
{
    auto *rows = const_cast<EntryTableRows *>(rowsOfTables().value(table));
    return rows ? rows : new EntryTableRows(table);
}

void EntryTableRows::clear()
{
    rows.clear();
}

void EntryTableRows::show(Rows shownRows)
{
    Q_ASSERT(table->columnCount() == ColumnCount);
    // The old cells go as the new ones take their places; none is asked for
    // its text meanwhile, the model being quiet.
    rows = std::move(shownRows);
    rows.squeeze();
    const int count = rows.size();
    table->setRowCount(count);

    // Each setItem() would announce its own change to the view, a fifth of
    // the time of a refill of ten years; the model stays quiet while it is
    // filled and announces the whole table once. That is sound only while
    // sorting is off: then setItem() does no more than keep the item and
    // announce it, while a sorting table would move each row into place and
    // tell its views through the very signals held back here.
    Q_ASSERT(!table->isSortingEnabled());
    QAbstractItemModel *model = table->model();
    {
        const QSignalBlocker quiet(model);
        for (int row = 0; row < count; ++row) {
            for (int column = 0; column < ColumnCount; ++column)
                table->setItem(row, column, new EntryCell);
        }
    }
    if (count > 0)
        emit model->dataChanged(model->index(0, 0), model->index(count - 1, ColumnCount - 1));
}
