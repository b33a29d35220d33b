// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "csvmappingdialog.h"

#include "csvprofiles.h"
#include "databasemanager.h"
#include "textencoding.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// Header names that clearly mean one field, compared in any case.
const QList<QPair<CsvMapping::Field, QStringList>> &headerWords()
{
    static const QList<QPair<CsvMapping::Field, QStringList>> words = {
        { CsvMapping::Date,
          { QStringLiteral("Date"), QStringLiteral("Datum"), QStringLiteral("Buchungstag"), QStringLiteral("Buchung"),
            QStringLiteral("Buchungsdatum"), QStringLiteral("Transaction Date"), QStringLiteral("Posting Date"),
            QStringLiteral("Booking Date"), QStringLiteral("Date Processed"), QStringLiteral("Date de l'opération"),
            QStringLiteral("Date opération"), QStringLiteral("Fecha"), QStringLiteral("Fecha operación"),
            QStringLiteral("Transactiedatum") } },
        { CsvMapping::Item,
          { QStringLiteral("Payee"), QStringLiteral("Empfänger"), QStringLiteral("Zahlungsempfänger"),
            QStringLiteral("Beguenstigter/Zahlungspflichtiger"), QStringLiteral("Auftraggeber/Empfänger"),
            QStringLiteral("Name"), QStringLiteral("Description"), QStringLiteral("Details"),
            QStringLiteral("Bénéficiaire"), QStringLiteral("Libellé"), QStringLiteral("Beneficiario"),
            QStringLiteral("Concepto"), QStringLiteral("Naam tegenpartij"), QStringLiteral("Tegenrekeninghouder") } },
        { CsvMapping::Amount,
          { QStringLiteral("Amount"), QStringLiteral("Betrag"), QStringLiteral("Montant"), QStringLiteral("Importe"),
            QStringLiteral("Bedrag"), QStringLiteral("Umsatz") } },
        { CsvMapping::Debit,
          { QStringLiteral("Debit"), QStringLiteral("Soll"), QStringLiteral("Débit"), QStringLiteral("Outflow"),
            QStringLiteral("Withdrawal"), QStringLiteral("Withdrawals"), QStringLiteral("Debit Amount"),
            QStringLiteral("Cargo"), QStringLiteral("Debe"), QStringLiteral("Ausgang") } },
        { CsvMapping::Credit,
          { QStringLiteral("Credit"), QStringLiteral("Haben"), QStringLiteral("Crédit"), QStringLiteral("Inflow"),
            QStringLiteral("Deposit"), QStringLiteral("Deposits"), QStringLiteral("Credit Amount"),
            QStringLiteral("Abono"), QStringLiteral("Haber"), QStringLiteral("Eingang") } },
        { CsvMapping::Category,
          { QStringLiteral("Category"), QStringLiteral("Kategorie"), QStringLiteral("Catégorie"),
            QStringLiteral("Categoría"), QStringLiteral("Categorie") } },
    };
    return words;
}

// A header name without what follows the word itself: "Betrag (EUR)" is
// "Betrag", "Withdrawals (SGD)" "Withdrawals".
QString headerWord(const QString &name)
{
    QString word = name.trimmed();
    const qsizetype bracket = word.indexOf(QLatin1Char('('));
    if (bracket > 0)
        word = word.left(bracket).trimmed();
    return word;
}

const QList<QChar> delimiterChoices = { QChar(), QLatin1Char(','), QLatin1Char(';'), QLatin1Char('\t'),
                                        QLatin1Char('|') };

QString delimiterName(QChar delimiter)
{
    if (delimiter == QLatin1Char('\t'))
        return QCoreApplication::translate("CsvMappingDialog", "Tab");
    return QStringLiteral("\"%1\"").arg(delimiter);
}

} // namespace

