// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Ledgerly's licence: the GPL text at the root, and a licence line and a
// copyright line at the top of every source, test, benchmark, script and
// CMake file, so that a file copied out of the tree still says whose it is
// and on what terms.
#include "testsupport.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

namespace {

const QString sourceDir = QStringLiteral(LEDGERLY_SOURCE_DIR);

// The kinds of file that carry the header: C++ sources and headers, shell
// scripts (and the CI entry point, which has no suffix), CMake files.
bool carriesTheHeader(const QString &relativePath)
{
    const QString name = QFileInfo(relativePath).fileName();
    return relativePath.endsWith(QLatin1String(".cpp")) || relativePath.endsWith(QLatin1String(".h"))
        || relativePath.endsWith(QLatin1String(".sh")) || relativePath.endsWith(QLatin1String(".cmake"))
        || name == QLatin1String("CMakeLists.txt") || relativePath == QLatin1String(".ci/run");
}

// The header is the file's first two lines, or the two after a "#!" line:
// the licence identifier, then the copyright, each as a comment of the file's
// own language.
bool hasLicenceHeader(const QByteArray &contents)
{
    QList<QByteArray> lines = contents.left(4096).split('\n');
    if (!lines.isEmpty() && lines.first().startsWith("#!"))
        lines.removeFirst();
    if (lines.size() < 3)
        return false;
    static const QRegularExpression licence(
        QStringLiteral("^(//|#) SPDX-License-Identifier: GPL-3\\.0-or-later$"));
    static const QRegularExpression copyright(
        QStringLiteral("^(//|#) Copyright (\\d{4})(-\\d{4})? The Ledgerly developers$"));
    const QRegularExpressionMatch first = licence.match(QString::fromUtf8(lines[0]));
    const QRegularExpressionMatch second = copyright.match(QString::fromUtf8(lines[1]));
    // Both lines use the same comment marker.
    return first.hasMatch() && second.hasMatch() && first.captured(1) == second.captured(1);
}

// The files git tracks; in a tree that is not a git checkout (an unpacked
// source archive), every file but the build trees and git's own.
QStringList sourceFiles()
{
    QProcess git;
    git.setWorkingDirectory(sourceDir);
    git.start(QStringLiteral("git"), { QStringLiteral("ls-files"), QStringLiteral("-z") });
    if (git.waitForFinished(60000) && git.exitStatus() == QProcess::NormalExit && git.exitCode() == 0) {
        QStringList files;
        const QList<QByteArray> names = git.readAllStandardOutput().split('\0');
        for (const QByteArray &name : names) {
            if (!name.isEmpty())
                files << QString::fromUtf8(name);
        }
        return files;
    }
    QStringList files;
    const QDir root(sourceDir);
    QDirIterator it(sourceDir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString relative = root.relativeFilePath(it.next());
        if (!relative.startsWith(QLatin1String("build")) && !relative.startsWith(QLatin1String(".git/")))
            files << relative;
    }
    return files;
}

} // namespace

class TestLicence : public QObject
{
    Q_OBJECT

private slots:
    void theHeaderIsRecognisedOnlyWhole_data();
    void theHeaderIsRecognisedOnlyWhole();
    void everySourceFileCarriesTheLicenceHeader();
    void theLicenceIsTheGplVersion3();
};

void TestLicence::theHeaderIsRecognisedOnlyWhole_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<bool>("recognised");

    QTest::newRow("C++") << QByteArray("// SPDX-License-Identifier: GPL-3.0-or-later\n"
                                       "// Copyright 2026 The Ledgerly developers\n\n#include <x>\n")
                         << true;
    QTest::newRow("CMake") << QByteArray("# SPDX-License-Identifier: GPL-3.0-or-later\n"
                                         "# Copyright 2026 The Ledgerly developers\n\nproject(x)\n")
                           << true;
    QTest::newRow("script after #!") << QByteArray("#!/usr/bin/env bash\n"
                                                   "# SPDX-License-Identifier: GPL-3.0-or-later\n"
                                                   "# Copyright 2026-2027 The Ledgerly developers\nset -e\n")
                                     << true;
    QTest::newRow("no header") << QByteArray("#include <x>\nint main() {}\n") << false;
    QTest::newRow("empty file") << QByteArray() << false;
    QTest::newRow("licence only") << QByteArray("// SPDX-License-Identifier: GPL-3.0-or-later\n\nint x;\n")
                                  << false;
    QTest::newRow("other licence") << QByteArray("// SPDX-License-Identifier: MIT\n"
                                                 "// Copyright 2026 The Ledgerly developers\n\n")
                                   << false;
    QTest::newRow("GPL 3 only") << QByteArray("// SPDX-License-Identifier: GPL-3.0-only\n"
                                              "// Copyright 2026 The Ledgerly developers\n\n")
                                << false;
    QTest::newRow("someone else") << QByteArray("// SPDX-License-Identifier: GPL-3.0-or-later\n"
                                                "// Copyright 2026 Somebody\n\n")
                                  << false;
    QTest::newRow("lower down") << QByteArray("#include <x>\n// SPDX-License-Identifier: GPL-3.0-or-later\n"
                                              "// Copyright 2026 The Ledgerly developers\n\n")
                                << false;
    QTest::newRow("mixed markers") << QByteArray("// SPDX-License-Identifier: GPL-3.0-or-later\n"
                                                 "# Copyright 2026 The Ledgerly developers\n\n")
                                   << false;
}

void TestLicence::theHeaderIsRecognisedOnlyWhole()
{
    QFETCH(QByteArray, contents);
    QFETCH(bool, recognised);
    QCOMPARE(hasLicenceHeader(contents), recognised);
}

void TestLicence::everySourceFileCarriesTheLicenceHeader()
{
    const QStringList files = sourceFiles();
    QStringList checked;
    QStringList missing;
    for (const QString &file : files) {
        if (!carriesTheHeader(file))
            continue;
        checked << file;
        if (!hasLicenceHeader(readFile(sourceDir + QLatin1Char('/') + file)))
            missing << file;
    }
    QVERIFY2(missing.isEmpty(), qPrintable(QStringLiteral("without the licence header: ") + missing.join(QLatin1String(", "))));
    // The walk saw the tree: one file of each kind at least.
    for (const char *known : { "CMakeLists.txt", "src/app/main.cpp", "src/store/databasemanager.h", "tests/tst_licence.cpp",
                               "bench/CMakeLists.txt", "scripts/setup.sh", "cmake/Install.cmake", ".ci/run" })
        QVERIFY2(checked.contains(QLatin1String(known)), known);
    QVERIFY(checked.size() > 100);
}

void TestLicence::theLicenceIsTheGplVersion3()
{
    const QByteArray text = readFile(sourceDir + QStringLiteral("/LICENSE"));
    QVERIFY(text.startsWith("                    GNU GENERAL PUBLIC LICENSE\n"
                            "                       Version 3, 29 June 2007\n"));
    // "or later" is what the headers say; the licence's own section 14 is
    // what makes that choice meaningful.
    QVERIFY(text.contains("14. Revised Versions of this License."));
    QVERIFY(text.contains("END OF TERMS AND CONDITIONS"));
}

QTEST_GUILESS_MAIN(TestLicence)

#include "tst_licence.moc"
