// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Opens Ledgerly's pages one after the other, as a user would through the
// menu, and saves a picture of the window for each. scripts/screenshots.sh
// runs it on an X server of its own over a home filled by
// ledgerly_sample_year; it works on any Qt platform that can grab a window.
//
//   ledgerly_screenshots [--look classic|light|dark] DIRECTORY [PAGE...]
//
// writes DIRECTORY/PAGE.png for every page named, or for all of them:
// home, new-entry, history, history-dates, history-total, history-entries,
// entry-details, history-places, options, options-entries. The look is
// picked in the View menu first, as a user would (Classic without --look).
//
// The pictures do not depend on the day they are taken or on the network:
// the new-entry page is filled in with a purchase on the sample's last day,
// the date-wise tab shows the weeks before that day, and every request of
// the web pages but their own inline ones is blocked, so the maps draw their
// places over the plain background a map has when it cannot reach its tile
// server.

#include "look.h"
#include "mainwindow.h"
#include "webenginesanitizeroptions.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QDeadlineTimer>
#include <QDir>
#include <QHash>
#include <QImageWriter>
#include <QLineEdit>
#include <QMessageBox>
#include <QPixmap>
#include <QScreen>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>
#include <QTimer>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineUrlRequestInfo>
#include <QWebEngineUrlRequestInterceptor>
#include <QWebEngineView>
#include <QWindow>

#include <functional>
#include <memory>

namespace {

constexpr int pageTimeoutMs = 60000;

class OfflineOnly : public QWebEngineUrlRequestInterceptor
{
public:
    void interceptRequest(QWebEngineUrlRequestInfo &info) override
    {
        if (info.requestUrl().scheme() != QLatin1String("data"))
            info.block(true);
    }
};

// Lets the event loop run until `done` holds or `timeoutMs` has passed.
bool waitFor(const std::function<bool()> &done, int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        QThread::msleep(10);
    }
    return true;
}

void settle(int ms)
{
    waitFor([] { return false; }, ms);
}

// Whether the map page of `view` has run its script: Leaflet is there and
// the document is complete.
bool mapReady(QWebEngineView *view)
{
    auto answer = std::make_shared<QVariant>();
    auto answered = std::make_shared<bool>(false);
    view->page()->runJavaScript(QStringLiteral("document.readyState === 'complete' && typeof L !== 'undefined'"),
                                [answer, answered](const QVariant &value) {
                                    *answer = value;
                                    *answered = true;
                                });
    return waitFor([answered] { return *answered; }, pageTimeoutMs) && answer->toBool();
}

class Photographer
{
public:
    Photographer(MainWindow &window, const QString &directory) : window(window), directory(directory) { }

    bool take(const QString &page)
    {
        // A message box would wait for a click that never comes: it is
        // closed, and the page fails with its text.
        QTimer watchdog;
        QString boxText;
        QObject::connect(&watchdog, &QTimer::timeout, [&boxText] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                boxText = box->text();
                box->reject();
            }
        });
        watchdog.start(200);
        const bool opened = open(page);
        if (!boxText.isEmpty()) {
            failure = QStringLiteral("the page showed a message: %1").arg(boxText);
            return false;
        }
        if (!opened)
            return false;
        // The pages lay out and paint on the next turns of the event loop.
        settle(300);
        if (!waitForMaps())
            return false;
        if (!boxText.isEmpty()) {
            failure = QStringLiteral("the page showed a message: %1").arg(boxText);
            return false;
        }
        return save(page);
    }

    QString failure;

