// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "statements.h"
#include "storeconnection.h"
#include "transactions.h"

#include "rawdatabase.h"
#include "temphome.h"

#include <QTest>

#include <memory>

#include <sqlite3.h>

class TestTransactions : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        home = std::make_unique<TempHome>();
        connection = std::make_unique<StoreConnection>();
        QVERIFY(connection->open(home->databasePath()));
        statements = std::make_unique<Statements>(connection->database());
        transactions = std::make_unique<Transactions>(*connection, *statements);
        QVERIFY(statements->runText(QStringLiteral("CREATE TABLE Notes (Text text NOT NULL)")));
    }
    void cleanup()
    {
        transactions.reset();
        statements.reset();
        connection.reset();
        home.reset();
    }

    void aWriteKeepsEveryStatementOfIt();
    void aWriteThatTheFileFailsKeepsNothing();
    void aRollbackThatFailsReopensTheConnectionSoNothingJoinsIt();

private:
    bool insideATransaction() const { return !sqlite3_get_autocommit(connection->sqliteHandle()); }
    int notes() { return statements->count(QStringLiteral("select count(*) from Notes")); }
    bool note(const QString &text)
    {
        return statements->execute(QStringLiteral("insert into Notes (Text) values (:text)"),
                                   { { QStringLiteral(":text"), text } });
    }

    std::unique_ptr<TempHome> home;
    std::unique_ptr<StoreConnection> connection;
    std::unique_ptr<Statements> statements;
    std::unique_ptr<Transactions> transactions;
};

void TestTransactions::aWriteKeepsEveryStatementOfIt()
{
    QVERIFY(transactions->write([&] { return note(QStringLiteral("a")) && note(QStringLiteral("b")); }));
    QCOMPARE(RawDatabase(home->databasePath()).scalar(QStringLiteral("select count(*) from Notes")).toInt(), 2);
    QVERIFY(!insideATransaction());
}

void TestTransactions::aWriteThatTheFileFailsKeepsNothing()
{
    // Another program holds the file from the second statement on: the
    // first is taken back with it.
    RawDatabase holder(home->databasePath());
    connection->setBusyTimeout(100);
    QVERIFY(!transactions->write([&] {
        const bool first = note(QStringLiteral("a"));
        // A reader of the other connection keeps this one from committing.
        holder.exec(QStringLiteral("BEGIN"));
        holder.scalar(QStringLiteral("select count(*) from Notes"));
        return first;
    }));
    holder.exec(QStringLiteral("ROLLBACK"));
    QCOMPARE(notes(), 0);
    QVERIFY(!insideATransaction());
}

void TestTransactions::aRollbackThatFailsReopensTheConnectionSoNothingJoinsIt()
{
    // The work ends the savepoint itself and begins a transaction of its
    // own; taking the write back then fails (there is no savepoint left),
    // and the transaction it began must not stay open for later writes to
    // join without a word.
    QVERIFY(!transactions->write([&] {
        statements->runText(QStringLiteral("RELEASE ledgerly_write"));
        statements->runText(QStringLiteral("BEGIN"));
        note(QStringLiteral("stray"));
        return true;
    }));
    QVERIFY(!insideATransaction());
    // What the stray transaction wrote is gone, and a later write is stored
    // at once, where a second connection sees it.
    QVERIFY(note(QStringLiteral("later")));
    QCOMPARE(RawDatabase(home->databasePath()).rows(QStringLiteral("select Text from Notes")),
             QList<QVariantList>({ { QStringLiteral("later") } }));
}

QTEST_GUILESS_MAIN(TestTransactions)

#include "tst_transactions.moc"
