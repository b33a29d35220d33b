// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "fuzzdriver.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

// Without libFuzzer: feeds every file of the directories given on the
// command line to the target once, in name order. The target aborts on a
// finding; an empty corpus fails too, since it would check nothing.
int main(int argc, char **argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        const QDir dir(QFile::decodeName(argv[i]));
        const QFileInfoList files = dir.entryInfoList(QDir::Files, QDir::Name);
        for (const QFileInfo &file : files) {
            QFile input(file.filePath());
            if (!input.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(file.filePath()));
                return 1;
            }
            const QByteArray bytes = input.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.constData()),
                                   std::size_t(bytes.size()));
            ++inputs;
        }
    }
    std::printf("%d inputs checked\n", inputs);
    return inputs > 0 ? 0 : 1;
}
