// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "storageform.h"

#include <QTest>
#include <QVariant>

class TestStorageForm : public QObject
{
    Q_OBJECT

private slots:
    void dateTimesAreWrittenInWholeSecondsWithATBetweenDateAndTime_data();
    void dateTimesAreWrittenInWholeSecondsWithATBetweenDateAndTime();
    void anInvalidDateTimeIsWrittenAsANullText();
    void theFilesOwnFormReadsBackToTheSameSecond();
    void otherTextsReadAsQtsGeneralIsoParserReadsThem_data();
    void otherTextsReadAsQtsGeneralIsoParserReadsThem();
    void booleansAreTheTextsTrueAndFalse();
};

void TestStorageForm::dateTimesAreWrittenInWholeSecondsWithATBetweenDateAndTime_data()
{
    QTest::addColumn<QDateTime>("when");
    QTest::addColumn<QString>("stored");
    QTest::newRow("midnight") << QDateTime(QDate(2026, 3, 5), QTime(0, 0)) << QStringLiteral("2026-03-05T00:00:00");
    QTest::newRow("milliseconds are dropped")
        << QDateTime(QDate(2026, 11, 15), QTime(13, 8, 59, 999)) << QStringLiteral("2026-11-15T13:08:59");
    QTest::newRow("a year before 1000 keeps four digits")
        << QDateTime(QDate(999, 1, 2), QTime(3, 4, 5)) << QStringLiteral("0999-01-02T03:04:05");
    QTest::newRow("the first second of 1000")
        << QDateTime(QDate(1000, 1, 1), QTime(0, 0)) << QStringLiteral("1000-01-01T00:00:00");
    QTest::newRow("the last second of 9999")
        << QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59)) << QStringLiteral("9999-12-31T23:59:59");
    QTest::newRow("in UTC, its own time of day")
        << QDateTime(QDate(2026, 7, 8), QTime(9, 10, 11), Qt::UTC) << QStringLiteral("2026-07-08T09:10:11");
}

void TestStorageForm::dateTimesAreWrittenInWholeSecondsWithATBetweenDateAndTime()
{
    QFETCH(QDateTime, when);
    QFETCH(QString, stored);
    QCOMPARE(StorageForm::dateTime(when), stored);
}

void TestStorageForm::anInvalidDateTimeIsWrittenAsANullText()
{
    // A null text binds as SQL NULL, which the entry table refuses.
    QVERIFY(StorageForm::dateTime(QDateTime()).isNull());
}

void TestStorageForm::theFilesOwnFormReadsBackToTheSameSecond()
{
    const QDateTime when(QDate(2028, 2, 29), QTime(23, 59, 59));
    QCOMPARE(StorageForm::readDateTime(QStringLiteral("2028-02-29T23:59:59")), when);
    QCOMPARE(StorageForm::readDateTime(StorageForm::dateTime(when)), when);
    QCOMPARE(StorageForm::readDateTime(QStringLiteral("2028-02-29T23:59:59")).timeSpec(), Qt::LocalTime);
}

void TestStorageForm::otherTextsReadAsQtsGeneralIsoParserReadsThem_data()
{
    QTest::addColumn<QString>("stored");
    QTest::newRow("milliseconds") << QStringLiteral("2026-11-15T08:30:05.250");
    QTest::newRow("a zone") << QStringLiteral("2026-11-15T08:30:05Z");
    QTest::newRow("midnight as 24:00") << QStringLiteral("2026-11-14T24:00:00");
    QTest::newRow("a month that does not exist") << QStringLiteral("2026-13-15T08:30:05");
    QTest::newRow("a day that does not exist") << QStringLiteral("2026-02-30T08:30:05");
    QTest::newRow("a space for the T") << QStringLiteral("2026-11-15 08:30:05");
    QTest::newRow("a date alone") << QStringLiteral("2026-11-15");
    QTest::newRow("a letter among the digits") << QStringLiteral("2026-1a-15T08:30:05");
    QTest::newRow("no date at all") << QStringLiteral("yesterday");
    QTest::newRow("empty") << QString();
}

void TestStorageForm::otherTextsReadAsQtsGeneralIsoParserReadsThem()
{
    QFETCH(QString, stored);
    // What a QVariant holding the text converts to: the general parser.
    const QDateTime expected = QVariant(stored).toDateTime();
    const QDateTime read = StorageForm::readDateTime(stored);
    QCOMPARE(read.isValid(), expected.isValid());
    if (expected.isValid())
        QCOMPARE(read, expected);
}

void TestStorageForm::booleansAreTheTextsTrueAndFalse()
{
    QCOMPARE(StorageForm::boolean(true), QStringLiteral("true"));
    QCOMPARE(StorageForm::boolean(false), QStringLiteral("false"));
    QVERIFY(QVariant(StorageForm::boolean(true)).toBool());
    QVERIFY(!QVariant(StorageForm::boolean(false)).toBool());
}

QTEST_GUILESS_MAIN(TestStorageForm)

#include "tst_storageform.moc"
