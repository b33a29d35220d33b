// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "settings.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace {

const char serviceVariable[] = "LEDGERLY_GEOLOCATION_URL";

void setConfiguredService(const QString &url)
{
    QSettings settings(QStringLiteral("Ledgerly"), QStringLiteral("Ledgerly"));
    settings.setValue(QStringLiteral("GeoLocation/ServiceUrl"), url);
}

} // namespace

class TestSettings : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void withNeitherSettingNorVariableThereIsNoService();
    void theServiceComesFromTheKeyInLedgerlysSettingsFile();
    void theVariableOverridesTheKey();
    void anEmptyVariableLeavesTheKeyInForce();
    void blanksAroundTheAddressAreDropped();

    void withoutAKeptPlaceTheWindowHasNone();
    void theWindowsPlaceIsKeptUnderItsTwoKeys();
    void aPlaceThatIsNotARectangleReadsAsNone();
    void theLookIsKeptUnderItsKey();

private:
    QTemporaryDir settingsDir;
};

void TestSettings::initTestCase()
{
    QVERIFY(settingsDir.isValid());
    // The settings of the user running the tests must not leak in.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsDir.path());
}

void TestSettings::init()
{
    qunsetenv(serviceVariable);
    QSettings(QStringLiteral("Ledgerly"), QStringLiteral("Ledgerly")).clear();
}

void TestSettings::cleanup()
{
    qunsetenv(serviceVariable);
}

void TestSettings::withNeitherSettingNorVariableThereIsNoService()
{
    QVERIFY(Settings().geoLocationServiceUrl().isEmpty());
}

void TestSettings::theServiceComesFromTheKeyInLedgerlysSettingsFile()
{
    setConfiguredService(QStringLiteral("http://geo.example.net/ip_query.php"));
    QCOMPARE(Settings().geoLocationServiceUrl(), QUrl(QStringLiteral("http://geo.example.net/ip_query.php")));
    // On Linux the file is Ledgerly/Ledgerly.conf under the settings path.
    QVERIFY(QFile::exists(settingsDir.filePath(QStringLiteral("Ledgerly/Ledgerly.conf"))));
}

void TestSettings::theVariableOverridesTheKey()
{
    setConfiguredService(QStringLiteral("http://configured.example.net/ip_query.php"));
    qputenv(serviceVariable, "http://127.0.0.1:8080/ip_query.php");
    QCOMPARE(Settings().geoLocationServiceUrl(), QUrl(QStringLiteral("http://127.0.0.1:8080/ip_query.php")));
}

void TestSettings::anEmptyVariableLeavesTheKeyInForce()
{
    setConfiguredService(QStringLiteral("http://configured.example.net/ip_query.php"));
    qputenv(serviceVariable, "");
    QCOMPARE(Settings().geoLocationServiceUrl(), QUrl(QStringLiteral("http://configured.example.net/ip_query.php")));
}

void TestSettings::blanksAroundTheAddressAreDropped()
{
    qputenv(serviceVariable, "  http://127.0.0.1:8080/ip_query.php \n");
    QCOMPARE(Settings().geoLocationServiceUrl(), QUrl(QStringLiteral("http://127.0.0.1:8080/ip_query.php")));
}

void TestSettings::withoutAKeptPlaceTheWindowHasNone()
{
    const Settings settings;
    QVERIFY(settings.mainWindowGeometry().isNull());
    QVERIFY(!settings.isMainWindowMaximized());
}

void TestSettings::theWindowsPlaceIsKeptUnderItsTwoKeys()
{
    Settings().setMainWindowGeometry(QRect(40, 30, 1000, 700), true);

    const Settings next;
    QCOMPARE(next.mainWindowGeometry(), QRect(40, 30, 1000, 700));
    QVERIFY(next.isMainWindowMaximized());
    // In the file, under the keys a user may delete to start afresh.
    const QSettings file(settingsDir.filePath(QStringLiteral("Ledgerly/Ledgerly.conf")), QSettings::IniFormat);
    QCOMPARE(file.value(QStringLiteral("MainWindow/geometry")).toRect(), QRect(40, 30, 1000, 700));
    QCOMPARE(file.value(QStringLiteral("MainWindow/maximized")).toBool(), true);

    Settings().setMainWindowGeometry(QRect(0, 0, 800, 600), false);
    QCOMPARE(Settings().mainWindowGeometry(), QRect(0, 0, 800, 600));
    QVERIFY(!Settings().isMainWindowMaximized());
}

void TestSettings::aPlaceThatIsNotARectangleReadsAsNone()
{
    {
        QSettings settings(QStringLiteral("Ledgerly"), QStringLiteral("Ledgerly"));
        settings.setValue(QStringLiteral("MainWindow/geometry"), QStringLiteral("somewhere"));
    }
    QVERIFY(Settings().mainWindowGeometry().isNull());
}

void TestSettings::theLookIsKeptUnderItsKey()
{
    QVERIFY(Settings().lookName().isEmpty());
    Settings().setLookName(QStringLiteral("Dark"));
    QCOMPARE(Settings().lookName(), QStringLiteral("Dark"));
    const QSettings file(settingsDir.filePath(QStringLiteral("Ledgerly/Ledgerly.conf")), QSettings::IniFormat);
    QCOMPARE(file.value(QStringLiteral("View/look")).toString(), QStringLiteral("Dark"));
}

QTEST_GUILESS_MAIN(TestSettings)

#include "tst_settings.moc"
