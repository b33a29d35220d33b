// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "addentrywidget.h"
#include "automaticbackup.h"
#include "budgetlevelcolours.h"
#include "backup.h"
#include "csvformat.h"
#include "databasemanager.h"
#include "csvmappingdialog.h"
#include "dueexpensesdialog.h"
#include "entryexport.h"
#include "entryimport.h"
#include "filechooser.h"
#include "findwidget.h"
#include "format.h"
#include "historywidget.h"
#include "importpreviewdialog.h"
#include "importsdialog.h"
#include "look.h"
#include "mappedcsvreader.h"
#include "notice.h"
#include "optionswidget.h"
#include "pagegrowth.h"
#include "qifformat.h"
#include "recurringexpenses.h"
#include "settings.h"

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QProgressDialog>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>

#include <algorithm>

namespace {

QMargins marginsAround(const QRect &inner, const QSize &outer)
{
    return QMargins(inner.left(), inner.top(), outer.width() - inner.right() - 1, outer.height() - inner.bottom() - 1);
}

// A progress dialog for work that may take a while: it shows only once the
// work has run about 0.3 s (or promises to), and its Cancel stops the work.
// Without a parent, as every dialog of the program (see Look), and modal,
// so that nothing else touches the database meanwhile.
class Progress
{
public:
    explicit Progress(const QString &label) : dialog(label, QCoreApplication::translate("MainWindow", "Cancel"), 0, 100)
    {
        dialog.setWindowModality(Qt::ApplicationModal);
        dialog.setMinimumDuration(300);
        dialog.setValue(0);
    }

    DatabaseManager::Progress reporter()
    {
        return [this](qint64 done, qint64 total) {
            dialog.setValue(total > 0 ? int(done * 100 / total) : 100);
            return !dialog.wasCanceled();
        };
    }

private:
    QProgressDialog dialog;
};

} // namespace

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent), ui(new Ui::MainWindow)
{
    ui->setupUi(this);
    for (QWidget *button : { ui->pushButtonHome, ui->pushButtonNewEntry, ui->pushButtonHistory, ui->pushButtonOptions,
                             ui->pushButtonExit })
        Look::applyButtonFontWeight(button);
    IsEntryPresentInDatabase = false;
    labelBudgetWarning = nullptr;
    ui->stackedWidget->setCurrentIndex(0);

    dbManager = new DatabaseManager(this);
    if (dbManager->GetTotalNumberOfEntries() > 0)
        IsEntryPresentInDatabase = true;

    // The daily backup never holds the window up: it runs from the event
    // loop once the window is on screen, on a connection of its own, also
    // while another program holds the file (it waits for it a while), and
    // a failure is told then.
    if (dbManager->isUsable() || dbManager->isHeldByAnotherProgram()) {
        auto *daily = new AutomaticBackup(dbManager->databaseFileName(), Backup::automaticDirectory(),
                                          QDateTime::currentDateTime(), this);
        connect(daily, &AutomaticBackup::finished, this, [this](const Backup::Outcome &outcome) {
            if (!outcome.written && !outcome.failure.isEmpty()) {
                automaticBackupFailure = outcome.failure;
                reportAutomaticBackupFailure();
            }
        });
        daily->start();
    }

    setUpPageArea();
    connectMenuBar();
    Look::applyHighlights(menuBar(), ui->centralWidget);
    connectLookMenu();
    restoreWindowGeometry();

    if (!dbManager->isUsable()) {
        // Queued so that the window is on screen before the message shows.
        QMetaObject::invokeMethod(this, &MainWindow::reportUnusableDatabase, Qt::QueuedConnection);
    } else if (!dbManager->writeProblem().isEmpty()) {
        QMetaObject::invokeMethod(this, &MainWindow::reportUnwritableDatabase, Qt::QueuedConnection);
    } else {
        // Once the window is on screen, so that the dialog shows over it.
        QMetaObject::invokeMethod(
            this, [this] { postDueRecurringExpenses(); }, Qt::QueuedConnection);
        timerRecurringDue = new QTimer(this);
        timerRecurringDue->setObjectName(QStringLiteral("timerRecurringDue"));
        timerRecurringDue->setSingleShot(true);
        // A coarse timer may fire up to 5 % of a day early, before midnight.
        timerRecurringDue->setTimerType(Qt::PreciseTimer);
        connect(timerRecurringDue, &QTimer::timeout, this, &MainWindow::reviewRecurringExpenses);
        scheduleRecurringReview();
    }
}

