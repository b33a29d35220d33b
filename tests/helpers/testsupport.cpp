#include "testsupport.h"

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

QStringList loadedGuiLibraries()
{
    // Every file the process has mapped, code and data alike, one a line.
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly | QIODevice::Text))
        return { QStringLiteral("(cannot read /proc/self/maps)") };
    const QRegularExpression gui(QStringLiteral("/(libQt6(Gui|Widgets|WebEngine\\w*)\\.so[.0-9]*)$"));
    QStringList libraries;
    const QStringList lines = QString::fromLocal8Bit(maps.readAll()).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = gui.match(line);
        if (match.hasMatch() && !libraries.contains(match.captured(1)))
            libraries.append(match.captured(1));
    }
    return libraries;
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

void useTemporarySettings()
{
    static QTemporaryDir settingsDir;
    if (!settingsDir.isValid())
        qFatal("no temporary directory for the settings: %s", qPrintable(settingsDir.errorString()));
    for (const QSettings::Format format : { QSettings::NativeFormat, QSettings::IniFormat }) {
        QSettings::setPath(format, QSettings::UserScope, settingsDir.path());
        QSettings::setPath(format, QSettings::SystemScope, settingsDir.path());
    }
}