CsvMappingDialog::CsvMappingDialog(DatabaseManager &store, const QString &fileName, const QByteArray &bytes)
    : QDialog(nullptr), store(store), fileName(fileName), bytes(bytes)
{
    setObjectName(QStringLiteral("CsvMappingDialog"));
    setWindowTitle(tr("Map the Columns"));
    setWindowModality(Qt::ApplicationModal);
    buildWidgets();
    const QStringList names = MappedCsvReader::columnNames(bytes);
    // Names are words; a first row of dates and amounts is data.
    const qsizetype numeric = std::count_if(names.cbegin(), names.cend(), [](const QString &name) {
        return std::any_of(name.cbegin(), name.cend(), [](QChar c) { return c.isDigit(); });
    });
    const qsizetype filled =
        std::count_if(names.cbegin(), names.cend(), [](const QString &name) { return !name.trimmed().isEmpty(); });
    showing = true;
    checkBoxHeader->setChecked(numeric * 3 < filled);
    showing = false;
    fillColumns(names);
    showing = true;
    guessColumns();
    showing = false;
    chooseProfileByHeader();
    readAgain();
}

CsvMapping::Field CsvMappingDialog::fieldOfHeader(const QString &name)
{
    const QString word = headerWord(name);
    for (const auto &[field, names] : headerWords()) {
        for (const QString &known : names) {
            if (word.compare(known, Qt::CaseInsensitive) == 0)
                return field;
        }
    }
    return CsvMapping::FieldCount;
}

