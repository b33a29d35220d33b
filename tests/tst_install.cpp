// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Installs the build tree into a temporary prefix and packs it as a .deb,
// the way a user or a distribution gets Ledgerly, and checks what lands on
// disk: the file list, the validators' verdicts, the icons, the package's
// control fields, lintian's verdict, the manual page, the changelog, the
// shell completion and the packaged program itself.
#include "testsupport.h"

#include <QDateTime>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

namespace {

const QString appId = QStringLiteral("org.ledgerly.Ledgerly");
const QString version = QStringLiteral(LEDGERLY_PROJECT_VERSION);

using Run = ProgramRun;

Run run(const QString &program, const QStringList &arguments,
        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment(), int timeoutMs = 120000,
        const QString &workingDir = QString())
{
    return runProgram(program, arguments, environment, timeoutMs, workingDir);
}

QString describe(const Run &run)
{
    return QStringLiteral("exit %1\n--- stdout\n%2\n--- stderr\n%3")
        .arg(run.exitCode)
        .arg(QString::fromUtf8(run.outBytes), QString::fromUtf8(run.errBytes));
}

// The environment of a terminal with no graphical session at all.
QProcessEnvironment withoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : { "QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY" })
        environment.remove(QString::fromLatin1(name));
    return environment;
}

// The value of key in the [Desktop Entry] group.
QString desktopEntryValue(const QByteArray &entry, const QString &key)
{
    const QRegularExpression line(QStringLiteral("^%1=(.*)$").arg(QRegularExpression::escape(key)),
                                  QRegularExpression::MultilineOption);
    return line.match(QString::fromUtf8(entry)).captured(1);
}

// A Debian control field, continuation lines left out.
QString controlField(const QByteArray &control, const QString &field)
{
    const QRegularExpression line(QStringLiteral("^%1: (.*)$").arg(field), QRegularExpression::MultilineOption);
    return line.match(QString::fromUtf8(control)).captured(1);
}

// A gzip file's contents, or "(unreadable)".
QByteArray gunzip(const QString &path)
{
    const Run unzip = run(QStringLiteral("gzip"), { QStringLiteral("-dc"), path });
    return unzip.finished && unzip.exitCode == 0 ? unzip.outBytes : QByteArrayLiteral("(unreadable)");
}

// What ledgerly --help names, read the way QCommandLineParser lays it out:
// the commands in the description, one a line after two blanks
// ("  import FILE   Adds ..."), and the options of the Options section
// with the value each takes ("<mdy|dmy>") and the command its description
// says it goes with ("import: ...").
struct HelpText
{
    QStringList commands;
    QStringList options; // the long and the short forms
    QMap<QString, QString> valueOf;
    QMap<QString, QString> commandOf;
};

HelpText parseHelp(const QString &text)
{
    HelpText help;
    static const QRegularExpression command(QStringLiteral("^  ([a-z][a-z-]*)( |$)"));
    static const QRegularExpression option(
        QStringLiteral("^  (?:(-[a-zA-Z0-9]), )?(--[a-zA-Z0-9-]+)(?: <([^>]*)>)? +(?:([a-z][a-z-]*): )?"));
    enum { Description, Options, Arguments } section = Description;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (line == QLatin1String("Options:"))
            section = Options;
        else if (line == QLatin1String("Arguments:"))
            section = Arguments;
        else if (section == Description) {
            const QRegularExpressionMatch match = command.match(line);
            // A command with sub-commands stands on a line of each.
            if (match.hasMatch() && !help.commands.contains(match.captured(1)))
                help.commands << match.captured(1);
        } else if (section == Options) {
            const QRegularExpressionMatch match = option.match(line);
            if (!match.hasMatch())
                continue;
            if (match.hasCaptured(1))
                help.options << match.captured(1);
            const QString name = match.captured(2);
            help.options << name;
            if (match.hasCaptured(3))
                help.valueOf.insert(name, match.captured(3));
            if (match.hasCaptured(4))
                help.commandOf.insert(name, match.captured(4));
        }
    }
    return help;
}

} // namespace

class TestInstall : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void installingIntoAPrefixWritesExactlyTheDesktopProgramsFiles();
    void theDesktopEntryStartsTheProgramUnderItsIdAndPassesTheValidator();
    void theMetainfoPassesTheValidatorWithoutAWarning();
    void theMetainfoDescribesThisRelease();
    void eachPngIconHasItsStatedSizeAndShowsTheMark_data();
    void eachPngIconHasItsStatedSizeAndShowsTheMark();
    void theScalableIconIsWellFormedSvg();
    void theWindowIconInTheProgramIsTheInstalledIcon();
    void theDebianPackageNamesItselfItsVersionAndItsQtLibraries();
    void thePackagedProgramPrintsItsVersionWithoutADisplay();
    void thePackagedProgramPrintsItsHelpWithoutADisplay();
    void theWindowOnX11CarriesTheDesktopEntrysClassAndTheIcon();
    void lintianFindsNoErrorAndNoWarningInThePackage();
    void theManualPageRendersWithoutWarningsAndNamesEveryCommandAndOption();
    void theManualPageSaysWhereTheFilesAreAndWhichVariablesCount();
    void theChangelogIsDebiansFormOfChangelogMdForThisVersion();
    void theCopyrightFileIsMachineReadable();
    void bashCompletesCommandsOptionsValuesAndFiles_data();
    void bashCompletesCommandsOptionsValuesAndFiles();
    void bashCompletesWhatALaterHelpListsWithoutAChangeToTheFile_data();
    void bashCompletesWhatALaterHelpListsWithoutAChangeToTheFile();

