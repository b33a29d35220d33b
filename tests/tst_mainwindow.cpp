#include "addentrywidget.h"
#include "databasemanager.h"
#include "historywidget.h"
#include "mainwindow.h"

#include "mainwindowfixture.h"
#include "messageboxanswerer.h"
#include "rawdatabase.h"
#include "temphome.h"
#include "testsupport.h"
#include "widgettest.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFrame>
#include <QGroupBox>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTextDocument>
#include <QtTest>

int qInitResources_ImageResource();

class TestMainWindow : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase() { WidgetTest::initTestCase(); }
    void cleanup();

    void formHasTheDesignedWidgetsAndGeometry_data();
    void formHasTheDesignedWidgetsAndGeometry();
    void windowHasItsTitleSizeAndStyle();
    void menuButtonsShareTheGradientStyleAndALightFont();
    void pagesHaveTheirStyleSheets();
    void aboutPageShowsNameVersionAndBy();
    void homePageIsShownAfterConstruction();
    void aboutAndHomeSwitchTheStackedPage();
    void historyOnAnEmptyStoreExplainsWhyAndStays();
    void historyStaysAvailableAfterEntriesAreDeleted();
    void historyOpensOnceAnEntryWasAddedOnTheNewEntryPage();
    void everyDataPageKeepsItsBlackBackgroundInTheItalicHost_data();
    void everyDataPageKeepsItsBlackBackgroundInTheItalicHost();
    void constructionCreatesTheDatabaseFileInTheHomeDirectory();

    void resourcesAreCompiledIn();
    void resourceInitialiserStaysCallable();
    void pictureFramesShowTheCompiledInPictures();

    void unreadableHomeIsReportedOnce();
    void fileThatIsNotADatabaseIsReportedAndLeftUntouched();
};

void TestMainWindow::cleanup()
{
    VERIFY_NO_WIDGETS_LEFT();
}

void TestMainWindow::formHasTheDesignedWidgetsAndGeometry_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QRect>("geometry");

    QTest::newRow("groupBoxMenu") << "groupBoxMenu"
                                  << "QGroupBox" << QRect(10, 0, 151, 431);
    QTest::newRow("pushButtonHome") << "pushButtonHome"
                                    << "QPushButton" << QRect(10, 20, 131, 51);
    QTest::newRow("pushButtonNewEntry") << "pushButtonNewEntry"
                                        << "QPushButton" << QRect(10, 100, 131, 51);
    QTest::newRow("pushButtonHistory") << "pushButtonHistory"
                                       << "QPushButton" << QRect(10, 180, 131, 51);
    QTest::newRow("pushButtonOptions") << "pushButtonOptions"
                                       << "QPushButton" << QRect(10, 260, 131, 51);
    QTest::newRow("pushButtonExit") << "pushButtonExit"
                                    << "QPushButton" << QRect(10, 340, 131, 51);
    QTest::newRow("scrollArea") << "scrollArea"
                                << "QScrollArea" << QRect(170, 10, 1021, 811);
    QTest::newRow("scrollAreaWidgetContents") << "scrollAreaWidgetContents"
                                              << "QWidget" << QRect(0, 0, 1019, 809);
    QTest::newRow("stackedWidget") << "stackedWidget"
                                   << "QStackedWidget" << QRect(10, 9, 1001, 781);
    QTest::newRow("frame") << "frame"
                           << "QFrame" << QRect(0, 0, 621, 381);
    QTest::newRow("scrollArea_3") << "scrollArea_3"
                                  << "QScrollArea" << QRect(0, 0, 672, 361);
    QTest::newRow("frameLogo_2") << "frameLogo_2"
                                 << "QFrame" << QRect(150, 130, 361, 221);
    QTest::newRow("label") << "label"
                           << "QLabel" << QRect(250, 0, 171, 31);
    QTest::newRow("label_2") << "label_2"
                             << "QLabel" << QRect(270, 50, 121, 31);
    QTest::newRow("label_3") << "label_3"
                             << "QLabel" << QRect(310, 90, 31, 31);
    QTest::newRow("scrollArea_2") << "scrollArea_2"
                                  << "QScrollArea" << QRect(0, 0, 641, 511);
    QTest::newRow("scrollAreaWidgetContents_2") << "scrollAreaWidgetContents_2"
                                                << "QWidget" << QRect(0, 0, 639, 509);
}

