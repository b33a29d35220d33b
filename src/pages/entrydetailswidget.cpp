// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "entrydetailswidget.h"

#include "databasemanager.h"
#include "format.h"
#include "fulltexttooltipdelegate.h"
#include "ui_entrydetailswidget.h"

#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QTextStream>
#include <QUrl>

namespace {

QString valueCell(const QString &value)
{
    // Escaped, so that a name such as "<b>x</b>" or "&amp;" shows as typed.
    return QStringLiteral("<font color=#aa00ff> %1 </font>").arg(value.toHtmlEscaped());
}

} // namespace

EntryDetailsWidget::EntryDetailsWidget(int index, QPointer<DatabaseManager> dbManager, QWidget *parent)
    : QWidget(parent), ui(new Ui::EntryDetailsWidget), dbManager(dbManager), indexOfEntryinAllEntries(index)
{
    ui->setupUi(this);
    // The two columns keep their default widths, too narrow for most texts.
    ui->tableWidget->setItemDelegate(new FullTextToolTipDelegate(ui->tableWidget));
    ShowEntryDetails();
}

EntryDetailsWidget::~EntryDetailsWidget()
{
    delete ui;
}

void EntryDetailsWidget::ShowEntryDetails()
{
    if (!dbManager)
        return;
    const auto entries = owned(dbManager->GetAllEntries());
    // The caller passes a row of a table filled from this same list; a stale
    // index still must not read past its end.
    if (indexOfEntryinAllEntries >= 0 && indexOfEntryinAllEntries < entries.size()) {
        const Entry &entry = *entries.at(indexOfEntryinAllEntries);
        fillTable(entry);
        ui->webView->setHtml(mapPageHtml(entry), QUrl());
    }
}

void EntryDetailsWidget::fillTable(const Entry &entry)
{
    QTableWidget *table = ui->tableWidget;
    // Both resizes run while the table has no columns yet; the columns are
    // fitted once they are filled.
    table->resizeColumnsToContents();
    table->horizontalHeader()->resizeSections(QHeaderView::Stretch);
    table->setColumnCount(2);
    table->setRowCount(8);
    // The label column is headed "Item Name" as well, as designed.
    table->setHorizontalHeaderLabels({ tr("Item Name"), tr("Value") });

    const QString noCoordinate = tr(" - ");
    // Rows 6 and 7 cross on purpose: the latitude stands under "Longitude"
    // and the longitude under "Latitude". The map uses each for its own axis.
    const QString rows[8][2] = {
        { tr("<font color=#aa00ff> Item Name </font>"), entry.ItemName },
        { tr("<font color=#aa00ff> Category Name </font>"), entry.CategoryName },
        { tr("<font color=#aa00ff> Price </font>"), Format::number(entry.Price) },
        { tr("<font color=#aa00ff> Transaction Date </font>"), Format::dateTime(entry.TransactDateTime) },
        { tr("<font color=#aa00ff> GeoLocation Enabled </font>"), entry.EnableGeoLoc ? tr("True") : tr("False") },
        { tr("<font color=#aa00ff> Location Text </font>"), entry.LocationText },
        { tr("<font color=#aa00ff> Longitude </font>"),
          entry.EnableGeoLoc ? Format::number(entry.GeoLocLatit) : noCoordinate },
        { tr("<font color=#aa00ff> Latitude </font>"),
          entry.EnableGeoLoc ? Format::number(entry.GeoLocLongit) : noCoordinate },
    };
    for (int row = 0; row < 8; ++row) {
        table->setCellWidget(row, 0, new QLabel(rows[row][0]));
        table->setCellWidget(row, 1, new QLabel(valueCell(rows[row][1])));
    }
    // Every label and value whole (and again as the page shows, in its
    // place's fonts): the columns take the width of their widest cell or
    // heading, and the table scrolls sideways if it must.
    table->resizeColumnsToContents();
}

void EntryDetailsWidget::showEvent(QShowEvent *event)
{
    // Every label and value whole: the columns take the width of their
    // widest cell or heading, and the table scrolls sideways if it must.
    // Measured as shown, with the fonts and borders of the style sheets
    // around the page.
    ui->tableWidget->resizeColumnsToContents();
    QWidget::showEvent(event);
}

QString EntryDetailsWidget::mapPageHtml(const Entry &entry)
{
    QFile file(QStringLiteral(":/Images/GetStaticGoogleMap.html"));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QTextStream stream(&file);
    QString page = stream.readAll();
    file.close();

    // The markers stand bare inside the page's script, so what replaces them
    // must be a plain decimal number.
    if (entry.EnableGeoLoc) {
        page.replace(QLatin1String("[Lat]"), Format::number(entry.GeoLocLatit));
        page.replace(QLatin1String("[Long]"), Format::number(entry.GeoLocLongit));
    } else {
        // Entries without a geolocation show a fixed place.
        page.replace(QLatin1String("[Lat]"), QLatin1String("1.27899"));
        page.replace(QLatin1String("[Long]"), QLatin1String("103.8488"));
    }
    return page;
}
