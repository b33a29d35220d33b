// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "localtimezone.h"

#include <QDateTime>
#include <QList>
#include <QTest>

namespace {

// Local moments over a year, through both halves of any daylight-saving
// year, with the offset the C library gives each.
QList<QPair<qint64, int>> localMoments()
{
    QList<QPair<qint64, int>> moments;
    for (int month = 1; month <= 12; ++month) {
        const QDateTime when(QDate(2026, month, 15), QTime(13, 30));
        moments.append({ when.toMSecsSinceEpoch(), when.offsetFromUtc() });
    }
    return moments;
}

} // namespace

class TestLocalTimeZone : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void anUnsetZoneIsNamedAsTheSystemsOwnFileAndGivesTheSameTimes();
    void aZoneTheUserSetIsKept_data();
    void aZoneTheUserSetIsKept();

private:
    bool hadZone = false;
    QByteArray zone;
};

void TestLocalTimeZone::init()
{
    hadZone = qEnvironmentVariableIsSet("TZ");
    zone = qgetenv("TZ");
}

void TestLocalTimeZone::cleanup()
{
    if (hadZone)
        qputenv("TZ", zone);
    else
        qunsetenv("TZ");
}

void TestLocalTimeZone::anUnsetZoneIsNamedAsTheSystemsOwnFileAndGivesTheSameTimes()
{
    qunsetenv("TZ");
    const QList<QPair<qint64, int>> before = localMoments();

    LocalTimeZone::readOnce();

    QCOMPARE(qgetenv("TZ"), QByteArray(":/etc/localtime"));
    QCOMPARE(localMoments(), before);
}

void TestLocalTimeZone::aZoneTheUserSetIsKept_data()
{
    QTest::addColumn<QByteArray>("setZone");
    QTest::newRow("a named zone") << QByteArray("Asia/Singapore");
    // Empty means UTC to the C library: still the user's choice.
    QTest::newRow("empty") << QByteArray("");
}

void TestLocalTimeZone::aZoneTheUserSetIsKept()
{
    QFETCH(QByteArray, setZone);
    qputenv("TZ", setZone);

    LocalTimeZone::readOnce();

    QVERIFY(qEnvironmentVariableIsSet("TZ"));
    QCOMPARE(qgetenv("TZ"), setZone);
}

QTEST_GUILESS_MAIN(TestLocalTimeZone)

#include "tst_localtimezone.moc"
