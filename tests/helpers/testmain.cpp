#include "testmain.h"

#include <QGuiApplication>
#include <QThread>

namespace {

QtMessageHandler testLogHandler = nullptr;

// The offscreen platform has no OpenGL. The web engine says so when it
// starts (the second line ends in a newline of its own) and then renders in
// software; it also dumps its configuration.
bool isWebEngineWithoutOpenGl(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (QGuiApplication::platformName() != QLatin1String("offscreen"))
        return false;
    if (type == QtInfoMsg && qstrcmp(context.category, "qt.webenginecontext") == 0)
        return true;
    return type == QtWarningMsg &&
        (message ==
             QLatin1String("WebEngineContext used before QtWebEngineCore::initialize() or OpenGL context "
                           "creation failed.") ||
         message.trimmed() == QLatin1String("No suitable graphics backend found"));
}

void dropPlatformNoise(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtWarningMsg && message == QLatin1String("This plugin does not support propagateSizeHints()"))
        return;
    if (isWebEngineWithoutOpenGl(type, context, message))
        return;
    if (testLogHandler)
        testLogHandler(type, context, message);
}

} // namespace

void ledgerlyInstallPlatformNoiseFilter()
{
    testLogHandler = qInstallMessageHandler(dropPlatformNoise);
}

void runPendingEventsAndClearQuit()
{
    // Quit only from the outermost loop: a message box shown by a posted
    // event runs a nested loop that must not be ended with it.
    QTimer quitter;
    quitter.setInterval(1);
    QObject::connect(&quitter, &QTimer::timeout, [] {
        if (QThread::currentThread()->loopLevel() == 1)
            QCoreApplication::exit(0);
    });
    quitter.start();
    QCoreApplication::exec();
}
