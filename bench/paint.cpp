// SPDX-License-Identifier: MIT
// What a painted frame costs the client: tiles of 640x360 sources in a window of 1920x1080,
// frames written and announced by real children, beside a bare QPainter loop that scales the
// same frames as smoothly at the same pace into the same places of an image like the window's; and
// the same tiles zoomed, beside themselves at rest. CPU of this process only.
#include <QApplication>
#include <QBackingStore>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGridLayout>
#include <QImage>
#include <QPainter>
#include <QTimer>
#include <QVector>
#include <QWheelEvent>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include "API/Camera.h"
#include "GUI/Player/PictureGeometry.h"
#include "GUI/Player/VideoWidget.h"
#include "bench/Measure.h"
#include "bench/PaintCounter.h"
#include "bench/QuietRun.h"
#include "tests/support/ScriptedChild.h"

using namespace ZorvaneClient;
using GUI::Player::VideoWidget;

namespace {

constexpr QSize windowSize(1920, 1080);
constexpr QSize streamSize(640, 360);
constexpr int framesPerSecond = 25;
constexpr int rounds = 5;
constexpr int roundMsecs = 1200;
constexpr int warmUpMsecs = 500;
constexpr int settleMsecs = 100;
constexpr int patienceMsecs = 30000;
constexpr int gridMargin = 2;

constexpr int judgedTiles = 16;
constexpr double wantedRatio = 1.3;
/// A zoomed picture costs what a whole one costs; the rest is for the noise of the machine.
constexpr double wantedZoomRatio = 1.1;
constexpr int zoomNotches = 6; // four times
constexpr int eighthsPerNotch = 120;

double cpuMicroseconds()
{
    return 1e3 * Bench::cpuMilliseconds();
}

API::CameraPtr camera(int number)
{
    auto camera = API::CameraPtr::create();
    camera->setKind(API::LocalCamera);
    camera->setId(QStringLiteral("127.0.0.1:1"), number);
    camera->setName(QStringLiteral("Camera %1").arg(number));
    return camera;
}

void spin(int msecs)
{
    QEventLoop loop;
    QTimer::singleShot(msecs, &loop, &QEventLoop::quit);
    loop.exec();
}

/// A window of `side` by `side` tiles that play.
class TileWindow
{
public:
    explicit TileWindow(int side)
    {
        auto *grid = new QGridLayout(&window);
        grid->setContentsMargins(gridMargin, gridMargin, gridMargin, gridMargin);
        grid->setSpacing(gridMargin);
        for (int cell = 0; cell < side * side; ++cell) {
            auto *tile = new VideoWidget(camera(cell), &window);
            grid->addWidget(tile, cell / side, cell % side);
            tiles << tile;
        }
        window.resize(windowSize);
        window.show();
        for (VideoWidget *tile : qAsConst(tiles)) {
            tile->playLive();
            tile->installEventFilter(&counter);
        }
        waitUntilAllPlay();
        spin(warmUpMsecs);
    }

    /// CPU microseconds for each frame painted in one round.
    double cost()
    {
        spin(settleMsecs); // takes what the children said meanwhile
        counter.paints = 0;
        const double start = cpuMicroseconds();
        spin(roundMsecs);
        return (cpuMicroseconds() - start) / qMax(1, counter.paints);
    }

