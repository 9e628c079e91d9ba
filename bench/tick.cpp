// SPDX-License-Identifier: MIT
// What the archive's tick costs with 36 tiles that have nothing to start, and what the program
// costs while it idles after 100 jumps, each of which leaves one more tick a second behind.
// Exit status 1 when the limit is passed. The players are the tests' scripted ones.
#include <QSignalSpy>
#include <QTest>

#include <cstdio>

#include "API/Camera.h"
#include "API/Layout.h"
#include "App/Application.h"
#include "App/Environment.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Timeline.h"
#include "bench/Measure.h"
#include "bench/QuietRun.h"
#include "tests/support/ArchiveWorld.h"
#include "tests/support/ScriptedChild.h"

using namespace ZorvaneClient;
using Bench::cpuMilliseconds;

namespace {

constexpr int side = 6;
constexpr int jumps = 100;
constexpr int ticks = 2000;
constexpr int idleMs = 10'000;
constexpr int replyLimitMs = 60'000;
constexpr double tickLimitMs = 1;

const QDate day(2026, 3, 10);

QDateTime jumpTo(int number)
{
    return QDateTime(day, QTime(1, 0)).addSecs(qint64(number) * 60);
}

} // namespace

int main(int argc, char **argv)
{
    const Bench::QuietRun surroundings;
    App::Application application(argc, argv);
    App::Environment::setClock([] { return QDateTime(day, QTime(20, 0)); });
    Tests::ScriptedChild players({QStringLiteral("wait never")});
    Tests::ArchiveWorld world;
    if (!world.start()) {
        std::fprintf(stderr, "no service on loopback\n");
        return 1;
    }

    GUI::MainWindow window;
    const auto layout = API::LayoutPtr::create();
    layout->resize(side, side);
    const QList<API::ArchiveRecord> wholeDay{
        API::ArchiveRecord{QDateTime(day, QTime(0, 0)), QDateTime(day, QTime(23, 0))}};
    for (int cell = 0; cell < side * side; ++cell) {
        const API::CameraPtr camera = world.loadedCamera(cell + 1, day, wholeDay);
        if (!camera)
            return 1;
        layout->setCamera(camera, cell / side, cell % side, 1, 1);
    }
    QSignalSpy updated(window.findChild<GUI::Timeline *>(), &GUI::Timeline::recordsUpdated);
    window.openLayout(layout);
    if (!QTest::qWaitFor([&] { return updated.size() >= side * side; }, replyLimitMs))
        return 1;

    const double beforeJumps = cpuMilliseconds();
    for (int number = 0; number < jumps; ++number) {
        window.onPlayArchive(jumpTo(number));
        QCoreApplication::processEvents();
    }
    const double jumpMs = (cpuMilliseconds() - beforeJumps) / jumps;

    const double beforeTicks = cpuMilliseconds();
    for (int tick = 0; tick < ticks; ++tick)
        window.playArchive();
    const double tickMs = (cpuMilliseconds() - beforeTicks) / ticks;

    const double beforeIdle = cpuMilliseconds();
    QTest::qWait(idleMs);
    const double idleShare = (cpuMilliseconds() - beforeIdle) / idleMs;

    std::printf("%d tiles, %d jumps in a row; CPU of the client\n", side * side, jumps);
    std::printf("a jump, with its %d starts of a player  %8.2f ms\n", side * side, jumpMs);
    std::printf("an idle tick                            %8.4f ms\n", tickMs);
    std::printf("the window, with %d ticks a second     %8.2f %%\n", jumps, 100 * idleShare);
    return Bench::within("an idle tick", tickMs, "ms", tickLimitMs) ? 0 : 1;
}