void CsvMappingDialog::buildWidgets()
{
    auto *layout = new QVBoxLayout(this);
    labelFile = new QLabel(tr("Which column holds what in %1?").arg(QFileInfo(fileName).fileName()), this);
    labelFile->setObjectName(QStringLiteral("labelFile"));
    labelFile->setWordWrap(true);
    layout->addWidget(labelFile);

    auto *profileRow = new QHBoxLayout;
    profileRow->addWidget(new QLabel(tr("Profile:"), this));
    comboBoxProfile = new QComboBox(this);
    comboBoxProfile->setObjectName(QStringLiteral("comboBoxProfile"));
    comboBoxProfile->addItem(tr("None"));
    for (const CsvProfiles::Profile &profile : CsvProfiles(store).all())
        comboBoxProfile->addItem(profile.name, profile.mapping);
    profileRow->addWidget(comboBoxProfile, 1);
    layout->addLayout(profileRow);

    checkBoxHeader = new QCheckBox(tr("The first row names the columns"), this);
    checkBoxHeader->setObjectName(QStringLiteral("checkBoxHeader"));
    checkBoxHeader->setChecked(true);
    layout->addWidget(checkBoxHeader);

    auto *fields = new QGridLayout;
    const QStringList labels = { tr("Date:"),   tr("Item:"),  tr("Place:"),  tr("Category:"),
                                 tr("Amount:"), tr("Debit:"), tr("Credit:"), tr("Direction:") };
    for (int field = 0; field < CsvMapping::FieldCount; ++field) {
        auto *combo = new QComboBox(this);
        const QString name = CsvMapping::fieldName(CsvMapping::Field(field));
        combo->setObjectName(QStringLiteral("comboBox") + name.front().toUpper() + name.mid(1));
        fieldCombos[field] = combo;
        fields->addWidget(new QLabel(labels.at(field), this), field % 4, (field / 4) * 2);
        fields->addWidget(combo, field % 4, (field / 4) * 2 + 1);
        connect(combo, &QComboBox::activated, this, &CsvMappingDialog::readAgain);
    }
    layout->addLayout(fields);

    auto *choices = new QFormLayout;
    comboBoxDelimiter = new QComboBox(this);
    comboBoxDelimiter->setObjectName(QStringLiteral("comboBoxDelimiter"));
    for (const QChar delimiter : delimiterChoices)
        comboBoxDelimiter->addItem(delimiter.isNull() ? tr("Detected") : delimiterName(delimiter));
    choices->addRow(tr("Delimiter:"), comboBoxDelimiter);
    comboBoxEncoding = new QComboBox(this);
    comboBoxEncoding->setObjectName(QStringLiteral("comboBoxEncoding"));
    comboBoxEncoding->setEditable(true);
    comboBoxEncoding->addItem(tr("Detected"));
    comboBoxEncoding->addItems(TextEncoding::names());
    comboBoxEncoding->addItems({ QStringLiteral("windows-1250"), QStringLiteral("windows-1257"),
                                 QStringLiteral("ISO-8859-2"), QStringLiteral("ISO-8859-15") });
    choices->addRow(tr("Encoding:"), comboBoxEncoding);
    comboBoxDateForm = new QComboBox(this);
    comboBoxDateForm->setObjectName(QStringLiteral("comboBoxDateForm"));
    comboBoxDateForm->setEditable(true);
    comboBoxDateForm->addItem(tr("Detected"));
    comboBoxDateForm->addItems({ QStringLiteral("dd.MM.yyyy"), QStringLiteral("dd/MM/yyyy"),
                                 QStringLiteral("MM/dd/yyyy"), QStringLiteral("yyyy-MM-dd"),
                                 QStringLiteral("dd-MM-yyyy"), QStringLiteral("dd-MMM-yyyy"),
                                 QStringLiteral("yyyy.MM.dd."), QStringLiteral("yyyy:MM:dd") });
    choices->addRow(tr("Date form:"), comboBoxDateForm);
    comboBoxDateOrder = new QComboBox(this);
    comboBoxDateOrder->setObjectName(QStringLiteral("comboBoxDateOrder"));
    comboBoxDateOrder->addItems(
        { tr("Month first where the file leaves it open"), tr("Day first where the file leaves it open") });
    choices->addRow(tr("Date order:"), comboBoxDateOrder);
    comboBoxDecimal = new QComboBox(this);
    comboBoxDecimal->setObjectName(QStringLiteral("comboBoxDecimal"));
    comboBoxDecimal->addItems({ tr("Detected"), tr("Comma"), tr("Point") });
    choices->addRow(tr("Decimal separator:"), comboBoxDecimal);
    comboBoxSign = new QComboBox(this);
    comboBoxSign->setObjectName(QStringLiteral("comboBoxSign"));
    comboBoxSign->addItems({ tr("A negative amount is an expense"), tr("A positive amount is an expense") });
    choices->addRow(tr("Amounts:"), comboBoxSign);
    auto *marksRow = new QHBoxLayout;
    comboBoxMarks = new QComboBox(this);
    comboBoxMarks->setObjectName(QStringLiteral("comboBoxMarks"));
    comboBoxMarks->addItems({ tr("Expenses are marked"), tr("Income is marked") });
    lineEditMarks = new QLineEdit(CsvMapping::defaultOutMarks().join(QLatin1Char(',')), this);
    lineEditMarks->setObjectName(QStringLiteral("lineEditMarks"));
    marksRow->addWidget(comboBoxMarks);
    marksRow->addWidget(lineEditMarks, 1);
    choices->addRow(tr("Direction:"), marksRow);
    layout->addLayout(choices);

    labelDetected = new QLabel(this);
    labelDetected->setObjectName(QStringLiteral("labelDetected"));
    labelDetected->setWordWrap(true);
    layout->addWidget(labelDetected);
    labelReads = new QLabel(this);
    labelReads->setObjectName(QStringLiteral("labelReads"));
    labelReads->setWordWrap(true);
    labelReads->setTextFormat(Qt::PlainText);
    layout->addWidget(labelReads);

    tableWidgetRows = new QTableWidget(0, 0, this);
    tableWidgetRows->setObjectName(QStringLiteral("tableWidgetRows"));
    tableWidgetRows->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tableWidgetRows->verticalHeader()->hide();
    tableWidgetRows->setMinimumSize(640, 240);
    layout->addWidget(tableWidgetRows);

    auto *saveRow = new QHBoxLayout;
    checkBoxSaveProfile = new QCheckBox(tr("Save as profile"), this);
    checkBoxSaveProfile->setObjectName(QStringLiteral("checkBoxSaveProfile"));
    lineEditProfileName = new QLineEdit(this);
    lineEditProfileName->setObjectName(QStringLiteral("lineEditProfileName"));
    lineEditProfileName->setPlaceholderText(tr("Name of the profile"));
    saveRow->addWidget(checkBoxSaveProfile);
    saveRow->addWidget(lineEditProfileName, 1);
    layout->addLayout(saveRow);

    buttonBox = new QDialogButtonBox(this);
    buttonBox->setObjectName(QStringLiteral("buttonBox"));
    pushButtonNext = buttonBox->addButton(tr("Next"), QDialogButtonBox::AcceptRole);
    pushButtonNext->setObjectName(QStringLiteral("pushButtonNext"));
    pushButtonNext->setDefault(true);
    QPushButton *cancel = buttonBox->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("pushButtonCancel"));
    layout->addWidget(buttonBox);

    connect(buttonBox, &QDialogButtonBox::accepted, this, &CsvMappingDialog::accept);
    connect(buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(comboBoxProfile, &QComboBox::activated, this, &CsvMappingDialog::chooseProfile);
    for (QComboBox *combo : { comboBoxDelimiter, comboBoxEncoding, comboBoxDateForm, comboBoxDateOrder, comboBoxDecimal,
                              comboBoxSign, comboBoxMarks })
        connect(combo, &QComboBox::currentIndexChanged, this, &CsvMappingDialog::readAgain);
    for (QComboBox *combo : { comboBoxEncoding, comboBoxDateForm })
        connect(combo, &QComboBox::currentTextChanged, this, &CsvMappingDialog::readAgain);
    connect(lineEditMarks, &QLineEdit::editingFinished, this, &CsvMappingDialog::readAgain);
    connect(checkBoxSaveProfile, &QCheckBox::toggled, lineEditProfileName, &QLineEdit::setEnabled);
    connect(checkBoxHeader, &QCheckBox::toggled, this, &CsvMappingDialog::headerToggled);
    lineEditProfileName->setEnabled(false);
}

