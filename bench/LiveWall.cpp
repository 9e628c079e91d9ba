// SPDX-License-Identifier: MIT
#include "bench/LiveWall.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QScreen>
#include <QTest>

#include <algorithm>
#include <cstdio>

#include "bench/Measure.h"
#include "bench/Processes.h"
#include "tests/e2e/EndToEnd.h"

namespace ZorvaneClient {
namespace Bench {

namespace {

using namespace ZorvaneClient::Tests;

constexpr int serverCount = 4;
constexpr int signInLimitMs = 20000;
constexpr int openLimitMs = 60000;

double pssMebibytesOf(const QString &pid)
{
    return mebibytesOf(pid, "smaps_rollup", "Pss");
}

GUI::LayoutWidget *grid()
{
    return mainWindow()->findChild<GUI::LayoutWidget *>();
}

bool showsPicture(const GUI::Player::VideoWidget *tile)
{
    return tile->isPlaying();
}

} // namespace

WallCpu WallCpu::since(const WallCpu &before, double parts) const
{
    return {(clientMs - before.clientMs) / parts, (playersMs - before.playersMs) / parts,
            (displayMs - before.displayMs) / parts};
}

LiveWall::~LiveWall()
{
    leave();
    service.stop();
}

bool LiveWall::start(Pictures pictures)
{
    DemoService::Options options;
    options.plain = true;
    options.scenes = 1;
    options.servers = serverCount;
    options.cameras = mostTiles;
    options.fullRate = true;
    options.lanServers = 0;
    if (pictures == Pictures::Noisy)
        options.further << QStringLiteral("--noise");
    if (!service.start(options)) {
        std::fprintf(stderr, "%s\n", qPrintable(service.errorString()));
        return false;
    }
    useService(service);
    const auto hasServers = [] { return serverWidgets().size() == serverCount; };
    if (!enter(service) || !QTest::qWaitFor(hasServers, signInLimitMs)) {
        std::fprintf(stderr, "cannot sign in to the demo service\n");
        return false;
    }
    mainWindow()->onFullscreen();
    mainWindow()->setGeometry(QGuiApplication::primaryScreen()->geometry()); // without a manager
    const auto servers = API::CloudAPIClient::serverList();
    for (const API::ServerPtr &server : servers)
        cameras += server->cameras().values();
    return cameras.size() >= mostTiles;
}

std::optional<qint64> LiveWall::open(int side, std::optional<int> quality)
{
    auto layout = API::LayoutPtr::create();
    layout->resize(side, side);
    for (int cell = 0; cell < side * side; ++cell)
        layout->setCamera(camera(cell), cell / side, cell % side, 1, 1);
    QElapsedTimer opened;
    opened.start();
    mainWindow()->openLayout(layout);
    if (quality)
        grid()->updateQuality(*quality);
    const auto shown = tiles();
    const auto allShow = [&shown] { return std::all_of(shown.begin(), shown.end(), showsPicture); };
    if (!QTest::qWaitFor(allShow, openLimitMs))
        return std::nullopt;
    return opened.elapsed();
}

void LiveWall::close()
{
    mainWindow()->openLayout(API::LayoutPtr::create());
}

QList<GUI::Player::VideoWidget *> LiveWall::tiles() const
{
    return grid()->players();
}

QList<QRect> LiveWall::pictures() const
{
    QList<QRect> places;
    const auto shown = tiles();
    for (const GUI::Player::VideoWidget *tile : shown)
        places << StripReader::pictureArea(tile->size()).translated(tile->mapToGlobal(QPoint()));
    return places;
}

QList<qint64> LiveWall::players() const
{
    QList<qint64> pids;
    const auto shown = tiles();
    for (GUI::Player::VideoWidget *tile : shown)
        pids << childOf(tile);
    return pids;
}

WallCpu LiveWall::cpu() const
{
    WallCpu cpu{cpuMilliseconds(), 0, cpuMillisecondsOf(displayServer())};
    const auto pids = players();
    for (const qint64 pid : pids)
        cpu.playersMs += cpuMillisecondsOf(pid);
    return cpu;
}

double LiveWall::pssMebibytes() const
{
    double sum = pssMebibytesOf(QStringLiteral("self"));
    const auto pids = players();
    for (const qint64 pid : pids)
        sum += pssMebibytesOf(QString::number(pid));
    return sum;
}

QByteArray LiveWall::record(int quality) const
{
    QNetworkAccessManager manager;
    QNetworkReply *reply = manager.get(QNetworkRequest(QUrl(camera(0)->liveUrl(quality))));
    QTest::qWait(1000 * recordedSeconds);
    QByteArray bytes = reply->readAll();
    reply->abort();
    return bytes;
}

} // namespace Bench
} // namespace ZorvaneClient
