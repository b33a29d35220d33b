// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// The pictures of docs/screenshots/: the ones the README shows are the ones
// the AppStream metadata names, they are there, and they show the whole
// window; and the program that takes them writes a picture of the window.
#include "mainwindow.h"

#include "temphome.h"
#include "testsupport.h"
#include "widgettest.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QXmlStreamReader>

namespace {

const QString sourceDir = QStringLiteral(LEDGERLY_SOURCE_DIR);

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The images that a Markdown text shows: ![caption](path).
QStringList markdownImages(const QString &text)
{
    static const QRegularExpression image(QStringLiteral(R"(!\[[^\]]*\]\(([^)\s]+)\))"));
    QStringList paths;
    for (const QRegularExpressionMatch &match : image.globalMatch(text))
        paths.append(match.captured(1));
    return paths;
}

// The <image> addresses of the metainfo's screenshots, in order.
QStringList metainfoImages(const QString &text)
{
    QStringList addresses;
    QXmlStreamReader xml(text);
    bool inScreenshots = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("screenshots"))
            inScreenshots = true;
        else if (xml.isEndElement() && xml.name() == QLatin1String("screenshots"))
            inScreenshots = false;
        else if (inScreenshots && xml.isStartElement() && xml.name() == QLatin1String("image"))
            addresses.append(xml.readElementText().trimmed());
    }
    return xml.hasError() ? QStringList{ xml.errorString() } : addresses;
}

QString fileNameOf(const QString &path)
{
    return path.section(QLatin1Char('/'), -1);
}

// What the README shows, in order: the history page in each look, then
// the new-entry and options pages in Classic.
const QStringList readmePictures{ QStringLiteral("history.png"), QStringLiteral("light/history.png"),
                                  QStringLiteral("dark/history.png"), QStringLiteral("new-entry.png"),
                                  QStringLiteral("options.png") };

// Every page the screenshot program takes, and the folders below
// docs/screenshots/ of each look (Classic's pictures are at its top).
const QStringList everyPage{ QStringLiteral("home.png"),          QStringLiteral("new-entry.png"),
                             QStringLiteral("history.png"),       QStringLiteral("history-dates.png"),
                             QStringLiteral("history-total.png"), QStringLiteral("history-entries.png"),
                             QStringLiteral("entry-details.png"), QStringLiteral("history-places.png"),
                             QStringLiteral("options.png"),       QStringLiteral("options-entries.png") };
const QStringList lookFolders{ QString(), QStringLiteral("light"), QStringLiteral("dark") };

// The path of an address below the published docs/screenshots/, whose
// place is set at configure time; empty for any other address.
QString publishedPath(const QString &address)
{
    const QString base = QStringLiteral("@LEDGERLY_SCREENSHOT_URL@/");
    return address.startsWith(base) ? address.mid(base.size()) : QString();
}

// The mean lightness (0 to 255) of a picture's pixels, every fourth in
// each direction.
int meanLightness(const QImage &picture)
{
    qint64 sum = 0;
    qint64 count = 0;
    for (int y = 0; y < picture.height(); y += 4) {
        for (int x = 0; x < picture.width(); x += 4) {
            sum += QColor(picture.pixel(x, y)).lightness();
            ++count;
        }
    }
    return count > 0 ? int(sum / count) : -1;
}

} // namespace

class TestScreenshots : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase();
    void cleanup();

    void theReadmeShowsTheHistoryInEveryLookAndTheOtherPagesInClassic();
    void theMetainfoNamesTheReadmesPicturesAndTheDarkHistory();
    void everyPageIsAPngOfTheWholeWindowInEveryLook();
    void theLightPicturesAreLightAndTheDarkOnesDark();
    void theProgramWritesAPictureOfTheWindow();
    void theProgramTakesThePictureInTheLookAsked();
    void anUnknownLookIsAUsageError();

private:
    // The size of a window on its first start: what every picture shows.
    QSize windowSize();
};

void TestScreenshots::initTestCase()
{
    WidgetTest::initTestCase();
}

void TestScreenshots::cleanup()
{
    VERIFY_NO_WIDGETS_LEFT();
}

QSize TestScreenshots::windowSize()
{
    TempHome home;
    if (!home.isValid())
        return QSize();
    MainWindow window;
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return QSize();
    const QSize size = window.size();
    window.close();
    return size;
}

void TestScreenshots::theReadmeShowsTheHistoryInEveryLookAndTheOtherPagesInClassic()
{
    const QString readme = readText(sourceDir + QStringLiteral("/README.md"));
    QVERIFY(!readme.isEmpty());
    const QStringList images = markdownImages(readme);
    QStringList expected;
    for (const QString &name : readmePictures)
        expected.append(QStringLiteral("docs/screenshots/") + name);
    QCOMPARE(QStringList(images).filter(QStringLiteral("screenshots/")), expected);
}

void TestScreenshots::theMetainfoNamesTheReadmesPicturesAndTheDarkHistory()
{
    const QStringList addresses = metainfoImages(readText(sourceDir + QStringLiteral("/data/ledgerly.metainfo.xml.in")));
    QStringList paths;
    for (const QString &address : addresses) {
        const QString path = publishedPath(address);
        QVERIFY2(!path.isEmpty(), qPrintable(address));
        paths.append(path);
    }
    // The Classic three a software centre has always shown, the history
    // page first, and the history page in the Dark look.
    QCOMPARE(paths, QStringList({ QStringLiteral("history.png"), QStringLiteral("new-entry.png"),
                                  QStringLiteral("options.png"), QStringLiteral("dark/history.png") }));
    for (const QString &path : std::as_const(paths))
        QVERIFY2(readmePictures.contains(path), qPrintable(path));
}

