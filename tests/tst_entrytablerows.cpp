// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "entrytablerows.h"

#include "sampleentries.h"
#include "widgettest.h"

#include <QColor>
#include <QTableWidget>
#include <QTableWidgetItem>
#include <QtTest>

#include <memory>

namespace {

Entry entry(const QString &item, const QString &category, float price, const QDateTime &when, const QString &place)
{
    return makeEntry(when, item, category, price, place);
}

// A table with the six columns of an entry table and nothing else.
std::unique_ptr<QTableWidget> entryTable()
{
    auto table = std::make_unique<QTableWidget>();
    table->setColumnCount(EntryTableRows::ColumnCount);
    return table;
}

QStringList rowTexts(const QTableWidget &table, int row)
{
    QStringList texts;
    for (int column = 0; column < table.columnCount(); ++column)
        texts.append(table.item(row, column) ? table.item(row, column)->text() : QStringLiteral("<no item>"));
    return texts;
}

const QDateTime morning(QDate(2026, 11, 15), QTime(8, 30));
const QDateTime evening(QDate(2026, 11, 14), QTime(19, 5, 7));

} // namespace

class TestEntryTableRows : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    void cleanup() { VERIFY_NO_WIDGETS_LEFT(); }

    void eachRowShowsItsNumberNamesPriceAndDateTime();
    void everyCellIsRedAndReadOnly();
    void showingNewRowsReplacesTheRowsShownBefore();
    void tablesKeepRowsOfTheirOwn();
    void aTextSetOnACellIsKept();
    void aCopyOfACellKeepsItsTextAwayFromTheTable();
    void cellsMadeAfterOthersWentReadTheirOwnRows();
    void rowsOutsideTheListHaveNoText();
    void linesShowAsTheirRecordsWouldWhateverTheDateTime();
};

void TestEntryTableRows::eachRowShowsItsNumberNamesPriceAndDateTime()
{
    auto table = entryTable();
    EntryTableRows::Rows rows;
    rows.append(entry("Bread", "Food", 0.1f, morning, "Market"));
    rows.append(entry("Taxi", "Travel", 1234567.0f, evening, QString()));
    EntryTableRows::of(table.get())->show(std::move(rows));

    QCOMPARE(table->rowCount(), 2);
    // Numbers in the general format with six significant digits, date-times
    // in the text form.
    QCOMPARE(rowTexts(*table, 0), (QStringList { "1", "Bread", "Food", "0.1", "Sun Nov 15 08:30:00 2026", "Market" }));
    QCOMPARE(rowTexts(*table, 1),
             (QStringList { "2", "Taxi", "Travel", "1.23457e+06", "Sat Nov 14 19:05:07 2026", "" }));
    // The model tells the view the same texts.
    QCOMPARE(table->model()->index(1, 3).data().toString(), QStringLiteral("1.23457e+06"));
    QCOMPARE(table->model()->index(0, 1).data(Qt::EditRole).toString(), QStringLiteral("Bread"));
}

void TestEntryTableRows::everyCellIsRedAndReadOnly()
{
    auto table = entryTable();
    EntryTableRows::Rows rows;
    rows.append(entry("Bread", "Food", 2.5f, morning, "Market"));
    EntryTableRows::of(table.get())->show(std::move(rows));

    for (int column = 0; column < EntryTableRows::ColumnCount; ++column) {
        const QTableWidgetItem *cell = table->item(0, column);
        QVERIFY(cell);
        QCOMPARE(cell->foreground().color(), QColor(0xff, 0, 0));
        QVERIFY(!(cell->flags() & Qt::ItemIsEditable));
        QVERIFY(cell->flags() & Qt::ItemIsSelectable);
        QVERIFY(cell->flags() & Qt::ItemIsEnabled);
    }
}