    /// Enlarges the middle of every picture.
    void zoom()
    {
        for (VideoWidget *tile : qAsConst(tiles)) {
            const QPointF middle = QRectF(tile->rect()).center();
            QWheelEvent wheel(middle, tile->mapToGlobal(middle.toPoint()), QPoint(),
                              QPoint(0, zoomNotches * eighthsPerNotch), Qt::NoButton,
                              Qt::ControlModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(tile, &wheel);
        }
    }

    void resetZoom()
    {
        for (VideoWidget *tile : qAsConst(tiles))
            tile->resetZoom();
    }

    /// Where the pictures stand in the window.
    QVector<QRect> places() const
    {
        const double ratio = double(streamSize.width()) / streamSize.height();
        QVector<QRect> result;
        for (const VideoWidget *tile : tiles)
            result
                << GUI::Player::Internal::fitPicture(tile->size(), ratio).translated(tile->pos());
        return result;
    }

    QImage::Format surfaceFormat() const
    {
        const auto *surface = dynamic_cast<QImage *>(window.backingStore()->paintDevice());
        return surface ? surface->format() : QImage::Format_RGB32;
    }

private:
    void waitUntilAllPlay()
    {
        QElapsedTimer patience;
        patience.start();
        const auto isPlaying = [](const VideoWidget *tile) { return tile->isPlaying(); };
        while (!std::all_of(tiles.cbegin(), tiles.cend(), isPlaying)) {
            if (patience.elapsed() > patienceMsecs)
                qFatal("the tiles don't play");
            spin(warmUpMsecs);
        }
    }

    Bench::PaintCounter counter;
    QWidget window;
    QVector<VideoWidget *> tiles;
};

/// Scales the frames that the tiles' children write into the same places at the same pace, and
/// nothing else.
class BareLoop
{
public:
    BareLoop(const QVector<QRect> &places, QImage::Format surfaceFormat)
        : targets(places), surface(windowSize, surfaceFormat)
    {
        surface.fill(Qt::black);
        const QDir folder = QDir::temp();
        for (const QString &name : folder.entryList({QStringLiteral("zorvane-player-*")})) {
            files.push_back(std::make_unique<QFile>(folder.filePath(name)));
            QFile &file = *files.back();
            uchar *memory = file.open(QIODevice::ReadWrite) ? file.map(0, file.size()) : nullptr;
            if (!memory)
                qFatal("a frame file can't be mapped");
            pictures << QImage(memory, streamSize.width(), streamSize.height(),
                               QImage::Format_RGB32);
        }
        if (pictures.size() != targets.size())
            qFatal("there must be a frame file for each tile");
    }

    double cost()
    {
        const int frames = framesPerSecond * pictures.size() * roundMsecs / 1000;
        const std::chrono::microseconds interval(1000000 / framesPerSecond / pictures.size());
        const double start = cpuMicroseconds();
        auto next = std::chrono::steady_clock::now();
        for (int frame = 0; frame < frames; ++frame) {
            std::this_thread::sleep_until(next += interval);
            const int i = frame % pictures.size();
            QPainter painter(&surface);
            painter.setRenderHint(QPainter::SmoothPixmapTransform,
                                  targets.at(i).size() != pictures.at(i).size());
            painter.drawImage(QRectF(targets.at(i)), pictures.at(i), QRectF(pictures.at(i).rect()));
        }
        return (cpuMicroseconds() - start) / frames;
    }

private:
    QVector<QRect> targets;
    QImage surface;
    std::vector<std::unique_ptr<QFile>> files;
    QVector<QImage> pictures;
};

/// CPU microseconds for each frame; the least disturbed rounds.
struct Costs {
    double client = 0;
    double bare = 0;
    double zoomed = 0;
};

/// Takes all three in turns, so that they meet the same machine.
Costs measure(int side)
{
    TileWindow window(side);
    BareLoop loop(window.places(), window.surfaceFormat());
    constexpr double never = std::numeric_limits<double>::max();
    Costs least{never, never, never};
    for (int round = 0; round < rounds; ++round) {
        least.client = std::min(least.client, window.cost());
        least.bare = std::min(least.bare, loop.cost());
        window.zoom();
        least.zoomed = std::min(least.zoomed, window.cost());
        window.resetZoom();
    }
    return least;
}

} // namespace

int main(int argc, char **argv)
{
    const Bench::QuietRun surroundings;
    QApplication application(argc, argv);
    if (application.arguments().size() > 1) {
        std::fprintf(stderr, "usage: bench_paint\n");
        return 2;
    }
    qputenv("TMPDIR", QFile::encodeName(QDir::currentPath())); // only its own frame files
    const Tests::ScriptedChild child({QStringLiteral("solid 640 360 ff0000ff"),
                                      QStringLiteral("print size 640 360\\n"),
                                      QStringLiteral("pace %1 frame\\n").arg(framesPerSecond)});

    std::printf("CPU for each painted frame, 640x360 sources in a window of 1920x1080\n"
                "tiles   client us   bare us   ratio   zoomed us   to at rest\n");
    Costs judged;
    for (int side : {1, 2, 4, 6}) {
        const int tiles = side * side;
        const Costs costs = measure(side);
        if (tiles == judgedTiles)
            judged = costs;
        std::printf("%5d %11.1f %9.1f %7.2f %11.1f %12.2f\n", tiles, costs.client, costs.bare,
                    costs.client / costs.bare, costs.zoomed, costs.zoomed / costs.client);
        std::fflush(stdout);
    }
    bool good = Bench::within("16 tiles: client to bare painter", judged.client / judged.bare, "x",
                              wantedRatio);
    good &= Bench::within("16 tiles: zoomed to at rest", judged.zoomed / judged.client, "x",
                          wantedZoomRatio);
    return good ? 0 : 1;
}