private:
    // The installed manual page as a terminal shows it; empty, with a
    // warning, when groff fails or warns.
    QString renderedManualPage();
    // A line completed by the installed completion file in bash, with the
    // ledgerly of programDir, in workingDir: the completions, sorted, or
    // what bash said when it failed or complained.
    QStringList completeInBash(const QString &line, const QString &programDir, const QString &workingDir);

    QTemporaryDir m_work;
    QString m_prefix;
    QString m_deb;
    QString m_extracted;
};

void TestInstall::initTestCase()
{
    QVERIFY(m_work.isValid());
    m_prefix = m_work.filePath(QStringLiteral("prefix"));
    const Run install =
        run(QStringLiteral(LEDGERLY_CMAKE_COMMAND),
            { QStringLiteral("--install"), QStringLiteral(LEDGERLY_BUILD_DIR), QStringLiteral("--prefix"), m_prefix });
    QVERIFY2(install.finished && install.exitCode == 0, qPrintable(describe(install)));

    // Packed into a directory of the test's own, so that a package.sh run in
    // the same build tree is never disturbed.
    const QString packageDir = m_work.filePath(QStringLiteral("package"));
    const Run cpack = run(QStringLiteral(LEDGERLY_CPACK_COMMAND),
                          { QStringLiteral("--config"), QStringLiteral(LEDGERLY_BUILD_DIR "/CPackConfig.cmake"),
                            QStringLiteral("-G"), QStringLiteral("DEB"), QStringLiteral("-B"), packageDir });
    QVERIFY2(cpack.finished && cpack.exitCode == 0, qPrintable(describe(cpack)));
    m_deb = packageDir + QStringLiteral("/ledgerly_%1_amd64.deb").arg(version);
    QVERIFY2(QFile::exists(m_deb), qPrintable(describe(cpack)));

    m_extracted = m_work.filePath(QStringLiteral("extracted"));
    const Run extract = run(QStringLiteral("dpkg-deb"), { QStringLiteral("-x"), m_deb, m_extracted });
    QVERIFY2(extract.finished && extract.exitCode == 0, qPrintable(describe(extract)));
}

