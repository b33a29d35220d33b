// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QDialog>

class DatabaseManager;
class QPushButton;
class QTableWidget;

// The imports that wrote entries, newest first (when, which file, how many
// entries), each of which can be taken back whole with "Remove" after a
// confirmation. Without a parent, as every dialog of the program (see
// Look); `store` outlives the dialog.
class ImportsDialog : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY(ImportsDialog)

public:
    explicit ImportsDialog(DatabaseManager &store);

    // Whether any import was removed while the dialog showed.
    bool removedAny() const { return removed; }

private:
    void showImports();
    void removeSelected();

    DatabaseManager &store;
    bool removed = false;
    QTableWidget *tableWidgetImports = nullptr;
    QPushButton *pushButtonRemove = nullptr;
};