MainWindow::~MainWindow()
{
    delete ui;
}

bool MainWindow::isOnAScreen(const QRect &geometry, const QList<QRect> &screenAreas)
{
    for (const QRect &area : screenAreas) {
        const QRect visible = area.intersected(geometry);
        if (visible.width() >= 100 && visible.height() >= 50)
            return true;
    }
    return false;
}

void MainWindow::setUpPageArea()
{
    // The form lays the window out for 1203 x 824. The menu column keeps its
    // place; the page area keeps its designed margins and follows the
    // window, so that a page is seen whole wherever the window has the room.
    const QSize designed = size();
    designedHostSize = ui->stackedWidget->size();
    auto *windowLayout = new QGridLayout(ui->centralWidget);
    windowLayout->setContentsMargins(marginsAround(ui->scrollArea->geometry(), designed));
    windowLayout->addWidget(ui->scrollArea);

    auto *areaLayout = new QGridLayout(ui->scrollAreaWidgetContents);
    areaLayout->setContentsMargins(marginsAround(ui->stackedWidget->geometry(), ui->scrollAreaWidgetContents->size()));
    areaLayout->addWidget(ui->stackedWidget);

    auto *hostLayout = new QGridLayout(ui->NewEntryContainerWidget);
    hostLayout->setContentsMargins(QMargins());
    hostLayout->addWidget(ui->scrollArea_2);
    // A data page keeps its designed size and place at the designed window
    // size, centred at the top. It grows by as much as the host grows beyond
    // that size and is scrolled when the host is smaller.
    ui->scrollArea_2->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    ui->scrollArea_2->viewport()->installEventFilter(this);

    ui->scrollArea->viewport()->installEventFilter(this);
    connect(ui->stackedWidget, &QStackedWidget::currentChanged, this, &MainWindow::fitPageArea);

    // The smallest window still shows the whole menu column beside a piece
    // of the page area. The menu bar comes on top of the designed size.
    const QMargins windowMargins = windowLayout->contentsMargins();
    ui->centralWidget->setMinimumSize(windowMargins.left() + 320 + windowMargins.right(),
                                      ui->groupBoxMenu->geometry().bottom() + 1 + windowMargins.bottom());
    resize(designed.width(), designed.height() + menuBar()->sizeHint().height());
}

