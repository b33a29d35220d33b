// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTest>

// Set-up and checks that every widget test shares. A test class calls them
// from its own hooks:
//
//     static void initMain() { WidgetTest::initMain(); }
//     void initTestCase() { WidgetTest::initTestCase(); }
//     void cleanup() { VERIFY_NO_WIDGETS_LEFT(); }
namespace WidgetTest {

// Before the application object exists, as main() does: the web engine
// wants shared OpenGL contexts. The window writes where it was to the
// settings when it closes, so the process keeps its settings in a directory
// of its own (see useTemporarySettings()).
void initMain();

// Once Qt Test has started its log. The offscreen platform cannot propagate
// size hints, raise a window or grab the keyboard, and warns whenever a
// dialog fixes its size, a tool tip raises itself or a drop-down list opens;
// the web engine warns (and dumps its configuration) at start-up that the
// platform has no OpenGL. Those lines are the platform's limits, not the
// program's, so they are dropped and everything else goes on to the test
// log, where a warning fails the test.
void initTestCase();

// The widgets a test left behind, which are then deleted: every widget
// without a parent, visible or hidden, once the deletions the test asked
// for (deleteLater) are done. A widget with a parent goes with it, so only
// parent-less ones can leak; Qt's own windows (a combo box's list, a tool
// tip, a menu) all have one.
QStringList leftoverWidgets();

} // namespace WidgetTest

// The style sheets that several forms share, as the forms give them.
namespace FormStyle {
// The red-to-tan gradient of the menu buttons and of every page's buttons.
extern const char gradientButton[];
// Line edits and date edits: bordered, on pale yellow.
extern const char inputField[];
// Combo boxes and tab widgets: bordered.
extern const char borderedCombo[];
} // namespace FormStyle

class QComboBox;
class QLabel;
class QTableWidget;

// The text a rich-text label shows, without its markup.
QString plainText(const QLabel *label);
// Picks an entry of a combo box as the keyboard does.
void pickByKeys(QComboBox *combo, int index);
// The texts of a table's cells, row by row (an empty text for a cell
// without an item).
QList<QStringList> tableTexts(const QTableWidget *table);

#define VERIFY_NO_WIDGETS_LEFT()                                                                                       \
    do {                                                                                                               \
        const QStringList leftovers = WidgetTest::leftoverWidgets();                                                   \
        QVERIFY2(leftovers.isEmpty(), qPrintable(leftovers.join(QStringLiteral(", "))));                               \
    } while (false)

// The descendant of `parent` of type T with this object name. Missing, it
// ends the test program with a message that names it, where a null pointer
// would only crash later.
template<typename T> T *child(const QObject &parent, const QString &name)
{
    T *found = parent.findChild<T *>(name);
    if (!found)
        qFatal("%s has no %s named %s", qPrintable(parent.objectName()), T::staticMetaObject.className(),
               qPrintable(name));
    return found;
}

template<typename T> T *child(const QObject &parent, const char *name)
{
    return child<T>(parent, QString::fromLatin1(name));
}
