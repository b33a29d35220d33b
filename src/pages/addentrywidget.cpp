// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "addentrywidget.h"
#include "ui_addentrywidget.h"

#include "amount.h"
#include "databasemanager.h"
#include "format.h"
#include "geolocationreply.h"
#include "geolocator.h"
#include "look.h"
#include "notice.h"
#include "rulematcher.h"
#include "rules.h"
#include "settings.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QDate>
#include <QKeyEvent>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QShowEvent>
#include <QStringListModel>

#include <cmath>

#include <memory>

AddEntryWidget::AddEntryWidget(QPointer<DatabaseManager> dbManager, QWidget *parent)
    : QWidget(parent), ui(new Ui::AddEntryWidget), dbManager(dbManager), latitude(0.0f), longitude(0.0f),
      itemCompleter(nullptr), categoryChosen(false)
{
    ui->setupUi(this);
    Look::applyButtonFontWeight(ui->pushButtonAdd);

    // The point is required: "12" stays an intermediate input, "12." and
    // "12.50" are acceptable, and a third decimal digit cannot be typed.
    auto *amountValidator =
        new QRegularExpressionValidator(Amount::pattern(Amount::Point::Required), ui->lineEditAmount);
    ui->lineEditAmount->setValidator(amountValidator);

    ui->dateEdit->setDate(QDate::currentDate());

    if (this->dbManager)
        AddCategoriesToComboBox(owned(this->dbManager->GetAllCategories()).list());
    setUpItemCompletion();

    // The keyboard walks the form top to bottom, starting on the name (see
    // showEvent()); Return or Enter in a text field presses Add.
    setTabOrder(ui->lineEditItemName, ui->lineEditAmount);
    setTabOrder(ui->lineEditAmount, ui->comboBoxCategory);
    setTabOrder(ui->comboBoxCategory, ui->lineEditLocation);
    setTabOrder(ui->lineEditLocation, ui->dateEdit);
    setTabOrder(ui->dateEdit, ui->checkBoxGeoLocation);
    setTabOrder(ui->checkBoxGeoLocation, ui->pushButtonAdd);
    for (QLineEdit *field : { ui->lineEditItemName, ui->lineEditAmount, ui->lineEditLocation })
        field->installEventFilter(this);

    // Asked as soon as the page opens, whether or not the user ever ticks
    // "Add GeoLocation", so that an answer is likely to be there by Add.
    startLocationLookup();
}

AddEntryWidget::~AddEntryWidget()
{
    // A lookup the page no longer waits for is given up, not left to the
    // server; it is let go of first, so that its end reaches no page.
    for (const QPointer<QNetworkReply> &reply : std::as_const(pendingLookups)) {
        if (reply) {
            reply->disconnect(this);
            reply->abort();
        }
    }
    // A page that goes while its name field has the focus moves the focus
    // away as it closes, after this destructor: the field would report its
    // editing finished to a page whose catalogue is gone.
    ui->lineEditItemName->disconnect(this);
    delete ui;
}

void AddEntryWidget::setUpItemCompletion()
{
    // Read once: items added from this page are offered from the next page.
    QStringList names;
    if (dbManager) {
        const auto items = owned(dbManager->GetItemCatalogue());
        names.reserve(items.size());
        catalogue.reserve(items.size());
        for (const Items *item : items) {
            names.append(item->ItemName);
            catalogue.insert(item->ItemName, CatalogueItem { item->LastPrice, item->CategoryName });
        }
    }

    // The store's order, the most used first, is the order of the list.
    rules = std::make_unique<RuleMatcher>(dbManager ? Rules(*dbManager).all() : QList<Rule>());

    itemCompleter = new QCompleter(new QStringListModel(names, this), this);
    itemCompleter->setModelSorting(QCompleter::UnsortedModel);
    itemCompleter->setCaseSensitivity(Qt::CaseInsensitive);
    itemCompleter->setFilterMode(Qt::MatchContains);
    itemCompleter->setCompletionMode(QCompleter::PopupCompletion);
    ui->lineEditItemName->setCompleter(itemCompleter);
    // The list is a window of its own, out of reach of the page's style
    // sheet: it gets the colours of the program's other drop-down lists.
    Look::applyToPopUpList(itemCompleter->popup());

    connect(itemCompleter, qOverload<const QString &>(&QCompleter::activated), this,
            &AddEntryWidget::offerCatalogueItem);
    // A name typed out in full counts as picked once the user moves on to
    // another field. Not when the user moves on by pressing Add: Add stores
    // what the page showed when it was pressed. The focus has already moved
    // when the field reports that its editing is finished.
    connect(ui->lineEditItemName, &QLineEdit::editingFinished, this, [this] {
        if (QApplication::focusWidget() != ui->pushButtonAdd)
            offerCatalogueItem(ui->lineEditItemName->text());
    });
    connect(ui->comboBoxCategory, qOverload<int>(&QComboBox::activated), this, [this] { categoryChosen = true; });
}

