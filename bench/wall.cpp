// SPDX-License-Identifier: MIT
// What a wall of live tiles costs: processor time of the client, its players and the display's
// server together for each picture shown, memory for each tile, pictures shown against pictures
// sent, the longest stall of the event loop, and the time from opening a layout to its last first
// picture. Beside it the floor: as many processes that only decode the same stream at the same
// pace, before the wall and after it.
// With an argument, the name of a wall such as "noisy-9-high", only that one is shown.
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "API/StreamQuality.h"
#include "App/Application.h"
#include "App/Environment.h"
#include "GUI/Player/VideoWidget.h"
#include "bench/DecodeLoop.h"
#include "bench/LiveWall.h"
#include "bench/Measure.h"
#include "bench/PaintCounter.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Bench;

namespace {

constexpr int warmUpMs = 3000;
constexpr int measuredMs = 10000;
constexpr int stallProbeMs = 5;
constexpr const char *qualityNames[] = {"low", "middle", "high"}; // by API::StreamQuality

constexpr double minMegabits = 2.4;
constexpr double maxCpuRatioAtNine = 1.3;
constexpr double maxCpuRatioAtSixteen = 1.6;
constexpr double minPercentShown = 95;
constexpr double maxStallMs = 50;
constexpr double maxOpenMsAtThirtySix = 3000;

/// The longest time between two turns of the event loop.
class StallProbe : public QObject
{
public:
    StallProbe()
    {
        connect(&timer, &QTimer::timeout, this,
                [this] { longestMs = std::max(longestMs, since.restart()); });
        timer.setTimerType(Qt::PreciseTimer);
        since.start();
        timer.start(stallProbeMs);
    }

    qint64 longestMs = 0;

private:
    QTimer timer;
    QElapsedTimer since;
};

struct WallRun {
    Pictures pictures = Pictures::Clean;
    int side = 0;
    std::optional<int> quality; ///< an API::StreamQuality; none: by the rule

    WallCpu cpuAPicture;
    double megabits = 0; ///< of a stream in a second; 0: not known, by the rule
    double floorMs = 0;  ///< 0: not known, by the rule
    double pssMebibytesATile = 0;
    double percentShown = 0;
    double stallMs = 0;
    double openMs = 0;

    /// Such as "noisy-9-high".
    std::string name() const;
    int tiles() const { return side * side; }
    double ratio() const { return floorMs > 0 ? cpuAPicture.sum() / floorMs : 0; }
};

std::string WallRun::name() const
{
    return std::string(pictures == Pictures::Noisy ? "noisy-" : "clean-") +
           std::to_string(tiles()) + "-" + (quality ? qualityNames[*quality] : "rule");
}

/// The streams of one kind of pictures as files, for loops that only decode.
class Recordings
{
public:
    explicit Recordings(const LiveWall &wall)
    {
        for (const int quality : {API::MiddleQuality, API::HighQuality}) {
            const QByteArray bytes = wall.record(quality);
            QFile file(fileName(quality));
            if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
                qFatal("a stream can't be recorded");
        }
    }

    double floorMs(int quality, int processes) const
    {
        return decodeMilliseconds(QFile::encodeName(fileName(quality)), Pace::Stream, processes);
    }

    double megabits(int quality) const
    {
        const double bytes = static_cast<double>(QFile(fileName(quality)).size());
        return 8e-6 * bytes / LiveWall::recordedSeconds;
    }

private:
    QString fileName(int quality) const
    {
        return folder.filePath(QStringLiteral("%1.flv").arg(quality));
    }