void MainWindow::fitPageArea()
{
    // The outer area does not resize its contents itself (the stacked pages
    // keep their designed places inside it), so they are fitted here: as
    // large as the area, and never smaller than the home picture or the
    // About page need, which then scroll. A data page scrolls in its host.
    QSize needed;
    QWidget *page = ui->stackedWidget->currentWidget();
    // The stack sizes the page it has just made current only on its next
    // layout pass; sized now, a data page never shows at a stale size.
    if (page)
        page->setGeometry(ui->stackedWidget->contentsRect());
    if (page && page != ui->NewEntryContainerWidget) {
        const QRect used = page->childrenRect();
        const QMargins margins = ui->scrollAreaWidgetContents->layout()->contentsMargins();
        needed = QSize(margins.left() + used.right() + 1 + margins.right(),
                       margins.top() + used.bottom() + 1 + margins.bottom());
    }
    ui->scrollAreaWidgetContents->resize(ui->scrollArea->viewport()->size().expandedTo(needed));
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == ui->scrollArea->viewport() && event->type() == QEvent::Resize)
        fitPageArea();
    if (watched == ui->scrollArea_2->viewport() && event->type() == QEvent::Resize)
        fitDataPage();
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::connectMenuBar()
{
    // Each command does what its menu button does, through the same slot.
    ui->actionQuit->setShortcuts(QKeySequence::Quit);
    connect(ui->actionQuit, &QAction::triggered, this, &QWidget::close);
    connect(ui->actionHome, &QAction::triggered, this, &MainWindow::on_pushButtonHome_clicked);
    connect(ui->actionNewEntry, &QAction::triggered, this, &MainWindow::on_pushButtonNewEntry_clicked);
    connect(ui->actionHistory, &QAction::triggered, this, &MainWindow::on_pushButtonHistory_clicked);
    connect(ui->actionOptions, &QAction::triggered, this, &MainWindow::on_pushButtonOptions_clicked);
    connect(ui->actionAbout, &QAction::triggered, this, &MainWindow::on_pushButtonExit_clicked);
    connect(ui->actionFind, &QAction::triggered, this, &MainWindow::showFindPage);
    // Without a parent, as every box of the program: inside the window it
    // would take the black pages' style sheet.
    connect(ui->actionAboutQt, &QAction::triggered, this, [] { QMessageBox::aboutQt(nullptr); });

    connect(ui->actionImport, &QAction::triggered, this, &MainWindow::importEntries);
    connect(ui->actionImports, &QAction::triggered, this, &MainWindow::showImports);
    connect(ui->actionExport, &QAction::triggered, this, &MainWindow::exportEntries);
    connect(ui->actionBackUp, &QAction::triggered, this, &MainWindow::backUpDatabase);
    // Without a database there is nothing to bring in, take out or copy.
    for (QAction *command : { ui->actionImport, ui->actionImports, ui->actionExport, ui->actionBackUp })
        command->setEnabled(dbManager->isUsable());
}

void MainWindow::connectLookMenu()
{
    // One look at a time; the one kept from the last session is applied as
    // the window opens, and a new pick at once and for the next start.
    auto *looks = new QActionGroup(this);
    looks->setExclusive(true);
    const QList<QPair<QAction *, Look::Kind>> choices = { { ui->actionLookClassic, Look::Kind::Classic },
                                                          { ui->actionLookLight, Look::Kind::Light },
                                                          { ui->actionLookDark, Look::Kind::Dark },
                                                          { ui->actionLookSystem, Look::Kind::System } };
    const Look::Kind kept = Look::fromName(Settings().lookName());
    for (const auto &[action, kind] : choices) {
        looks->addAction(action);
        action->setChecked(kind == kept);
        connect(action, &QAction::triggered, this, [kind = kind] {
            Settings().setLookName(Look::name(kind));
            Look::apply(kind);
        });
    }
    if (Look::chosen() != kept)
        Look::apply(kept);
}

void MainWindow::restoreWindowGeometry()
{
    const Settings settings;
    const QRect saved = settings.mainWindowGeometry();
    if (!saved.isValid())
        return;

    QList<QRect> screenAreas;
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        screenAreas.append(screen->availableGeometry());
    // A window left on a screen that is gone would open where no one can
    // see it; it opens where the window system puts a new one instead.
    if (!isOnAScreen(saved, screenAreas))
        return;

    setGeometry(saved);
    if (settings.isMainWindowMaximized())
        setWindowState(windowState() | Qt::WindowMaximized);
}

void MainWindow::saveWindowGeometry() const
{
    // Without the frame, which the window system adds and may change, and
    // for a maximised window the place it returns to.
    Settings().setMainWindowGeometry(normalGeometry(), isMaximized());
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (isVisible())
        saveWindowGeometry();
    QMainWindow::closeEvent(event);
}
void MainWindow::showDataPage(QWidget *page)
{
    clearBudgetWarning();
    // The scroll area takes the page over and deletes the one it held, so at
    // most one data page lives at a time.
    designedPageSize = page->size();
    PageGrowth::install(page);
    ui->scrollArea_2->setWidget(page);
    ui->stackedWidget->setCurrentIndex(2);
    // After setWidget, so the page keeps its designed size and scrolls.
    ui->scrollArea_2->setWidgetResizable(false);
    fitDataPage();
}

void MainWindow::fitDataPage()
{
    if (QWidget *page = ui->scrollArea_2->widget(); page && designedPageSize.isValid())
        page->resize(designedPageSize + (ui->scrollArea_2->size() - designedHostSize).expandedTo(QSize(0, 0)));
}

