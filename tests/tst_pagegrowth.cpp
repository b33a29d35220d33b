// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "pagegrowth.h"

#include "widgettest.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QTableWidget>
#include <QtTest>

namespace {

// A small page laid out by fixed geometry, as the forms lay out theirs: a
// table with a caption to its right, a field below the table, a button
// below the field, and tabs below all of them whose page holds a table.
struct Page
{
    QWidget page;
    QTableWidget *table;
    QLabel *caption;
    QLineEdit *field;
    QPushButton *button;
    QTabWidget *tabs;
    QTableWidget *tabTable;

    Page()
    {
        page.resize(400, 500);
        table = new QTableWidget(2, 2, &page);
        table->setGeometry(10, 10, 200, 100);
        caption = new QLabel(QStringLiteral("Total"), &page);
        caption->setGeometry(220, 10, 80, 30);
        field = new QLineEdit(&page);
        field->setGeometry(10, 120, 200, 30);
        button = new QPushButton(QStringLiteral("Add"), &page);
        button->setGeometry(10, 160, 100, 30);
        tabs = new QTabWidget(&page);
        tabs->setGeometry(10, 200, 200, 290);
        auto *tab = new QWidget;
        tabTable = new QTableWidget(1, 3, tab);
        tabTable->setGeometry(5, 5, 150, 150);
        tabs->addTab(tab, QStringLiteral("Tab"));
    }
};

} // namespace

