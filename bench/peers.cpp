// SPDX-License-Identifier: MIT
// The same live streams at the same places of the display, shown by the client, by one mpv for
// each stream, and by GStreamer's compositor: processor time of all processes of each, and of
// the display's server, as a share of one core. A wall counts when each of its pictures is seen to
// move on the display.
#include <QGuiApplication>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
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

/// What is seen at those places.
std::vector<QImage> seen(const QList<Place> &places)
{
    const QImage display = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
    std::vector<QImage> images;
    for (const Place &place : places)
        images.push_back(display.copy(place.area));
    return images;
}

/// True once every place shows something else than before; the noise of a picture never stands
/// still.
bool allMove(const QList<Place> &places)
{
    const std::vector<QImage> before = seen(places);
    std::vector<bool> moved(before.size());
    return QTest::qWaitFor(
        [&] {
            const std::vector<QImage> now = seen(places);
            for (std::size_t i = 0; i < now.size(); ++i)
                moved[i] = moved[i] || now[i] != before[i];
            return std::find(moved.begin(), moved.end(), false) == moved.end();
        },
        showLimitMs);
}

/// Percent of a core that `cpuMs` grows by; nothing if not all pictures move before and
/// after.
template <typename Cpu>
std::optional<double> percentOfCore(const QList<Place> &places, const Cpu &cpuMs)
{
    if (!allMove(places))
        return std::nullopt;
    QTest::qWait(warmUpMs);
    const double beforeMs = cpuMs();
    const long long began = nowNanoseconds();
    QTest::qWait(measuredMs);
    const double percent = 100 * (cpuMs() - beforeMs) / ((nowNanoseconds() - began) / 1e6);
    return allMove(places) ? std::optional<double>(percent) : std::nullopt;
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
                           " ! videoconvert ! ximagesink")
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

std::optional<double> percentOf(const QList<QStringList> &commands, const QList<Place> &places)
{
    const Programs programs(commands);
    return percentOfCore(places, [&programs] { return programs.cpuMs(); });
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
    const auto ours = percentOfCore(places, [&client] { return client.cpu().sum(); });
    client.close();
    const auto ofMpv = percentOf(mpv, places);
    const auto ofCompositor = percentOf({compositorCommand(places)}, places);
    std::printf("%s, each %dx%d on the display\n", wall.name, areas.first().width(),
                areas.first().height());
    std::printf("  client %25.1f %%\n  mpv, one for each stream %7.1f %%\n"
                "  GStreamer's compositor %9.1f %%   (0: did not show all)\n",
                ours.value_or(0), ofMpv.value_or(0), ofCompositor.value_or(0));
    std::fflush(stdout);
    return ours && ofMpv && ofCompositor &&
           within(std::string(wall.name) + ": client to mpv", *ours / *ofMpv, "x",
                  wall.maxRatioToMpv);
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