void MainWindow::reportUnusableDatabase()
{
    Notice::warn(tr("Ledgerly could not open its database file %1.\n\n%2\n\n"
                    "Nothing can be recorded or shown in this session. The file has not been changed.")
                     .arg(dbManager->databaseFileName(), dbManager->openError()));
}

void MainWindow::reportUnwritableDatabase()
{
    Notice::warn(tr("Ledgerly can read its database file %1 but cannot write to it.\n\n%2\n\n"
                    "Your entries are shown, but nothing you record or change in this session can be stored. "
                    "The file has not been changed.")
                     .arg(dbManager->databaseFileName(), dbManager->writeProblem()));
}

void MainWindow::reportAutomaticBackupFailure()
{
    Notice::warn(tr("Ledgerly could not write today's backup of your database into %1.\n\n%2\n\n"
                    "Your entries are as they were. Ledgerly tries again at its next start.")
                     .arg(Backup::automaticDirectory(), automaticBackupFailure));
}

void MainWindow::importEntries()
{
    const QString fileName = FileChooser::choose(QFileDialog::AcceptOpen, tr("Import Entries"),
                                        { tr("CSV, QIF and OFX files (*.csv *.qif *.ofx *.qfx *.qbo *.CSV *.QIF *.OFX *.QFX *.QBO)"),
                                          tr("All files (*)") },
                                        QDir::homePath() + QLatin1Char('/'));
    if (fileName.isEmpty())
        return;

    // The whole file is read and checked before anything shows; the
    // preview then tells what an import would do, and lets the encoding,
    // the date order (where the file leaves it open, too) and duplicates be
    // chosen. Only "Import" writes.
    // A bank's CSV is read through the columns the user maps first.
    std::optional<CsvMapping> mapping;
    if (CsvFormat::matches(fileName)) {
        EntryFileContents unreadable;
        const std::optional<QByteArray> bytes = EntryImport::readBytes(fileName, &unreadable);
        if (bytes && !MappedCsvReader::isLedgerlyCsv(*bytes)) {
            CsvMappingDialog mappingDialog(*dbManager, fileName, *bytes);
            if (mappingDialog.exec() != QDialog::Accepted)
                return;
            mapping = mappingDialog.mapping();
        }
    }
    const EntryFileContents read = EntryImport::read(fileName, std::nullopt, std::nullopt, mapping);
    if (!read.isAcceptable()) {
        Notice::warn(tr("Nothing was imported from %1: it cannot be read as it is.\n\n%2")
                         .arg(fileName, read.problemLines().join(QLatin1Char('\n'))));
        return;
    }
    ImportPreviewDialog preview(*dbManager, fileName, read, mapping);
    if (preview.exec() != QDialog::Accepted)
        return;
    const EntryFileContents &contents = preview.contents();

    // The budgets' periods holding today, before and after: the report
    // tells each category the import takes past 80 % or past its budget.
    Budgets budgets(*dbManager);
    const QDate today = QDate::currentDate();
    const int monthStart = Settings().budgetMonthStart();
    const QList<BudgetStanding> before = budgets.standings(today, monthStart);
    EntryImport::Outcome outcome;
    {
        Progress progress(tr("Importing entries…"));
        outcome = EntryImport::write(*dbManager, contents.entries, progress.reporter(), fileName);
    }
    if (!outcome.written) {
        Notice::warn(tr("Nothing was imported from %1: %2.").arg(fileName, outcome.failure));
        return;
    }
    if (outcome.added > 0) {
        IsEntryPresentInDatabase = true;
        rebuildDataPageAfterImport();
    }
    QString report = EntryImport::summary(fileName, contents, outcome.added) + QStringLiteral(".\n\n") +
        tr("Importing the same file again adds only what it has not added yet.");
    const QStringList crossed = Budgets::crossed(before, budgets.standings(today, monthStart));
    if (!crossed.isEmpty())
        report += QStringLiteral("\n\n") + tr("Budgets:") + QLatin1Char('\n') + crossed.join(QLatin1Char('\n'));
    Notice::inform(report);
}

