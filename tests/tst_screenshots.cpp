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

const QStringList threePictures{ QStringLiteral("history.png"), QStringLiteral("new-entry.png"),
                                 QStringLiteral("options.png") };

} // namespace

class TestScreenshots : public QObject
{
    Q_OBJECT

public:
    static void initMain() { WidgetTest::initMain(); }

private slots:
    void initTestCase();
    void cleanup();

    void theReadmeShowsTheHistoryNewEntryAndOptionsPictures();
    void theMetainfoNamesTheReadmesPictures();
    void everyPictureIsAPngOfTheWholeWindow();
    void theProgramWritesAPictureOfTheWindow();

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

void TestScreenshots::theReadmeShowsTheHistoryNewEntryAndOptionsPictures()
{
    const QString readme = readText(sourceDir + QStringLiteral("/README.md"));
    QVERIFY(!readme.isEmpty());
    const QStringList images = markdownImages(readme);
    QStringList expected;
    for (const QString &name : threePictures)
        expected.append(QStringLiteral("docs/screenshots/") + name);
    QCOMPARE(QStringList(images).filter(QStringLiteral("screenshots/")), expected);
}

void TestScreenshots::theMetainfoNamesTheReadmesPictures()
{
    const QStringList addresses = metainfoImages(readText(sourceDir + QStringLiteral("/data/ledgerly.metainfo.xml.in")));
    QCOMPARE(addresses.size(), 3);
    QStringList names;
    for (const QString &address : addresses) {
        // Where the published docs/screenshots/ directory is, set at
        // configure time.
        QVERIFY2(address.startsWith(QLatin1String("@LEDGERLY_SCREENSHOT_URL@/")), qPrintable(address));
        names.append(fileNameOf(address));
    }
    QStringList shown;
    for (const QString &path : markdownImages(readText(sourceDir + QStringLiteral("/README.md"))))
        shown.append(fileNameOf(path));
    QCOMPARE(names, shown);
    // The history page is the one a software centre shows first.
    QCOMPARE(names.constFirst(), QStringLiteral("history.png"));
}

void TestScreenshots::everyPictureIsAPngOfTheWholeWindow()
{
    const QSize window = windowSize();
    QVERIFY(window.isValid());
    const QDir pictures(sourceDir + QStringLiteral("/docs/screenshots"));
    const QStringList all = pictures.entryList({ QStringLiteral("*.png") }, QDir::Files, QDir::Name);
    for (const QString &name : threePictures)
        QVERIFY2(all.contains(name), qPrintable(name));
    for (const QString &name : all) {
        QImageReader reader(pictures.filePath(name));
        QCOMPARE(reader.format(), QByteArray("png"));
        const QImage picture = reader.read();
        QVERIFY2(!picture.isNull(), qPrintable(name + QStringLiteral(": ") + reader.errorString()));
        QCOMPARE(picture.size(), window);
        // Small enough for a README and a software centre.
        QVERIFY2(QFileInfo(pictures.filePath(name)).size() < 400 * 1024, qPrintable(name));
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

QTEST_MAIN(TestScreenshots)
#include "tst_screenshots.moc"
