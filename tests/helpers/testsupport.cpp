// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "testsupport.h"

#include "databasemanager.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

namespace {

// The Qt libraries whose names match `names` that the process has loaded.
QStringList loadedQtLibraries(const QString &names)
{
    // Every file the process has mapped, code and data alike, one a line.
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly | QIODevice::Text))
        return { QStringLiteral("(cannot read /proc/self/maps)") };
    const QRegularExpression gui(QStringLiteral("/(libQt6(%1)\\.so[.0-9]*)$").arg(names));
    QStringList libraries;
    const QStringList lines = QString::fromLocal8Bit(maps.readAll()).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = gui.match(line);
        if (match.hasMatch() && !libraries.contains(match.captured(1)))
            libraries.append(match.captured(1));
    }
    return libraries;
}

} // namespace

QStringList loadedGuiLibraries()
{
    return loadedQtLibraries(QStringLiteral("Gui|Widgets|WebEngine\\w*"));
}

QStringList loadedWebEngineLibraries()
{
    return loadedQtLibraries(QStringLiteral("WebEngine\\w*"));
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

QList<QPair<QString, QString>> hostileTexts()
{
    QString nul = QStringLiteral("before");
    nul += QChar(0);
    nul += QStringLiteral("after");
    QString long10000;
    for (int i = 0; i < 1000; ++i)
        long10000 += QStringLiteral("%1<&'\"abcde").arg(i % 10);
    return {
        { QStringLiteral("quotes"), QStringLiteral("It's \"quoted\"; ' or '1'='1") },
        { QStringLiteral("backslashes"), QStringLiteral("C:\\Users\\me\\n \\t \\\\") },
        { QStringLiteral("placeholders"), QStringLiteral("%1 %2 %L1 %% 100%") },
        { QStringLiteral("an SQL fragment"), QStringLiteral("'); DROP TABLE Entry;--") },
        { QStringLiteral("HTML"), QStringLiteral("<b>bold</b> &amp; <script>alert(1)</script>") },
        { QStringLiteral("right to left"),
          QString::fromUtf8("\u05e9\u05dc\u05d5\u05dd \u0645\u0631\u062d\u0628\u0627 \u202eabc") },
        { QStringLiteral("combining characters"), QString::fromUtf8("e\u0301 a\u0308\u0323 Z\u0351\u0352\u0353") },
        { QStringLiteral("emoji"),
          QString::fromUtf8("\U0001F4B6 \U0001F9FE \U0001F468\u200D\U0001F469\u200D\U0001F467") },
        { QStringLiteral("a NUL character"), nul },
        { QStringLiteral("10,000 characters"), long10000 },
    };
}

bool limitDatabaseFile()
{
    QSqlQuery query(QSqlDatabase::database());
    if (!query.exec(QStringLiteral("PRAGMA page_count")) || !query.next())
        return false;
    const int pages = query.value(0).toInt();
    return query.exec(QStringLiteral("PRAGMA max_page_count = %1").arg(pages)) && query.next() &&
        query.value(0).toInt() == pages;
}

int fillDatabaseFile(DatabaseManager &store)
{
    for (int added = 0; added < 100000; ++added) {
        Entry smallest;
        smallest.ItemName = QStringLiteral("F");
        smallest.CategoryName = QStringLiteral("Food");
        smallest.TransactDateTime = QDateTime(QDate(2026, 1, 1), QTime(0, 0));
        smallest.LocationText = QStringLiteral("L");
        if (!store.AddEntry(&smallest))
            return added;
    }
    return -1;
}

bool liftDatabaseFileLimit()
{
    QSqlQuery query(QSqlDatabase::database());
    return query.exec(QStringLiteral("PRAGMA max_page_count = 1073741823"));
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

ProgramRun runWithoutDisplay(const QString &program, const QStringList &arguments, const QString &home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : { "QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY" })
        environment.remove(QString::fromLatin1(name));
    if (!home.isEmpty()) {
        environment.insert(QStringLiteral("HOME"), home);
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
    }
    return runProgram(program, arguments, environment);
}

ProgramRun runProgram(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment,
                      int timeoutMs, const QString &workingDir)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(workingDir);
    process.start(program, arguments);
    ProgramRun result;
    result.finished = process.waitForFinished(timeoutMs);
    if (result.finished && process.exitStatus() == QProcess::NormalExit)
        result.exitCode = process.exitCode();
    result.outBytes = process.readAllStandardOutput();
    result.errBytes = process.readAllStandardError();
    result.out = QString::fromUtf8(result.outBytes);
    result.err = QString::fromUtf8(result.errBytes);
    return result;
}