void CsvMappingDialog::fillColumns(const QStringList &names)
{
    columnNames = names;
    for (QComboBox *combo : fieldCombos) {
        const QVariant chosen = combo->currentData();
        combo->clear();
        combo->addItem(tr("None"), QString());
        for (qsizetype i = 0; i < names.size(); ++i) {
            const QString name = names.at(i).trimmed();
            // A name that is empty or named twice can only be told by its
            // number.
            const bool byName = checkBoxHeader->isChecked() && !name.isEmpty() && names.count(names.at(i)) == 1 &&
                !name.contains(QLatin1Char(',')) && !name.contains(QLatin1Char('='));
            combo->addItem(name.isEmpty() || !checkBoxHeader->isChecked() ? tr("Column %1").arg(i + 1)
                                                                          : tr("%1 (column %2)").arg(name).arg(i + 1),
                           byName ? name : QStringLiteral("#%1").arg(i + 1));
        }
        const int index = combo->findData(chosen);
        combo->setCurrentIndex(index < 0 ? 0 : index);
    }
}

void CsvMappingDialog::guessColumns()
{
    for (qsizetype i = 0; i < columnNames.size(); ++i) {
        const CsvMapping::Field field = fieldOfHeader(columnNames.at(i));
        if (field == CsvMapping::FieldCount || fieldCombos[field]->currentIndex() > 0)
            continue;
        fieldCombos[field]->setCurrentIndex(int(i) + 1);
    }
    // An amount column says it all; debit and credit columns beside it
    // repeat it.
    if (fieldCombos[CsvMapping::Amount]->currentIndex() > 0) {
        fieldCombos[CsvMapping::Debit]->setCurrentIndex(0);
        fieldCombos[CsvMapping::Credit]->setCurrentIndex(0);
    }
}

CsvMapping CsvMappingDialog::mapping() const
{
    CsvMapping mapping;
    for (int field = 0; field < CsvMapping::FieldCount; ++field) {
        const QString column = fieldCombos[field]->currentData().toString();
        if (column.startsWith(QLatin1Char('#')))
            mapping.columns[field].number = column.mid(1).toInt();
        else
            mapping.columns[field].name = column;
    }
    mapping.delimiter = delimiterChoices.value(comboBoxDelimiter->currentIndex());
    const QString encoding = comboBoxEncoding->currentText();
    if (encoding != comboBoxEncoding->itemText(0))
        mapping.encoding = TextEncoding::canonicalName(encoding);
    const QString dateForm = comboBoxDateForm->currentText().trimmed();
    if (!dateForm.isEmpty() && dateForm != comboBoxDateForm->itemText(0))
        mapping.dateFormat = dateForm;
    if (comboBoxDateOrder->currentIndex() == 1)
        mapping.dateOrder = QifFormat::DateOrder::DayFirst;
    if (comboBoxDecimal->currentIndex() > 0)
        mapping.decimal = comboBoxDecimal->currentIndex() == 1 ? QLatin1Char(',') : QLatin1Char('.');
    mapping.invert = comboBoxSign->currentIndex() == 1 && !mapping.columns[CsvMapping::Direction].isSet() &&
        mapping.columns[CsvMapping::Amount].isSet();
    if (mapping.columns[CsvMapping::Direction].isSet()) {
        QStringList marks;
        for (const QString &mark : lineEditMarks->text().split(QLatin1Char(','))) {
            if (!mark.trimmed().isEmpty())
                marks.append(mark.trimmed());
        }
        if (comboBoxMarks->currentIndex() == 1)
            mapping.inMarks = marks;
        else if (marks != CsvMapping::defaultOutMarks())
            mapping.outMarks = marks;
    }
    // Without a header, columns given by number read from the first line.
    if (!mapping.hasNamedColumns() && !checkBoxHeader->isChecked())
        mapping.skipLines = 0;
    return mapping;
}

