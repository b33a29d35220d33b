#pragma once

class QString;

// The program's two kinds of modal message box: parent-less, no title, no
// icon, shown with exec().
class Notice
{
public:
    // An information box with the single button Ok, also the default.
    static void inform(const QString &text);
    // A confirmation with Save and Discard, Save the default. Only Save is a
    // yes; Discard and closing the box are a no.
    static bool confirm(const QString &text);
};