class TestPageGrowth : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    void cleanup() { VERIFY_NO_WIDGETS_LEFT(); }

    void tablesScrollAreasAndTabsAreAreasEditableBoxesFieldsAndTheRestFixed()
    {
        QWidget page;
        QCOMPARE(PageGrowth::role(new QTableWidget(&page)), PageGrowth::Role::Area);
        QCOMPARE(PageGrowth::role(new QScrollArea(&page)), PageGrowth::Role::Area);
        QCOMPARE(PageGrowth::role(new QTabWidget(&page)), PageGrowth::Role::Area);
        QCOMPARE(PageGrowth::role(new QLineEdit(&page)), PageGrowth::Role::Field);
        QCOMPARE(PageGrowth::role(new QLabel(&page)), PageGrowth::Role::Fixed);
        QCOMPARE(PageGrowth::role(new QPushButton(&page)), PageGrowth::Role::Fixed);
    }

    void withoutGrowthEveryWidgetKeepsItsDesignedPlace()
    {
        const QRect designed(30, 40, 100, 50);
        for (const PageGrowth::Role role : { PageGrowth::Role::Area, PageGrowth::Role::Field, PageGrowth::Role::Fixed })
            QCOMPARE(PageGrowth::grown(designed, designed.size(), role, QSize(0, 0), QPoint(0, 500), QPoint(0, 500)),
                     designed);
    }

    void anAreaSpanningTheWholeSpanTakesAllTheGrowth()
    {
        QCOMPARE(PageGrowth::grown(QRect(10, 20, 300, 200), QSize(300, 200), PageGrowth::Role::Area, QSize(150, 80),
                                   QPoint(10, 310), QPoint(20, 220)),
                 QRect(10, 20, 450, 280));
    }

    void twoAreasSideBySideShareTheGrowthAndStayApart()
    {
        // Spread over 0..200: the first ends at a third of it (+30 of 90),
        // the second starts a gap later (110 is 55 % of the way: +50).
        const QPoint span(0, 200), down(0, 100);
        const QRect first =
            PageGrowth::grown(QRect(0, 0, 60, 100), QSize(60, 100), PageGrowth::Role::Area, QSize(90, 0), span, down);
        const QRect second =
            PageGrowth::grown(QRect(110, 0, 90, 100), QSize(90, 100), PageGrowth::Role::Area, QSize(90, 0), span, down);
        QCOMPARE(first, QRect(0, 0, 60 + 27, 100));
        QCOMPARE(second, QRect(110 + 50, 0, 90 + 40, 100));
        QVERIFY(!first.intersects(second));
    }

    void aFieldGrowsOnlyWiderAndAFixedWidgetMovesAsItsMiddleKeepingItsSize()
    {
        // The field lies below the only area: it moves down by all of it.
        QCOMPARE(PageGrowth::grown(QRect(10, 120, 200, 30), QSize(200, 30), PageGrowth::Role::Field, QSize(100, 60),
                                   QPoint(10, 210), QPoint(10, 110)),
                 QRect(10, 180, 300, 30));
        // Its middle a quarter of the way across the span: a quarter of the
        // growth; a size it took since (a label fitted to its text) stays.
        QCOMPARE(PageGrowth::grown(QRect(10, 160, 100, 30), QSize(120, 30), PageGrowth::Role::Fixed, QSize(200, 60),
                                   QPoint(10, 210), QPoint(10, 110)),
                 QRect(60, 220, 120, 30));
    }

    void withNothingThatGrowsAlongAnAxisNothingMovesAlongIt()
    {
        QCOMPARE(PageGrowth::grown(QRect(300, 470, 311, 61), QSize(311, 61), PageGrowth::Role::Fixed, QSize(100, 100),
                                   QPoint(150, 831), QPoint(INT_MAX, INT_MIN)),
                 QRect(300 + qRound(100 * (455.0 - 150) / 681), 470, 311, 61));
    }

    void anInstalledPageGrowsWithItsSizeAndReturnsToItsDesign()
    {
        Page p;
        PageGrowth::install(&p.page);
        p.page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&p.page));
        const QRect designedTabTable = p.tabTable->geometry();

        p.page.resize(600, 700);
        // Across: the table, the field and the tabs span 10..210, and take
        // all 200.
        // Down: the table (10..110) and the tabs (200..490) span 10..490.
        QTRY_COMPARE(p.table->geometry(), QRect(10, 10, 400, 100 + qRound(200 * 100.0 / 480)));
        QCOMPARE(p.caption->geometry(), QRect(220 + 200, 10 + qRound(200 * 15.0 / 480), 80, 30));
        QCOMPARE(p.field->geometry(), QRect(10, 120 + qRound(200 * 125.0 / 480), 400, 30));
        QCOMPARE(p.button->geometry(), QRect(10 + qRound(200 * 50.0 / 200), 160 + qRound(200 * 165.0 / 480), 100, 30));
        QCOMPARE(p.tabs->geometry(),
                 QRect(10, 200 + qRound(200 * 190.0 / 480), 400, 290 + 200 - qRound(200 * 190.0 / 480)));
        // The tab page gains what its tab widget gained, and its table all
        // of it.
        const QSize tabsGrowth = p.tabs->size() - QSize(200, 290);
        QTRY_COMPARE(p.tabTable->geometry(), QRect(designedTabTable.topLeft(), designedTabTable.size() + tabsGrowth));

        // Nothing overlaps another.
        const QList<QWidget *> widgets = { p.table, p.caption, p.field, p.button, p.tabs };
        for (QWidget *one : widgets) {
            for (QWidget *other : widgets)
                QVERIFY2(one == other || !one->geometry().intersects(other->geometry()),
                         qPrintable(QStringLiteral("%1 and %2")
                                        .arg(one->metaObject()->className(), other->metaObject()->className())));
        }

        // Smaller than designed: every widget at its designed place.
        p.page.resize(300, 300);
        QTRY_COMPARE(p.table->geometry(), QRect(10, 10, 200, 100));
        QCOMPARE(p.caption->geometry(), QRect(220, 10, 80, 30));
        QCOMPARE(p.field->geometry(), QRect(10, 120, 200, 30));
        QCOMPARE(p.button->geometry(), QRect(10, 160, 100, 30));
        QCOMPARE(p.tabs->geometry(), QRect(10, 200, 200, 290));
        QTRY_COMPARE(p.tabTable->geometry(), designedTabTable);
    }

    void aTableWhoseColumnsDoNotStretchSharesItsNewWidthAmongThem()
    {
        QWidget page;
        page.resize(300, 200);
        auto *table = new QTableWidget(2, 3, &page);
        table->setGeometry(0, 0, 300, 200);
        for (int column = 0; column < 3; ++column)
            table->horizontalHeader()->resizeSection(column, 80);
        PageGrowth::install(&page);
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        page.resize(390, 200);
        QTRY_COMPARE(table->width(), 390);
        for (int column = 0; column < 3; ++column)
            QCOMPARE(table->horizontalHeader()->sectionSize(column), 80 + 30);
    }
};

QTEST_MAIN(TestPageGrowth)

#include "tst_pagegrowth.moc"
