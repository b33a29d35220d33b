// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "csvmapping.h"
#include "mappedcsvreader.h"

#include <QByteArray>
#include <QDialog>
#include <QList>

class DatabaseManager;
class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

// The step before the import preview for a CSV that is not Ledgerly's own:
// the file's first rows as a table, a combo per field choosing its column
// (filled in from header names that clearly mean date, payee, amount,
// debit, credit or category), what was detected (delimiter, encoding, date
// form, decimal separator, sign convention, direction marks), each of them
// changeable, and "Save as profile". A saved profile whose columns all
// appear in the file's header is chosen at once. Accepted means "Next";
// the caller reads the file through mapping(). Without a parent, as every
// dialog of the program.
class CsvMappingDialog : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY(CsvMappingDialog)

public:
    // The rows the table shows at most.
    static constexpr int shownRows = 20;

    // `bytes` are the file's; `store` outlives the dialog.
    CsvMappingDialog(DatabaseManager &store, const QString &fileName, const QByteArray &bytes);

    // The mapping the dialog's choices make.
    CsvMapping mapping() const;
    // The profile chosen when the dialog opened, or empty.
    QString chosenProfile() const;

    // The field a header name clearly stands for, in English, German,
    // French or Spanish (and a few Dutch words banks use); FieldCount for
    // none.
    static CsvMapping::Field fieldOfHeader(const QString &name);

    void accept() override;

private:
    void buildWidgets();
    void fillColumns(const QStringList &names);
    void guessColumns();
    void showMapping(const CsvMapping &mapping);
    void chooseProfile(int index);
    void chooseProfileByHeader();
    void readAgain();
    void headerToggled();

    DatabaseManager &store;
    QString fileName;
    QByteArray bytes;
    QStringList columnNames;
    bool showing = false;

    QLabel *labelFile = nullptr;
    QComboBox *comboBoxProfile = nullptr;
    QCheckBox *checkBoxHeader = nullptr;
    QComboBox *fieldCombos[CsvMapping::FieldCount] = {};
    QComboBox *comboBoxDelimiter = nullptr;
    QComboBox *comboBoxEncoding = nullptr;
    QComboBox *comboBoxDateForm = nullptr;
    QComboBox *comboBoxDateOrder = nullptr;
    QComboBox *comboBoxDecimal = nullptr;
    QComboBox *comboBoxSign = nullptr;
    QComboBox *comboBoxMarks = nullptr;
    QLineEdit *lineEditMarks = nullptr;
    QLabel *labelDetected = nullptr;
    QLabel *labelReads = nullptr;
    QTableWidget *tableWidgetRows = nullptr;
    QCheckBox *checkBoxSaveProfile = nullptr;
    QLineEdit *lineEditProfileName = nullptr;
    QDialogButtonBox *buttonBox = nullptr;
    QPushButton *pushButtonNext = nullptr;
    QString autoChosen;
};