void TestMainWindow::formHasTheDesignedWidgetsAndGeometry()
{
    QFETCH(QString, name);
    QFETCH(QString, className);
    QFETCH(QRect, geometry);

    MainWindowFixture f;
    MainWindow &window = f.window();
    auto *widget = window.findChild<QWidget *>(name);
    QVERIFY2(widget, qPrintable(name));
    QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), className);
    QCOMPARE(widget->geometry(), geometry);
}

void TestMainWindow::windowHasItsTitleSizeAndStyle()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    QCOMPARE(window.objectName(), QStringLiteral("MainWindow"));
    QCOMPARE(window.windowTitle(), QStringLiteral("MainWindow"));
    QCOMPARE(window.size(), QSize(1203, 824));
    QCOMPARE(window.styleSheet(), QStringLiteral("background-color: rgb(0, 0, 0);\nfont: 75 14pt \"MS Shell Dlg 2\";"));
    QCOMPARE(window.centralWidget()->objectName(), QStringLiteral("centralWidget"));
    QCOMPARE(child<QGroupBox>(window, "groupBoxMenu")->title(), QStringLiteral("Menu"));
}

void TestMainWindow::menuButtonsShareTheGradientStyleAndALightFont()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    const QList<QPair<const char *, QString>> buttons = {
        { "pushButtonHome", QStringLiteral("Home") },       { "pushButtonNewEntry", QStringLiteral("New Entry") },
        { "pushButtonHistory", QStringLiteral("History") }, { "pushButtonOptions", QStringLiteral("Options") },
        { "pushButtonExit", QStringLiteral("About") },
    };
    for (const auto &[name, text] : buttons) {
        auto *button = child<QPushButton>(window, name);
        QVERIFY2(button, name);
        QCOMPARE(button->text(), text);
        QCOMPARE(button->styleSheet(), QString::fromLatin1(FormStyle::gradientButton));
        QCOMPARE(button->font().family(), QStringLiteral("MS Shell Dlg 2"));
    }
}

void TestMainWindow::pagesHaveTheirStyleSheets()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    QCOMPARE(f.stack()->styleSheet(), QStringLiteral("font: 75 14pt \"MS Shell Dlg 2\";\nborder-color: rgb(0, 0, 0);"));
    QCOMPARE(f.host()->styleSheet(), QStringLiteral("font: 75 italic 14pt \"MS Shell Dlg 2\";"));
    QCOMPARE(child<QFrame>(window, "frame")->styleSheet(),
             QStringLiteral("image: url(:/Images/LedgerlyHome.jpg);\nborder-color: rgb(0, 0, 0);"));
    QCOMPARE(child<QFrame>(window, "frameLogo_2")->styleSheet(),
             QStringLiteral("image: url(:/Images/CompanyLogo.jpg);\nborder-color: rgb(0, 0, 0);"));
    QCOMPARE(child<QFrame>(window, "frame")->frameShape(), QFrame::StyledPanel);
    QCOMPARE(child<QFrame>(window, "frame")->frameShadow(), QFrame::Raised);

    auto *host = f.host();
    QVERIFY(!host->widgetResizable());
    QCOMPARE(host->verticalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QCOMPARE(host->horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QCOMPARE(host->widget()->objectName(), QStringLiteral("scrollAreaWidgetContents_2"));
    QVERIFY(!child<QScrollArea>(window, "scrollArea")->widgetResizable());
    QVERIFY(child<QScrollArea>(window, "scrollArea_3")->widgetResizable());

    QCOMPARE(f.stack()->widget(0)->objectName(), QStringLiteral("HomeWidget"));
    QCOMPARE(f.stack()->widget(1)->objectName(), QStringLiteral("ExitWidget"));
    QCOMPARE(f.stack()->widget(2)->objectName(), QStringLiteral("NewEntryContainerWidget"));
}

void TestMainWindow::aboutPageShowsNameVersionAndBy()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    auto *name = child<QLabel>(window, "label");
    auto *version = child<QLabel>(window, "label_2");
    auto *by = child<QLabel>(window, "label_3");
    QCOMPARE(plainText(name), QStringLiteral("Ledgerly"));
    QCOMPARE(plainText(version), QStringLiteral("Version 1.0"));
    QCOMPARE(plainText(by), QStringLiteral("By"));
    QVERIFY(name->text().contains(QStringLiteral("font-size:20pt; font-weight:600; color:#ff0000;")));
    QVERIFY(version->text().contains(QStringLiteral("font-weight:600; color:#aa55ff;")));
    QVERIFY(by->text().contains(QStringLiteral("font-weight:600; color:#aa55ff;")));
    QVERIFY(name->text().contains(QStringLiteral("font-family:'MS Shell Dlg 2'; font-size:14pt;")));
    // The logo stands below "By".
    QVERIFY(child<QFrame>(window, "frameLogo_2")->geometry().top() > by->geometry().bottom());
}

