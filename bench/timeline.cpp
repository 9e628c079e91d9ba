// SPDX-License-Identifier: MIT
// What the archive strip costs with 1, 4 and 36 cameras of 100, 2,000 and 20,000 records: the
// first paint of new records, a paint that renders the bars anew, a hover, a zoom step, and
// the playlist of a click. Exit status 1 when a limit is passed. The cameras get their records
// from a LAN server on loopback.
#include <QApplication>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

#include <cstdio>
#include <string>
#include <vector>

#include "API/Camera.h"
#include "App/Application.h"
#include "GUI/Timeline.h"
#include "bench/Measure.h"
#include "bench/QuietRun.h"
#include "tests/support/ArchiveWorld.h"

using namespace ZorvaneClient;
using Bench::bestMilliseconds;
using Bench::millisecondsOf;

namespace {

constexpr int repetitions = 25;
constexpr int stripWidth = 1920;
constexpr int stripHeight = 56;
constexpr int secondsPerDay = 24 * 60 * 60;
/// One level is less than a step.
constexpr int zoomedInLevel = 1;

constexpr double renderLimitMs = 8;
constexpr double hoverLimitMs = 1;

const QDate day(2026, 3, 10);

struct Measured {
    int cameras = 0;
    int records = 0; // of each camera
    double firstMs = 0;
    double renderMs = 0;
    double hoverMs = 0;
    double zoomMs = 0;
    double playlistMs = 0;
};

void hover(GUI::Timeline &timeline, int x)
{
    const QPoint place(x, stripHeight / 2);
    QMouseEvent move(QEvent::MouseMove, place, timeline.mapToGlobal(place), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&timeline, &move);
    timeline.repaint();
}

/// With half of each period recorded; the cameras' records are shifted against each other.
QList<API::ArchiveRecord> recordsOf(int camera, int count)
{
    const int period = secondsPerDay / count;
    QList<API::ArchiveRecord> records = Tests::evenRecords(day, count, period, qMax(1, period / 2));
    for (API::ArchiveRecord &record : records) {
        const int shift = camera % qMax(1, period / 2);
        record = {record.start.addSecs(shift), record.end.addSecs(shift)};
    }
    return records;
}

Measured measure(Tests::ArchiveWorld &world, const QList<API::CameraPtr> &cameras, int records)
{
    Measured row;
    row.cameras = cameras.size();
    row.records = records;
    GUI::Timeline timeline(day);
    timeline.resize(stripWidth, stripHeight);
    timeline.show();
    if (!QTest::qWaitForWindowExposed(&timeline))
        qFatal("the strip is not shown");
    for (const API::CameraPtr &camera : cameras) {
        timeline.addCamera(camera);
        QSignalSpy received(camera.data(), &API::Camera::recordsChanged);
        if (!received.wait() || camera->records(day).size() != records)
            qFatal("no records");
    }
    QCoreApplication::processEvents();

    const API::camera_global_id_t active = cameras.first()->globalId();
    timeline.setUpdatesEnabled(false);
    for (const API::CameraPtr &camera : cameras)
        world.load(camera, day); // new lists of the same records
    timeline.setUpdatesEnabled(true);
    row.firstMs = millisecondsOf([&] { timeline.repaint(); });
    row.renderMs = bestMilliseconds(repetitions, [&] {
        timeline.setActiveCameraId(active);
        timeline.repaint();
    });
    int x = 0;
    row.hoverMs = bestMilliseconds(repetitions, [&] { hover(timeline, 100 + 10 * ++x); });
    bool inside = false;
    row.zoomMs = bestMilliseconds(repetitions, [&] {
        inside = !inside;
        timeline.zoom(inside ? zoomedInLevel : 0);
        timeline.repaint();
    });
    row.playlistMs = bestMilliseconds(
        repetitions, [&] { timeline.playlistForCameras(QDateTime(day, QTime(12, 0))); });
    return row;
}

bool within(const char *what, const Measured &row, double value, double limit)
{
    const std::string title = std::to_string(row.cameras) + " cameras of " +
                              std::to_string(row.records) + " records: " + what;
    return Bench::within(title, value, "ms", limit);
}

void print(const Measured &row)
{
    std::printf("%8d %8d %12.2f %12.2f %12.2f %12.2f %12.2f\n", row.cameras, row.records,
                row.firstMs, row.renderMs, row.hoverMs, row.zoomMs, row.playlistMs);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char *argv[])
{
    const Bench::QuietRun surroundings;
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    Tests::ArchiveWorld world;
    if (!world.start())
        qFatal("no server");

    std::printf("%8s %8s %12s %12s %12s %12s %12s\n", "cameras", "records", "first ms", "render ms",
                "hover ms", "zoom ms", "playlist ms");
    std::vector<Measured> rows;
    for (const int records : {100, 2000, 20000}) {
        for (const int count : {1, 4, 36}) {
            QList<API::CameraPtr> cameras;
            for (int id = 1; id <= count; ++id)
                cameras.append(world.loadedCamera(id, day, recordsOf(id, records)));
            rows.push_back(measure(world, cameras, records));
            print(rows.back());
        }
    }
    std::printf("\n");
    bool ok = within("render", rows.back(), rows.back().renderMs, renderLimitMs);
    for (const Measured &row : rows)
        ok &= within("hover", row, row.hoverMs, hoverLimitMs);
    return ok ? 0 : 1;
}
