// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "csvmapping.h"
#include "entryfilecontents.h"
#include "qifformat.h"
#include "textencoding.h"

#include <QDialog>

#include <optional>

class DatabaseManager;
class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QLabel;
class QPushButton;
class QTableWidget;

// What an import of one file would do, shown before anything is written:
// how many entries it adds and what it skips, the encoding and date order
// it reads the file in (both can be changed, and the file is read again),
// whether records an earlier import brought in come in anyway, and the
// first entries. Accepted means "Import"; the caller writes entries().
// Without a parent, as every dialog of the program (see Look).
class ImportPreviewDialog : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY(ImportPreviewDialog)

public:
    // The number of entries the table shows at most.
    static constexpr int shownEntries = 100;

    // `contents` is the file as read and checked with what the file itself
    // says (through `mapping` for a bank's CSV); `store` outlives the dialog.
    ImportPreviewDialog(DatabaseManager &store, const QString &fileName, const EntryFileContents &contents,
                        const std::optional<CsvMapping> &mapping = std::nullopt);

    // The file as read with the choices of the moment, duplicates taken out
    // unless allowed: what "Import" writes.
    const EntryFileContents &contents() const { return recognised; }

private:
    void buildWidgets();
    void showChoices();
    void readAgain();
    void recogniseAgain();
    void showContents();

    DatabaseManager &store;
    QString fileName;
    std::optional<CsvMapping> mapping;
    EntryFileContents read;
    EntryFileContents recognised;
    // Set once the user picks one; until then the file decides.
    std::optional<TextEncoding::Kind> chosenEncoding;
    std::optional<QifFormat::DateOrder> chosenOrder;

    QLabel *labelFile = nullptr;
    QLabel *labelAdded = nullptr;
    QLabel *labelSkipped = nullptr;
    QLabel *labelCategorised = nullptr;
    QLabel *labelOpenDate = nullptr;
    QLabel *labelProblems = nullptr;
    QComboBox *comboBoxEncoding = nullptr;
    QComboBox *comboBoxDateOrder = nullptr;
    QCheckBox *checkBoxAllowDuplicates = nullptr;
    QLabel *labelShown = nullptr;
    QTableWidget *tableWidgetEntries = nullptr;
    QDialogButtonBox *buttonBox = nullptr;
    QPushButton *pushButtonImport = nullptr;
};
