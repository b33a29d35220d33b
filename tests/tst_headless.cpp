// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// The start without a display (scripts/headless.sh, which scripts/run.sh
// uses): the real program on an X server of its own, shown over VNC on the
// loopback addresses only, with everything stopped again when the script or
// the program ends.
#include "temphome.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <signal.h>

namespace {

const QString script = QStringLiteral(LEDGERLY_SOURCE_DIR "/scripts/headless.sh");
const quint16 defaultPort = 5900;

QByteArray readProcFile(const QString &path)
{
    QFile file(path);
    // Files under /proc report no size: read until the end.
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The local addresses of the TCP sockets listening on port, as ss prints
// them ("127.0.0.1:5900", "[::1]:5900", "0.0.0.0:5900", "*:5900").
QStringList listeners(quint16 port)
{
    QProcess ss;
    ss.start(QStringLiteral("ss"), { QStringLiteral("-Hltn"), QStringLiteral("sport = :%1").arg(port) });
    if (!ss.waitForFinished(30000) || ss.exitCode() != 0)
        return { QStringLiteral("(ss failed: %1)").arg(QString::fromLocal8Bit(ss.readAllStandardError())) };
    QStringList addresses;
    const QStringList lines = QString::fromLocal8Bit(ss.readAllStandardOutput()).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        // State, Recv-Q, Send-Q, local address:port, peer address:port.
        const QStringList columns = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (columns.size() >= 4)
            addresses << columns[3];
    }
    addresses.sort();
    return addresses;
}

// A port on which nothing listens: the default one when it is free, so that
// the default is what is tested, and else one the system hands out.
quint16 freePort()
{
    if (listeners(defaultPort).isEmpty())
        return defaultPort;
    QTcpServer server;
    server.listen(QHostAddress::LocalHost, 0);
    return server.serverPort();
}

// Every process whose parent chain leads to root, with its command name.
QMap<qint64, QString> descendants(qint64 root)
{
    QMap<qint64, qint64> parents;
    QMap<qint64, QString> names;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &entry : entries) {
        bool number = false;
        const qint64 pid = entry.toLongLong(&number);
        if (!number)
            continue;
        // "pid (comm) state ppid ...", where comm may hold blanks and brackets.
        const QByteArray stat = readProcFile(QStringLiteral("/proc/%1/stat").arg(pid));
        const int close = stat.lastIndexOf(')');
        if (close < 0)
            continue;
        const QList<QByteArray> rest = stat.mid(close + 2).split(' ');
        if (rest.size() < 2 || rest[0] == "Z")
            continue;
        parents.insert(pid, rest[1].toLongLong());
        names.insert(pid, QString::fromLocal8Bit(stat.mid(stat.indexOf('(') + 1, close - stat.indexOf('(') - 1)));
    }
    QMap<qint64, QString> found;
    for (auto it = parents.cbegin(); it != parents.cend(); ++it) {
        for (qint64 ancestor = it.value(); ancestor > 1 && parents.contains(ancestor); ancestor = parents[ancestor]) {
            if (ancestor == root) {
                found.insert(it.key(), names[it.key()]);
                break;
            }
        }
    }
    return found;
}

// Processes of pids that still run (a zombie has ended).
QStringList stillRunning(const QMap<qint64, QString> &processes)
{
    QStringList running;
    for (auto it = processes.cbegin(); it != processes.cend(); ++it) {
        const QByteArray stat = readProcFile(QStringLiteral("/proc/%1/stat").arg(it.key()));
        const int close = stat.lastIndexOf(')');
        if (close >= 0 && stat.mid(close + 2, 1) != "Z")
            running << QStringLiteral("%1 %2").arg(it.key()).arg(it.value());
    }
    return running;
}

QStringList sortedNames(const QMap<qint64, QString> &processes)
{
    QStringList names = processes.values();
    names.sort();
    return names;
}