void TestInstall::installingIntoAPrefixWritesExactlyTheDesktopProgramsFiles()
{
    const QStringList expected = {
        QStringLiteral("bin/ledgerly"),
        QStringLiteral("share/applications/org.ledgerly.Ledgerly.desktop"),
        QStringLiteral("share/bash-completion/completions/ledgerly"),
        QStringLiteral("share/doc/ledgerly/changelog.gz"),
        QStringLiteral("share/doc/ledgerly/copyright"),
        QStringLiteral("share/icons/hicolor/128x128/apps/org.ledgerly.Ledgerly.png"),
        QStringLiteral("share/icons/hicolor/16x16/apps/org.ledgerly.Ledgerly.png"),
        QStringLiteral("share/icons/hicolor/256x256/apps/org.ledgerly.Ledgerly.png"),
        QStringLiteral("share/icons/hicolor/32x32/apps/org.ledgerly.Ledgerly.png"),
        QStringLiteral("share/icons/hicolor/48x48/apps/org.ledgerly.Ledgerly.png"),
        QStringLiteral("share/icons/hicolor/64x64/apps/org.ledgerly.Ledgerly.png"),
        QStringLiteral("share/icons/hicolor/scalable/apps/org.ledgerly.Ledgerly.svg"),
        QStringLiteral("share/man/man1/ledgerly.1.gz"),
        QStringLiteral("share/metainfo/org.ledgerly.Ledgerly.metainfo.xml"),
    };
    QStringList installed;
    QDirIterator it(m_prefix, QDir::Files | QDir::System | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        installed << it.next().mid(m_prefix.size() + 1);
    installed.sort();
    QCOMPARE(installed, expected);

    const QFileInfo program(m_prefix + QStringLiteral("/bin/ledgerly"));
    QVERIFY(program.isExecutable());
    QVERIFY(!program.isSymLink());
}

void TestInstall::theDesktopEntryStartsTheProgramUnderItsIdAndPassesTheValidator()
{
    const QString path = m_prefix + QStringLiteral("/share/applications/") + appId + QStringLiteral(".desktop");
    const Run validate = run(QStringLiteral("desktop-file-validate"), { path });
    QVERIFY2(validate.finished, qPrintable(describe(validate)));
    QCOMPARE(validate.exitCode, 0);
    // The validator prints its errors, warnings and hints; a clean file gets
    // no line at all.
    QCOMPARE(QString::fromUtf8(validate.outBytes + validate.errBytes), QString());

    const QByteArray entry = readFile(path);
    QVERIFY(entry.startsWith("[Desktop Entry]\n"));
    QCOMPARE(desktopEntryValue(entry, QStringLiteral("Type")), QStringLiteral("Application"));
    QCOMPARE(desktopEntryValue(entry, QStringLiteral("Name")), QStringLiteral("Ledgerly"));
    QVERIFY(!desktopEntryValue(entry, QStringLiteral("GenericName")).isEmpty());
    QVERIFY(!desktopEntryValue(entry, QStringLiteral("Comment")).isEmpty());
    QVERIFY(!desktopEntryValue(entry, QStringLiteral("Keywords")).isEmpty());
    QCOMPARE(desktopEntryValue(entry, QStringLiteral("Exec")), QStringLiteral("ledgerly"));
    QCOMPARE(desktopEntryValue(entry, QStringLiteral("Icon")), appId);
    QCOMPARE(desktopEntryValue(entry, QStringLiteral("Categories")), QStringLiteral("Office;Finance;Qt;"));
    // Qt on X11 names the window's class after the application name, which
    // the program prints with its version.
    const Run versionRun =
        run(m_prefix + QStringLiteral("/bin/ledgerly"), { QStringLiteral("--version") }, withoutDisplay());
    const QString applicationName = QString::fromUtf8(versionRun.outBytes).section(QLatin1Char(' '), 0, 0);
    QCOMPARE(applicationName, QStringLiteral("Ledgerly"));
    QCOMPARE(desktopEntryValue(entry, QStringLiteral("StartupWMClass")), applicationName);
}

void TestInstall::theMetainfoPassesTheValidatorWithoutAWarning()
{
    const QString path = m_prefix + QStringLiteral("/share/metainfo/") + appId + QStringLiteral(".metainfo.xml");
    // --no-net: the screenshots are named by their published addresses,
    // which are not fetched here.
    const Run validate =
        run(QStringLiteral("appstreamcli"),
            { QStringLiteral("validate"), QStringLiteral("--no-net"), QStringLiteral("--no-color"), path });
    QVERIFY2(validate.finished && validate.exitCode == 0, qPrintable(describe(validate)));
    const QString report = QString::fromUtf8(validate.outBytes + validate.errBytes);
    // Issues are listed as "E:", "W:" or "I:" lines (pedantic ones, "P:",
    // only with --pedantic).
    const QRegularExpression issue(QStringLiteral("^[EWI]: "), QRegularExpression::MultilineOption);
    QVERIFY2(!issue.match(report).hasMatch(), qPrintable(report));
    QVERIFY2(report.contains(QStringLiteral("Validation was successful")), qPrintable(report));
}

void TestInstall::theMetainfoDescribesThisRelease()
{
    const QByteArray metainfo =
        readFile(m_prefix + QStringLiteral("/share/metainfo/") + appId + QStringLiteral(".metainfo.xml"));
    QXmlStreamReader xml(metainfo);
    QString id, license, launchable, summary, releaseVersion, contentRating;
    QStringList screenshots;
    int descriptionParagraphs = 0;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QStringView name = xml.name();
        if (name == QLatin1String("id"))
            id = xml.readElementText();
        else if (name == QLatin1String("project_license"))
            license = xml.readElementText();
        else if (name == QLatin1String("launchable")) {
            // The attribute first: reading the text moves past the element.
            launchable = xml.attributes().value(QLatin1String("type")).toString() + QLatin1Char(':');
            launchable += xml.readElementText();
        } else if (name == QLatin1String("summary"))
            summary = xml.readElementText();
        else if (name == QLatin1String("p"))
            ++descriptionParagraphs;
        else if (name == QLatin1String("release"))
            releaseVersion = xml.attributes().value(QLatin1String("version")).toString();
        else if (name == QLatin1String("content_rating"))
            contentRating = xml.attributes().value(QLatin1String("type")).toString();
        else if (name == QLatin1String("image"))
            screenshots << xml.readElementText();
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    QCOMPARE(id, appId);
    QCOMPARE(license, QStringLiteral("GPL-3.0-or-later"));
    QCOMPARE(launchable, QStringLiteral("desktop-id:") + appId + QStringLiteral(".desktop"));
    QVERIFY(!summary.isEmpty());
    QVERIFY(descriptionParagraphs >= 1);
    QCOMPARE(releaseVersion, version);
    QCOMPARE(contentRating, QStringLiteral("oars-1.1"));
    // The history page, the new-entry page and the options page, and the
    // history page in the Dark look, from docs/screenshots/ as published.
    const QStringList files = { QStringLiteral("/screenshots/history.png"), QStringLiteral("/screenshots/new-entry.png"),
                                QStringLiteral("/screenshots/options.png"),
                                QStringLiteral("/screenshots/dark/history.png") };
    QCOMPARE(screenshots.size(), files.size());
    for (int i = 0; i < files.size(); ++i) {
        QVERIFY2(screenshots[i].startsWith(QLatin1String("https://")), qPrintable(screenshots[i]));
        QVERIFY2(screenshots[i].endsWith(files[i]), qPrintable(screenshots[i]));
    }
}

void TestInstall::eachPngIconHasItsStatedSizeAndShowsTheMark_data()
{
    QTest::addColumn<int>("size");
    for (int size : { 16, 32, 48, 64, 128, 256 })
        QTest::addRow("%dx%d", size, size) << size;
}

void TestInstall::eachPngIconHasItsStatedSizeAndShowsTheMark()
{
    QFETCH(int, size);
    const QString path =
        m_prefix + QStringLiteral("/share/icons/hicolor/%1x%1/apps/").arg(size) + appId + QStringLiteral(".png");
    QImage image(path);
    QVERIFY2(!image.isNull(), qPrintable(path));
    QCOMPARE(image.size(), QSize(size, size));
    QVERIFY(image.hasAlphaChannel());

    // The mark at every size, 16 pixels included: the ink tile with rounded
    // (so all but transparent) corners, the pale page in the middle and a
    // rising coral line on it.
    image = image.convertToFormat(QImage::Format_ARGB32);
    QVERIFY2(qAlpha(image.pixel(0, 0)) < 32, qPrintable(QString::number(qAlpha(image.pixel(0, 0)))));
    const auto near = [](QRgb pixel, QRgb colour) {
        return qAlpha(pixel) == 255 && qAbs(qRed(pixel) - qRed(colour)) < 24 &&
            qAbs(qGreen(pixel) - qGreen(colour)) < 24 && qAbs(qBlue(pixel) - qBlue(colour)) < 24;
    };
    const QRgb ink = qRgb(0x1d, 0x2b, 0x3a);
    const QRgb paper = qRgb(0xf4, 0xf1, 0xea);
    const QRgb coral = qRgb(0xe7, 0x6f, 0x51);
    QVERIFY(near(image.pixel(size / 8, size / 2), ink));
    int paperPixels = 0;
    int lowestCoral = -1;
    int highestCoral = size;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (near(pixel, paper))
                ++paperPixels;
            if (near(pixel, coral)) {
                lowestCoral = qMax(lowestCoral, y);
                highestCoral = qMin(highestCoral, y);
            }
        }
    }
    // The page covers at least a quarter of the icon, and the line rises
    // across at least a third of its height.
    QVERIFY2(paperPixels >= size * size / 4, qPrintable(QString::number(paperPixels)));
    QVERIFY2(lowestCoral - highestCoral >= size / 3,
             qPrintable(QStringLiteral("coral rows %1 to %2").arg(highestCoral).arg(lowestCoral)));
}

