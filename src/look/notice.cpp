// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "notice.h"

#include <QList>
#include <QMessageBox>
#include <QPair>
#include <QPushButton>
#include <QString>

namespace {

int show(QMessageBox::Icon icon, const QString &text, QMessageBox::StandardButtons buttons,
         QMessageBox::StandardButton defaultButton,
         const QList<QPair<QMessageBox::StandardButton, QString>> &names = {})
{
    QMessageBox msgBox;
    msgBox.setIcon(icon);
    msgBox.setText(text);
    msgBox.setStandardButtons(buttons);
    msgBox.setDefaultButton(defaultButton);
    for (const auto &[button, name] : names)
        msgBox.button(button)->setText(name);
    return msgBox.exec();
}

} // namespace

void Notice::inform(const QString &text)
{
    show(QMessageBox::NoIcon, text, QMessageBox::Ok, QMessageBox::Ok);
}

void Notice::warn(const QString &text)
{
    show(QMessageBox::Warning, text, QMessageBox::Ok, QMessageBox::Ok);
}

bool Notice::confirm(const QString &text)
{
    return show(QMessageBox::NoIcon, text, QMessageBox::Save | QMessageBox::Discard, QMessageBox::Save) ==
        QMessageBox::Save;
}

bool Notice::confirmDestructive(const QString &text, const QString &action)
{
    return show(QMessageBox::NoIcon, text, QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel,
                { { QMessageBox::Yes, action } }) == QMessageBox::Yes;
}

Notice::Choice Notice::choose(const QString &text, const QString &first, const QString &second)
{
    switch (show(QMessageBox::NoIcon, text, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes,
                 { { QMessageBox::Yes, first }, { QMessageBox::No, second } })) {
    case QMessageBox::Yes:
        return Choice::First;
    case QMessageBox::No:
        return Choice::Second;
    default:
        return Choice::Neither;
    }
}
