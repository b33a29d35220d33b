#include "look.h"
#include "mainwindow.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    // The web engine of the entry details page shares OpenGL contexts.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication a(argc, argv);
    QApplication::setWindowIcon(Look::applicationIcon());
    Look::applyApplicationPalette();
    MainWindow w;
    w.show();
    return a.exec();
}