void TestEntryTableRows::showingNewRowsReplacesTheRowsShownBefore()
{
    auto table = entryTable();
    EntryTableRows *shown = EntryTableRows::of(table.get());
    EntryTableRows::Rows three;
    for (const char *item : { "Tea", "Cake", "Juice" })
        three.append(entry(item, "Food", 1, morning, "Cafe"));
    shown->show(std::move(three));
    QCOMPARE(table->rowCount(), 3);

    EntryTableRows::Rows one;
    one.append(entry("Taxi", "Travel", 7, evening, "Airport"));
    shown->show(std::move(one));

    QCOMPARE(table->rowCount(), 1);
    QCOMPARE(rowTexts(*table, 0), (QStringList { "1", "Taxi", "Travel", "7", "Sat Nov 14 19:05:07 2026", "Airport" }));
    QCOMPARE(EntryTableRows::of(table.get()), shown);
    QCOMPARE(shown->shown().size(), 1);
}

void TestEntryTableRows::tablesKeepRowsOfTheirOwn()
{
    auto first = entryTable();
    auto second = entryTable();
    EntryTableRows::Rows bread;
    bread.append(entry("Bread", "Food", 2, morning, "Market"));
    EntryTableRows::Rows taxi;
    taxi.append(entry("Taxi", "Travel", 30, evening, "Airport"));
    EntryTableRows::of(first.get())->show(std::move(bread));
    EntryTableRows::of(second.get())->show(std::move(taxi));

    QCOMPARE(first->item(0, 1)->text(), QStringLiteral("Bread"));
    QCOMPARE(second->item(0, 1)->text(), QStringLiteral("Taxi"));
    // One table gone, the other still reads its own.
    first.reset();
    QCOMPARE(second->item(0, 1)->text(), QStringLiteral("Taxi"));
    QCOMPARE(second->item(0, 3)->text(), QStringLiteral("30"));
}

void TestEntryTableRows::aTextSetOnACellIsKept()
{
    auto table = entryTable();
    EntryTableRows::Rows rows;
    rows.append(entry("Bread", "Food", 2, morning, "Market"));
    EntryTableRows::of(table.get())->show(std::move(rows));

    table->item(0, 1)->setText(QStringLiteral("Rye bread"));
    table->item(0, 2)->setForeground(QColor(0, 0, 0xff));

    QCOMPARE(table->item(0, 1)->text(), QStringLiteral("Rye bread"));
    QCOMPARE(table->item(0, 2)->foreground().color(), QColor(0, 0, 0xff));
    QCOMPARE(table->item(0, 2)->text(), QStringLiteral("Food"));
}

void TestEntryTableRows::aCopyOfACellKeepsItsTextAwayFromTheTable()
{
    auto table = entryTable();
    EntryTableRows::Rows rows;
    rows.append(entry("Bread", "Food", 2.5f, morning, "Market"));
    EntryTableRows::of(table.get())->show(std::move(rows));

    std::unique_ptr<QTableWidgetItem> copy(table->item(0, 3)->clone());
    table.reset();

    QCOMPARE(copy->text(), QStringLiteral("2.5"));
    QCOMPARE(copy->foreground().color(), QColor(0xff, 0, 0));
    QVERIFY(!(copy->flags() & Qt::ItemIsEditable));
}