void TestInstall::theScalableIconIsWellFormedSvg()
{
    const QByteArray svg =
        readFile(m_prefix + QStringLiteral("/share/icons/hicolor/scalable/apps/") + appId + QStringLiteral(".svg"));
    QXmlStreamReader xml(svg);
    QVERIFY(xml.readNextStartElement());
    QCOMPARE(xml.name(), QLatin1String("svg"));
    QCOMPARE(xml.namespaceUri(), QLatin1String("http://www.w3.org/2000/svg"));
    // A square canvas: the icon theme scales it to any size.
    const QStringList viewBox = xml.attributes().value(QLatin1String("viewBox")).toString().split(QLatin1Char(' '));
    QCOMPARE(viewBox.size(), 4);
    QCOMPARE(viewBox[2], viewBox[3]);
    int shapes = 0;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() != QLatin1String("title") &&
            xml.name() != QLatin1String("g"))
            ++shapes;
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    QVERIFY(shapes >= 4);
}

void TestInstall::theWindowIconInTheProgramIsTheInstalledIcon()
{
    // The program sets its window icon from its resource bundle, which this
    // test links too: an uninstalled build shows the very same pictures.
    for (int size : { 16, 32, 48, 64, 128, 256 }) {
        const QByteArray bundled = readFile(QStringLiteral(":/Images/icon/ledgerly-%1.png").arg(size));
        QVERIFY2(!bundled.isEmpty(), qPrintable(QString::number(size)));
        const QByteArray installed = readFile(m_prefix + QStringLiteral("/share/icons/hicolor/%1x%1/apps/").arg(size) +
                                              appId + QStringLiteral(".png"));
        QVERIFY2(bundled == installed, qPrintable(QString::number(size)));
    }
}

void TestInstall::theDebianPackageNamesItselfItsVersionAndItsQtLibraries()
{
    const Run info = run(QStringLiteral("dpkg-deb"), { QStringLiteral("-I"), m_deb, QStringLiteral("control") });
    QVERIFY2(info.finished && info.exitCode == 0, qPrintable(describe(info)));
    QCOMPARE(controlField(info.outBytes, QStringLiteral("Package")), QStringLiteral("ledgerly"));
    QCOMPARE(controlField(info.outBytes, QStringLiteral("Version")), version);
    QCOMPARE(controlField(info.outBytes, QStringLiteral("Section")), QStringLiteral("utils"));
    QVERIFY(!controlField(info.outBytes, QStringLiteral("Maintainer")).isEmpty());
    QCOMPARE(controlField(info.outBytes, QStringLiteral("Description")), QStringLiteral("Keep track of what you spend"));

    // Computed from the program's own libraries, so every Qt module it
    // links is there with a version.
    const QString depends = controlField(info.outBytes, QStringLiteral("Depends"));
    for (const char *library : { "libqt6core6", "libqt6gui6", "libqt6widgets6", "libqt6sql6", "libqt6network6",
                                 "libqt6webenginewidgets6", "libsqlite3-0" }) {
        const QRegularExpression dependency(QStringLiteral("(^|, )%1 \\(>= [0-9.]+\\)").arg(QLatin1String(library)));
        QVERIFY2(dependency.match(depends).hasMatch(), qPrintable(depends));
    }

    // The package holds what the install rules install, under /usr.
    QVERIFY(QFileInfo(m_extracted + QStringLiteral("/usr/bin/ledgerly")).isExecutable());
    QVERIFY(
        QFile::exists(m_extracted + QStringLiteral("/usr/share/applications/") + appId + QStringLiteral(".desktop")));
}

void TestInstall::thePackagedProgramPrintsItsVersionWithoutADisplay()
{
    const Run versionRun =
        run(m_extracted + QStringLiteral("/usr/bin/ledgerly"), { QStringLiteral("--version") }, withoutDisplay());
    QVERIFY2(versionRun.finished && versionRun.exitCode == 0, qPrintable(describe(versionRun)));
    QCOMPARE(QString::fromUtf8(versionRun.outBytes), QStringLiteral("Ledgerly ") + version + QLatin1Char('\n'));
    QCOMPARE(QString::fromUtf8(versionRun.errBytes), QString());
}

void TestInstall::thePackagedProgramPrintsItsHelpWithoutADisplay()
{
    const Run help =
        run(m_extracted + QStringLiteral("/usr/bin/ledgerly"), { QStringLiteral("--help") }, withoutDisplay());
    QVERIFY2(help.finished && help.exitCode == 0, qPrintable(describe(help)));
    const QString text = QString::fromUtf8(help.outBytes);
    QVERIFY2(text.startsWith(QLatin1String("Usage: ")), qPrintable(text));
    QVERIFY2(text.contains(QLatin1String("-h, --help")), qPrintable(text));
    QVERIFY2(text.contains(QLatin1String("-v, --version")), qPrintable(text));
    QCOMPARE(QString::fromUtf8(help.errBytes), QString());
}

