// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "look.h"

#include "pagestyle.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QFont>
#include <QIcon>
#include <QMenuBar>
#include <QPalette>
#include <QToolTip>
#include <QWidget>

namespace {

// The dark red of the buttons' gradient.
const QColor highlight(151, 0, 0);

// A palette with every role of every group marked as set, so that a widget
// given it passes all of it on to its children, over the palettes the
// program gives to some classes for the pages.
QPalette everyRoleSet(const QPalette &source)
{
    QPalette palette;
    for (int group = 0; group < QPalette::NColorGroups; ++group) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            const auto colourGroup = QPalette::ColorGroup(group);
            const auto colourRole = QPalette::ColorRole(role);
            palette.setBrush(colourGroup, colourRole, source.brush(colourGroup, colourRole));
        }
    }
    return palette;
}

// Light text on black for what pops up over the pages, with the dark red of
// the buttons' gradient as the highlight and grey for what cannot be chosen.
QPalette popUpPalette(QPalette palette)
{
    const QColor ground(Qt::black);
    const QColor text(Qt::white);
    const QColor disabledText(150, 150, 150);
    for (const QPalette::ColorRole role :
         { QPalette::Window, QPalette::Base, QPalette::AlternateBase, QPalette::Button, QPalette::ToolTipBase })
        palette.setColor(role, ground);
    for (const QPalette::ColorRole role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                                            QPalette::BrightText, QPalette::ToolTipText, QPalette::HighlightedText })
        palette.setColor(role, text);
    palette.setColor(QPalette::Highlight, highlight);
    for (const QPalette::ColorRole role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(QPalette::Disabled, role, disabledText);
    return palette;
}

// Gives every dialog, as it is polished before it first shows, the palette
// the desktop had before the program changed it.
class DialogPalette : public QObject
{
    Q_OBJECT

public:
    DialogPalette(const QPalette &desktop, QObject *parent) : QObject(parent), desktop(everyRoleSet(desktop)) { }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Polish) {
            auto *dialog = qobject_cast<QDialog *>(watched);
            if (dialog && dialog->isWindow())
                dialog->setPalette(desktop);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    const QPalette desktop;
};

} // namespace

void Look::applyButtonFontWeight(QWidget *button)
{
    // Weight 9 of the old scale maps to ExtraLight, the nearest of Qt 6's
    // weights (the old 12); set last, as the form always did.
    QFont font = button->font();
    font.setWeight(QFont::ExtraLight);
    button->setFont(font);
}

void Look::applyToApplication()
{
    if (qApp->findChild<DialogPalette *>())
        return;
    // The style first: setting a style may give the application that
    // style's palette, which the roles below then adjust.
    QApplication::setStyle(new PageStyle(QApplication::style()->name()));
    const QPalette desktop = QApplication::palette();
    qApp->installEventFilter(new DialogPalette(desktop, qApp));

    QPalette palette = desktop;
    palette.setColor(QPalette::WindowText, Qt::white);
    QApplication::setPalette(palette);

    // A combo box draws its current text with the button text colour, on
    // the black page.
    QPalette combo = QApplication::palette("QComboBox");
    combo.setColor(QPalette::WindowText, Qt::white);
    combo.setColor(QPalette::ButtonText, Qt::white);
    QApplication::setPalette(combo, "QComboBox");

    // The check box's tick is drawn in the text colour on the page's black.
    QPalette checkBox = QApplication::palette("QCheckBox");
    checkBox.setColor(QPalette::Text, Qt::white);
    checkBox.setColor(QPalette::WindowText, Qt::white);
    QApplication::setPalette(checkBox, "QCheckBox");

    // Menus, and the drop-down lists of combo boxes, which draw their items
    // as menu items with the menus' colours.
    QApplication::setPalette(popUpPalette(QApplication::palette("QMenuBar")), "QMenuBar");
    QApplication::setPalette(popUpPalette(QApplication::palette("QMenu")), "QMenu");
    QToolTip::setPalette(popUpPalette(QToolTip::palette()));
}

void Look::applyHighlights(QMenuBar *menuBar, QWidget *area)
{
    const QString colours =
        QStringLiteral("selection-background-color: %1; selection-color: white;").arg(highlight.name());
    // The menu bar marks the title under the pointer as the menus mark their
    // commands; the style alone marks only the title of an open menu.
    // A grey edge keeps a menu apart from the black page it drops onto.
    menuBar->setStyleSheet(QStringLiteral("QMenuBar::item:selected { background-color: %1; color: white; }\n"
                                          "QMenu { border: 1px solid rgb(128, 128, 128); %2 }")
                               .arg(highlight.name(), colours));
    area->setStyleSheet(QStringLiteral("QComboBox { %1 }").arg(colours));
}

void Look::applyToPopUpList(QWidget *list)
{
    list->setPalette(popUpPalette(list->palette()));
}

QIcon Look::applicationIcon()
{
    QIcon icon;
    for (int size : { 16, 32, 48, 64, 128, 256 })
        icon.addFile(QStringLiteral(":/Images/icon/ledgerly-%1.png").arg(size), QSize(size, size));
    return icon;
}

#include "look.moc"
