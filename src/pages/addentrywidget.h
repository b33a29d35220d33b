// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QHash>
#include <QList>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <memory>

#include "budgets.h"

class Category;
class Entry;
class DatabaseManager;
class QCompleter;
class QNetworkReply;
class RuleMatcher;

namespace Ui {
class AddEntryWidget;
}

// The page on which the user records one expense. It asks the IP-geolocation
// service where the device is when it opens and again on every Add, and can
// attach the latest answer to the entry. The item name completes from the
// catalogue of items bought before, and a name picked from it brings its
// last price and category along; a name the catalogue does not know
// brings the category of the first rule that matches it. The store is only
// borrowed.
class AddEntryWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(AddEntryWidget)

public:
    AddEntryWidget(QPointer<DatabaseManager> dbManager, QWidget *parent);
    ~AddEntryWidget() override;

    void CheckFieldsFunction();
    // Appends the names in list order; the categories stay the caller's.
    void AddCategoriesToComboBox(QList<Category *> categories);

signals:
    // An entry just stored took its category's spending past 80 % of its
    // budget (Nearing) or past the budget (Over) in the entry's period.
    void budgetThresholdCrossed(const QString &message, BudgetLevel level);

protected:
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void on_pushButtonAdd_clicked();
    void handleNetworkData(QNetworkReply *reply);

private:
    // The lookups the page sent, until the program's locator deletes them.
    QList<QPointer<QNetworkReply>> pendingLookups;
    // What the catalogue knows of an item name: the amount and category a
    // pick of the name offers.
    struct CatalogueItem
    {
        float lastPrice;
        QString categoryName;
    };

    void startLocationLookup();
    void setUpItemCompletion();
    // Fills in the amount and the category of a catalogue item, as far as
    // the user has not chosen them.
    void offerCatalogueItem(const QString &itemName);
    // Selects the category of the first rule that matches a name the
    // catalogue does not know, as far as the user has not chosen one.
    void offerRuleCategory(const QString &itemName);
    void clearFields();
    void checkBudget(const Entry &entry);

    Ui::AddEntryWidget *ui;
    QPointer<DatabaseManager> dbManager;
    float latitude;
    float longitude;
    QString location;
    QString ipAddress;
    QString city;
    QString region;
    QHash<QString, CatalogueItem> catalogue;
    QCompleter *itemCompleter;
    // The rules as the page opened, read once as the catalogue is.
    std::unique_ptr<RuleMatcher> rules;
    // Whether the user chose the category of the entry being typed; a
    // picked item then leaves it alone.
    bool categoryChosen;
};