void AddEntryWidget::offerCatalogueItem(const QString &itemName)
{
    const auto found = catalogue.constFind(itemName);
    if (found == catalogue.constEnd()) {
        offerRuleCategory(itemName);
        return;
    }
    if (!ui->lineEditAmount->text().isEmpty())
        return;

    // In the form the amount field accepts (12.50); a stored price that the
    // field or Add would refuse, a negative or a huge one say, is not
    // offered.
    QString amount;
    if (std::isfinite(found->lastPrice))
        amount = QString::number(double(found->lastPrice), 'f', 2);
    int position = 0;
    if (!amount.isEmpty() && ui->lineEditAmount->validator()->validate(amount, position) == QValidator::Acceptable &&
        !Amount::isTooLarge(amount))
        ui->lineEditAmount->setText(amount);

    if (!categoryChosen) {
        const int index = ui->comboBoxCategory->findText(found->categoryName, Qt::MatchExactly);
        if (index >= 0)
            ui->comboBoxCategory->setCurrentIndex(index);
    }
}

void AddEntryWidget::offerRuleCategory(const QString &itemName)
{
    if (categoryChosen || itemName.isEmpty())
        return;
    // The page knows the name only: a rule for places alone does not match.
    const std::optional<QString> category = rules->categoryOf(itemName, QString());
    if (!category)
        return;
    const int index = ui->comboBoxCategory->findText(*category, Qt::MatchExactly);
    if (index >= 0)
        ui->comboBoxCategory->setCurrentIndex(index);
}

void AddEntryWidget::startLocationLookup()
{
    QNetworkReply *reply = GeoLocator::instance().lookUp();
    if (!reply)
        return;
    // The page as the context: a reply still on its way when the page is
    // replaced is never delivered to it (the locator deletes it all the
    // same).
    connect(reply, &QNetworkReply::finished, this, [this, reply] { handleNetworkData(reply); });
    pendingLookups.append(reply);
}

void AddEntryWidget::handleNetworkData(QNetworkReply *reply)
{
    // A failed lookup changes nothing; the locator deletes every reply.
    if (reply->error() != QNetworkReply::NoError)
        return;

    const QByteArray body = reply->readAll();
    const GeoLocationReply answer = parseGeoLocationReply(body);
    if (answer.ipAddress)
        ipAddress = *answer.ipAddress;
    if (answer.city)
        city = *answer.city;
    if (answer.region)
        region = *answer.region;
    if (answer.latitude)
        latitude = *answer.latitude;
    if (answer.longitude)
        longitude = *answer.longitude;

    if (!city.isEmpty()) {
        location.append(city);
        if (!region.isEmpty())
            location.append(QStringLiteral(", ") + region);
    }
    // The place the page keeps and shows is the IP address, not the city and
    // region just assembled: that is what the page has always recorded.
    location = ipAddress;
}

void AddEntryWidget::AddCategoriesToComboBox(QList<Category *> categories)
{
    for (const Category *category : categories)
        ui->comboBoxCategory->addItem(category->CategoryName, QVariant());
}

void AddEntryWidget::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // The page opens on the name, whichever button opened it. Focus given
    // before the page is on screen would not stay with it.
    if (!event->spontaneous())
        ui->lineEditItemName->setFocus(Qt::OtherFocusReason);
}

