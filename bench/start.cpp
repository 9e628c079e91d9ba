// SPDX-License-Identifier: MIT
// Time from process start to the painted sign-in dialog, beside a bare Qt window.
#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <vector>

#include "bench/Measure.h"

using ZorvaneClient::Bench::median;
using ZorvaneClient::Bench::nowNanoseconds;

namespace {

constexpr int runCount = 15;
constexpr int deadlineMs = 60000;

struct Program {
    const char *title;
    const char *path;
    std::vector<double> milliseconds;
};

// A fresh working folder each time: first start, no remembered account. Nothing if it failed.
std::optional<double> startOnce(const Program &program)
{
    const QTemporaryDir folder;
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.setStandardErrorFile(QProcess::nullDevice());
    const long long before = nowNanoseconds();
    process.start(QString::fromLocal8Bit(program.path), QStringList());
    if (!process.waitForFinished(deadlineMs))
        return std::nullopt;
    bool parsed = false;
    const long long painted = process.readAllStandardOutput().trimmed().toLongLong(&parsed);
    if (!parsed)
        return std::nullopt;
    return static_cast<double>(painted - before) / 1e6;
}

void printRow(const Program &program)
{
    const auto range =
        std::minmax_element(program.milliseconds.begin(), program.milliseconds.end());
    std::printf("%-16s %10.1f %10.1f %10.1f\n", program.title, median(program.milliseconds),
                *range.first, *range.second);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (!qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    Program programs[] = {{"bare Qt window", ZORVANE_START_WINDOW, {}},
                          {"sign-in dialog", ZORVANE_START_DIALOG, {}}};
    // The first turn fills the disk cache and isn't counted.
    for (int run = -1; run < runCount; ++run) {
        for (Program &program : programs) {
            const std::optional<double> milliseconds = startOnce(program);
            if (!milliseconds) {
                std::fprintf(stderr, "bench_start: %s showed no window\n", program.path);
                return 1;
            }
            if (run >= 0)
                program.milliseconds.push_back(*milliseconds);
        }
    }

    std::printf("Process start to painted window, ms, %d runs each, in turns\n", runCount);
    std::printf("%-16s %10s %10s %10s\n", "", "median", "least", "most");
    for (const Program &program : programs)
        printRow(program);
    std::printf("The dialog takes %.2f times the bare window.\n",
                median(programs[1].milliseconds) / median(programs[0].milliseconds));
    return 0;
}