void TestMainWindow::homePageIsShownAfterConstruction()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    QVERIFY(f.show());
    QCOMPARE(f.stack()->currentIndex(), 0);
    QVERIFY(child<QFrame>(window, "frame")->isVisible());
}

void TestMainWindow::aboutAndHomeSwitchTheStackedPage()
{
    MainWindowFixture f;
    f.click("pushButtonExit");
    QCOMPARE(f.stack()->currentIndex(), 1);
    f.click("pushButtonHome");
    QCOMPARE(f.stack()->currentIndex(), 0);
    f.click("pushButtonExit");
    f.click("pushButtonExit");
    QCOMPARE(f.stack()->currentIndex(), 1);
}

void TestMainWindow::historyOnAnEmptyStoreExplainsWhyAndStays()
{
    MainWindowFixture f;
    f.click("pushButtonExit");

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    f.click("pushButtonHistory");

    QCOMPARE(answerer.texts(), QStringList { QStringLiteral("No Entries added. Kindly add entry first") });
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    const SeenMessageBox &box = answerer.seen().constFirst();
    VERIFY_BOX_SHAPE(box, BoxKind::Information);
    QCOMPARE(f.stack()->currentIndex(), 1);
    QCOMPARE(f.host()->widget()->objectName(), QStringLiteral("scrollAreaWidgetContents_2"));
}

void TestMainWindow::historyStaysAvailableAfterEntriesAreDeleted()
{
    MainWindowFixture f;
    f.addEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"), QDateTime(QDate(2026, 11, 15), QTime(8, 30)), 2.5);
    f.window();
    RawDatabase raw(f.home.databasePath());
    QVERIFY(raw.exec(QStringLiteral("DELETE FROM Entry")));
    QCOMPARE(raw.scalar(QStringLiteral("SELECT COUNT(*) FROM Entry")).toInt(), 0);

    // Once entries were seen the refusal never comes back: the history page
    // opens on the empty store.
    MessageBoxAnswerer answerer;
    f.click("pushButtonHistory");
    QCoreApplication::processEvents();
    QVERIFY(answerer.seen().isEmpty());
    QVERIFY(answerer.errors().isEmpty());
    QCOMPARE(f.stack()->currentIndex(), 2);
    QVERIFY(qobject_cast<HistoryWidget *>(f.host()->widget()));
}

