// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

class QIcon;
class QMenuBar;
class QWidget;

// The shared look that style sheets cannot carry.
class Look
{
public:
    // The menu buttons and the Add buttons carry a font of weight 9 on the
    // old 0-99 scale, set after family, size, bold and italic. Qt 6's form
    // compiler drops that legacy weight, so the pages apply it themselves.
    static void applyButtonFontWeight(QWidget *button);

    // What the program sets on the application once, before its window
    // opens; tests call it to see what a user sees. Safe to call again.
    //
    // The pages are black and name no text colour where the handset's dark
    // theme gave white: tab titles, check box texts, the text of the bordered
    // combo boxes and the pie legend. On a desktop whose theme is light that
    // text would be black on black, so the program sets those few roles
    // itself. Input fields and tables keep dark text on their pale fills.
    //
    // The main window's black style sheet also reaches everything that pops
    // up from it: the menu bar and its menus, the drop-down lists of the
    // combo boxes and tool tips. They get light text with a dark red
    // highlight (see applyHighlights() for the window's own), on black
    // wherever no style sheet makes it black.
    //
    // Dialogs (message boxes, file and progress dialogs, About Qt) keep the
    // desktop's own colours, dark text on a light ground with a light theme,
    // for every widget inside them. They must be created without a parent,
    // as the program's message boxes always are: a dialog inside the main
    // window would take the pages' black style sheet.
    static void applyToApplication();

    // The highlight of the item under the pointer in `menuBar`, its menus and
    // the drop-down lists of the combo boxes inside `area`. Under the main
    // window's black style sheet the style would take the black ground for
    // the highlight as well, so these few rules name it.
    static void applyHighlights(QMenuBar *menuBar, QWidget *area);

    // A list that pops up as a window of its own, such as a completer's,
    // where neither the window's style sheet nor the menus' colours reach:
    // light items on black with the dark red highlight.
    static void applyToPopUpList(QWidget *list);

    // The program's icon, from the resource bundle: the PNGs that are
    // installed into the hicolor theme, so that an uninstalled build shows
    // the same icon on its window.
    static QIcon applicationIcon();
};
