// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "entryeditdelegates.h"

#include "amount.h"
#include "format.h"
#include "notice.h"
#include "storageform.h"

#include <QDateTime>
#include <QDateTimeEdit>
#include <QLineEdit>
#include <QRegularExpression>
#include <QRegularExpressionValidator>

namespace {

// The value an editor showed when it opened. Closing it on that value writes
// nothing, so that opening an editor cannot rewrite a stored value that the
// editor shows rounded or in another form.
const char openedWith[] = "ledgerlyOpenedWith";

QDateTime storedDateTime(const QVariant &value)
{
    return StorageForm::readDateTime(value.toString());
}

const QString dateTimeEditFormat = QStringLiteral("dd/MM/yyyy HH:mm:ss");

// A date-time typed over a stored text that was no date: in the editors'
// own form, as a day alone, or in any form the file itself may hold.
QDateTime typedDateTime(const QString &text)
{
    const QString typed = text.trimmed();
    QDateTime when = QDateTime::fromString(typed, dateTimeEditFormat);
    if (!when.isValid())
        when = QDate::fromString(typed, QStringLiteral("dd/MM/yyyy")).startOfDay();
    if (!when.isValid())
        when = StorageForm::readDateTime(typed);
    return when;
}

} // namespace

EntryDateTimeDelegate::EntryDateTimeDelegate(QObject *parent) : QStyledItemDelegate(parent) { }

QString EntryDateTimeDelegate::displayText(const QVariant &value, const QLocale &locale) const
{
    const QDateTime dateTime = storedDateTime(value);
    if (!dateTime.isValid())
        return QStyledItemDelegate::displayText(value, locale);
    return Format::dateTime(dateTime);
}

QWidget *EntryDateTimeDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                             const QModelIndex &index) const
{
    // A stored text that is no date opens as it is, in a text editor: a date
    // editor could only show some other date, and would write it back.
    if (!storedDateTime(index.data(Qt::EditRole)).isValid())
        return new QLineEdit(parent);
    auto *editor = new QDateTimeEdit(parent);
    editor->setDisplayFormat(dateTimeEditFormat);
    return editor;
}

void EntryDateTimeDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    const QVariant stored = index.data(Qt::EditRole);
    if (auto *dateTimeEdit = qobject_cast<QDateTimeEdit *>(editor)) {
        const QDateTime dateTime = storedDateTime(stored);
        if (dateTime.isValid())
            dateTimeEdit->setDateTime(dateTime);
        editor->setProperty(openedWith, dateTimeEdit->dateTime());
    } else if (auto *lineEdit = qobject_cast<QLineEdit *>(editor)) {
        lineEdit->setText(stored.toString());
        editor->setProperty(openedWith, lineEdit->text());
    }
}

void EntryDateTimeDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    QDateTime dateTime;
    if (auto *dateTimeEdit = qobject_cast<QDateTimeEdit *>(editor)) {
        dateTimeEdit->interpretText();
        dateTime = dateTimeEdit->dateTime();
        if (dateTime == editor->property(openedWith).toDateTime())
            return;
    } else if (auto *lineEdit = qobject_cast<QLineEdit *>(editor)) {
        if (lineEdit->text() == editor->property(openedWith).toString())
            return;
        // Text that is still no date is not stored: the row keeps its own.
        dateTime = typedDateTime(lineEdit->text());
    }
    if (!dateTime.isValid())
        return;
    // As text: Qt 6's SQLite driver would store a QDateTime with milliseconds.
    model->setData(index, StorageForm::dateTime(dateTime), Qt::EditRole);
}

EntryPriceDelegate::EntryPriceDelegate(QObject *parent) : QStyledItemDelegate(parent) { }

QString EntryPriceDelegate::displayText(const QVariant &value, const QLocale &locale) const
{
    bool isNumber = false;
    const double price = value.toDouble(&isNumber);
    if (!isNumber)
        return QStyledItemDelegate::displayText(value, locale);
    return Format::number(price);
}

QWidget *EntryPriceDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const
{
    // Amounts as the new-entry page reads them: digits, then a point and up
    // to two decimals if at all; nothing negative. Larger amounts can be
    // typed, and are refused with the page's message when the editor closes.
    auto *editor = new QLineEdit(parent);
    editor->setValidator(new QRegularExpressionValidator(Amount::pattern(Amount::Point::Optional), editor));
    return editor;
}

void EntryPriceDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *lineEdit = static_cast<QLineEdit *>(editor);
    const QVariant stored = index.data(Qt::EditRole);
    bool isNumber = false;
    const double price = stored.toDouble(&isNumber);
    lineEdit->setText(isNumber ? QString::number(price, 'f', 2) : stored.toString());
    editor->setProperty(openedWith, lineEdit->text());
}

void EntryPriceDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    const QString text = static_cast<QLineEdit *>(editor)->text();
    if (text.isEmpty() || text == editor->property(openedWith).toString())
        return;
    if (Amount::isTooLarge(text)) {
        Notice::inform(Amount::tooLargeMessage());
        return;
    }
    // A single-precision number, as the store writes prices.
    model->setData(index, text.toFloat(), Qt::EditRole);
}
