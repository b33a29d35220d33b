#include "look.h"

#include <QApplication>
#include <QFont>
#include <QIcon>
#include <QPalette>
#include <QWidget>

void Look::applyButtonFontWeight(QWidget *button)
{
    // Weight 9 of the old scale maps to ExtraLight, the nearest of Qt 6's
    // weights (the old 12); set last, as the form always did.
    QFont font = button->font();
    font.setWeight(QFont::ExtraLight);
    button->setFont(font);
}

void Look::applyApplicationPalette()
{
    QPalette palette = QApplication::palette();
    palette.setColor(QPalette::WindowText, Qt::white);
    QApplication::setPalette(palette);

    // A combo box draws its current text with the button text colour, on
    // the black page; its drop-down list keeps the light list colours.
    QPalette combo = QApplication::palette("QComboBox");
    combo.setColor(QPalette::WindowText, Qt::white);
    combo.setColor(QPalette::ButtonText, Qt::white);
    QApplication::setPalette(combo, "QComboBox");

    // The check box's tick is drawn in the text colour on the page's black.
    QPalette checkBox = QApplication::palette("QCheckBox");
    checkBox.setColor(QPalette::Text, Qt::white);
    checkBox.setColor(QPalette::WindowText, Qt::white);
    QApplication::setPalette(checkBox, "QCheckBox");
}

QIcon Look::applicationIcon()
{
    QIcon icon;
    for (int size : { 16, 32, 48, 64, 128, 256 })
        icon.addFile(QStringLiteral(":/Images/icon/ledgerly-%1.png").arg(size), QSize(size, size));
    return icon;
}