void MainWindow::showImports()
{
    ImportsDialog dialog(*dbManager);
    dialog.exec();
    if (dialog.removedAny())
        rebuildDataPageAfterImport();
}

void MainWindow::rebuildDataPageAfterImport()
{
    // Only a page on screen shows what is now out of date: a hidden one is
    // never shown again, the menu makes a fresh page every time. The
    // new-entry page keeps what the user is typing; the options page keeps
    // its unsaved edits, if it holds any.
    if (ui->stackedWidget->currentIndex() != 2)
        return;
    QWidget *page = ui->scrollArea_2->widget();
    if (qobject_cast<HistoryWidget *>(page)) {
        showHistoryPage();
    } else if (auto *options = qobject_cast<OptionsWidget *>(page)) {
        if (!options->hasUnsavedEntryChanges())
            showOptionsPage();
    }
}

void MainWindow::exportEntries()
{
    const QString fileName =
        FileChooser::choose(QFileDialog::AcceptSave, tr("Export Entries"), { tr("CSV files (*.csv)"), tr("QIF files (*.qif)") },
                   QDir::home().filePath(QStringLiteral("ledgerly-entries.csv")));
    if (fileName.isEmpty())
        return;
    if (!CsvFormat::matches(fileName) && !QifFormat::matches(fileName)) {
        Notice::warn(tr("Nothing was exported: %1 names no .csv or .qif file.").arg(fileName));
        return;
    }
    EntryExport::Outcome outcome;
    {
        Progress progress(tr("Exporting entries…"));
        outcome = EntryExport::write(*dbManager, fileName, progress.reporter());
    }
    if (!outcome.written) {
        Notice::warn(tr("Nothing was exported: %1.").arg(outcome.failure));
        return;
    }
    Notice::inform(EntryExport::summary(fileName, outcome.exported) + QLatin1Char('.'));
}

void MainWindow::backUpDatabase()
{
    const QString fileName = FileChooser::choose(
        QFileDialog::AcceptSave, tr("Back Up Database"), { tr("Ledgerly databases (*.db)") },
        QDir::home().filePath(QStringLiteral("ledgerly-backup-%1.db").arg(QDate::currentDate().toString(Qt::ISODate))));
    if (fileName.isEmpty())
        return;
    Backup::Outcome outcome;
    {
        Progress progress(tr("Backing up the database…"));
        // The file dialog has asked before an existing file is replaced.
        outcome = Backup::write(*dbManager, fileName, Backup::Existing::Replace, progress.reporter());
    }
    if (!outcome.written) {
        Notice::warn(tr("No backup was written: %1.").arg(outcome.failure));
        return;
    }
    Notice::inform(tr("The database was backed up to %1.").arg(fileName));
}

void MainWindow::showHistoryPage()
{
    auto *page = new HistoryWidget(QPointer<DatabaseManager>(dbManager), this);
    connect(page, &HistoryWidget::findRequested, this, &MainWindow::showFindPage);
    showDataPage(page);
}

void MainWindow::showFindPage()
{
    showDataPage(new FindWidget(QPointer<DatabaseManager>(dbManager), this));
}

void MainWindow::on_pushButtonNewEntry_clicked()
{
    auto *page = new AddEntryWidget(QPointer<DatabaseManager>(dbManager), this);
    connect(page, &AddEntryWidget::budgetThresholdCrossed, this, &MainWindow::showBudgetWarning);
    showDataPage(page);
}

void MainWindow::showBudgetWarning(const QString &message, BudgetLevel level)
{
    if (!labelBudgetWarning) {
        // Made on the first warning: until then the window has no status
        // bar and keeps its designed height.
        labelBudgetWarning = new QLabel(this);
        labelBudgetWarning->setObjectName(QStringLiteral("labelBudgetWarning"));
        labelBudgetWarning->setTextFormat(Qt::PlainText);
        statusBar()->addWidget(labelBudgetWarning, 1);
    }
    labelBudgetWarning->setText(message);
    statusBar()->setStyleSheet(QStringLiteral("QStatusBar, QStatusBar QLabel { %1 }")
                                   .arg(BudgetLevelColours::styleSheet(level)));
    statusBar()->show();
}

