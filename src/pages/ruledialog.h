// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "rules.h"

#include <QDialog>
#include <QStringList>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;

// Asks for one rule: the text to look for, where, how and the category to
// give. OK takes only a rule that can be used; otherwise the dialog says
// why and stays open.
class RuleDialog : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY(RuleDialog)

public:
    // `categories` are offered in the category box, which takes a new name
    // as well.
    RuleDialog(const QString &title, const Rule &rule, const QStringList &categories, QWidget *parent = nullptr);

    Rule rule() const;

public slots:
    void accept() override;

private:
    QLineEdit *lineEditText;
    QComboBox *comboBoxIn;
    QCheckBox *checkBoxRegex;
    QComboBox *comboBoxCategory;
    QLabel *labelProblem;
};
