// SPDX-License-Identifier: MIT
// What the roster view costs at 100, 1,000 and 5,000 cameras: the first fill of a shown
// window until it is painted, a refresh without change, a refresh after which one camera of each
// server stands elsewhere, one paint of the scrolled list, and memory. Exit status 1 when a limit
// is passed. Nothing leaves the machine: the service is a port of loopback that nobody serves.
#include <QApplication>
#include <QScrollBar>

#include <cstdio>
#include <string>
#include <vector>

#include "API/CloudAPIClient.h"
#include "App/Application.h"
#include "App/ServiceProfile.h"
#include "GUI/CameraWidget.h"
#include "GUI/RosterWidget.h"
#include "bench/Measure.h"
#include "bench/Processes.h"
#include "bench/QuietRun.h"

using namespace ZorvaneClient;
using Bench::bestMilliseconds;
using Bench::millisecondsOf;

namespace {

constexpr int camerasOfServer = 20;
constexpr int offlineEvery = 7;
constexpr int repetitions = 9;
constexpr int closedPort = 9;
constexpr QSize rosterSize(254, 608);

constexpr double firstFillLimitMs = 2000;
constexpr double refreshLimitMs = 50;
constexpr double paintLimitMs = 20;
// Times the growth of the roster. It leaves room for data that no longer fit into the caches;
// what grows with the square would be at five.
constexpr double growthAllowance = 3;

struct Row {
    int cameras = 0;
    int servers = 0;
    double fillMs = 0;
    double refreshMs = 0;
    double moveMs = 0;
    double paintMs = 0;
    double memoryMiB = 0;
};

double residentMiB()
{
    return Bench::mebibytesOf(QStringLiteral("self"), "status", "VmRSS");
}

QVariantMap cameraJson(int id, bool online, const QString &name)
{
    const QVariantMap active{{QStringLiteral("active"), true}};
    return {{QStringLiteral("id"), id},
            {QStringLiteral("name"), name},
            {QStringLiteral("online"), online},
            {QStringLiteral("rights"), QStringList{QStringLiteral("live")}},
            {QStringLiteral("services"), QVariantMap{{QStringLiteral("enabled"), active}}}};
}

/// `firstName` is the name of each server's first camera, and so where it stands.
QVariantMap rosterJson(int cameras, int perServer, const QString &firstName)
{
    QVariantMap roster;
    for (int server = 0; server * perServer < cameras; ++server) {
        QVariantMap list;
        for (int camera = 1; camera <= perServer; ++camera) {
            const QString name = QStringLiteral("Camera %1").arg(camera, 5, 10, QLatin1Char('0'));
            list.insert(QString::number(camera), cameraJson(camera, camera % offlineEvery != 0,
                                                            camera == 1 ? firstName : name));
        }
        const QString id = QString::number(server);
        roster.insert(id, QVariantMap{{QStringLiteral("id"), id},
                                      {QStringLiteral("name"), QStringLiteral("Server ") + id},
                                      {QStringLiteral("online"), true},
                                      {QStringLiteral("cameras"), list}});
    }
    return roster;
}

void takeRoster(const QVariantMap &roster)
{
    API::CloudAPIClient client;
    QMetaObject::invokeMethod(&client, "onNewRosterReceived", Qt::DirectConnection,
                              Q_ARG(QVariant, QVariant(roster)));
}

/// Until there is nothing left to lay out or paint.
void settle()
{
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

Row measure(int cameras, int perServer)
{
    Row row;
    row.cameras = cameras;
    const double before = residentMiB();
    GUI::RosterWidget roster;
    roster.resize(rosterSize);
    roster.show();
    settle();

    const QString first = QStringLiteral("Camera 00001");
    takeRoster(rosterJson(cameras, perServer, first));
    row.servers = API::CloudAPIClient::serverList().size();
    row.fillMs = millisecondsOf([&] {
        roster.updateRoster();
        settle();
    });
    const int cards = roster.findChildren<GUI::CameraWidget *>().size();
    if (cards != cameras)
        qFatal("%d cards for %d cameras", cards, cameras);
    row.memoryMiB = residentMiB() - before;

    const auto refresh = [&] {
        roster.updateRoster();
        settle();
    };
    row.refreshMs = bestMilliseconds(repetitions, refresh);
    row.paintMs = bestMilliseconds(repetitions, [&] {
        QScrollBar *bar = roster.verticalScrollBar();
        bar->setValue((bar->value() + bar->pageStep()) % (bar->maximum() + 1));
        settle();
    });
    bool moved = false;
    row.moveMs = bestMilliseconds(repetitions, refresh, [&] {
        moved = !moved;
        takeRoster(rosterJson(cameras, perServer, moved ? QStringLiteral("Zebra") : first));
    });
    API::CloudAPIClient::clearRoster();
    return row;
}

bool within(const char *what, int cameras, double value, double limit)
{
    const std::string title = std::to_string(cameras) + " cameras: " + what;
    return Bench::within(title, value, "ms", limit);
}

bool check(const std::vector<Row> &rows)
{
    bool ok = true;
    for (const Row &row : rows) {
        ok &= within("first fill", row.cameras, row.fillMs, firstFillLimitMs);
        ok &= within("refresh without change", row.cameras, row.refreshMs, refreshLimitMs);
        ok &= within("scroll by a page and paint", row.cameras, row.paintMs, paintLimitMs);
    }
    const Row &small = rows[1];
    const Row &large = rows[2];
    const double factor = growthAllowance * large.cameras / small.cameras;
    ok &= within("first fill, growth", large.cameras, large.fillMs, small.fillMs * factor);
    ok &= within("refresh, growth", large.cameras, large.refreshMs, small.refreshMs * factor);
    ok &= within("one camera moved, growth", large.cameras, large.moveMs, small.moveMs * factor);
    return ok;
}

void print(const Row &row)
{
    std::printf("%8d %8d %12.1f %12.2f %14.2f %12.2f %12.1f\n", row.cameras, row.servers,
                row.fillMs, row.refreshMs, row.moveMs, row.paintMs, row.memoryMiB);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char *argv[])
{
    const Bench::QuietRun surroundings;
    QApplication application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    App::ServiceProfile profile;
    profile.apiHost = profile.streamingHost = QStringLiteral("127.0.0.1");
    profile.apiPort = profile.streamingPort = closedPort;
    App::ServiceProfile::setCurrent(profile);

    std::printf("%8s %8s %12s %12s %14s %12s %12s\n", "cameras", "servers", "fill ms", "refresh ms",
                "one moved ms", "scroll ms", "memory MiB");
    std::vector<Row> rows;
    measure(camerasOfServer, camerasOfServer); // style, fonts and icons are loaded
    for (const int cameras : {100, 1000, 5000}) {
        rows.push_back(measure(cameras, camerasOfServer));
        print(rows.back());
    }
    print(measure(5000, 5000)); // all in one server
    std::printf("\n");
    return check(rows) ? 0 : 1;
}
