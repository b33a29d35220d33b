#include "testmain.h"

#include <QThread>

namespace {

QtMessageHandler testLogHandler = nullptr;

void dropPlatformNoise(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtWarningMsg && message == QLatin1String("This plugin does not support propagateSizeHints()"))
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
