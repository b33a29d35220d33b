#pragma once

class QWidget;

// The shared look that style sheets cannot carry.
class Look
{
public:
    // The menu buttons and the Add buttons carry a font of weight 9 on the
    // old 0-99 scale, set after family, size, bold and italic. Qt 6's form
    // compiler drops that legacy weight, so the pages apply it themselves.
    static void applyButtonFontWeight(QWidget *button);
};
