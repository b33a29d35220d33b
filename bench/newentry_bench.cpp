// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Times opening the new-entry page over an empty item catalogue and over one
// of 10,000 items: building the page (its categories, the catalogue and the
// completion of item names) and showing it, each the median of 15 openings
// in one process. Then what the user waits for once the page is open: the
// list of names after the first key typed into the name field.

#include "addentrywidget.h"
#include "databasemanager.h"
#include "tenyears.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QDir>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>

#include <memory>

namespace {

QTextStream out(stdout);

// Writes `count` catalogue rows, each a name of its own, over the 37 default
// categories, used from once to fifty times.
bool fillCatalogue(const QString &fileName, int count, QString *error)
{
    return writeInOneTransaction(
        fileName,
        [count](QSqlDatabase &db) {
            QRandomGenerator random(1013);
            QSqlQuery query(db);
            query.prepare(
                QStringLiteral("INSERT INTO Items (ItemName,CategoryName,CategoryID,LastPrice,UseFrequency) VALUES "
                               "(?, (select CategoryName from Category where SNo = ?), ?, ?, ?)"));
            for (int i = 0; i < count; ++i) {
                const int category = 1 + random.bounded(37);
                query.addBindValue(QStringLiteral("Item %1").arg(i + 1));
                query.addBindValue(category);
                query.addBindValue(category);
                query.addBindValue(double(float(random.bounded(10000)) / 100.0f));
                query.addBindValue(1 + random.bounded(50));
                if (!query.exec())
                    return query.lastError().text();
            }
            return QString();
        },
        error);
}

struct Figures
{
    double openMs = 0;
    double firstKeyMs = 0;
    int offered = 0;
};

bool measure(int items, Figures *figures)
{
    QTemporaryDir home;
    if (!home.isValid()) {
        out << "cannot make a temporary home\n";
        return false;
    }
    qputenv("HOME", home.path().toLocal8Bit());
    DatabaseManager store(nullptr);
    QString error;
    if (!fillCatalogue(DatabaseManager::defaultFileName(), items, &error)) {
        out << "cannot fill the catalogue: " << error << "\n";
        return false;
    }

    figures->openMs = medianMs(15, [&store] {
        AddEntryWidget page(QPointer<DatabaseManager>(&store), nullptr);
        page.show();
        QCoreApplication::processEvents();
    });

    AddEntryWidget page(QPointer<DatabaseManager>(&store), nullptr);
    page.show();
    page.activateWindow();
    auto *name = page.findChild<QLineEdit *>(QStringLiteral("lineEditItemName"));
    name->setFocus();
    QCoreApplication::processEvents();
    QElapsedTimer timer;
    timer.start();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_1, Qt::NoModifier, QStringLiteral("1"));
    QCoreApplication::sendEvent(name, &press);
    QCoreApplication::processEvents();
    figures->firstKeyMs = double(timer.nsecsElapsed()) / 1e6;
    figures->offered = name->completer()->completionCount();
    name->completer()->popup()->hide();
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // No geolocation service, and none of the user's settings: the page's
    // lookup stays out of the figures.
    qunsetenv("LEDGERLY_GEOLOCATION_URL");
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);

    out << "New-entry page, offscreen; medians of 15 openings, each with the first repaint.\n";
    Figures empty;
    Figures full;
    if (!measure(0, &empty) || !measure(10000, &full))
        return 1;
    out << QStringLiteral("  open, empty catalogue ................... %1 ms\n").arg(empty.openMs, 0, 'f', 1);
    out << QStringLiteral("  open, 10,000 catalogue items ............ %1 ms (%2 ms more)\n")
               .arg(full.openMs, 0, 'f', 1)
               .arg(full.openMs - empty.openMs, 0, 'f', 1);
    out << QStringLiteral("  first key typed, list of %1 names ...... %2 ms\n")
               .arg(full.offered)
               .arg(full.firstKeyMs, 0, 'f', 1);
    out.flush();
    return 0;
}