void MainWindow::clearBudgetWarning()
{
    if (!labelBudgetWarning && !labelRecurringPosted)
        return;
    for (QLabel *label : { labelBudgetWarning, labelRecurringPosted }) {
        if (label)
            label->clear();
    }
    statusBar()->hide();
}

bool MainWindow::postDueRecurringExpenses()
{
    RecurringExpenses recurring(*dbManager);
    const QDate today = QDate::currentDate();
    if (recurring.due(today, true).isEmpty())
        return false;
    const RecurringExpenses::Posting posting = recurring.postDue(today, false);
    if (!posting.posted.isEmpty()) {
        IsEntryPresentInDatabase = true;
        // Each name once, in the order they were posted.
        QStringList names;
        for (const Occurrence &occurrence : posting.posted) {
            if (!names.contains(occurrence.item))
                names << occurrence.item;
        }
        const int count = int(posting.posted.size());
        const QString message = count == 1
            ? tr("Posted 1 recurring expense (%1)").arg(names.join(QStringLiteral(", ")))
            : tr("Posted %1 recurring expenses (%2)").arg(QString::number(count), names.join(QStringLiteral(", ")));
        if (!labelRecurringPosted) {
            labelRecurringPosted = new QLabel(this);
            labelRecurringPosted->setObjectName(QStringLiteral("labelRecurringPosted"));
            labelRecurringPosted->setTextFormat(Qt::PlainText);
            statusBar()->addWidget(labelRecurringPosted, 1);
        }
        labelRecurringPosted->setText(message);
        statusBar()->show();
    }
    if (!posting.failure.isEmpty()) {
        Notice::warn(tr("Not every recurring expense that came due could be posted: %1\n\n"
                        "Ledgerly tries again at its next start.")
                         .arg(posting.failure));
        return true;
    }
    const QList<Occurrence> asking = recurring.due(today, true);
    if (asking.isEmpty())
        return true;
    DueExpensesDialog dialog(*dbManager, asking);
    dialog.exec();
    if (dialog.postedCount() > 0)
        IsEntryPresentInDatabase = true;
    return true;
}

void MainWindow::scheduleRecurringReview()
{
    const QDateTime next = QDate::currentDate().addDays(1).startOfDay().addSecs(60);
    timerRecurringDue->start(int(std::clamp<qint64>(QDateTime::currentDateTime().msecsTo(next), 1000, 90000000)));
}

void MainWindow::reviewRecurringExpenses()
{
    // Not under a dialog or message box that waits for an answer.
    if (QApplication::activeModalWidget()) {
        timerRecurringDue->start(60000);
        return;
    }
    postDueRecurringExpenses();
    scheduleRecurringReview();
}

void MainWindow::showOptionsPage()
{
    auto *page = new OptionsWidget(QPointer<DatabaseManager>(dbManager), this);
    connect(page, &OptionsWidget::postDueRequested, this, [this, page = QPointer<OptionsWidget>(page)] {
        if (!postDueRecurringExpenses())
            Notice::inform(tr("No recurring expense is due."));
        if (page)
            page->ShowRecurringDetails();
    });
    showDataPage(page);
}

void MainWindow::on_pushButtonOptions_clicked()
{
    showOptionsPage();
}

void MainWindow::on_pushButtonHistory_clicked()
{
    if (dbManager->GetTotalNumberOfEntries() > 0)
        IsEntryPresentInDatabase = true;

    // The flag is sticky: once entries were seen, History opens even if they
    // have since been deleted.
    if (IsEntryPresentInDatabase) {
        showHistoryPage();
        return;
    }

    Notice::inform(tr("No Entries added. Kindly add entry first"));
}

void MainWindow::on_pushButtonExit_clicked()
{
    clearBudgetWarning();
    ui->stackedWidget->setCurrentIndex(1);
}

void MainWindow::on_pushButtonHome_clicked()
{
    clearBudgetWarning();
    ui->stackedWidget->setCurrentIndex(0);
}
