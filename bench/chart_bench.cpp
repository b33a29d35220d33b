// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

// Times the two chart widgets on ten years of daily data: a 3,650-point graph
// with as many distinct values and a 37-slice pie, each rendered at the sizes
// the history page gives them, and the graph saved as PNG.

#include "linegraph.h"
#include "piewidget.h"

#include <QApplication>
#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

#include <time.h>

namespace {

QTextStream out(stdout);

// Wall-clock time and this thread's CPU time: on a machine busy with other
// work the CPU time is the steadier figure.
class Stopwatch
{
public:
    Stopwatch() { restart(); }
    void restart()
    {
        wall.start();
        cpuStart = cpuNow();
    }
    double wallMs() const { return wall.nsecsElapsed() / 1e6; }
    double cpuMs() const { return (cpuNow() - cpuStart) / 1e6; }

private:
    static qint64 cpuNow()
    {
        timespec now;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
    }
    QElapsedTimer wall;
    qint64 cpuStart = 0;
};

struct Timing
{
    double wall;
    double cpu;
};

// Runs a task five times (prepare runs untimed before each) and prints the
// first, cold run and the median of the five.
template<typename Prepare, typename Task> void measure(const QString &what, Prepare prepare, Task task)
{
    QList<Timing> timings;
    for (int run = 0; run < 5; ++run) {
        prepare();
        Stopwatch watch;
        task();
        timings.append({ watch.wallMs(), watch.cpuMs() });
    }
    const Timing first = timings.first();
    std::sort(timings.begin(), timings.end(), [](const Timing &a, const Timing &b) { return a.wall < b.wall; });
    const Timing median = timings.at(2);
    out << qSetFieldWidth(38) << Qt::left << what << qSetFieldWidth(0) << "median "
        << QString::number(median.wall, 'f', 2) << " ms (cpu " << QString::number(median.cpu, 'f', 2) << "), first "
        << QString::number(first.wall, 'f', 2) << " ms (cpu " << QString::number(first.cpu, 'f', 2) << ")" << Qt::endl;
}

void fillGraph(ZRLineGraph &graph)
{
    const QDate first(2016, 1, 1);
    for (int day = 0; day < 3650; ++day) {
        // Distinct amounts, in no particular order, as the daily tab writes them.
        const double amount = (day * 7919 % 3650) * 1.25 + 0.5;
        graph.append(ZRLineGraphData(first.addDays(day).toString(Qt::TextDate), QString::number(amount, 'g', 6)));
    }
    graph.setSortY(true);
}

void fillPie(PieWidget &pie)
{
    for (int slice = 0; slice < 37; ++slice)
        pie.addEntry(QString("Category %1 - %2 % ").arg(slice).arg(100.0 / 37, 0, 'g', 6), 10 + slice * 13);
}

QString sizeText(const QSize &size)
{
    return QString("%1 x %2").arg(size.width()).arg(size.height());
}

} // namespace

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Without a private runtime directory Qt complains at start-up.
    QTemporaryDir runtimeDir;
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtimeDir.path()));
    QApplication app(argc, argv);

    const QList<QSize> sizes = { QSize(401, 281), QSize(821, 321) };
    QTemporaryDir dir;
    const QString fileName = dir.filePath("QtDateWiseDailyLineGraph.png");

    ZRLineGraph graph;
    Stopwatch fillWatch;
    fillGraph(graph);
    out << "graph: appended 3650 points in " << QString::number(fillWatch.wallMs(), 'f', 2) << " ms" << Qt::endl;

    PieWidget pie;
    fillPie(pie);

    for (const QSize &size : sizes) {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        // Resizing clears the graph's cached picture, so every run lays it out
        // and draws it anew, as after a change.
        measure(
            "graph: render " + sizeText(size),
            [&] {
                graph.resize(size + QSize(1, 1));
                graph.resize(size);
                image.fill(Qt::white);
            },
            [&] { graph.render(&image); });
        measure(
            "graph: repaint from cache " + sizeText(size), [&] { image.fill(Qt::white); },
            [&] { graph.render(&image); });
        bool written = true;
        measure(
            "graph: save PNG " + sizeText(size), [] {}, [&] { written = graph.save(fileName, size) && written; });
        if (!written || QImage(fileName).size() != size)
            out << "graph: the PNG was not written" << Qt::endl;
        pie.resize(size);
        measure(
            "pie: render 37 slices " + sizeText(size), [&] { image.fill(Qt::white); }, [&] { pie.render(&image); });
    }
    return 0;
}
