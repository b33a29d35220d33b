#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "addentrywidget.h"
#include "databasemanager.h"
#include "historywidget.h"
#include "look.h"
#include "notice.h"
#include "optionswidget.h"
#include "settings.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPointer>
#include <QScreen>

namespace {

QMargins marginsAround(const QRect &inner, const QSize &outer)
{
    return QMargins(inner.left(), inner.top(), outer.width() - inner.right() - 1, outer.height() - inner.bottom() - 1);
}

} // namespace

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent), ui(new Ui::MainWindow)
{
    ui->setupUi(this);
    for (QWidget *button : { ui->pushButtonHome, ui->pushButtonNewEntry, ui->pushButtonHistory, ui->pushButtonOptions,
                             ui->pushButtonExit })
        Look::applyButtonFontWeight(button);
    IsEntryPresentInDatabase = false;
    ui->stackedWidget->setCurrentIndex(0);

    dbManager = new DatabaseManager(this);
    if (dbManager->GetTotalNumberOfEntries() > 0)
        IsEntryPresentInDatabase = true;

    setUpPageArea();
    connectMenuBar();
    Look::applyHighlights(menuBar(), ui->centralWidget);
    restoreWindowGeometry();

    if (!dbManager->isUsable()) {
        // Queued so that the window is on screen before the message shows.
        QMetaObject::invokeMethod(this, &MainWindow::reportUnusableDatabase, Qt::QueuedConnection);
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
    auto *windowLayout = new QGridLayout(ui->centralWidget);
    windowLayout->setContentsMargins(marginsAround(ui->scrollArea->geometry(), designed));
    windowLayout->addWidget(ui->scrollArea);

    auto *areaLayout = new QGridLayout(ui->scrollAreaWidgetContents);
    areaLayout->setContentsMargins(marginsAround(ui->stackedWidget->geometry(), ui->scrollAreaWidgetContents->size()));
    areaLayout->addWidget(ui->stackedWidget);

    auto *hostLayout = new QGridLayout(ui->NewEntryContainerWidget);
    hostLayout->setContentsMargins(QMargins());
    hostLayout->addWidget(ui->scrollArea_2);
    // A data page keeps its designed size: centred when the area is wider,
    // scrolled when it is smaller.
    ui->scrollArea_2->setAlignment(Qt::AlignHCenter | Qt::AlignTop);

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
    // Without a parent, as every box of the program: inside the window it
    // would take the black pages' style sheet.
    connect(ui->actionAboutQt, &QAction::triggered, this, [] { QMessageBox::aboutQt(nullptr); });
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
    // The scroll area takes the page over and deletes the one it held, so at
    // most one data page lives at a time.
    ui->scrollArea_2->setWidget(page);
    ui->stackedWidget->setCurrentIndex(2);
    // After setWidget, so the page keeps its designed size and scrolls.
    ui->scrollArea_2->setWidgetResizable(false);
}

void MainWindow::reportUnusableDatabase()
{
    Notice::warn(tr("Ledgerly could not open its database file %1.\n\n%2\n\n"
                    "Nothing can be recorded or shown in this session. The file has not been changed.")
                     .arg(dbManager->databaseFileName(), dbManager->openError()));
}

void MainWindow::on_pushButtonNewEntry_clicked()
{
    showDataPage(new AddEntryWidget(QPointer<DatabaseManager>(dbManager), this));
}

void MainWindow::on_pushButtonOptions_clicked()
{
    showDataPage(new OptionsWidget(QPointer<DatabaseManager>(dbManager), this));
}

void MainWindow::on_pushButtonHistory_clicked()
{
    if (dbManager->GetTotalNumberOfEntries() > 0)
        IsEntryPresentInDatabase = true;

    // The flag is sticky: once entries were seen, History opens even if they
    // have since been deleted.
    if (IsEntryPresentInDatabase) {
        showDataPage(new HistoryWidget(QPointer<DatabaseManager>(dbManager), this));
        return;
    }

    Notice::inform(tr("No Entries added. Kindly add entry first"));
}

void MainWindow::on_pushButtonExit_clicked()
{
    ui->stackedWidget->setCurrentIndex(1);
}

void MainWindow::on_pushButtonHome_clicked()
{
    ui->stackedWidget->setCurrentIndex(0);
}