QString CsvMappingDialog::chosenProfile() const
{
    return autoChosen;
}

void CsvMappingDialog::showMapping(const CsvMapping &mapping)
{
    showing = true;
    if (mapping.hasNamedColumns() && !checkBoxHeader->isChecked()) {
        checkBoxHeader->setChecked(true);
        fillColumns(columnNames);
    } else if (!mapping.hasNamedColumns() && mapping.skipLines == 0 && checkBoxHeader->isChecked()) {
        checkBoxHeader->setChecked(false);
        fillColumns(columnNames);
    }
    for (int field = 0; field < CsvMapping::FieldCount; ++field) {
        const CsvMapping::Column &column = mapping.columns[field];
        int index = 0;
        if (column.number > 0)
            index = column.number <= columnNames.size() ? column.number : 0;
        else if (!column.name.isEmpty())
            index = fieldCombos[field]->findData(column.name, Qt::UserRole, Qt::MatchFixedString);
        fieldCombos[field]->setCurrentIndex(qMax(0, index));
    }
    comboBoxDelimiter->setCurrentIndex(qMax(0, int(delimiterChoices.indexOf(mapping.delimiter))));
    if (mapping.encoding.isEmpty())
        comboBoxEncoding->setCurrentIndex(0);
    else
        comboBoxEncoding->setCurrentText(mapping.encoding);
    if (mapping.dateFormat.isEmpty())
        comboBoxDateForm->setCurrentIndex(0);
    else
        comboBoxDateForm->setCurrentText(mapping.dateFormat);
    comboBoxDateOrder->setCurrentIndex(mapping.dateOrder == QifFormat::DateOrder::DayFirst ? 1 : 0);
    comboBoxDecimal->setCurrentIndex(mapping.decimal.isNull() ? 0 : mapping.decimal == QLatin1Char(',') ? 1 : 2);
    comboBoxSign->setCurrentIndex(mapping.invert ? 1 : 0);
    comboBoxMarks->setCurrentIndex(mapping.inMarks.isEmpty() ? 0 : 1);
    lineEditMarks->setText((mapping.inMarks.isEmpty()
                                ? (mapping.outMarks.isEmpty() ? CsvMapping::defaultOutMarks() : mapping.outMarks)
                                : mapping.inMarks)
                               .join(QLatin1Char(',')));
    showing = false;
}

void CsvMappingDialog::chooseProfile(int index)
{
    const std::optional<CsvMapping> profile = CsvMapping::fromText(comboBoxProfile->itemData(index).toString());
    if (index > 0 && profile) {
        showMapping(*profile);
    } else {
        // No profile: the columns as the header names suggest them.
        showMapping(CsvMapping());
        showing = true;
        guessColumns();
        showing = false;
    }
    readAgain();
}

void CsvMappingDialog::chooseProfileByHeader()
{
    // The first profile, by name, that names its columns and finds every one
    // of them on one line of the file.
    for (int index = 1; index < comboBoxProfile->count(); ++index) {
        const std::optional<CsvMapping> profile = CsvMapping::fromText(comboBoxProfile->itemData(index).toString());
        if (!profile || !profile->hasNamedColumns())
            continue;
        MappedCsvReader::Layout layout;
        MappedCsvReader::read(bytes, *profile, &layout, 0);
        if (layout.headerLine == 0)
            continue;
        fillColumns(layout.columns);
        comboBoxProfile->setCurrentIndex(index);
        autoChosen = comboBoxProfile->itemText(index);
        showMapping(*profile);
        return;
    }
}