// A terminal's environment without any display, on the given home.
QProcessEnvironment withoutDisplay(const QString &home, quint16 port)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : { "QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY", "LEDGERLY_VNC_PORT" })
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("HOME"), home);
    if (port != defaultPort)
        environment.insert(QStringLiteral("LEDGERLY_VNC_PORT"), QString::number(port));
    return environment;
}

// Starts the script on the given home, as a terminal without a display
// would, with the program and its arguments.
bool start(QProcess &fallback, const QString &home, quint16 port, const QStringList &program)
{
    fallback.setProcessEnvironment(withoutDisplay(home, port));
    fallback.setWorkingDirectory(home);
    fallback.start(script, program);
    return fallback.waitForStarted();
}

// Ends the script the way a signal would, so that it stops what it started
// even when a check fails half-way (QProcess itself would kill the script
// alone and leave its servers running).
class Stopper
{
public:
    explicit Stopper(QProcess &process) : m_process(process) { }
    ~Stopper()
    {
        if (m_process.state() == QProcess::Running) {
            ::kill(static_cast<pid_t>(m_process.processId()), SIGTERM);
            m_process.waitForFinished(30000);
        }
    }
    Stopper(const Stopper &) = delete;
    Stopper &operator=(const Stopper &) = delete;

private:
    QProcess &m_process;
};

} // namespace

class TestHeadless : public QObject
{
    Q_OBJECT

private slots:
    void theScreenListensOnLoopbackOnlyAnswersAVncClientAndStopsWithTheScript();
    void whenTheProgramEndsTheServersStopAndItsStatusIsTheScripts();
    void aTakenPortIsRefusedBeforeAnythingStarts();
};

void TestHeadless::theScreenListensOnLoopbackOnlyAnswersAVncClientAndStopsWithTheScript()
{
    TempHome home;
    QVERIFY(home.isValid());
    const quint16 port = freePort();
    QProcess fallback;
    const Stopper stopper(fallback);
    QVERIFY2(start(fallback, home.path(), port, { QStringLiteral(LEDGERLY_PROGRAM) }),
             qPrintable(fallback.errorString()));

    // The script says where to connect once the VNC server listens, and
    // then starts the program.
    QByteArray said;
    QTRY_VERIFY_WITH_TIMEOUT((said += fallback.readAllStandardOutput()).contains("ssh -L"), 60000);
    QVERIFY2(said.contains(QStringLiteral("127.0.0.1:%1").arg(port).toUtf8()), said.constData());
    QVERIFY2(said.contains(QStringLiteral("ssh -L %1:127.0.0.1:%1").arg(port).toUtf8()), said.constData());

    // Loopback only: 127.0.0.1 (and ::1), never 0.0.0.0, [::] or *.
    const QStringList addresses = listeners(port);
    QVERIFY2(addresses.contains(QStringLiteral("127.0.0.1:%1").arg(port)), qPrintable(addresses.join(u' ')));
    for (const QString &address : addresses) {
        QVERIFY2(address == QStringLiteral("127.0.0.1:%1").arg(port) || address == QStringLiteral("[::1]:%1").arg(port),
                 qPrintable(addresses.join(u' ')));
    }

    // A VNC client on loopback is greeted with the protocol version.
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, port);
    QVERIFY2(client.waitForConnected(10000), qPrintable(client.errorString()));
    QByteArray greeting;
    QTRY_VERIFY_WITH_TIMEOUT((greeting += client.readAll()).size() >= 12, 10000);
    QVERIFY2(greeting.startsWith("RFB 003."), greeting.constData());
    QVERIFY2(greeting.endsWith('\n'), greeting.constData());
    client.disconnectFromHost();

    // The X server, the VNC server and Ledgerly run under the script, and
    // Ledgerly's window is on that X server.
    QMap<qint64, QString> processes;
    QTRY_COMPARE_WITH_TIMEOUT(
        sortedNames(processes = descendants(fallback.processId())),
        QStringList({ QStringLiteral("Xvfb"), QStringLiteral("ledgerly"), QStringLiteral("x11vnc") }), 30000);
    const qint64 program = processes.key(QStringLiteral("ledgerly"));
    const QByteArray environ = readProcFile(QStringLiteral("/proc/%1/environ").arg(program));
    QString display;
    for (const QByteArray &variable : environ.split('\0')) {
        if (variable.startsWith("DISPLAY="))
            display = QString::fromLocal8Bit(variable.mid(8));
    }
    QVERIFY2(QRegularExpression(QStringLiteral("^:\\d+$")).match(display).hasMatch(), qPrintable(display));
    const auto windowClasses = [&] {
        QProcess xwininfo;
        xwininfo.start(QStringLiteral("xwininfo"),
                       { QStringLiteral("-display"), display, QStringLiteral("-root"), QStringLiteral("-children") });
        xwininfo.waitForFinished(30000);
        return QString::fromLocal8Bit(xwininfo.readAllStandardOutput());
    };
    QTRY_VERIFY_WITH_TIMEOUT(windowClasses().contains(QLatin1String("\"ledgerly\" \"Ledgerly\"")), 60000);

    // Ended from outside, as by a signal: everything it started stops.
    ::kill(static_cast<pid_t>(fallback.processId()), SIGTERM);
    QVERIFY(fallback.waitForFinished(30000));
    QCOMPARE(fallback.exitCode(), 128 + SIGTERM);
    QTRY_COMPARE_WITH_TIMEOUT(stillRunning(processes), QStringList(), 30000);
    QCOMPARE(listeners(port), QStringList());
}

