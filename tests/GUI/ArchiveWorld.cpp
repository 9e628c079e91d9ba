// SPDX-License-Identifier: MIT
#include "tests/GUI/ArchiveWorld.h"

#include "API/Camera.h"
#include "API/Server.h"
#include "App/QtShims.h"

namespace ZorvaneClient::Tests {

namespace {

constexpr int loadDeadlineMs = 30'000;
constexpr int millisecondsPerSecond = 1000;

struct RecordsRequest {
    int camera = 0;
    QDateTime start;
    QDateTime end;
};

RecordsRequest recordsRequest(const WireRequest &request)
{
    const QUrlQuery query(QString::fromLatin1(request.target().split('?').value(1)));
    const auto number = [&query](const char *key) {
        return query.queryItemValue(QLatin1String(key)).toLongLong();
    };
    return {static_cast<int>(number("camera")), fromEpochSeconds(number("startTime")),
            fromEpochSeconds(number("endTime"))};
}

/// The service's figures are one second earlier than what the client makes of them.
QByteArray json(const API::ArchiveRecord &record)
{
    return "{\"startTime\":" +
           QByteArray::number(record.start.toMSecsSinceEpoch() - millisecondsPerSecond) +
           ",\"duration\":" + QByteArray::number(record.start.msecsTo(record.end)) + "}";
}

QByteArray json(QDate day, int count)
{
    const qint64 noon = QDateTime(day, QTime(12, 0)).toSecsSinceEpoch();
    return "{\"date\":" + QByteArray::number(noon) +
           ",\"recordsCount\":" + QByteArray::number(count) + "}";
}

} // namespace

API::ArchiveRecord record(QDate day, QTime start, QTime end)
{
    return {QDateTime(day, start), QDateTime(day, end)};
}

QList<API::ArchiveRecord> evenRecords(QDate day, int count, int period, int length)
{
    QList<API::ArchiveRecord> records;
    records.reserve(count);
    const QDateTime first = day.startOfDay();
    for (int index = 0; index < count; ++index) {
        const QDateTime start = first.addSecs(qint64(index) * period);
        records.append({start, start.addSecs(length)});
    }
    return records;
}

ArchiveWorld::ArchiveWorld()
{
    const auto handler = [this](const WireRequest &request) { return reply(request); };
    lan.setHandler(handler);
    service.server().setHandler(handler);
}

bool ArchiveWorld::start()
{
    return lan.start() && service.start();
}

void ArchiveWorld::reset()
{
    archives.clear();
    refused.clear();
    lan.clearRequests();
    service.server().clearRequests();
}

void ArchiveWorld::setRecords(int id, const QList<API::ArchiveRecord> &records)
{
    refused.removeAll(id);
    archives.insert(id, records);
}

void ArchiveWorld::refuseRecords(int id)
{
    refused.append(id);
}

API::CameraPtr ArchiveWorld::localCamera(int id)
{
    const API::CameraPtr camera = API::CameraPtr::create();
    camera->setId("127.0.0.1:%1"_s.arg(lan.port()), id);
    camera->setKind(API::LocalCamera);
    return camera;
}

API::CameraPtr ArchiveWorld::cloudCamera(int id, bool archiveShared)
{
    API::Server server(QVariantMap{{"id"_s, "cloud"_s}});
    const QStringList rights{archiveShared ? "archive"_s : "live"_s};
    return API::CameraPtr::create(&server, QVariantMap{{"id"_s, id}, {"rights"_s, rights}});
}

API::CameraPtr ArchiveWorld::loadedCamera(int id, QDate day,
                                          const QList<API::ArchiveRecord> &records)
{
    setRecords(id, records);
    const API::CameraPtr camera = localCamera(id);
    return load(camera, day) ? camera : API::CameraPtr();
}

bool ArchiveWorld::load(const API::CameraPtr &camera, QDate day)
{
    QSignalSpy received(camera.data(), &API::Camera::recordsChanged);
    camera->updateTimeline(day);
    return !received.isEmpty() || received.wait(loadDeadlineMs);
}

QList<QDate> ArchiveWorld::requestedDays(int id) const
{
    QList<QDate> days;
    const QList<WireRequest> requests = lan.requests() + service.requests();
    for (const WireRequest &each : requests) {
        const RecordsRequest request = recordsRequest(each);
        if (request.camera == id)
            days.append(request.start.date());
    }
    return days;
}

WireReply ArchiveWorld::reply(const WireRequest &request)
{
    const RecordsRequest asked = recordsRequest(request);
    if (refused.contains(asked.camera))
        return WireReply::json("no JSON");
    QByteArrayList entries;
    QMap<QDate, int> days;
    const QList<API::ArchiveRecord> records = archives.value(asked.camera);
    for (const API::ArchiveRecord &each : records) {
        if (each.start > asked.end || each.end < asked.start)
            continue;
        entries.append(json(each));
        ++days[each.start.date()];
    }
    if (request.path().endsWith("/days")) {
        entries.clear();
        for (auto day = days.cbegin(); day != days.cend(); ++day)
            entries.append(json(day.key(), day.value()));
    }
    return WireReply::json("[" + entries.join(',') + "]");
}

} // namespace ZorvaneClient::Tests
