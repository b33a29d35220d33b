// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QStyledItemDelegate>

// Editors for the stored entries' table that can only produce values in the
// file's storage forms, so that nothing typed into the table can leave a row
// that the rest of the program misreads.

// The transaction date: a date-time editor; written back in the store's
// storage form (StorageForm::dateTime), which every date query compares
// against. A stored text that is no date opens as that text, and is replaced
// only by a date. An editor closed without a change writes nothing.
class EntryDateTimeDelegate : public QStyledItemDelegate
{
    Q_OBJECT
    Q_DISABLE_COPY(EntryDateTimeDelegate)

public:
    explicit EntryDateTimeDelegate(QObject *parent = nullptr);

    QString displayText(const QVariant &value, const QLocale &locale) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
};

// The price: takes the amounts that the new-entry page takes, refuses larger
// ones with its message, and writes a single-precision number, as the store
// writes prices. An editor closed without a change writes nothing.
class EntryPriceDelegate : public QStyledItemDelegate
{
    Q_OBJECT
    Q_DISABLE_COPY(EntryPriceDelegate)

public:
    explicit EntryPriceDelegate(QObject *parent = nullptr);

    QString displayText(const QVariant &value, const QLocale &locale) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
};
