#include "look.h"

#include <QFont>
#include <QWidget>

void Look::applyButtonFontWeight(QWidget *button)
{
    // Weight 9 of the old scale maps to ExtraLight, the nearest of Qt 6's
    // weights (the old 12); set last, as the form always did.
    QFont font = button->font();
    font.setWeight(QFont::ExtraLight);
    button->setFont(font);
}
