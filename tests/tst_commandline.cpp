// The program's command line, run as a user runs it: the real binary, in a
// terminal without any display.
#include <QProcess>
#include <QTest>

namespace {

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

// With QT_QPA_PLATFORM=xcb and no DISPLAY, a program that started its GUI
// would abort at once: every answer here proves that none was started.
Run runLedgerly(const QStringList &arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(LEDGERLY_PROGRAM), arguments);
    Run result;
    if (process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit)
        result.exitCode = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

} // namespace

class TestCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void versionPrintsTheNameAndTheProjectVersion_data();
    void versionPrintsTheNameAndTheProjectVersion();
    void helpListsTheOptions_data();
    void helpListsTheOptions();
    void anUnknownOptionIsAUsageError();
    void anUnknownCommandIsAUsageError();
};

void TestCommandLine::versionPrintsTheNameAndTheProjectVersion_data()
{
    QTest::addColumn<QString>("option");
    QTest::newRow("long") << QStringLiteral("--version");
    QTest::newRow("short") << QStringLiteral("-v");
}

void TestCommandLine::versionPrintsTheNameAndTheProjectVersion()
{
    QFETCH(QString, option);
    const Run run = runLedgerly({ option });
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QStringLiteral("Ledgerly " LEDGERLY_PROJECT_VERSION "\n"));
}

void TestCommandLine::helpListsTheOptions_data()
{
    QTest::addColumn<QString>("option");
    QTest::newRow("long") << QStringLiteral("--help");
    QTest::newRow("short") << QStringLiteral("-h");
    QTest::newRow("all") << QStringLiteral("--help-all");
}

void TestCommandLine::helpListsTheOptions()
{
    QFETCH(QString, option);
    const Run run = runLedgerly({ option });
    QCOMPARE(run.err, QString());
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.out.startsWith(QStringLiteral("Usage: " LEDGERLY_PROGRAM " [options]\n")), qPrintable(run.out));
    QVERIFY2(run.out.contains(QLatin1String("Started without arguments, it opens its window.")), qPrintable(run.out));
    QVERIFY2(run.out.contains(QLatin1String("\n  -h, --help ")), qPrintable(run.out));
    QVERIFY2(run.out.contains(QLatin1String("\n  -v, --version ")), qPrintable(run.out));
}

void TestCommandLine::anUnknownOptionIsAUsageError()
{
    const Run run = runLedgerly({ QStringLiteral("--frobnicate") });
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, QStringLiteral("Unknown option 'frobnicate'.\nTry \"ledgerly --help\" for more information.\n"));
}

void TestCommandLine::anUnknownCommandIsAUsageError()
{
    const Run run = runLedgerly({ QStringLiteral("frobnicate"), QStringLiteral("now") });
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err,
             QStringLiteral("Unknown command \"frobnicate\".\nTry \"ledgerly --help\" for more information.\n"));
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
