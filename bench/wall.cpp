// SPDX-License-Identifier: MIT
// What a wall of live tiles costs: processor time of the client and its players together for
// each picture shown, memory of both for each tile, pictures shown against pictures sent, the
// longest stall of the event loop, and the time from opening a layout to its last first picture.
// Beside it, a loop that only decodes the same streams.
// With two arguments, side of the grid and quality (-1: by the rule), only that wall is shown.
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "App/Application.h"
#include "App/Environment.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "bench/DecodeLoop.h"
#include "bench/Measure.h"
#include "bench/PaintCounter.h"
#include "demo/client/DemoService.h"
#include "tests/e2e/EndToEnd.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;
using GUI::Player::VideoWidget;

namespace {

constexpr int framesPerSecond = 25;
constexpr int warmUpMs = 3000;
constexpr int measuredMs = 10000;
constexpr int openLimitMs = 60000;
constexpr int signInLimitMs = 20000;
constexpr int serverCount = 4;
constexpr int stallProbeMs = 5;
constexpr int recordMs = 9000;
constexpr QSize windowSize(1900, 1100);

constexpr double maxCpuRatioAtNine = 1.3;
constexpr double minShownShareAtSixteen = 0.95;
constexpr int maxStallMs = 50;
constexpr int maxOpenMsAtThirtySix = 3000;

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

QList<qint64> childrenOf(const QList<VideoWidget *> &tiles)
{
    QList<qint64> pids;
    for (VideoWidget *tile : tiles)
        pids.append(childOf(tile));
    return pids;
}

double cpuMsOf(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray line = file.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    const double ticks = fields.value(11).toDouble() + fields.value(12).toDouble();
    return ticks * 1000.0 / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double pssMebibytesOf(const QString &pid)
{
    return Bench::mebibytesOf(pid, "smaps_rollup", "Pss");
}

struct Usage {
    double cpuMs = Bench::cpuMilliseconds();
    double pssMebibytes = pssMebibytesOf(QStringLiteral("self"));

    explicit Usage(const QList<qint64> &children)
    {
        for (const qint64 child : children) {
            cpuMs += cpuMsOf(child);
            pssMebibytes += pssMebibytesOf(QString::number(child));
        }
    }
};

struct WallRun {
    int tiles = 0;
    int quality = -1; ///< -1: by the rule
    double cpuMsAPicture = 0;
    double pssMebibytesATile = 0;
    double shownShare = 0;
    qint64 stallMs = 0;
    qint64 openMs = 0;
};

API::LayoutPtr wallOf(int side)
{
    auto layout = API::LayoutPtr::create();
    layout->resize(side, side);
    int cell = 0;
    const auto servers = API::CloudAPIClient::serverList();
    for (const API::ServerPtr &server : servers) {
        const auto cameras = server->cameras();
        for (const API::CameraPtr &camera : cameras) {
            if (cell < side * side)
                layout->setCamera(camera, cell / side, cell % side, 1, 1);
            ++cell;
        }
    }
    return layout;
}

bool allShow(const QList<VideoWidget *> &tiles)
{
    return std::all_of(tiles.begin(), tiles.end(),
                       [](const VideoWidget *tile) { return tile->isPlaying(); });
}

WallRun measure(int side, int quality)
{
    WallRun run;
    run.tiles = side * side;
    run.quality = quality;
    GUI::MainWindow *window = mainWindow();
    window->openLayout(API::LayoutPtr::create());

    QElapsedTimer opened;
    opened.start();
    window->openLayout(wallOf(side));
    if (quality == 1)
        window->setMidQuality();
    else if (quality == 2)
        window->setHighQuality();
    const QList<VideoWidget *> tiles = window->findChild<GUI::LayoutWidget *>()->players();
    if (!QTest::qWaitFor([&] { return allShow(tiles); }, openLimitMs))
        return run;
    run.openMs = opened.elapsed();

    QTest::qWait(warmUpMs);
    Bench::PaintCounter counter;
    for (VideoWidget *tile : tiles)
        tile->installEventFilter(&counter);
    StallProbe stalls;
    const QList<qint64> children = childrenOf(tiles);
    QElapsedTimer measured;
    measured.start();
    const Usage before(children);
    QTest::qWait(measuredMs);
    const Usage after(children);
    const double shown = counter.paints;
    const double sent = measured.elapsed() / 1000.0 * framesPerSecond * run.tiles;
    run.cpuMsAPicture = (after.cpuMs - before.cpuMs) / std::max(shown, 1.0);
    run.pssMebibytesATile = after.pssMebibytes / run.tiles;
    run.shownShare = shown / sent;
    run.stallMs = stalls.longestMs;
    return run;
}

/// Some seconds of a live stream as a file.
QByteArray record(const API::CameraPtr &camera, int quality, const QTemporaryDir &folder)
{
    QNetworkAccessManager manager;
    QNetworkReply *reply = manager.get(QNetworkRequest(QUrl(camera->liveUrl(quality))));
    QTest::qWait(recordMs);
    QByteArray path = QFile::encodeName(folder.filePath(QStringLiteral("q%1.flv").arg(quality)));
    QFile file(QFile::decodeName(path));
    if (file.open(QIODevice::WriteOnly))
        file.write(reply->readAll());
    reply->abort();
    reply->deleteLater();
    return path;
}

bool report(const char *what, double value, const char *unit, double limit, bool atLeast)
{
    const bool good = atLeast ? value >= limit : value <= limit;
    std::printf("%-58s %8.2f %-3s %s %.2f: %s\n", what, value, unit, atLeast ? "min" : "max", limit,
                good ? "ok" : "OVER");
    return good;
}

void print(const WallRun &run)
{
    const QByteArray quality = run.quality < 0 ? "rule" : QByteArray::number(run.quality);
    std::printf("%5d  %-7s %14.2f %14.1f %12.1f %% %9lld ms %9lld ms\n", run.tiles,
                quality.constData(), run.cpuMsAPicture, run.pssMebibytesATile, 100 * run.shownShare,
                static_cast<long long>(run.stallMs), static_cast<long long>(run.openMs));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    App::Environment::setPlayerProgram(QStringLiteral(ZORVANE_BIN_DIR "/vlc-stream"));
    DemoService service;
    DemoService::Options options;
    options.plain = true;
    options.servers = serverCount;
    options.cameras = 36;
    options.fullRate = true;
    options.lanServers = 0;
    if (!service.start(options)) {
        std::fprintf(stderr, "%s\n", qPrintable(service.errorString()));
        return 1;
    }
    useService(service);
    const auto hasServers = [] { return serverWidgets().size() == serverCount; };
    if (!enter(service) || !QTest::qWaitFor(hasServers, signInLimitMs)) {
        std::fprintf(stderr, "cannot sign in to the demo service\n");
        return 1;
    }
    mainWindow()->resize(windowSize);

    const QTemporaryDir folder;
    const API::CameraPtr camera = wallOf(1)->cellList().first().camera;
    const double decodeHigh =
        Bench::decodeMilliseconds(record(camera, 2, folder), Bench::Pace::Stream);
    const double decodeMiddle =
        Bench::decodeMilliseconds(record(camera, 1, folder), Bench::Pace::Stream);
    std::printf("decode only, at 25 a second: 1280x720 %.2f ms, 640x360 %.2f ms a picture\n\n",
                decodeHigh, decodeMiddle);
    std::printf("tiles  quality  CPU ms/picture  PSS MiB/tile        shown        stall    "
                "last opened\n");

    QMap<QPair<int, int>, WallRun> runs;
    const auto take = [&runs](int side, int quality) {
        const WallRun run = measure(side, quality);
        runs.insert({run.tiles, quality}, run);
        print(run);
    };
    if (argc == 3) {
        take(std::atoi(argv[1]), std::atoi(argv[2]));
        leave();
        return 0;
    }
    for (const int quality : {-1, 2}) {
        for (const int side : {1, 2, 3, 4, 6})
            take(side, quality);
    }
    take(4, 1);

    std::printf("\n");
    const WallRun nine = runs.value({9, 2});
    const WallRun sixteen = runs.value({16, 1});
    const WallRun thirtySix = runs.value({36, -1});
    bool good = report("9 tiles of 1280x720: CPU to decode only", nine.cpuMsAPicture / decodeHigh,
                       "x", maxCpuRatioAtNine, false);
    good &= report("16 tiles of 640x360: pictures shown", 100 * sixteen.shownShare, "%",
                   100 * minShownShareAtSixteen, true);
    good &= report("16 tiles of 640x360: longest stall", static_cast<double>(sixteen.stallMs), "ms",
                   maxStallMs, false);
    good &= report("36 tiles by the rule: opened to last first picture",
                   static_cast<double>(thirtySix.openMs), "ms", maxOpenMsAtThirtySix, false);
    leave();
    service.stop();
    return good ? 0 : 1;
}