void TestMainWindow::historyOpensOnceAnEntryWasAddedOnTheNewEntryPage()
{
    MainWindowFixture f;
    qunsetenv("LEDGERLY_GEOLOCATION_URL");
    auto *host = f.host();

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    f.click("pushButtonHistory");
    QCOMPARE(answerer.texts(), QStringList { QStringLiteral("No Entries added. Kindly add entry first") });
    QCOMPARE(f.stack()->currentIndex(), 0);

    f.click("pushButtonNewEntry");
    auto *page = qobject_cast<AddEntryWidget *>(host->widget());
    QVERIFY(page);
    QTest::keyClicks(page->findChild<QLineEdit *>(QStringLiteral("lineEditItemName")), QStringLiteral("Coffee"));
    QTest::keyClicks(page->findChild<QLineEdit *>(QStringLiteral("lineEditAmount")), QStringLiteral("2.50"));
    QTest::keyClicks(page->findChild<QLineEdit *>(QStringLiteral("lineEditLocation")), QStringLiteral("Corner cafe"));
    answerer.answer({ QMessageBox::Save, QMessageBox::Ok });
    page->findChild<QPushButton *>(QStringLiteral("pushButtonAdd"))->click();
    QCOMPARE(answerer.seen().size(), 3);
    QCOMPARE(answerer.seen().at(2).text, QStringLiteral("Entry added to the database successfully"));

    f.click("pushButtonHistory");
    QCOMPARE(answerer.seen().size(), 3);
    QVERIFY2(answerer.errors().isEmpty(), qPrintable(answerer.errors().join('\n')));
    QCOMPARE(f.stack()->currentIndex(), 2);
    auto *history = qobject_cast<HistoryWidget *>(host->widget());
    QVERIFY(history);
    auto *entries = history->findChild<QTableWidget *>(QStringLiteral("tableWidgetAllEntries"));
    QCOMPARE(entries->rowCount(), 1);
    QCOMPARE(entries->item(0, 1)->text(), QStringLiteral("Coffee"));
}

void TestMainWindow::everyDataPageKeepsItsBlackBackgroundInTheItalicHost_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QString>("pageName");
    QTest::newRow("new entry") << QByteArray("pushButtonNewEntry") << "AddEntryWidget";
    QTest::newRow("history") << QByteArray("pushButtonHistory") << "HistoryWidget";
    QTest::newRow("options") << QByteArray("pushButtonOptions") << "OptionsWidget";
}

void TestMainWindow::everyDataPageKeepsItsBlackBackgroundInTheItalicHost()
{
    QFETCH(QByteArray, button);
    QFETCH(QString, pageName);

    MainWindowFixture f;
    qunsetenv("LEDGERLY_GEOLOCATION_URL");
    f.addEntry(QStringLiteral("Coffee"), QStringLiteral("Drinks"), QDateTime(QDate(2026, 11, 15), QTime(8, 30)), 2.5);
    QVERIFY(f.show());
    f.click(button.constData());
    QWidget *page = f.page();
    QCOMPARE(page->objectName(), pageName);
    QCOMPARE(page->styleSheet(), QStringLiteral("background-color: rgb(0, 0, 0);"));
    QCOMPARE(page->size(), QSize(888, 761));

    // The page's own margin, left of its scroll area, shows the page's
    // black however the host is styled.
    const QImage shot = page->grab().toImage();
    QCOMPARE(shot.pixelColor(4, 300), QColor(Qt::black));
    QCOMPARE(shot.pixelColor(884, 300), QColor(Qt::black));
}

void TestMainWindow::constructionCreatesTheDatabaseFileInTheHomeDirectory()
{
    MainWindowFixture f;
    QVERIFY(!QFile::exists(f.home.databasePath()));
    f.window();
    QVERIFY(QFile::exists(f.home.databasePath()));
    RawDatabase raw(f.home.databasePath());
    QCOMPARE(raw.scalar(QStringLiteral("SELECT COUNT(*) FROM Category")).toInt(), 37);
}

void TestMainWindow::resourcesAreCompiledIn()
{
    QImageReader home(QStringLiteral(":/Images/LedgerlyHome.jpg"));
    QCOMPARE(home.format(), QByteArray("jpeg"));
    QCOMPARE(home.size(), QSize(1440, 900));
    QImageReader logo(QStringLiteral(":/Images/CompanyLogo.jpg"));
    QCOMPARE(logo.format(), QByteArray("jpeg"));
    QCOMPARE(logo.size(), QSize(1500, 1000));

    QFile map(QStringLiteral(":/Images/GetStaticGoogleMap.html"));
    QVERIFY(map.open(QIODevice::ReadOnly));
    const QByteArray html = map.readAll();
    QVERIFY(html.startsWith("<!DOCTYPE html>\r\n"));
    QVERIFY(html.contains("[Lat]"));
    QVERIFY(html.contains("[Long]"));
    QVERIFY(html.contains("id=\"map_canvas\""));
    QVERIFY(!html.contains("@LEAFLET_"));
    QVERIFY(!html.contains("@MARKER_"));
}

