// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>

class DatabaseManager;
class Entry;

namespace Ui {
class EntryDetailsWidget;
}

// One stored expense: a table of its fields beside a street map of where it
// was recorded. Filled once, from the entry at a position of GetAllEntries().
// The store is only borrowed through its guard.
class EntryDetailsWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(EntryDetailsWidget)

public:
    EntryDetailsWidget(int index, QPointer<DatabaseManager> dbManager, QWidget *parent);
    ~EntryDetailsWidget() override;

    void ShowEntryDetails();

    // The map page handed to the web view for an entry: the map template
    // with its latitude and longitude filled in. Empty if the template
    // cannot be read.
    static QString mapPageHtml(const Entry &entry);

protected:
    // Fits the table's columns to their cells, in the fonts of the place the
    // page is shown in.
    void showEvent(QShowEvent *event) override;

private:
    void fillTable(const Entry &entry);

    Ui::EntryDetailsWidget *ui;
    QPointer<DatabaseManager> dbManager;
    int indexOfEntryinAllEntries;
};
