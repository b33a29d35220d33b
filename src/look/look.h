// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QColor>
#include <QString>

class QIcon;
class QLabel;
class QMenuBar;
class QPalette;
class QWidget;

// The shared look that style sheets cannot carry.
class Look
{
public:
    // The looks the View menu offers. Classic is the program's own: black
    // pages, yellow captions, red gradient buttons. Light and Dark are
    // desktop looks (Qt's Fusion style with a palette of their own); System
    // is whichever of the two matches the desktop's palette at start-up.
    enum class Kind { Classic, Light, Dark, System };

    // The names the settings keep ("Classic", "Light", "Dark", "System"),
    // and back; a name that is none of them is Classic.
    static QString name(Kind kind);
    static Kind fromName(const QString &name);

    // Applies `kind` to the application and to every widget it has, at once,
    // and to every widget made later, until the next call. The first call
    // (or applyToApplication()) takes the desktop's style and palette as
    // they are, for Classic and for System. Classic gives back every style
    // sheet and label text exactly as the forms and pages wrote them.
    static void apply(Kind kind);
    // What apply() was last given (Classic before any call), and the look
    // that shows: System resolved to Light or Dark.
    static Kind chosen();
    static Kind shown();

    // Light when the palette's window is lighter than its text, else Dark.
    static Kind systemLook(const QPalette &desktop);

    // The application palette of Light and of Dark.
    static QPalette palette(Kind kind);

    // The style sheet a widget gets in the look `shown` for the one its form
    // or page gave it (`classic`): in Classic that sheet itself; in Light
    // and Dark only its font and picture, so that the texts keep their size
    // and the home picture stays, while grounds, borders and colours come
    // from the look's palette.
    static QString styleSheetFor(const QString &classic, Kind shown);

    // `colour`, or the nearest shade of it that stands out from `ground` by
    // a contrast ratio of at least 4.5 (the least the accessibility
    // guidelines ask of text): lighter on a dark ground, darker on a light.
    static QColor readable(const QColor &colour, const QColor &ground);

    // The colours a line graph is drawn in: in Classic the graph's own (a
    // grey plot with an orange line on black, white labels), in the
    // desktop looks the look's grounds and text with a line that stands out.
    struct GraphColours
    {
        QColor background;
        QColor border;
        QColor plot;
        QColor grid;
        QColor text;
        QColor line;
    };
    static GraphColours graphColours();

    // Rich text with each colour it names made readable on `ground`.
    static QString readableRichText(const QString &text, const QColor &ground);

    // Widens a label that stands on its own (not in a layout or a table
    // cell) until its text fits at its font, keeping its left edge; a label
    // that fits keeps its size. The application's looks call it for every
    // label as it shows and whenever its text changes.
    static void fitToText(QLabel *label);

    // The menu buttons and the Add buttons carry a font of weight 9 on the
    // old 0-99 scale, set after family, size, bold and italic. Qt 6's form
    // compiler drops that legacy weight, so the pages apply it themselves.
    static void applyButtonFontWeight(QWidget *button);

    // What the program sets on the application once, before its window
    // opens: the Classic look, unless a look was applied before. Tests call
    // it to see what a user sees. Safe to call again.
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
    // in Classic light items on black with the dark red highlight, else the
    // look's palette. A later change of look reaches it as well.
    static void applyToPopUpList(QWidget *list);

    // The program's icon, from the resource bundle: the PNGs that are
    // installed into the hicolor theme, so that an uninstalled build shows
    // the same icon on its window.
    static QIcon applicationIcon();
};
