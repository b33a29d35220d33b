// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

class QString;

// The program's kinds of modal message box: parent-less, no title, shown
// with exec(), the single button Ok the default unless said otherwise.
class Notice
{
public:
    // An information box, without an icon.
    static void inform(const QString &text);
    // A warning: something the user asked for did not happen; with the
    // warning icon.
    static void warn(const QString &text);
    // A confirmation with Save and Discard, Save the default, no icon. Only
    // Save is a yes; Discard and closing the box are a no.
    static bool confirm(const QString &text);

    // A question before something that cannot be taken back: the buttons
    // Yes, carrying the text `action`, and Cancel, Cancel the default. Only
    // Yes is a yes; Cancel and closing the box are a no.
    static bool confirmDestructive(const QString &text, const QString &action);

    enum class Choice { First, Second, Neither };
    // A question with two answers and Cancel: the buttons Yes, No and Cancel
    // carry the texts `first`, `second` and "Cancel"; the first answer is
    // the default. Cancel and closing the box are Neither.
    static Choice choose(const QString &text, const QString &first, const QString &second);
};