bool AddEntryWidget::eventFilter(QObject *watched, QEvent *event)
{
    // A key press, not returnPressed(): the amount field only emits that for
    // an amount its validator accepts, while Add reads "12" all the same.
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        const bool returnKey = key == Qt::Key_Return || key == Qt::Key_Enter;
        // Return while the list of names is open belongs to the list: it
        // picks the highlighted name, or only closes the list, and never
        // presses Add. The window system hands the keys typed then to the
        // list, which passes them on to the field past this filter; a key
        // that reaches the field all the same goes the list's way too.
        QWidget *list = itemCompleter->popup();
        if (returnKey && watched == ui->lineEditItemName && list->isVisible()) {
            QCoreApplication::sendEvent(list, event);
            return true;
        }
        if (returnKey &&
            (watched == ui->lineEditItemName || watched == ui->lineEditAmount || watched == ui->lineEditLocation)) {
            ui->pushButtonAdd->click();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void AddEntryWidget::on_pushButtonAdd_clicked()
{
    CheckFieldsFunction();
}

void AddEntryWidget::CheckFieldsFunction()
{
    startLocationLookup();

    const QString name = ui->lineEditItemName->text();
    const QString amount = ui->lineEditAmount->text();
    const QString place = ui->lineEditLocation->text();

    if (name.isEmpty() && amount.isEmpty() && place.isEmpty()) {
        Notice::inform(tr("All fields empty. Enter information"));
    } else if (name.isEmpty() && amount.isEmpty()) {
        Notice::inform(tr("Item Name and Amount not entered."));
    } else {
        if (name.isEmpty())
            Notice::inform(tr("Item Name cannot be empty. Enter Item Name"));
        if (amount.isEmpty())
            Notice::inform(tr("Amount cannot be empty. Enter Amount"));
    }

    // The location is required too, but silently: with only the location
    // missing, Add does nothing visible.
    if (name.isEmpty() || amount.isEmpty() || place.isEmpty())
        return;

    // Forty nines make no price: asked before the confirmation, so that
    // nothing that cannot be stored is offered for saving.
    if (Amount::isTooLarge(amount)) {
        Notice::inform(Amount::tooLargeMessage());
        return;
    }

    const bool withGeoLocation = ui->checkBoxGeoLocation->isChecked();
    // One substitution pass, so that a '%' typed into a field stays as typed.
    if (!Notice::confirm(tr("Details Entered - Item Name: %1  Price: %2 Category: %3  Date: %4  Location: %5  "
                            "AddGeoLocation: %6 Longitude: %7 Latitude: %8 Location: %9 ")
                             .arg(name, amount, ui->comboBoxCategory->currentText(), Format::date(ui->dateEdit->date()),
                                  place, withGeoLocation ? tr("True") : tr("False"), Format::number(longitude),
                                  Format::number(latitude), location)))
        return;

    auto entry = std::make_unique<Entry>();
    entry->ItemName = name;
    entry->CategoryName = ui->comboBoxCategory->currentText();
    entry->Price = amount.toFloat();
    entry->LocationText = place;
    entry->TransactDateTime = ui->dateEdit->date().startOfDay();
    entry->EnableGeoLoc = withGeoLocation;
    if (withGeoLocation) {
        entry->GeoLocLongit = longitude;
        entry->GeoLocLatit = latitude;
    } else {
        // The coordinates an entry without a geolocation has always carried.
        entry->GeoLocLongit = 103.0f;
        entry->GeoLocLatit = 1.3f;
    }

    const bool added = dbManager && dbManager->AddEntry(entry.get());
    if (!added) {
        // What was typed stays, so that Add stores it once the cause (a
        // locked file, a full disk) is gone.
        Notice::inform(tr("Entry could not be added to the database!"));
        return;
    }
    Notice::inform(tr("Entry added to the database successfully"));
    checkBudget(*entry);

    clearFields();
}

void AddEntryWidget::checkBudget(const Entry &entry)
{
    if (!dbManager)
        return;
    const QDate day = entry.TransactDateTime.date();
    const std::optional<BudgetStanding> standing =
        Budgets(*dbManager).standingOf(entry.CategoryName, day, Settings().budgetMonthStart());
    if (!standing)
        return;
    const double spentBefore = standing->spent - double(entry.Price);
    const std::optional<BudgetLevel> reached =
        Budgets::crossing(spentBefore, standing->spent, standing->budget.amount);
    if (!reached)
        return;
    emit budgetThresholdCrossed(Budgets::told(*standing), *reached);
}

void AddEntryWidget::clearFields()
{
    ui->lineEditItemName->clear();
    ui->lineEditAmount->clear();
    ui->lineEditLocation->clear();
    ui->checkBoxGeoLocation->setChecked(false);
    ui->dateEdit->setDate(QDate::currentDate());
    // The category stays selected for the next entry, but as a suggestion:
    // the next item picked may bring its own.
    categoryChosen = false;
}
