// SPDX-License-Identifier: MIT
// The same live streams at the same places of the display, shown by the client, by one mpv for
// each stream, and by GStreamer's compositor: processor time of all processes of each, and of
// the display's server, as a share of one core and for each picture that is seen on the display.
#include <QGuiApplication>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "API/Camera.h"
#include "API/StreamQuality.h"
#include "App/Application.h"
#include "App/Environment.h"
#include "bench/LiveWall.h"
#include "bench/Measure.h"
#include "bench/Processes.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Bench;

namespace {

constexpr int showLimitMs = 60000;
constexpr int warmUpMs = 5000;
constexpr int measuredMs = 10000;
constexpr int endLimitMs = 5000;
constexpr int changesOfPlaying = 5;
constexpr int countedMs = 4000;
constexpr int probeIntervalMs = 8;
constexpr QSize probeSize(96, 54);

/// One wall in the client.
struct Wall {
    const char *name;
    int side;
    int quality; ///< API::StreamQuality
    double maxRatioToMpv;
};

constexpr Wall walls[] = {{"9 of 1280x720", 3, API::HighQuality, 0.80},
                          {"16 of 640x360", 4, API::MiddleQuality, 0.70}};

/// A stream and where it is to be seen.
struct Place {
    QString address;
    QRect area;
};

/// The middle of each picture as the display shows it: small, since looking costs time as well.
class Probes
{
public:
    explicit Probes(const QList<Place> &places)
    {
        for (const Place &place : places) {
            QRect area(QPoint(), probeSize);
            area.moveCenter(place.area.center());
            areas << area;
        }
        changes.fill(0, areas.size());
    }

    /// Counts the places that have changed since the last look. The noise of a picture never
    /// stands still.
    void look()
    {
        QVector<QImage> now;
        for (const QRect &area : qAsConst(areas)) {
            QScreen *display = QGuiApplication::primaryScreen();
            now << display->grabWindow(0, area.x(), area.y(), area.width(), area.height())
                       .toImage();
        }
        for (int i = 0; i < before.size(); ++i)
            changes[i] += now.at(i) != before.at(i);
        before = now;
    }

    bool haveAllChanged(int times) const
    {
        return std::all_of(changes.begin(), changes.end(),
                           [times](int count) { return count >= times; });
    }

    int sum() const { return std::accumulate(changes.begin(), changes.end(), 0); }

private:
    QVector<QRect> areas;
    QVector<QImage> before;
    QVector<int> changes;
};

/// What a program takes and shows.
struct Cost {
    double percentOfCore = 0;
    double picturesASecond = 0; ///< of all places together

