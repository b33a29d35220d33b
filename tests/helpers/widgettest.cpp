// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "widgettest.h"

#include "testsupport.h"

#include <QApplication>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QComboBox>
#include <QLabel>
#include <QTableWidget>
#include <QTextDocument>
#include <QWidget>

const char FormStyle::gradientButton[] =
    "border-style: outset;\nborder-width: 2px;\nborder-color: beige;\n\nbackground-color: qlineargradient(spread:pad, "
    "x1:0.452, y1:0.0397727, x2:0.452, y2:1, stop:0.361582 rgba(151, 0, 0, 255), stop:1 rgba(221, 182, 116, "
    "255));\nfont: 75 16pt \"MS Shell Dlg 2\"  rgb(252, 252, 0);\n";
const char FormStyle::inputField[] =
    "border-style: outset;\nborder-width: 2px;\nborder-color: beige;\nfont: 75 14pt \"MS Shell Dlg "
    "2\";\nbackground-color: rgb(254, 255, 189);";
const char FormStyle::borderedCombo[] =
    "border-style: outset;\nborder-width: 2px;\nborder-color: beige;\nfont: 75 14pt \"MS Shell Dlg 2\";";

QString plainText(const QLabel *label)
{
    QTextDocument document;
    document.setHtml(label->text());
    return document.toPlainText();
}

namespace {

QtMessageHandler testLogHandler = nullptr;

bool isPlatformNoise(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (QGuiApplication::platformName() != QLatin1String("offscreen"))
        return false;
    if (type == QtInfoMsg && qstrcmp(context.category, "qt.webenginecontext") == 0)
        return true;
    // The second web engine line ends in a newline of its own. Tool tips and
    // pop-ups raise themselves and drop-down lists take the keyboard; the
    // offscreen platform has no stacking order and no keyboard.
    return type == QtWarningMsg &&
        (message == QLatin1String("This plugin does not support propagateSizeHints()") ||
         message == QLatin1String("This plugin does not support raise()") ||
         message == QLatin1String("This plugin does not support grabbing the keyboard") ||
         message ==
             QLatin1String("WebEngineContext used before QtWebEngineCore::initialize() or OpenGL context "
                           "creation failed.") ||
         message.trimmed() == QLatin1String("No suitable graphics backend found"));
}

void dropPlatformNoise(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (!isPlatformNoise(type, context, message) && testLogHandler)
        testLogHandler(type, context, message);
}

} // namespace

void WidgetTest::initMain()
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    useTemporarySettings();
}

void WidgetTest::initTestCase()
{
    // Qt Test installs its own handler when it starts logging, after
    // initMain(); this one goes in front of it.
    if (!testLogHandler)
        testLogHandler = qInstallMessageHandler(dropPlatformNoise);
}

QStringList WidgetTest::leftoverWidgets()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QStringList leftovers;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (widget->parentWidget())
            continue;
        leftovers.append(QStringLiteral("%1 \"%2\"%3")
                             .arg(QLatin1String(widget->metaObject()->className()), widget->objectName(),
                                  widget->isVisible() ? QStringLiteral(" (visible)") : QString()));
        // Each test is judged on what it left itself.
        delete widget;
    }
    return leftovers;
}

void pickByKeys(QComboBox *combo, int index)
{
    combo->setFocus();
    while (combo->currentIndex() < index)
        QTest::keyClick(combo, Qt::Key_Down);
    while (combo->currentIndex() > index)
        QTest::keyClick(combo, Qt::Key_Up);
}

QList<QStringList> tableTexts(const QTableWidget *table)
{
    QList<QStringList> rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < table->columnCount(); ++column)
            cells.append(table->item(row, column) ? table->item(row, column)->text() : QString());
        rows.append(cells);
    }
    return rows;
}