private:
    template<typename T> T *find(const char *name)
    {
        T *child = window.findChild<T *>(QLatin1String(name));
        if (!child)
            failure = QStringLiteral("no %1 in the window").arg(QLatin1String(name));
        return child;
    }

    bool trigger(const char *action)
    {
        QAction *command = find<QAction>(action);
        if (command)
            command->trigger();
        return command;
    }

    // A fresh history page on tab `index`, after `prepare` has set it up.
    bool historyTab(int index, bool (Photographer::*prepare)() = nullptr)
    {
        if (!trigger("actionHistory"))
            return false;
        if (prepare && !(this->*prepare)())
            return false;
        QTabWidget *tabs = find<QTabWidget>("tabWidgetHistoryContainer");
        if (tabs)
            tabs->setCurrentIndex(index);
        return tabs;
    }

    bool open(const QString &page)
    {
        if (page == QLatin1String("home"))
            return trigger("actionHome");
        if (page == QLatin1String("new-entry"))
            return trigger("actionNewEntry") && fillInNewEntry();
        if (page == QLatin1String("history"))
            return historyTab(0, &Photographer::chooseCategory);
        if (page == QLatin1String("history-dates"))
            return historyTab(1, &Photographer::chooseWeeks);
        if (page == QLatin1String("history-total"))
            return historyTab(2);
        if (page == QLatin1String("history-entries"))
            return historyTab(3);
        if (page == QLatin1String("entry-details"))
            return historyTab(3) && openDetails();
        if (page == QLatin1String("history-places"))
            return historyTab(4);
        if (page == QLatin1String("options") || page == QLatin1String("options-entries")) {
            if (!trigger("actionOptions"))
                return false;
            QTabWidget *tabs = find<QTabWidget>("tabWidgetOptionsContainer");
            if (tabs)
                tabs->setCurrentIndex(page == QLatin1String("options") ? 0 : 2);
            return tabs;
        }
        failure = QStringLiteral("no page called %1").arg(page);
        return false;
    }

    // A purchase being typed in, on the last day of the sample.
    bool fillInNewEntry()
    {
        auto *item = find<QLineEdit>("lineEditItemName");
        auto *amount = find<QLineEdit>("lineEditAmount");
        auto *category = find<QComboBox>("comboBoxCategory");
        auto *place = find<QLineEdit>("lineEditLocation");
        auto *date = find<QDateEdit>("dateEdit");
        if (!item || !amount || !category || !place || !date)
            return false;
        item->setText(QStringLiteral("Flat white"));
        amount->setText(QStringLiteral("3.80"));
        const int drinks = category->findText(QStringLiteral("Drinks"));
        if (drinks >= 0)
            category->setCurrentIndex(drinks);
        place->setText(QStringLiteral("Station Café"));
        date->setDate(newestDay());
        return true;
    }

    QDate newestDay()
    {
        // The date-wise tab opens on the newest entry's day.
        auto *end = window.findChild<QDateEdit *>(QStringLiteral("dateEditDateWiseEndDate"));
        return end ? end->date() : QDate(2026, 10, 30);
    }

    bool chooseCategory()
    {
        auto *categories = find<QComboBox>("comboBoxCategory");
        if (!categories)
            return false;
        const int groceries = categories->findText(QStringLiteral("Groceries"));
        if (groceries >= 0)
            categories->setCurrentIndex(groceries);
        return true;
    }

    // Twelve weeks up to the newest entry, week by week. Set before the tab
    // opens: on the single day it opens on (from midnight to midnight) there
    // is nothing to show, and the page would say so in a message box.
    bool chooseWeeks()
    {
        auto *start = find<QDateEdit>("dateEditDateWiseStartDate");
        auto *end = find<QDateEdit>("dateEditDateWiseEndDate");
        auto *period = find<QComboBox>("comboBoxDateWiseTimePeriod");
        if (!start || !end || !period)
            return false;
        start->setDate(end->date().addDays(-7 * 12 + 1));
        period->setCurrentIndex(1);
        return true;
    }

    // The details of the newest entry, as a click on its row shows them.
    bool openDetails()
    {
        auto *entries = find<QTableWidget>("tableWidgetAllEntries");
        if (!entries || entries->rowCount() == 0)
            return false;
        entries->setCurrentCell(0, 1);
        emit entries->cellClicked(0, 1);
        return true;
    }

    bool waitForMaps()
    {
        const QList<QWebEngineView *> views = window.findChildren<QWebEngineView *>();
        bool anyMap = false;
        for (QWebEngineView *view : views) {
            if (!view->isVisible())
                continue;
            if (!waitFor([view] { return mapReady(view); }, pageTimeoutMs)) {
                failure = QStringLiteral("the map page of %1 did not load").arg(view->objectName());
                return false;
            }
            anyMap = true;
        }
        // The blocked tiles fail, Leaflet settles and the compositor draws.
        if (anyMap)
            settle(2000);
        return true;
    }

    bool save(const QString &page)
    {
        const QPixmap picture = window.screen()->grabWindow(window.winId());
        if (picture.isNull()) {
            failure = QStringLiteral("the window could not be grabbed");
            return false;
        }
        QImageWriter writer(QDir(directory).filePath(page + QStringLiteral(".png")), "png");
        // Smallest file, same pixels.
        writer.setQuality(0);
        if (!writer.write(picture.toImage())) {
            failure = writer.errorString();
            return false;
        }
        return true;
    }

    MainWindow &window;
    QString directory;
};

} // namespace