void TestInstall::theWindowOnX11CarriesTheDesktopEntrysClassAndTheIcon()
{
    // A desktop matches a window to its menu entry by the class in WM_CLASS
    // and shows the icon from _NET_WM_ICON: start the installed program on
    // a virtual X server and read both the way a window manager does.
    QProcess server;
    server.start(QStringLiteral("Xvfb"),
                 { QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-nolisten"),
                   QStringLiteral("tcp"), QStringLiteral("-screen"), QStringLiteral("0"),
                   QStringLiteral("1280x1024x24") });
    QVERIFY2(server.waitForStarted(), qPrintable(server.errorString()));
    QTRY_VERIFY_WITH_TIMEOUT(server.canReadLine(), 30000);
    const QString display = QLatin1Char(':') + QString::fromLatin1(server.readLine()).trimmed();

    QTemporaryDir home;
    QVERIFY(home.isValid());
    QProcessEnvironment environment = withoutDisplay();
    environment.insert(QStringLiteral("DISPLAY"), display);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    environment.insert(QStringLiteral("HOME"), home.path());
    QProcess program;
    program.setProcessEnvironment(environment);
    program.setWorkingDirectory(home.path());
    program.start(m_prefix + QStringLiteral("/bin/ledgerly"), QStringList());
    QVERIFY2(program.waitForStarted(), qPrintable(program.errorString()));

    // xwininfo lists each top-level window with its WM_CLASS instance and
    // class in brackets.
    const QRegularExpression classed(QStringLiteral("^\\s*(0x[0-9a-f]+) .*\\(\"([^\"]*)\" \"([^\"]*)\"\\)"),
                                     QRegularExpression::MultilineOption);
    QRegularExpressionMatch window;
    const auto findWindow = [&] {
        const Run list =
            run(QStringLiteral("xwininfo"),
                { QStringLiteral("-display"), display, QStringLiteral("-root"), QStringLiteral("-children") });
        window = classed.match(QString::fromUtf8(list.outBytes));
        return window.hasMatch();
    };
    QTRY_VERIFY_WITH_TIMEOUT(findWindow(), 60000);

    const QByteArray entry =
        readFile(m_prefix + QStringLiteral("/share/applications/") + appId + QStringLiteral(".desktop"));
    QCOMPARE(window.captured(3), desktopEntryValue(entry, QStringLiteral("StartupWMClass")));
    QCOMPARE(window.captured(2), QStringLiteral("ledgerly"));

    // The window manager hints may arrive a moment after the window itself
    // is listed, so the icon is read until it is there.
    QStringList sizes;
    const QRegularExpression iconSize(QStringLiteral("Icon \\((\\d+) x (\\d+)\\)"));
    const auto readIconSizes = [&] {
        // Qt keeps hidden helper windows of the same class beside the main
        // window; the icon is on the one the user sees.
        const Run list =
            run(QStringLiteral("xwininfo"),
                { QStringLiteral("-display"), display, QStringLiteral("-root"), QStringLiteral("-children") });
        for (QRegularExpressionMatchIterator windows = classed.globalMatch(QString::fromUtf8(list.outBytes));
             windows.hasNext();) {
            const Run icon =
                run(QStringLiteral("xprop"),
                    { QStringLiteral("-display"), display, QStringLiteral("-len"), QStringLiteral("100000000"),
                      QStringLiteral("-id"), windows.next().captured(1), QStringLiteral("_NET_WM_ICON") });
            sizes.clear();
            for (QRegularExpressionMatchIterator it = iconSize.globalMatch(QString::fromUtf8(icon.outBytes));
                 it.hasNext();) {
                const QRegularExpressionMatch match = it.next();
                sizes << match.captured(1) + QLatin1Char('x') + match.captured(2);
            }
            if (!sizes.isEmpty())
                break;
        }
        return sizes;
    };
    QTRY_COMPARE_WITH_TIMEOUT(
        readIconSizes(),
        QStringList({ QStringLiteral("16x16"), QStringLiteral("32x32"), QStringLiteral("48x48"),
                      QStringLiteral("64x64"), QStringLiteral("128x128"), QStringLiteral("256x256") }),
        30000);

    // Ended from outside, as a session ending would; its output is not the
    // test's to judge.
    program.terminate();
    QVERIFY(program.waitForFinished(30000));
    server.terminate();
    QVERIFY(server.waitForFinished(30000));
}

void TestInstall::lintianFindsNoErrorAndNoWarningInThePackage()
{
    // Debian's own package checker, on the package as built. Information
    // tags ("I:") are allowed; errors, warnings and overrides are not.
    const Run lintian =
        run(QStringLiteral("lintian"),
            { QStringLiteral("--fail-on"), QStringLiteral("error,warning"), QStringLiteral("--no-override"), m_deb });
    QVERIFY2(lintian.finished, "lintian is missing: scripts/setup.sh installs it");
    const QString report = QString::fromUtf8(lintian.outBytes + lintian.errBytes);
    const QRegularExpression complaint(QStringLiteral("^[EW]: "), QRegularExpression::MultilineOption);
    QVERIFY2(!complaint.match(report).hasMatch(), qPrintable(report));
    QVERIFY2(lintian.exitCode == 0, qPrintable(describe(lintian)));
}