void TestScreenshots::everyPageIsAPngOfTheWholeWindowInEveryLook()
{
    const QSize window = windowSize();
    QVERIFY(window.isValid());
    for (const QString &folder : lookFolders) {
        const QDir pictures(sourceDir + QStringLiteral("/docs/screenshots/") + folder);
        const QStringList all = pictures.entryList({ QStringLiteral("*.png") }, QDir::Files, QDir::Name);
        QStringList pages = everyPage;
        pages.sort();
        QCOMPARE(all, pages);
        for (const QString &name : all) {
            const QString path = pictures.filePath(name);
            QImageReader reader(path);
            QCOMPARE(reader.format(), QByteArray("png"));
            const QImage picture = reader.read();
            QVERIFY2(!picture.isNull(), qPrintable(path + QStringLiteral(": ") + reader.errorString()));
            QVERIFY2(picture.size() == window, qPrintable(path));
            // Small enough for a README and a software centre.
            QVERIFY2(QFileInfo(path).size() < 400 * 1024, qPrintable(path));
        }
    }
}

void TestScreenshots::theLightPicturesAreLightAndTheDarkOnesDark()
{
    // Classic's pages are black; Light's grounds are near white and its
    // text dark, Dark's grounds dark grey and its text light. Whole
    // pictures, graphs and maps included, come out on the side of their
    // grounds.
    const QString base = sourceDir + QStringLiteral("/docs/screenshots/");
    for (const QString &name : everyPage) {
        const QImage classic(base + name, "png");
        const QImage light(base + QStringLiteral("light/") + name, "png");
        const QImage dark(base + QStringLiteral("dark/") + name, "png");
        QVERIFY(!classic.isNull() && !light.isNull() && !dark.isNull());
        const int classicLightness = meanLightness(classic);
        const int lightLightness = meanLightness(light);
        const int darkLightness = meanLightness(dark);
        const QString figures = QStringLiteral("%1: classic %2, light %3, dark %4")
                                    .arg(name)
                                    .arg(classicLightness)
                                    .arg(lightLightness)
                                    .arg(darkLightness);
        QVERIFY2(lightLightness > 160, qPrintable(figures));
        QVERIFY2(darkLightness < 110, qPrintable(figures));
        QVERIFY2(lightLightness > darkLightness + 80, qPrintable(figures));
        // The three are different pictures, not one taken thrice.
        QVERIFY2(classic != dark, qPrintable(figures));
    }
}

void TestScreenshots::theProgramWritesAPictureOfTheWindow()
{
    const QSize window = windowSize();
    QVERIFY(window.isValid());
    TempHome home;
    QVERIFY(home.isValid());
    QTemporaryDir out;
    QVERIFY(out.isValid());

    // The options page, on this test's platform; the home is empty.
    const ProgramRun run =
        runProgram(QStringLiteral(LEDGERLY_SCREENSHOTS_PROGRAM), { out.path(), QStringLiteral("options") });
    QVERIFY2(run.exitCode == 0, qPrintable(run.err));

    QCOMPARE(QDir(out.path()).entryList(QDir::Files), QStringList{ QStringLiteral("options.png") });
    const QImage picture(out.filePath(QStringLiteral("options.png")), "png");
    QCOMPARE(picture.size(), window);
    // The options page is black, left of it the menu column's buttons and
    // above it the menu bar: a picture of the window, not an empty frame.
    QSet<QRgb> colours;
    for (int y = 0; y < picture.height(); y += 4) {
        for (int x = 0; x < picture.width(); x += 4)
            colours.insert(picture.pixel(x, y));
    }
    QVERIFY2(colours.size() > 50, qPrintable(QString::number(colours.size())));
    const QPoint pageCorner(picture.width() - 20, picture.height() - 20);
    QCOMPARE(QColor(picture.pixel(pageCorner)), QColor(Qt::black));
}

void TestScreenshots::theProgramTakesThePictureInTheLookAsked()
{
    const QSize window = windowSize();
    QVERIFY(window.isValid());
    TempHome home;
    QVERIFY(home.isValid());
    QTemporaryDir out;
    QVERIFY(out.isValid());

    for (const QString &look : { QStringLiteral("dark"), QStringLiteral("light") }) {
        const QString directory = out.filePath(look);
        const ProgramRun run = runProgram(QStringLiteral(LEDGERLY_SCREENSHOTS_PROGRAM),
                                          { QStringLiteral("--look"), look, directory, QStringLiteral("options") });
        QVERIFY2(run.exitCode == 0, qPrintable(run.err));
        const QImage picture(QDir(directory).filePath(QStringLiteral("options.png")), "png");
        QCOMPARE(picture.size(), window);
        // The options page's ground, far from its widgets: the Dark look's
        // is a dark grey, the Light look's a pale one; neither is Classic's
        // black.
        const QColor ground(picture.pixel(picture.width() - 20, picture.height() - 20));
        if (look == QLatin1String("dark"))
            QVERIFY2(ground.lightness() > 20 && ground.lightness() < 80, qPrintable(ground.name()));
        else
            QVERIFY2(ground.lightness() > 200, qPrintable(ground.name()));
    }
}

void TestScreenshots::anUnknownLookIsAUsageError()
{
    TempHome home;
    QVERIFY(home.isValid());
    QTemporaryDir out;
    QVERIFY(out.isValid());
    const ProgramRun run = runProgram(QStringLiteral(LEDGERLY_SCREENSHOTS_PROGRAM),
                                      { QStringLiteral("--look"), QStringLiteral("purple"), out.path() });
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.err.contains(QStringLiteral("usage: ledgerly_screenshots [--look classic|light|dark]")),
             qPrintable(run.err));
    QVERIFY(QDir(out.path()).entryList(QDir::Files).isEmpty());
}

QTEST_MAIN(TestScreenshots)
#include "tst_screenshots.moc"