    double msAPicture() const
    {
        return picturesASecond > 0 ? 10 * percentOfCore / picturesASecond : 0;
    }
};

bool allPlay(const QList<Place> &places)
{
    Probes probes(places);
    return QTest::qWaitFor(
        [&probes] {
            probes.look();
            return probes.haveAllChanged(changesOfPlaying);
        },
        showLimitMs);
}

double picturesASecond(const QList<Place> &places)
{
    Probes probes(places);
    probes.look();
    const long long end = nowNanoseconds() + 1'000'000LL * countedMs;
    while (nowNanoseconds() < end) {
        QTest::qWait(probeIntervalMs);
        probes.look();
    }
    return probes.sum() * 1000.0 / countedMs;
}

/// Counts after it has measured, since that takes processor time itself. All 0 if not every
/// place comes to play.
template <typename Cpu>
Cost measure(const QList<Place> &places, const Cpu &cpuMs)
{
    if (!allPlay(places))
        return {};
    QTest::qWait(warmUpMs);
    const double beforeMs = cpuMs();
    const long long began = nowNanoseconds();
    QTest::qWait(measuredMs);
    const double tookMs = static_cast<double>(nowNanoseconds() - began) / 1e6;
    const double percent = 100 * (cpuMs() - beforeMs) / tookMs;
    return {percent, picturesASecond(places)};
}

QStringList mpvCommand(const Place &place)
{
    const QRect area = place.area;
    return {QStringLiteral("mpv"),
            QStringLiteral("--no-config"),
            QStringLiteral("--profile=low-latency"),
            QStringLiteral("--vo=x11"),
            QStringLiteral("--hwdec=no"),
            QStringLiteral("--no-audio"),
            QStringLiteral("--no-osc"),
            QStringLiteral("--ytdl=no"),
            QStringLiteral("--no-border"),
            QStringLiteral("--no-keepaspect"),
            QStringLiteral("--no-terminal"),
            QStringLiteral("--geometry=%1x%2+%3+%4")
                .arg(area.width())
                .arg(area.height())
                .arg(area.x())
                .arg(area.y()),
            place.address};
}

QStringList compositorCommand(const QList<Place> &places)
{
    const QSize display = QGuiApplication::primaryScreen()->size();
    QString line = QStringLiteral("gst-launch-1.0 -q compositor name=wall background=black");
    int pad = 0;
    for (const Place &place : places) {
        line += QStringLiteral(" sink_%1::xpos=%2 sink_%1::ypos=%3 sink_%1::width=%4"
                               " sink_%1::height=%5")
                    .arg(pad++)
                    .arg(place.area.x())
                    .arg(place.area.y())
                    .arg(place.area.width())
                    .arg(place.area.height());
    }
    line += QStringLiteral(" ! video/x-raw,width=%1,height=%2,framerate=%3/1"
                           " ! videoconvert ! ximagesink sync=false")
                .arg(display.width())
                .arg(display.height())
                .arg(LiveWall::framesPerSecond);
    pad = 0;
    for (const Place &place : places) {
        line += QStringLiteral(" souphttpsrc is-live=true location=%1 ! flvdemux ! h264parse"
                               " ! avdec_h264 max-threads=1 ! queue ! wall.sink_%2")
                    .arg(place.address)
                    .arg(pad++);
    }
    return line.split(QLatin1Char(' '));
}

/// The commands run until this is left.
class Programs
{
public:
    explicit Programs(const QList<QStringList> &commands)
    {
        for (const QStringList &command : commands) {
            processes.push_back(std::make_unique<QProcess>());
            processes.back()->setProcessChannelMode(QProcess::ForwardedErrorChannel);
            processes.back()->start(command.first(), command.mid(1));
        }
    }

    ~Programs()
    {
        for (const auto &process : processes)
            process->terminate();
        for (const auto &process : processes)
            process->waitForFinished(endLimitMs);
    }

    double cpuMs() const
    {
        double sum = cpuMillisecondsOf(displayServer());
        for (const auto &process : processes)
            sum += cpuMillisecondsOf(process->processId());
        return sum;
    }

private:
    std::vector<std::unique_ptr<QProcess>> processes;
};

Cost costOf(const QList<QStringList> &commands, const QList<Place> &places)
{
    const Programs programs(commands);
    return measure(places, [&programs] { return programs.cpuMs(); });
}

void print(const char *program, const Cost &cost)
{
    std::printf("  %-24s %6.1f %%  %7.1f  %7.2f ms\n", program, cost.percentOfCore,
                cost.picturesASecond, cost.msAPicture());
    std::fflush(stdout);
}

/// False when the client is over its limit, or when one of the programs shows nothing.
bool compare(LiveWall &client, const Wall &wall)
{
    if (!client.open(wall.side, wall.quality))
        return false;
    QList<Place> places;
    QList<QStringList> mpv;
    const QList<QRect> areas = client.pictures();
    for (const QRect &area : areas) {
        places << Place{client.camera(places.size())->liveUrl(wall.quality), area};
        mpv << mpvCommand(places.last());
    }
    std::printf("%s, each %dx%d on the display: of a core, pictures a second, each\n", wall.name,
                areas.first().width(), areas.first().height());
    const Cost ours = measure(places, [&client] { return client.cpu().sum(); });
    client.close();
    print("client", ours);
    const Cost ofMpv = costOf(mpv, places);
    print("mpv, one for each", ofMpv);
    const Cost ofCompositor = costOf({compositorCommand(places)}, places);
    print("GStreamer's compositor", ofCompositor);
    return ours.msAPicture() > 0 && ofMpv.msAPicture() > 0 && ofCompositor.msAPicture() > 0 &&
           within(std::string(wall.name) + ": client to mpv",
                  ours.msAPicture() / ofMpv.msAPicture(), "x", wall.maxRatioToMpv);
}

} // namespace

int main(int argc, char **argv)
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    App::Environment::setPlayerProgram(QStringLiteral(ZORVANE_BIN_DIR "/vlc-stream"));
    LiveWall client;
    if (!client.start(Pictures::Noisy))
        return 1;
    bool good = true;
    for (const Wall &wall : walls)
        good &= compare(client, wall);
    return good ? 0 : 1;
}
