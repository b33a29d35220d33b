// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "testwidget.h"
#include "ui_testwidget.h"

#include "databasemanager.h"
#include "notice.h"

#include <QDateTime>
#include <QSqlTableModel>

TestWidget::TestWidget(QPointer<DatabaseManager> dbManager, QWidget *parent)
    : QWidget(parent), ui(new Ui::TestWidget), dbManager(dbManager)
{
    ui->setupUi(this);
}

TestWidget::~TestWidget()
{
    delete ui;
}

void TestWidget::showTable(const QString &table)
{
    // A new model per press, kept by the page until it goes.
    QSqlTableModel *model = dbManager ? dbManager->createTableModel(table, this) : nullptr;
    if (!model)
        return;
    QItemSelectionModel *oldSelection = ui->tableView->selectionModel();
    ui->tableView->setModel(model);
    delete oldSelection;
}

void TestWidget::on_pushButton_clicked()
{
    // The category number is fixed on purpose; the store looks the real one up.
    Items item;
    item.ItemName = QStringLiteral("Add Item Test 1");
    item.CategoryName = QStringLiteral("Drinks");
    item.CategoryID = 1;
    item.LastPrice = 11.0f;
    item.UseFrequency = 2;

    if (dbManager && dbManager->AddItem(&item)) {
        Notice::inform(tr("item added to the database successfully "));
    } else {
        const int drinksID = dbManager ? dbManager->GetCategoryID(QStringLiteral("Drinks")) : 0;
        Notice::inform(tr("item could not be added to the database - %1").arg(drinksID));
    }
    showTable(QStringLiteral("Items"));
}

void TestWidget::on_pushButton_2_clicked()
{
    HistoricLocation location;
    location.LocationName = QStringLiteral("Test Location 2");
    location.LocationLongitude = 103.856f;
    location.LocationLatitude = 1.293f;
    location.ReverseGeoLocation = QStringLiteral("Singapore");
    location.CoordinateText = QStringLiteral("103.856/1.293");

    if (dbManager && dbManager->AddHistoricLocation(&location))
        Notice::inform(tr("historic location added to the database successfully "));
    else
        Notice::inform(tr("historic location could not be added to the database "));
    showTable(QStringLiteral("HistoricLocation"));
}

void TestWidget::on_pushButton_3_clicked()
{
    if (dbManager && dbManager->AddMode(QStringLiteral("Default")))
        Notice::inform(tr("Mode added to the database successfully "));
    else
        Notice::inform(tr("Mode could not be added to the database "));
    showTable(QStringLiteral("Mode"));
}

void TestWidget::on_pushButton_4_clicked()
{
    Entry entry;
    entry.ItemName = QStringLiteral("TestItem 1");
    entry.CategoryName = QStringLiteral("Food");
    entry.Price = 10.5f;
    entry.LocationText = QStringLiteral("TestLocation 1");
    entry.TransactDateTime = QDateTime::currentDateTime();
    entry.EnableGeoLoc = false;

    if (dbManager && dbManager->AddEntry(&entry))
        Notice::inform(tr("Entry added to the database successfully"));
    else
        Notice::inform(tr("Entry could not be added to the database!"));
    showTable(QStringLiteral("Entry"));
}