void TestEntryTableRows::cellsMadeAfterOthersWentReadTheirOwnRows()
{
    // Enough rows for the cells to fill several blocks of storage, freed and
    // taken again in another order.
    auto table = entryTable();
    auto other = entryTable();
    EntryTableRows::Rows many;
    for (int i = 0; i < 3000; ++i)
        many.append(entry(QStringLiteral("Item %1").arg(i), "Food", float(i), morning, "Market"));
    EntryTableRows::of(table.get())->show(std::move(many));
    QCOMPARE(table->item(2999, 1)->text(), QStringLiteral("Item 2999"));

    table->setRowCount(1000);
    EntryTableRows::Rows next;
    for (int i = 0; i < 2500; ++i)
        next.append(entry(QStringLiteral("Other %1").arg(i), "Travel", float(i) + 0.5f, evening, "Station"));
    EntryTableRows::of(other.get())->show(std::move(next));

    QCOMPARE(table->rowCount(), 1000);
    QCOMPARE(rowTexts(*table, 999),
             (QStringList { "1000", "Item 999", "Food", "999", "Sun Nov 15 08:30:00 2026", "Market" }));
    QCOMPARE(other->rowCount(), 2500);
    for (int row : { 0, 1234, 2499 }) {
        QCOMPARE(rowTexts(*other, row),
                 (QStringList { QString::number(row + 1), QStringLiteral("Other %1").arg(row), "Travel",
                                QString::number(double(float(row) + 0.5f)), "Sat Nov 14 19:05:07 2026", "Station" }));
    }
}

void TestEntryTableRows::rowsOutsideTheListHaveNoText()
{
    EntryTableRows::Rows rows;
    QVERIFY(rows.isEmpty());
    rows.append(entry("Bread", "Food", 2, morning, "Market"));
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.text(0, EntryTableRows::ItemName), QStringLiteral("Bread"));
    QCOMPARE(rows.text(-1, EntryTableRows::ItemName), QString());
    QCOMPARE(rows.text(1, EntryTableRows::ItemName), QString());
    QCOMPARE(rows.text(0, EntryTableRows::ColumnCount), QString());
    rows.clear();
    QVERIFY(rows.isEmpty());
}

void TestEntryTableRows::linesShowAsTheirRecordsWouldWhateverTheDateTime()
{
    // A date and time of the file's own form, a date-time of another zone,
    // one at an offset, an invalid one; and a record of each.
    EntryLine own;
    own.ItemName = QStringLiteral("Bread");
    own.CategoryName = QStringLiteral("Food");
    own.LocationText = QStringLiteral("Market");
    own.Price = 2.5f;
    own.storedDate = QDate(2026, 11, 15);
    own.storedTime = QTime(8, 30);
    EntryLine utc = own;
    utc.storedDate = QDate();
    utc.storedTime = QTime();
    utc.other = QDateTime(QDate(2026, 11, 15), QTime(8, 30), Qt::UTC);
    EntryLine offset = utc;
    offset.other = QDateTime(QDate(2026, 11, 15), QTime(8, 30), Qt::OffsetFromUTC, 5 * 3600 + 1800);
    EntryLine invalid = utc;
    invalid.other = QDateTime();

    auto fromLines = entryTable();
    auto fromRecords = entryTable();
    EntryTableRows::Rows lines;
    EntryTableRows::Rows records;
    for (const EntryLine &line : { own, utc, offset, invalid }) {
        lines.append(line);
        records.append(entry(line.ItemName, line.CategoryName, line.Price, line.dateTime(), line.LocationText));
    }
    EntryTableRows::of(fromLines.get())->show(std::move(lines));
    EntryTableRows::of(fromRecords.get())->show(std::move(records));

    QCOMPARE(fromLines->rowCount(), 4);
    for (int row = 0; row < 4; ++row)
        QCOMPARE(rowTexts(*fromLines, row), rowTexts(*fromRecords, row));
    // As the text form writes each.
    QCOMPARE(rowTexts(*fromLines, 0).at(4), QStringLiteral("Sun Nov 15 08:30:00 2026"));
    QCOMPARE(rowTexts(*fromLines, 1).at(4), QStringLiteral("Sun Nov 15 08:30:00 2026 GMT"));
    QCOMPARE(rowTexts(*fromLines, 2).at(4), QStringLiteral("Sun Nov 15 08:30:00 2026 GMT+0530"));
    QCOMPARE(rowTexts(*fromLines, 3).at(4), QString());
}

QTEST_MAIN(TestEntryTableRows)
#include "tst_entrytablerows.moc"
