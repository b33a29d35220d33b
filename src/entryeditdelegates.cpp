#include "entryeditdelegates.h"

#include "format.h"
#include "storageform.h"

#include <QDateTime>
#include <QDateTimeEdit>
#include <QDoubleSpinBox>

namespace {

QDateTime storedDateTime(const QVariant &value)
{
    return StorageForm::readDateTime(value.toString());
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

QWidget *EntryDateTimeDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const
{
    auto *editor = new QDateTimeEdit(parent);
    editor->setDisplayFormat(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
    return editor;
}

void EntryDateTimeDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *dateTimeEdit = static_cast<QDateTimeEdit *>(editor);
    const QDateTime dateTime = storedDateTime(index.data(Qt::EditRole));
    dateTimeEdit->setDateTime(dateTime.isValid() ? dateTime : QDateTime::currentDateTime());
}

void EntryDateTimeDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    auto *dateTimeEdit = static_cast<QDateTimeEdit *>(editor);
    dateTimeEdit->interpretText();
    // As text: Qt 6's SQLite driver would store a QDateTime with milliseconds.
    model->setData(index, StorageForm::dateTime(dateTimeEdit->dateTime()), Qt::EditRole);
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
    // Amounts as the new-entry page takes them: not negative, two decimals.
    auto *editor = new QDoubleSpinBox(parent);
    editor->setDecimals(2);
    editor->setRange(0.0, 999999999.99);
    editor->setButtonSymbols(QAbstractSpinBox::NoButtons);
    return editor;
}

void EntryPriceDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    static_cast<QDoubleSpinBox *>(editor)->setValue(index.data(Qt::EditRole).toDouble());
}

void EntryPriceDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    auto *spinBox = static_cast<QDoubleSpinBox *>(editor);
    spinBox->interpretText();
    model->setData(index, static_cast<float>(spinBox->value()), Qt::EditRole);
}
