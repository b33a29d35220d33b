#pragma once

#include <QApplication>
#include <QTest>

// QTEST_MAIN for Ledgerly's widget tests: the web engine wants shared OpenGL
// contexts, set before the application object exists, as main() does.
#define LEDGERLY_TEST_MAIN(TestObject)                                                                                 \
    int main(int argc, char *argv[])                                                                                   \
    {                                                                                                                  \
        QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);                                                    \
        QApplication app(argc, argv);                                                                                  \
        app.setAttribute(Qt::AA_Use96Dpi, true);                                                                       \
        TestObject tc;                                                                                                 \
        QTEST_SET_MAIN_SOURCE_PATH                                                                                     \
        return QTest::qExec(&tc, argc, argv);                                                                          \
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
