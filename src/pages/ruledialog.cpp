// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "ruledialog.h"

#include "rulematcher.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

RuleDialog::RuleDialog(const QString &title, const Rule &rule, const QStringList &categories, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("RuleDialog"));
    setWindowTitle(title);
    setWindowModality(Qt::ApplicationModal);

    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    lineEditText = new QLineEdit(rule.text, this);
    lineEditText->setObjectName(QStringLiteral("lineEditRuleText"));
    form->addRow(tr("Look for:"), lineEditText);
    comboBoxIn = new QComboBox(this);
    comboBoxIn->setObjectName(QStringLiteral("comboBoxRuleIn"));
    comboBoxIn->addItem(tr("Item or place"), int(Rule::Field::Both));
    comboBoxIn->addItem(tr("Item"), int(Rule::Field::Item));
    comboBoxIn->addItem(tr("Place"), int(Rule::Field::Place));
    comboBoxIn->setCurrentIndex(comboBoxIn->findData(int(rule.in)));
    form->addRow(tr("In:"), comboBoxIn);
    checkBoxRegex = new QCheckBox(tr("Regular expression"), this);
    checkBoxRegex->setObjectName(QStringLiteral("checkBoxRuleRegex"));
    checkBoxRegex->setChecked(rule.how == Rule::How::Regex);
    checkBoxRegex->setToolTip(tr("Without it, the text is looked for as it is, in any case and with or without "
                                 "accents"));
    form->addRow(QString(), checkBoxRegex);
    comboBoxCategory = new QComboBox(this);
    comboBoxCategory->setObjectName(QStringLiteral("comboBoxRuleCategory"));
    comboBoxCategory->setEditable(true);
    comboBoxCategory->setInsertPolicy(QComboBox::NoInsert);
    comboBoxCategory->addItems(categories);
    comboBoxCategory->setCurrentText(rule.category);
    form->addRow(tr("Category:"), comboBoxCategory);
    layout->addLayout(form);

    labelProblem = new QLabel(this);
    labelProblem->setObjectName(QStringLiteral("labelRuleProblem"));
    labelProblem->setWordWrap(true);
    labelProblem->setTextFormat(Qt::PlainText);
    labelProblem->hide();
    layout->addWidget(labelProblem);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("buttonBox"));
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &RuleDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

Rule RuleDialog::rule() const
{
    Rule rule;
    rule.text = lineEditText->text();
    rule.in = Rule::Field(comboBoxIn->currentData().toInt());
    rule.how = checkBoxRegex->isChecked() ? Rule::How::Regex : Rule::How::Contains;
    rule.category = comboBoxCategory->currentText().trimmed();
    return rule;
}

void RuleDialog::accept()
{
    const QString problem = RuleMatcher::problemOf(rule());
    if (!problem.isEmpty()) {
        labelProblem->setText(tr("This rule cannot be used: %1.").arg(problem));
        labelProblem->show();
        return;
    }
    QDialog::accept();
}
