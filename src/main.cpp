#include "commandline.h"
#include "look.h"
#include "mainwindow.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(QStringLiteral("Ledgerly"));
    QCoreApplication::setApplicationVersion(QStringLiteral(LEDGERLY_VERSION));
    if (CommandLine::wanted(argc)) {
        // No GUI: the command line works without a display.
        QCoreApplication app(argc, argv);
        return CommandLine::run(QCoreApplication::arguments());
    }

    QGuiApplication::setDesktopFileName(QStringLiteral(LEDGERLY_APP_ID));
    // The web engine of the entry details page shares OpenGL contexts.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication a(argc, argv);
    QApplication::setWindowIcon(Look::applicationIcon());
    Look::applyApplicationPalette();
    MainWindow w;
    w.show();
    return a.exec();
}