void CsvMappingDialog::readAgain()
{
    if (showing)
        return;
    const CsvMapping chosen = mapping();
    const QString problem = chosen.problem();
    MappedCsvReader::Layout layout;
    EntryFileContents contents;
    if (problem.isEmpty()) {
        contents = MappedCsvReader::read(bytes, chosen, &layout, shownRows);
    } else {
        // Without a complete mapping the rows show as the file splits them.
        CsvMapping rowsOnly;
        rowsOnly.columns[CsvMapping::Date].number = 1;
        rowsOnly.columns[CsvMapping::Item].number = 1;
        rowsOnly.columns[CsvMapping::Amount].number = 1;
        rowsOnly.delimiter = chosen.delimiter;
        rowsOnly.encoding = chosen.encoding;
        rowsOnly.skipLines = 0;
        MappedCsvReader::read(bytes, rowsOnly, &layout, shownRows + 1);
        if (checkBoxHeader->isChecked() && !layout.rows.isEmpty() && !columnNames.isEmpty() &&
            layout.rows.constFirst().size() == columnNames.size())
            layout.rows.removeFirst();
        while (layout.rows.size() > shownRows)
            layout.rows.removeLast();
    }
    if (layout.headerLine > 0 && layout.columns != columnNames && chosen.hasNamedColumns()) {
        showing = true;
        fillColumns(layout.columns);
        showing = false;
    }

    QStringList detected;
    if (!layout.delimiter.isNull())
        detected << tr("delimiter %1").arg(delimiterName(layout.delimiter));
    if (!layout.encoding.isEmpty())
        detected << tr("encoding %1").arg(layout.encoding);
    if (!layout.dateForm.isEmpty())
        detected << tr("dates %1").arg(layout.dateForm);
    if (!layout.decimal.isNull())
        detected << tr("decimal %1").arg(layout.decimal == QLatin1Char(',') ? tr("comma") : tr("point"));
    labelDetected->setText(detected.isEmpty() ? QString()
                                              : tr("Read with: %1.").arg(detected.join(QLatin1String(", "))));

    QString reads;
    if (!problem.isEmpty())
        reads = problem;
    else if (!contents.isAcceptable())
        reads = tr("The file cannot be read this way:\n%1").arg(contents.problemLines().join(QLatin1Char('\n')));
    else
        reads = (contents.entries.size() == 1 ? tr("Reads 1 expense")
                                              : tr("Reads %1 expenses").arg(contents.entries.size())) +
            (contents.skipped() > 0
                 ? tr("; skips %1 (%2).")
                       .arg(QString::number(contents.skipped()), contents.skippedReasons().join(QLatin1String(", ")))
                 : QStringLiteral("."));
    labelReads->setText(reads);
    pushButtonNext->setEnabled(problem.isEmpty() && contents.isAcceptable());

    int columns = int(columnNames.size());
    for (const QStringList &row : layout.rows)
        columns = qMax(columns, int(row.size()));
    tableWidgetRows->clear();
    tableWidgetRows->setColumnCount(columns);
    QStringList headers;
    for (int i = 0; i < columns; ++i)
        headers << (checkBoxHeader->isChecked() && i < columnNames.size() && !columnNames.at(i).trimmed().isEmpty()
                        ? columnNames.at(i).trimmed()
                        : tr("Column %1").arg(i + 1));
    tableWidgetRows->setHorizontalHeaderLabels(headers);
    tableWidgetRows->setRowCount(int(layout.rows.size()));
    for (int row = 0; row < layout.rows.size(); ++row) {
        const QStringList &cells = layout.rows.at(row);
        for (int column = 0; column < cells.size(); ++column)
            tableWidgetRows->setItem(row, column, new QTableWidgetItem(cells.at(column)));
    }
    tableWidgetRows->resizeColumnsToContents();
}

void CsvMappingDialog::headerToggled()
{
    if (showing)
        return;
    showing = true;
    fillColumns(columnNames);
    if (checkBoxHeader->isChecked())
        guessColumns();
    showing = false;
    readAgain();
}

void CsvMappingDialog::accept()
{
    if (checkBoxSaveProfile->isChecked()) {
        QString name = lineEditProfileName->text().trimmed();
        // The list of profiles gives one a line, its name before a tab.
        name.replace(QLatin1Char('\t'), QLatin1Char(' '));
        if (name.isEmpty()) {
            labelReads->setText(tr("Name the profile to save it."));
            lineEditProfileName->setFocus();
            return;
        }
        if (!CsvProfiles(store).save(name, mapping().text())) {
            labelReads->setText(tr("The profile %1 could not be saved.").arg(name));
            return;
        }
    }
    QDialog::accept();
}