int main(int argc, char *argv[])
{
    // As the program itself starts (src/main.cpp).
    QCoreApplication::setOrganizationName(QStringLiteral("Ledgerly"));
    QCoreApplication::setApplicationName(QStringLiteral("Ledgerly"));
    QGuiApplication::setDesktopFileName(QStringLiteral(LEDGERLY_APP_ID));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Ledgerly"));
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    QApplication::setWindowIcon(Look::applicationIcon());
    Look::applyToApplication();

    QTextStream err(stderr);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    // The View menu's action of each look the pictures are taken in.
    const QHash<QString, QString> lookActions = { { QStringLiteral("classic"), QStringLiteral("actionLookClassic") },
                                                  { QStringLiteral("light"), QStringLiteral("actionLookLight") },
                                                  { QStringLiteral("dark"), QStringLiteral("actionLookDark") } };
    QString lookAction = lookActions.value(QStringLiteral("classic"));
    if (arguments.size() >= 2 && arguments.constFirst() == QLatin1String("--look")) {
        arguments.removeFirst();
        lookAction = lookActions.value(arguments.takeFirst());
    }
    if (arguments.isEmpty() || lookAction.isEmpty()) {
        err << "usage: ledgerly_screenshots [--look classic|light|dark] DIRECTORY [PAGE...]" << Qt::endl;
        return 2;
    }
    const QString directory = QDir(arguments.takeFirst()).absolutePath();
    if (!QDir().mkpath(directory)) {
        err << "cannot make " << directory << Qt::endl;
        return 1;
    }
    if (arguments.isEmpty())
        arguments = QStringList{ "home",          "new-entry",      "history", "history-dates",  "history-total",
                                 "history-entries", "entry-details", "history-places", "options", "options-entries" };

    // The history page writes its graphs into the current directory.
    QTemporaryDir scratch;
    if (!scratch.isValid() || !QDir::setCurrent(scratch.path())) {
        err << "cannot make a scratch directory" << Qt::endl;
        return 1;
    }

    OfflineOnly offline;
    QWebEngineProfile::defaultProfile()->setUrlRequestInterceptor(&offline);

    int status = 0;
    {
        MainWindow window;
        window.show();
        if (!waitFor([&window] { return window.windowHandle() && window.windowHandle()->isExposed(); },
                     pageTimeoutMs)) {
            err << "the window never showed" << Qt::endl;
            return 1;
        }
        // The pick is kept in the (scratch) home's settings, as a user's
        // would be; each run picks its look again.
        window.findChild<QAction *>(lookAction)->trigger();
        Photographer photographer(window, directory);
        for (const QString &page : std::as_const(arguments)) {
            if (!photographer.take(page)) {
                err << page << ": " << photographer.failure << Qt::endl;
                status = 1;
                break;
            }
        }
        // Home again, so that no web page is left on screen while the
        // window goes.
        window.findChild<QAction *>(QStringLiteral("actionHome"))->trigger();
        window.close();
    }
    QWebEngineProfile::defaultProfile()->setUrlRequestInterceptor(nullptr);
    return status;
}