void TestInstall::theManualPageRendersWithoutWarningsAndNamesEveryCommandAndOption()
{
    const QString page = renderedManualPage();
    QVERIFY2(!page.isEmpty(), "the manual page did not render");

    const Run helpRun = run(m_prefix + QStringLiteral("/bin/ledgerly"), { QStringLiteral("--help") }, withoutDisplay());
    QVERIFY2(helpRun.finished && helpRun.exitCode == 0, qPrintable(describe(helpRun)));
    const HelpText help = parseHelp(QString::fromUtf8(helpRun.outBytes));
    // The reading of the help itself, against the commands and options
    // this version has.
    for (const char *command : { "export", "import", "backup" })
        QVERIFY2(help.commands.contains(QLatin1String(command)), command);
    for (const char *option : { "-h", "--help", "-v", "--version", "--date-order", "--force" })
        QVERIFY2(help.options.contains(QLatin1String(option)), option);

    // Each command starts a line of its own (a tagged paragraph); each option
    // is a word of the page.
    for (const QString &command : help.commands) {
        const QRegularExpression tag(QStringLiteral("^ +%1\\b").arg(command), QRegularExpression::MultilineOption);
        QVERIFY2(tag.match(page).hasMatch(), qPrintable(command + QLatin1Char('\n') + page));
    }
    for (const QString &option : help.options) {
        const QRegularExpression word(QStringLiteral("(^|[ ,])%1([ ,]|$)").arg(QRegularExpression::escape(option)),
                                      QRegularExpression::MultilineOption);
        QVERIFY2(word.match(page).hasMatch(), qPrintable(option + QLatin1Char('\n') + page));
    }
    QVERIFY2(page.contains(QLatin1String("Exit status: 0 when done, 1 when the data or a file is refused, 2 for a "
                                         "usage error.")),
             qPrintable(page));
    const QRegularExpression name(QStringLiteral("^NAME\n +ledgerly - \\S"), QRegularExpression::MultilineOption);
    QVERIFY2(name.match(page).hasMatch(), qPrintable(page));
    QVERIFY2(page.contains(QLatin1String("Ledgerly ") + version), qPrintable(page));
}