void TestMainWindow::resourceInitialiserStaysCallable()
{
    QCOMPARE(qInitResources_ImageResource(), 1);
    QVERIFY(QFile::exists(QStringLiteral(":/Images/CompanyLogo.jpg")));
}

void TestMainWindow::pictureFramesShowTheCompiledInPictures()
{
    MainWindowFixture f;
    MainWindow &window = f.window();
    QVERIFY(f.show());
    auto *frame = child<QFrame>(window, "frame");
    const QImage shot = frame->grab().toImage();
    // The home picture is dark blue-green with light lettering: many distinct
    // colours, not the black of an empty frame.
    QSet<QRgb> colours;
    for (int y = 0; y < shot.height(); y += 7)
        for (int x = 0; x < shot.width(); x += 7)
            colours.insert(shot.pixel(x, y));
    QVERIFY2(colours.size() > 50, qPrintable(QString::number(colours.size())));
}

void TestMainWindow::unreadableHomeIsReportedOnce()
{
    // Root ignores directory permissions; /proc refuses new files to anyone.
    QTemporaryDir dir;
    QString homePath = dir.filePath(QStringLiteral("readonly"));
    QVERIFY(QDir().mkpath(homePath));
    QFile::setPermissions(homePath, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    {
        QFile probe(homePath + QStringLiteral("/probe"));
        if (probe.open(QIODevice::WriteOnly)) {
            probe.close();
            probe.remove();
            homePath = QStringLiteral("/proc");
        }
    }
    const QByteArray oldHome = qgetenv("HOME");
    qputenv("HOME", homePath.toLocal8Bit());

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    {
        MainWindow window;
        runPendingEventsAndClearQuit();
    }
    qputenv("HOME", oldHome);

    QCOMPARE(answerer.seen().size(), 1);
    VERIFY_BOX_SHAPE(answerer.seen().constFirst(), BoxKind::Warning);
    const QString text = answerer.seen().constFirst().text;
    QVERIFY2(text.contains(homePath + QStringLiteral("/ledgerlydatabase.db")), qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("unable to open database file")), qPrintable(text));
    QVERIFY(answerer.errors().isEmpty());
    QVERIFY(!QFile::exists(homePath + QStringLiteral("/ledgerlydatabase.db")));
}

void TestMainWindow::fileThatIsNotADatabaseIsReportedAndLeftUntouched()
{
    MainWindowFixture f;
    QByteArray noise;
    for (int i = 0; i < 8192; ++i)
        noise.append(char((i * 7919 + 13) % 251));
    {
        QFile file(f.home.databasePath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(noise);
    }

    MessageBoxAnswerer answerer;
    answerer.answer(QMessageBox::Ok);
    f.window();
    runPendingEventsAndClearQuit();
    QCOMPARE(answerer.seen().size(), 1);
    VERIFY_BOX_SHAPE(answerer.seen().constFirst(), BoxKind::Warning);

    // Every later request fails quietly; History refuses as on an empty store.
    answerer.answer(QMessageBox::Ok);
    f.click("pushButtonHistory");

    QCOMPARE(answerer.seen().size(), 2);
    const QString text = answerer.seen().constFirst().text;
    QVERIFY2(text.contains(f.home.databasePath()), qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("file is not a database")), qPrintable(text));
    QCOMPARE(answerer.seen().at(1).text, QStringLiteral("No Entries added. Kindly add entry first"));

    QFile file(f.home.databasePath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), noise);
}

QTEST_MAIN(TestMainWindow)

#include "tst_mainwindow.moc"
