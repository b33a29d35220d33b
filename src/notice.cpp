#include "notice.h"

#include <QMessageBox>
#include <QString>

namespace {

int show(QMessageBox::Icon icon, const QString &text, QMessageBox::StandardButtons buttons,
         QMessageBox::StandardButton defaultButton)
{
    QMessageBox msgBox;
    msgBox.setIcon(icon);
    msgBox.setText(text);
    msgBox.setStandardButtons(buttons);
    msgBox.setDefaultButton(defaultButton);
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
