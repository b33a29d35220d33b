// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// What a reader made of a file, as the user reads it: the skipped records
// and the problems, at most twenty of them.
#include "entryfilecontents.h"

#include <QTest>

class TestEntryFileContents : public QObject
{
    Q_OBJECT

private slots:
    void aFileWithoutProblemsIsAcceptable();
    void theSkippedRecordsAreCountedByReason_data();
    void theSkippedRecordsAreCountedByReason();
    void problemsAreListedWithTheirLinesOrTheFileName();
    void atMostTwentyProblemsAreListedThenCounted_data();
    void atMostTwentyProblemsAreListedThenCounted();
    void textThatIsNoUtf8OrHoldsANulIsRefusedAtItsLine();
    void linesEndInLfCrLfOrALoneCr();
};

void TestEntryFileContents::aFileWithoutProblemsIsAcceptable()
{
    EntryFileContents contents;
    QVERIFY(contents.isAcceptable());
    contents.addProblem(3, QStringLiteral("bad"));
    QVERIFY(!contents.isAcceptable());
}

void TestEntryFileContents::theSkippedRecordsAreCountedByReason_data()
{
    QTest::addColumn<int>("income");
    QTest::addColumn<int>("transfers");
    QTest::addColumn<int>("others");
    QTest::addColumn<QString>("summary");
    QTest::newRow("none") << 0 << 0 << 0 << QStringLiteral("skipped 0");
    QTest::newRow("income and transfers") << 30 << 4 << 0 << QStringLiteral("skipped 34 (income 30, transfers 4)");
    QTest::newRow("transfers only") << 0 << 2 << 0 << QStringLiteral("skipped 2 (transfers 2)");
    QTest::newRow("all three") << 1 << 2 << 3 << QStringLiteral("skipped 6 (income 1, transfers 2, other sections 3)");
}

void TestEntryFileContents::theSkippedRecordsAreCountedByReason()
{
    QFETCH(int, income);
    QFETCH(int, transfers);
    QFETCH(int, others);
    QFETCH(QString, summary);
    EntryFileContents contents;
    contents.skippedIncome = income;
    contents.skippedTransfers = transfers;
    contents.skippedOtherSections = others;
    QCOMPARE(contents.skipped(), income + transfers + others);
    QCOMPARE(contents.skippedSummary(), summary);
}

void TestEntryFileContents::problemsAreListedWithTheirLinesOrTheFileName()
{
    EntryFileContents contents;
    contents.addProblem(7, QStringLiteral("the date \"x\" is wrong, %1 and all"));
    contents.addProblem(0, QStringLiteral("the file as a whole"));
    QCOMPARE(contents.problemLines(),
             QStringList({ QStringLiteral("line 7: the date \"x\" is wrong, %1 and all"),
                           QStringLiteral("the file as a whole") }));
    QCOMPARE(contents.problemLines(QStringLiteral("in.csv")),
             QStringList({ QStringLiteral("in.csv:7: the date \"x\" is wrong, %1 and all"),
                           QStringLiteral("the file as a whole") }));
}

void TestEntryFileContents::atMostTwentyProblemsAreListedThenCounted_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("listed");
    QTest::addColumn<QString>("last");
    QTest::newRow("twenty") << 20 << 20 << QStringLiteral("line 20: problem 20");
    QTest::newRow("twenty-one") << 21 << 21 << QStringLiteral("and 1 more problem");
    QTest::newRow("a thousand") << 1000 << 21 << QStringLiteral("and 980 more problems");
}

void TestEntryFileContents::atMostTwentyProblemsAreListedThenCounted()
{
    QFETCH(int, count);
    QFETCH(int, listed);
    QFETCH(QString, last);
    EntryFileContents contents;
    for (int line = 1; line <= count; ++line)
        contents.addProblem(line, QStringLiteral("problem %1").arg(line));
    const QStringList lines = contents.problemLines();
    QCOMPARE(lines.size(), listed);
    QCOMPARE(lines.first(), QStringLiteral("line 1: problem 1"));
    QCOMPARE(lines.last(), last);
}

void TestEntryFileContents::textThatIsNoUtf8OrHoldsANulIsRefusedAtItsLine()
{
    EntryFileContents utf8;
    QVERIFY(utf8.acceptText("one\r\ntwo ✓\r\n", true));
    QVERIFY(utf8.isAcceptable());

    EntryFileContents latin1;
    QVERIFY(!latin1.acceptText("one\r\ntwo\r\nthr\xe9"
                               "e\r\n",
                               true));
    QCOMPARE(latin1.problemLines(), QStringList { QStringLiteral("line 3: the text is not UTF-8") });
    EntryFileContents anyText;
    QVERIFY(anyText.acceptText("one\r\ntwo\r\nthr\xe9"
                               "e\r\n",
                               false));

    EntryFileContents nul;
    QVERIFY(!nul.acceptText(QByteArrayView("one\ntwo\nthree\0four", 18), false));
    QCOMPARE(nul.problemLines(), QStringList { QStringLiteral("line 3: a NUL byte: this is not a text file") });
}

void TestEntryFileContents::linesEndInLfCrLfOrALoneCr()
{
    const QByteArray text = "a\nb\r\nc\rd";
    QCOMPARE(EntryFileContents::lineAt(text, 0), 1);
    QCOMPARE(EntryFileContents::lineAt(text, 2), 2);
    QCOMPARE(EntryFileContents::lineAt(text, 5), 3);
    QCOMPARE(EntryFileContents::lineAt(text, 7), 4);
}

QTEST_GUILESS_MAIN(TestEntryFileContents)
#include "tst_entryfilecontents.moc"
