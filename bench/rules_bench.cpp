// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Times the rules at 50,000 entries with 200 rules (190 texts to look for,
// 10 regular expressions), on bank-style payee texts that hardly repeat (a
// payee, a city and a reference number each): `rules apply` over the
// stored entries of Others, as a dry run and for real; and an import of a
// 50,000-row bank CSV (semicolons, decimal commas, day-first dates) through a
// column mapping: read, recognise, categorise and write, with the rules'
// share of it, beside the floor of the same rows inserted with plain SQLite.
// Medians of three runs.

#include "csvmapping.h"
#include "databasemanager.h"
#include "entryimport.h"
#include "rules.h"
#include "tenyears.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#ifdef LEDGERLY_HAVE_SQLITE3
#include <sqlite3.h>
#endif

#include <algorithm>
#include <memory>
#include <vector>

namespace {

QTextStream out(stdout);

const int entryCount = 50000;
const int ruleCount = 200;

// A payee as banks write it: "REWE SAGT DANKE 4711" and the like.
QString payee(int shop, int reference)
{
    return QStringLiteral("SHOP%1 MARKT GMBH SAGT DANKE %2").arg(shop).arg(reference);
}

QString city(int i)
{
    return QStringLiteral("Stadt %1").arg(i % 97);
}

// 190 texts of shops 0 to 189 (each picks one shop), then 10 expressions on
// the reference numbers; entries of shops 190 and above match none of the
// texts, and a reference number ending in 00 matches the last expression.
QList<Rule> someRules()
{
    QList<Rule> rules;
    for (int shop = 0; shop < ruleCount - 10; ++shop)
        rules.append({ QStringLiteral("shop%1 markt").arg(shop), Rule::Field::Both, Rule::How::Contains,
                       QStringLiteral("Category %1").arg(shop % 37) });
    for (int i = 0; i < 10; ++i)
        rules.append({ QStringLiteral("danke \\d+%1%1$").arg(i), Rule::Field::Item, Rule::How::Regex,
                       QStringLiteral("Regular %1").arg(i) });
    return rules;
}

QList<Entry *> someEntries()
{
    QList<Entry *> entries;
    const QDateTime first(QDate(2016, 1, 1), QTime(12, 0));
    for (int i = 0; i < entryCount; ++i) {
        auto *entry = new Entry;
        entry->ItemName = payee((i * 7919) % 400, 100000 + i);
        entry->CategoryName = QStringLiteral("Others");
        entry->TransactDateTime = first.addSecs(qint64(i) * 6300);
        entry->Price = float(1 + (i * 37) % 10000) / 100.0f;
        entry->LocationText = city(i);
        entry->GeoLocLongit = 103.0f;
        entry->GeoLocLatit = 1.3f;
        entries.append(entry);
    }
    return entries;
}

// The entries as a German bank writes its statement: money out negative.
QByteArray bankCsv(const QList<Entry *> &entries)
{
    QByteArray bytes = "Buchungstag;Verwendungszweck;Ort;Betrag\n";
    for (const Entry *entry : entries) {
        bytes += entry->TransactDateTime.date().toString(QStringLiteral("dd.MM.yyyy")).toUtf8() + ';' +
            entry->ItemName.toUtf8() + ';' + entry->LocationText.toUtf8() + ";-" +
            QByteArray::number(double(entry->Price), 'f', 2).replace('.', ',') + '\n';
    }
    return bytes;
}

#ifdef LEDGERLY_HAVE_SQLITE3
// The floor: the same rows inserted into a table of Entry's columns in one
// transaction with the C API, nothing read, checked or recorded.
double plainInsertMs(const QString &directory, const QList<Entry *> &entries)
{
    int run = 0;
    return medianMs(3, [&] {
        const QByteArray name = QFile::encodeName(directory + QStringLiteral("/plain-%1.db").arg(run++));
        sqlite3 *db = nullptr;
        sqlite3_open(name.constData(), &db);
        sqlite3_exec(db,
                     "CREATE TABLE Entry (SNo integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE, ItemName "
                     "nvarchar(255) NOT NULL, CategoryName nvarchar(255) NOT NULL, CategoryID integer NOT NULL, "
                     "TransactDateTime datetime NOT NULL, Price float(50) NOT NULL, LocationText nvarchar(255), "
                     "EnableGeoLoc boolean NOT NULL, GeoLocID integer, GeoLocLongit float(50), GeoLocLatit "
                     "float(50), ItemID integer NOT NULL); BEGIN",
                     nullptr, nullptr, nullptr);
        sqlite3_stmt *insert = nullptr;
        sqlite3_prepare_v2(db,
                           "INSERT INTO Entry (ItemName, CategoryName, CategoryID, TransactDateTime, Price, "
                           "LocationText, EnableGeoLoc, GeoLocID, GeoLocLongit, GeoLocLatit, ItemID) VALUES (?, "
                           "'Others', 1, ?, ?, ?, 'false', 0, 0, 0, 1)",
                           -1, &insert, nullptr);
        for (const Entry *entry : entries) {
            const QByteArray item = entry->ItemName.toUtf8();
            const QByteArray when = entry->TransactDateTime.toString(Qt::ISODate).toUtf8();
            const QByteArray place = entry->LocationText.toUtf8();
            sqlite3_bind_text(insert, 1, item.constData(), int(item.size()), SQLITE_TRANSIENT);
            sqlite3_bind_text(insert, 2, when.constData(), int(when.size()), SQLITE_TRANSIENT);
            sqlite3_bind_double(insert, 3, double(entry->Price));
            sqlite3_bind_text(insert, 4, place.constData(), int(place.size()), SQLITE_TRANSIENT);
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_close(db);
    });
}
#endif

bool storeRules(DatabaseManager &store)
{
    Rules rules(store);
    for (const Rule &rule : someRules()) {
        if (rules.add(rule) == 0)
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir work;
    const auto enterHome = [&work](const QString &name) {
        const QString home = work.filePath(name);
        QDir().mkpath(home);
        qputenv("HOME", QFile::encodeName(home));
    };

    // The file of entries every run imports, written once.
    const OwnedList<Entry> entries = owned(someEntries());
    const QString file = work.filePath(QStringLiteral("bank.csv"));
    {
        QFile csv(file);
        if (!csv.open(QIODevice::WriteOnly) || csv.write(bankCsv(entries.list())) < 0) {
            out << "cannot write " << file << Qt::endl;
            return 1;
        }
    }

    const std::optional<CsvMapping> mapping = CsvMapping::fromText(
        QStringLiteral("--map date=Buchungstag,item=Verwendungszweck,place=Ort,amount=Betrag"));
    if (!mapping) {
        out << "the mapping does not read" << Qt::endl;
        return 1;
    }
    const auto readBank = [&] { return EntryImport::read(file, std::nullopt, std::nullopt, mapping); };

    out << "Rules: " << entryCount << " entries, " << ruleCount << " rules; medians of 3 runs" << Qt::endl;

    // rules apply over the stored entries: the file holds them all in Others
    // before each run.
    int run = 0;
    std::unique_ptr<DatabaseManager> store;
    enterHome(QStringLiteral("apply"));
    store = std::make_unique<DatabaseManager>(nullptr);
    EntryFileContents contents = readBank();
    if (!storeRules(*store) || !EntryImport::write(*store, contents.entries).written) {
        out << "cannot set up the stored entries" << Qt::endl;
        return 1;
    }
    std::optional<int> would;
    const double dryRun = medianMs(3, [&] { would = Rules(*store).apply(true); });
    std::optional<int> recategorised;
    const double apply = medianMs(
        3, [&] { recategorised = Rules(*store).apply(false); },
        [&] {
            store->runInTransaction(DatabaseManager::WriteKind::Edits, [&] {
                return store->statementRunner().execute(QStringLiteral("UPDATE Entry SET CategoryName = 'Others'"), {});
            });
        });
    out << QStringLiteral("  rules apply --dry-run ............... %1 ms (%2 entries)")
               .arg(dryRun, 0, 'f', 1)
               .arg(would.value_or(-1))
        << Qt::endl;
    out << QStringLiteral("  rules apply ......................... %1 ms (%2 entries) %3")
               .arg(apply, 0, 'f', 1)
               .arg(recategorised.value_or(-1))
               .arg(apply < 2000 ? QStringLiteral("< 2 s") : QStringLiteral("NOT < 2 s"))
        << Qt::endl;
    store.reset();

    // An import as the command line makes it, each run into a new home that
    // holds the rules; the rules' share is the categorising step alone.
    std::vector<double> categorising;
    int categorised = 0;
    int added = 0;
    const double import = medianMs(
        3,
        [&] {
            EntryFileContents read = readBank();
            EntryImport::recognise(*store, read);
            QElapsedTimer timer;
            timer.start();
            EntryImport::categorise(*store, read);
            categorising.push_back(double(timer.nsecsElapsed()) / 1e6);
            categorised = read.categorisedByRules;
            added = EntryImport::write(*store, read.entries, {}, file).added;
        },
        [&] {
            store.reset();
            enterHome(QStringLiteral("import-%1").arg(run++));
            store = std::make_unique<DatabaseManager>(nullptr);
            storeRules(*store);
        });
    std::sort(categorising.begin(), categorising.end());
    const double rulesShare = categorising.at(categorising.size() / 2);
    const double withoutRules = medianMs(
        3,
        [&] {
            EntryFileContents read = readBank();
            EntryImport::recognise(*store, read);
            EntryImport::categorise(*store, read);
            EntryImport::write(*store, read.entries, {}, file);
        },
        [&] {
            store.reset();
            enterHome(QStringLiteral("import-%1").arg(run++));
            store = std::make_unique<DatabaseManager>(nullptr);
        });
    out << QStringLiteral("  bank CSV import, mapped, with rules . %1 ms (%2 entries, categorised by rules %3) %4")
               .arg(import, 0, 'f', 1)
               .arg(added)
               .arg(categorised)
               .arg(import < 2000 ? QStringLiteral("< 2 s") : QStringLiteral("NOT < 2 s"))
        << Qt::endl;
    out << QStringLiteral("    of which the rules (categorise) ... %1 ms (%2 %)")
               .arg(rulesShare, 0, 'f', 1)
               .arg(import > 0 ? 100.0 * rulesShare / import : 0.0, 0, 'f', 1)
        << Qt::endl;
    out << QStringLiteral("  the same import without rules ....... %1 ms").arg(withoutRules, 0, 'f', 1) << Qt::endl;
#ifdef LEDGERLY_HAVE_SQLITE3
    out << QStringLiteral("  floor: the rows inserted with plain SQLite %1 ms")
               .arg(plainInsertMs(work.path(), entries.list()), 0, 'f', 1)
        << Qt::endl;
#endif
    out << "Peak resident memory: " << peakResidentKb() / 1024 << " MB" << Qt::endl;
    return 0;
}
