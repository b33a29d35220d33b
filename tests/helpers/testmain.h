#pragma once

#include <QApplication>
#include <QTest>
#include <QTimer>

// QTEST_MAIN for Ledgerly's widget tests: the web engine wants shared OpenGL
// contexts, set before the application object exists, as main() does.
// The offscreen platform cannot propagate size hints and warns whenever a
// dialog fixes its size; that is the platform's limit, not the program's, so
// the handler drops exactly that line and passes everything else on to the
// test log. Likewise the web engine's two start-up warnings (and its
// configuration dump) about the missing OpenGL of the offscreen platform.
void ledgerlyInstallPlatformNoiseFilter();

#define LEDGERLY_TEST_MAIN(TestObject)                                                                                 \
    int main(int argc, char *argv[])                                                                                   \
    {                                                                                                                  \
        QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);                                                    \
        QApplication app(argc, argv);                                                                                  \
        app.setAttribute(Qt::AA_Use96Dpi, true);                                                                       \
        TestObject tc;                                                                                                 \
        QTEST_SET_MAIN_SOURCE_PATH                                                                                     \
        QTest::qInit(&tc, argc, argv);                                                                                 \
        ledgerlyInstallPlatformNoiseFilter();                                                                          \
        const int result = QTest::qRun();                                                                              \
        QTest::qCleanup();                                                                                             \
        return result;                                                                                                 \
    }

// True when no top-level widget is visible: tests end with nothing left open.
inline bool noVisibleTopLevelWidgets()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (const QWidget *widget : widgets) {
        if (widget->isVisible())
            return false;
    }
    return true;
}

// A store that cannot open its file asks the application to quit, as the
// program always has. Before the event loop runs, Qt 6 keeps that request
// pending, so every nested event loop (a message box's exec()) would return
// at once until QCoreApplication::exec() clears it, as main() does. Tests
// clear it the same way: a short exec() that quits at once. Events already
// posted (a queued message box, say) are delivered inside it.
void runPendingEventsAndClearQuit();
