#pragma once

class QIcon;
class QWidget;

// The shared look that style sheets cannot carry.
class Look
{
public:
    // The menu buttons and the Add buttons carry a font of weight 9 on the
    // old 0-99 scale, set after family, size, bold and italic. Qt 6's form
    // compiler drops that legacy weight, so the pages apply it themselves.
    static void applyButtonFontWeight(QWidget *button);

    // The pages are black and name no text colour where the handset's dark
    // theme gave white: tab titles, check box texts, the text of the bordered
    // combo boxes and the pie legend. On a desktop whose theme is light that
    // text would be black on black, so the program sets those few roles
    // itself. Input fields and tables keep dark text on their pale fills.
    static void applyApplicationPalette();

    // The program's icon, from the resource bundle: the PNGs that are
    // installed into the hicolor theme, so that an uninstalled build shows
    // the same icon on its window.
    static QIcon applicationIcon();
};