void TestInstall::theManualPageSaysWhereTheFilesAreAndWhichVariablesCount()
{
    const QString page = renderedManualPage();
    const auto section = [&page](const QString &heading) {
        const QRegularExpression body(QStringLiteral("^%1\n((?: .*\n|\n)*)").arg(heading),
                                      QRegularExpression::MultilineOption);
        return body.match(page).captured(1);
    };
    const QString files = section(QStringLiteral("FILES"));
    for (const char *path :
         { "~/ledgerlydatabase.db", "~/.config/Ledgerly/Ledgerly.conf", "~/.local/share/Ledgerly/Ledgerly/backups/" })
        QVERIFY2(files.contains(QLatin1String(path)), qPrintable(path + (QLatin1Char('\n') + page)));
    // The program's own variables that the README documents.
    const QString environment = section(QStringLiteral("ENVIRONMENT"));
    for (const char *variable :
         { "HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "LEDGERLY_GEOLOCATION_URL", "LEDGERLY_NO_SQLITE_HANDLE" })
        QVERIFY2(environment.contains(QLatin1String(variable)), qPrintable(variable + (QLatin1Char('\n') + page)));
    const QString examples = section(QStringLiteral("EXAMPLES"));
    for (const char *example : { "ledgerly export ", "ledgerly import ", "ledgerly backup " })
        QVERIFY2(examples.contains(QLatin1String(example)), qPrintable(example + (QLatin1Char('\n') + page)));
    QVERIFY2(section(QStringLiteral("SEE ALSO")).contains(QLatin1String("sqlite3(1)")), qPrintable(page));
}

void TestInstall::theChangelogIsDebiansFormOfChangelogMdForThisVersion()
{
    const QString path = m_work.filePath(QStringLiteral("changelog"));
    QVERIFY(writeFile(path, gunzip(m_prefix + QStringLiteral("/share/doc/ledgerly/changelog.gz"))));
    const auto field = [&path](const char *name) {
        const Run parse = run(QStringLiteral("dpkg-parsechangelog"),
                              { QStringLiteral("-l"), path, QStringLiteral("-S"), QLatin1String(name) });
        return parse.exitCode == 0 ? QString::fromUtf8(parse.outBytes).trimmed() : QString::fromUtf8(parse.errBytes);
    };
    QCOMPARE(field("Source"), QStringLiteral("ledgerly"));
    QCOMPARE(field("Version"), version);

    // The newest release of CHANGELOG.md: its date, and each of its items.
    const QString markdown = QString::fromUtf8(readFile(QStringLiteral(LEDGERLY_SOURCE_DIR "/CHANGELOG.md")));
    const QRegularExpressionMatch release =
        QRegularExpression(QStringLiteral("^## (\\S+) \\((\\d{4}-\\d\\d-\\d\\d)\\)\n((?:\n|[- ] .*\n)*)"),
                           QRegularExpression::MultilineOption)
            .match(markdown);
    QVERIFY2(release.hasMatch(), qPrintable(markdown));
    QCOMPARE(release.captured(1), version);
    const QDate date = QDate::fromString(release.captured(2), Qt::ISODate);
    QCOMPARE(QDateTime::fromString(field("Date"), Qt::RFC2822Date).date(), date);
    QString changes = field("Changes");
    changes.replace(QRegularExpression(QStringLiteral("\\s+")), QStringLiteral(" "));
    const QStringList items = release.captured(3).split(QStringLiteral("\n- "));
    QVERIFY(items.size() >= 2);
    for (QString item : items) {
        item = item.mid(item.startsWith(QLatin1String("- ")) ? 2 : 0).simplified();
        QVERIFY2(changes.contains(QStringLiteral("* ") + item), qPrintable(item + QLatin1Char('\n') + changes));
    }

    // Debian's metadata about the same release says the same date.
    const QByteArray metainfo =
        readFile(m_prefix + QStringLiteral("/share/metainfo/") + appId + QStringLiteral(".metainfo.xml"));
    QVERIFY2(metainfo.contains(QStringLiteral("date=\"%1\"").arg(release.captured(2)).toUtf8()), metainfo.constData());
}

void TestInstall::theCopyrightFileIsMachineReadable()
{
    // Debian's machine-readable form: a header paragraph, a Files paragraph
    // and the licence's text, with the pointer to Debian's copy of the GPL.
    const QString copyright = QString::fromUtf8(readFile(m_prefix + QStringLiteral("/share/doc/ledgerly/copyright")));
    const QStringList paragraphs = copyright.split(QStringLiteral("\n\n"));
    QCOMPARE(paragraphs.size(), 3);
    QVERIFY2(paragraphs[0].startsWith(
                 QLatin1String("Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/\n")),
             qPrintable(copyright));
    QVERIFY2(paragraphs[0].contains(QLatin1String("\nUpstream-Name: Ledgerly\n")), qPrintable(copyright));
    QVERIFY2(paragraphs[0].contains(QLatin1String("\nSource: https://")), qPrintable(copyright));
    QVERIFY2(paragraphs[1].startsWith(QLatin1String("Files: *\n")), qPrintable(copyright));
    const QRegularExpression notice(QStringLiteral("^Copyright: \\d{4}(-\\d{4})? The Ledgerly developers$"),
                                    QRegularExpression::MultilineOption);
    QVERIFY2(notice.match(paragraphs[1]).hasMatch(), qPrintable(copyright));
    QVERIFY2(paragraphs[1].endsWith(QLatin1String("\nLicense: GPL-3.0-or-later")), qPrintable(copyright));
    QVERIFY2(paragraphs[2].startsWith(QLatin1String("License: GPL-3.0-or-later\n")), qPrintable(copyright));
    QVERIFY2(paragraphs[2].contains(QLatin1String("\"/usr/share/common-licenses/GPL-3\"")), qPrintable(copyright));
}

void TestInstall::bashCompletesCommandsOptionsValuesAndFiles_data()
{
    const Run helpRun = run(m_prefix + QStringLiteral("/bin/ledgerly"), { QStringLiteral("--help") }, withoutDisplay());
    const HelpText help = parseHelp(QString::fromUtf8(helpRun.outBytes));
    const auto optionsOf = [&help](const QString &command) {
        QStringList offered;
        for (const QString &option : help.options) {
            if (option.startsWith(QLatin1String("--")) &&
                (!help.commandOf.contains(option) || help.commandOf[option] == command))
                offered << option;
        }
        return offered;
    };
    const QStringList dateOrders = help.valueOf.value(QStringLiteral("--date-order")).split(QLatin1Char('|'));

    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("a command from its first letters") << "ledgerly exp" << QStringList { QStringLiteral("export") };
    // "import" and "imports" both begin so.
    QTest::newRow("the commands that share their first letters")
        << "ledgerly imp" << QStringList { QStringLiteral("import"), QStringLiteral("imports") };
    QTest::newRow("every command") << "ledgerly " << help.commands;
    QTest::newRow("a budget's periods")
        << "ledgerly budget set Food 10 --period "
        << QStringList { QStringLiteral("month"), QStringLiteral("week"), QStringLiteral("year") };
    QTest::newRow("the date orders the help lists") << "ledgerly import x --date-order " << dateOrders;
    QTest::newRow("a date order after an equals sign")
        << "ledgerly import x --date-order=d" << dateOrders.filter(QRegularExpression(QStringLiteral("^d")));
    QTest::newRow("the options of import") << "ledgerly import x --" << optionsOf(QStringLiteral("import"));
    QTest::newRow("the options of backup") << "ledgerly backup x --" << optionsOf(QStringLiteral("backup"));
    // In a directory holding a.csv, b.qif, c.ofx, d.QFX, e.txt and sub/.
    QTest::newRow("files to import") << "ledgerly import "
                                     << QStringList { QStringLiteral("a.csv"), QStringLiteral("b.qif"),
                                                      QStringLiteral("c.ofx"), QStringLiteral("d.QFX"),
                                                      QStringLiteral("sub") };
    QTest::newRow("files to export") << "ledgerly export "
                                     << QStringList { QStringLiteral("a.csv"), QStringLiteral("b.qif"),
                                                      QStringLiteral("sub") };
    QTest::newRow("any file to back up") << "ledgerly backup "
                                         << QStringList { QStringLiteral("a.csv"), QStringLiteral("b.qif"),
                                                          QStringLiteral("c.ofx"), QStringLiteral("d.QFX"),
                                                          QStringLiteral("e.txt"), QStringLiteral("sub") };
    QTest::newRow("nothing after the file") << "ledgerly import a.csv " << QStringList();
}

void TestInstall::bashCompletesCommandsOptionsValuesAndFiles()
{
    QFETCH(QString, line);
    QFETCH(QStringList, expected);
    QVERIFY(!expected.isEmpty() || line.endsWith(QLatin1String("a.csv ")));

    QTemporaryDir directory;
    QVERIFY(directory.isValid());
    for (const char *name : { "a.csv", "b.qif", "c.ofx", "d.QFX", "e.txt" })
        QVERIFY(writeFile(directory.filePath(QLatin1String(name)), "x"));
    QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("sub")));
    expected.sort();
    QCOMPARE(completeInBash(line, m_prefix + QStringLiteral("/bin"), directory.path()), expected);
}