    QTemporaryDir folder;
};

void watch(LiveWall &wall, WallRun *run)
{
    QTest::qWait(warmUpMs);
    PaintCounter counter;
    const auto tiles = wall.tiles();
    for (GUI::Player::VideoWidget *tile : tiles)
        tile->installEventFilter(&counter);
    StallProbe stalls;
    QElapsedTimer measured;
    measured.start();
    const WallCpu before = wall.cpu();
    QTest::qWait(measuredMs);
    const double shown = std::max(counter.paints, 1);
    run->cpuAPicture = wall.cpu().since(before, shown);
    const double sent = measured.elapsed() / 1000.0 * LiveWall::framesPerSecond * run->tiles();
    run->percentShown = 100 * shown / sent;
    run->stallMs = static_cast<double>(stalls.longestMs);
    run->pssMebibytesATile = wall.pssMebibytes() / run->tiles();
}

/// Nothing is shown beside the floor, so that both meet the same machine.
void measure(LiveWall &wall, const Recordings &recordings, WallRun *run)
{
    const auto floorMs = [&] {
        return run->quality ? recordings.floorMs(*run->quality, run->tiles()) : 0;
    };
    if (run->quality)
        run->megabits = recordings.megabits(*run->quality);
    wall.close();
    run->floorMs = floorMs();
    const auto opened = wall.open(run->side, run->quality);
    if (!opened)
        qFatal("the tiles don't play");
    run->openMs = static_cast<double>(*opened);
    watch(wall, run);
    wall.close();
    run->floorMs = (run->floorMs + floorMs()) / 2;
}

void print(const WallRun &run)
{
    std::printf("%-18s %6.2f  %6.2f  %6.2f  %6.2f  %6.2f  %6.2f  %6.2f  %8.1f  %5.1f %%  "
                "%5.0f ms  %5.0f ms\n",
                run.name().c_str(), run.megabits, run.cpuAPicture.sum(), run.cpuAPicture.clientMs,
                run.cpuAPicture.playersMs, run.cpuAPicture.displayMs, run.floorMs, run.ratio(),
                run.pssMebibytesATile, run.percentShown, run.stallMs, run.openMs);
    std::fflush(stdout);
}

/// Takes those runs that show such pictures, and prints them.
bool take(Pictures pictures, std::vector<WallRun> *runs)
{
    const auto isTaken = [&](const WallRun &run) { return run.pictures == pictures; };
    if (std::none_of(runs->begin(), runs->end(), isTaken))
        return true;
    LiveWall wall;
    if (!wall.start(pictures))
        return false;
    const Recordings recordings(wall);
    for (WallRun &run : *runs) {
        if (isTaken(run)) {
            measure(wall, recordings, &run);
            print(run);
        }
    }
    return true;
}

std::vector<WallRun> allRuns()
{
    std::vector<WallRun> runs;
    const auto add = [&runs](Pictures pictures, int side, std::optional<int> quality) {
        WallRun run;
        run.pictures = pictures;
        run.side = side;
        run.quality = quality;
        runs.push_back(run);
    };
    for (const int side : {1, 2, 3, 4, 6})
        add(Pictures::Clean, side, std::nullopt);
    for (const int side : {1, 2, 3, 4, 6})
        add(Pictures::Clean, side, API::HighQuality);
    add(Pictures::Clean, 4, API::MiddleQuality);
    add(Pictures::Noisy, 3, API::HighQuality);
    add(Pictures::Noisy, 4, API::MiddleQuality);
    return runs;
}

bool judge(const WallRun &run)
{
    bool good = true;
    if (run.pictures == Pictures::Noisy && run.side == 3 && run.quality == API::HighQuality) {
        good &= within("9 noisy tiles of 1280x720: rate of a stream", run.megabits, "Mb/s",
                       minMegabits, Bound::AtLeast);
        good &= within("9 noisy tiles of 1280x720: CPU to the floor", run.ratio(), "x",
                       maxCpuRatioAtNine);
    }
    if (run.pictures == Pictures::Noisy && run.side == 4 && run.quality == API::MiddleQuality)
        good &= within("16 noisy tiles of 640x360: CPU to the floor", run.ratio(), "x",
                       maxCpuRatioAtSixteen);
    if (run.side == 4 && run.quality == API::MiddleQuality) {
        good &= within("16 tiles of 640x360: pictures shown", run.percentShown, "%",
                       minPercentShown, Bound::AtLeast);
        good &= within("16 tiles of 640x360: longest stall", run.stallMs, "ms", maxStallMs);
    }
    if (run.side == 6 && !run.quality)
        good &= within("36 tiles by the rule: opened to last first picture", run.openMs, "ms",
                       maxOpenMsAtThirtySix);
    return good;
}

} // namespace

int main(int argc, char **argv)
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    App::Environment::setPlayerProgram(QStringLiteral(ZORVANE_BIN_DIR "/vlc-stream"));

    std::vector<WallRun> runs = allRuns();
    if (argc > 1) {
        const auto isLeftOut = [chosen = argv[1]](const WallRun &run) {
            return run.name() != chosen;
        };
        runs.erase(std::remove_if(runs.begin(), runs.end(), isLeftOut), runs.end());
    }
    std::printf("milliseconds of CPU for each picture shown; PSS in MiB for each tile\n"
                "wall                 Mb/s together  client players display   floor   ratio"
                "       PSS    shown     stall    opened\n");
    if (!take(Pictures::Clean, &runs) || !take(Pictures::Noisy, &runs))
        return 1;
    std::printf("\n");
    bool good = !runs.empty();
    for (const WallRun &run : runs)
        good &= judge(run);
    return good ? 0 : 1;
}
