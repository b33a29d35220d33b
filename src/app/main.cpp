// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "commandline.h"
#include "localtimezone.h"
#include "look.h"
#include "mainwindow.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    LocalTimeZone::readOnce();
    // The names the settings live under, and what --version says.
    QCoreApplication::setOrganizationName(QStringLiteral("Ledgerly"));
    QCoreApplication::setApplicationName(QStringLiteral("Ledgerly"));
    QCoreApplication::setApplicationVersion(QStringLiteral(LEDGERLY_VERSION));
    if (CommandLine::wanted(argc)) {
        // No GUI: the command line works without a display.
        QCoreApplication app(argc, argv);
        return CommandLine::run(QCoreApplication::arguments());
    }

    QGuiApplication::setDesktopFileName(QStringLiteral(LEDGERLY_APP_ID));
    // The window system shows the display name beside the window's own title.
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Ledgerly"));
    // The web engine of the entry details page shares OpenGL contexts.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication a(argc, argv);
    QApplication::setWindowIcon(Look::applicationIcon());
    Look::applyToApplication();
    MainWindow w;
    w.show();
    return a.exec();
}