void TestHeadless::whenTheProgramEndsTheServersStopAndItsStatusIsTheScripts()
{
    TempHome home;
    QVERIFY(home.isValid());
    const quint16 port = freePort();
    QProcess fallback;
    const Stopper stopper(fallback);
    // A program that runs until its input ends, then fails with status 3.
    QVERIFY2(start(fallback, home.path(), port,
                   { QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("read line; exit 3") }),
             qPrintable(fallback.errorString()));

    QMap<qint64, QString> processes;
    QTRY_COMPARE_WITH_TIMEOUT(sortedNames(processes = descendants(fallback.processId())),
                              QStringList({ QStringLiteral("Xvfb"), QStringLiteral("sh"), QStringLiteral("x11vnc") }),
                              60000);
    QCOMPARE(listeners(port).value(0), QStringLiteral("127.0.0.1:%1").arg(port));

    fallback.closeWriteChannel();
    QVERIFY(fallback.waitForFinished(30000));
    QCOMPARE(fallback.exitStatus(), QProcess::NormalExit);
    QCOMPARE(fallback.exitCode(), 3);
    QCOMPARE(stillRunning(processes), QStringList());
    QCOMPARE(listeners(port), QStringList());
    QCOMPARE(QString::fromLocal8Bit(fallback.readAllStandardError()), QString());
}

void TestHeadless::aTakenPortIsRefusedBeforeAnythingStarts()
{
    TempHome home;
    QVERIFY(home.isValid());
    QTcpServer taken;
    QVERIFY(taken.listen(QHostAddress::LocalHost, 0));
    QProcessEnvironment environment = withoutDisplay(home.path(), defaultPort);
    environment.insert(QStringLiteral("LEDGERLY_VNC_PORT"), QString::number(taken.serverPort()));
    QProcess fallback;
    fallback.setProcessEnvironment(environment);
    fallback.start(script, { QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("echo started") });
    QVERIFY(fallback.waitForFinished(30000));
    QCOMPARE(fallback.exitCode(), 1);
    QCOMPARE(QString::fromLocal8Bit(fallback.readAllStandardOutput()), QString());
    QCOMPARE(
        QString::fromLocal8Bit(fallback.readAllStandardError()),
        QStringLiteral("Port %1 is already taken: choose another with LEDGERLY_VNC_PORT.\n").arg(taken.serverPort()));
}

QTEST_GUILESS_MAIN(TestHeadless)
#include "tst_headless.moc"