void TestInstall::bashCompletesWhatALaterHelpListsWithoutAChangeToTheFile_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("a new command") << "ledgerly re" << QStringList { QStringLiteral("report") };
    QTest::newRow("a longer list of date orders")
        << "ledgerly import x --date-order "
        << QStringList { QStringLiteral("mdy"), QStringLiteral("dmy"), QStringLiteral("ymd") };
    QTest::newRow("a new option's values") << "ledgerly report --period w" << QStringList { QStringLiteral("week") };
    QTest::newRow("the new command's options")
        << "ledgerly report --" << QStringList { QStringLiteral("--help"), QStringLiteral("--period") };
    QTest::newRow("saved profiles") << "ledgerly import x --profile "
                                    << QStringList { QStringLiteral("Bank"), QStringLiteral("Card 2") };
}

void TestInstall::bashCompletesWhatALaterHelpListsWithoutAChangeToTheFile()
{
    QFETCH(QString, line);
    QFETCH(QStringList, expected);

    // The installed completion file, in front of a ledgerly whose help lists
    // a command, options and values this version does not have, and whose
    // profiles command lists two saved profiles.
    QTemporaryDir bin;
    QVERIFY(bin.isValid());
    const QString later = bin.filePath(QStringLiteral("ledgerly"));
    QVERIFY(writeFile(later, R"(#!/bin/sh
case "$1" in
--help) cat <<'HELP'
Usage: ledgerly [options] [command FILE]
Ledgerly keeps track of what you spend.

Commands, on the database ~/ledgerlydatabase.db:
  export FILE   Writes every entry into FILE.
  import FILE   Adds the entries of a file.
  profiles      Lists the saved import profiles.
  report        Prints what was spent.

Options:
  -h, --help                  Displays help on commandline options.
  --date-order <mdy|dmy|ymd>  import: the order of dates that the file leaves
                              open.
  --profile <name>            import: the saved profile to read the file
                              with.
  --period <day|week|month>   report: what to sum by.
HELP
;;
profiles) printf 'Bank\nCard 2\n' ;;
*) exit 2 ;;
esac
)"));
    QVERIFY(QFile::setPermissions(later, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));

    expected.sort();
    QCOMPARE(completeInBash(line, bin.path(), bin.path()), expected);
}

QStringList TestInstall::completeInBash(const QString &line, const QString &programDir, const QString &workingDir)
{
    // bash-completion as an interactive shell has it, finding the installed
    // file under the prefix by the command's name the way it does on the
    // first Tab; then the line split into words as bash splits it (an
    // equals sign is a word of its own) and the completion function called
    // as bash calls it. It prints one completion a line.
    const QString driver = QStringLiteral(R"(
source /usr/share/bash-completion/bash_completion
__load_completion ledgerly || { echo "no completion for ledgerly" >&2; exit 10; }
spec=$(complete -p ledgerly) || exit 11
function=${spec#*-F }
function=${function%% *}
COMP_LINE=$1
COMP_POINT=${#COMP_LINE}
read -ra COMP_WORDS <<<"${COMP_LINE//=/ = }"
[[ $COMP_LINE == *[\ =] ]] && COMP_WORDS+=("")
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
COMPREPLY=()
"$function" ledgerly "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf '%s\n' "${COMPREPLY[@]}"
)");
    QTemporaryDir home;
    QProcessEnvironment environment = withoutDisplay();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_DATA_DIRS"), m_prefix + QStringLiteral("/share"));
    environment.remove(QStringLiteral("XDG_DATA_HOME"));
    environment.remove(QStringLiteral("BASH_COMPLETION_USER_DIR"));
    environment.insert(QStringLiteral("PATH"),
                       programDir + QLatin1Char(':') + environment.value(QStringLiteral("PATH")));
    const Run bash = run(QStringLiteral("bash"), { QStringLiteral("-c"), driver, QStringLiteral("bash"), line },
                         environment, 60000, workingDir);
    if (!bash.finished || bash.exitCode != 0 || !bash.errBytes.isEmpty())
        return { describe(bash) };
    QStringList completions = QString::fromUtf8(bash.outBytes).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    completions.sort();
    return completions;
}

QString TestInstall::renderedManualPage()
{
    // Rendered as man renders it for a terminal, without hyphenation and
    // on lines long enough that no word is split, in plain characters; -ww
    // turns every groff warning on.
    const QByteArray source = gunzip(m_prefix + QStringLiteral("/share/man/man1/ledgerly.1.gz"));
    QProcess groff;
    groff.start(QStringLiteral("groff"),
                { QStringLiteral("-man"), QStringLiteral("-Tutf8"), QStringLiteral("-ww"), QStringLiteral("-rHY=0"),
                  QStringLiteral("-rLL=200n"), QStringLiteral("-P-cbou") });
    groff.write(source);
    groff.closeWriteChannel();
    if (!groff.waitForFinished(60000) || groff.exitCode() != 0) {
        qWarning("groff failed: %s", groff.readAllStandardError().constData());
        return QString();
    }
    const QByteArray warnings = groff.readAllStandardError();
    if (!warnings.isEmpty()) {
        qWarning("groff warns: %s", warnings.constData());
        return QString();
    }
    QString page = QString::fromUtf8(groff.readAllStandardOutput());
    // Hyphens and minus signs as typed.
    for (const char16_t dash : { u'\u2010', u'\u2011', u'\u2212' })
        page.replace(QChar(dash), QLatin1Char('-'));
    return page;
}

QTEST_GUILESS_MAIN(TestInstall)
#include "tst_install.moc"
