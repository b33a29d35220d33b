// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

// What the benchmarks share: ten years of entries in a temporary home, rows
// written on a connection of their own, medians of timings and the process's
// peak memory.

#include "databasemanager.h"
#include "storageform.h"

#include <QDate>
#include <QDateTime>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QTemporaryDir>
#include <QTextStream>
#include <QVariant>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include <sys/resource.h>

inline long peakResidentKb()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// The median of `runs` timings of `work`, in milliseconds; `prepare`, when
// given, runs before each, untimed.
inline double medianMs(int runs, const std::function<void()> &work, const std::function<void()> &prepare = {})
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        if (prepare)
            prepare();
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// Runs `write` on a connection of its own to a file the store has set up, in
// one transaction. `write` answers an empty text, or what went wrong, which
// then lands in *error.
inline bool writeInOneTransaction(const QString &fileName, const std::function<QString(QSqlDatabase &)> &write,
                                  QString *error)
{
    const QString name = QStringLiteral("bench_writer");
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(fileName);
        if (!db.open()) {
            *error = db.lastError().text();
            ok = false;
        } else {
            db.transaction();
            const QString failure = write(db);
            if (failure.isEmpty()) {
                ok = db.commit();
                if (!ok)
                    *error = db.lastError().text();
            } else {
                *error = failure;
                db.rollback();
                ok = false;
            }
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return ok;
}

// Fills the Entry table of a file the store has set up, in the file's storage
// forms and one transaction: ten years from 1 January 2016, whole minutes,
// over the 37 default categories, with "Food" (1) clearly the largest.
inline bool fillTenYearsOfEntries(const QString &fileName, int count, QString *error)
{
    return writeInOneTransaction(
        fileName,
        [count](QSqlDatabase &db) {
            QRandomGenerator random(1115);
            const QDateTime first(QDate(2016, 1, 1), QTime(0, 0));
            const qint64 tenYears = qint64(3652) * 24 * 3600;
            QSqlQuery query(db);
            query.prepare(QStringLiteral(
                "INSERT INTO Entry (ItemName,CategoryName,CategoryID,TransactDateTime,Price,LocationText,"
                "EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,ItemID) VALUES (?, (select CategoryName from Category "
                "where SNo = ?), ?, ?, ?, ?, ?, 0, ?, ?, ?)"));
            for (int i = 0; i < count; ++i) {
                const int categoryId = random.bounded(4) == 0 ? 1 : 1 + random.bounded(37);
                const int item = random.bounded(300);
                // Whole minutes, as a day's entries are made at different times.
                const QDateTime when = first.addSecs(random.bounded(tenYears / 60) * 60);
                const bool geo = random.bounded(2) == 0;
                query.addBindValue(QStringLiteral("Item %1").arg(item));
                query.addBindValue(categoryId);
                query.addBindValue(categoryId);
                query.addBindValue(StorageForm::dateTime(when));
                query.addBindValue(double(float(random.bounded(10000)) / 100.0f));
                query.addBindValue(QStringLiteral("Shop %1").arg(random.bounded(50)));
                query.addBindValue(StorageForm::boolean(geo));
                query.addBindValue(geo ? 103.8 + random.bounded(1000) / 10000.0 : 103.0);
                query.addBindValue(geo ? 1.3 + random.bounded(1000) / 10000.0 : 1.3);
                query.addBindValue(item + 1);
                if (!query.exec())
                    return query.lastError().text();
            }
            return QString();
        },
        error);
}

// Points HOME and the settings at `home` and opens the store there with
// `count` entries over ten years; null, with the reason on `out`, when it
// cannot.
inline std::unique_ptr<DatabaseManager> storeWithTenYears(const QTemporaryDir &home, int count, QTextStream &out)
{
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path() + QStringLiteral("/.config")));
    auto store = std::make_unique<DatabaseManager>(nullptr);
    QString error;
    if (!store->isUsable() || !fillTenYearsOfEntries(DatabaseManager::defaultFileName(), count, &error)) {
        out << "cannot make the entries: " << error << Qt::endl;
        return nullptr;
    }
    return store;
}
