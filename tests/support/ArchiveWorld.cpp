// SPDX-License-Identifier: MIT
#include "tests/support/ArchiveWorld.h"

#include "API/Camera.h"
#include "API/Server.h"

namespace ZorvaneClient::Tests {

namespace {

constexpr int loadDeadlineMs = 30'000;

qint64 numberIn(const WireRequest &request, const QString &key)
{
    const QUrlQuery query(QString::fromLatin1(request.target().split('?').value(1)));
    return query.queryItemValue(key).toLongLong();
}

/// The service's figures are one second earlier than what the client makes of them.
QString json(const API::ArchiveRecord &record)
{
    return "{\"startTime\":%1,\"duration\":%2}"_s.arg(record.start.toMSecsSinceEpoch() - 1000)
        .arg(record.start.msecsTo(record.end));
}

QString json(QDate day, int records)
{
    return "{\"date\":%1,\"recordsCount\":%2}"_s
        .arg(QDateTime(day, QTime(12, 0)).toSecsSinceEpoch())
        .arg(records);
}

} // namespace

QList<API::ArchiveRecord> evenRecords(QDate day, int count, int period, int length)
{
    QList<API::ArchiveRecord> records;
    for (int index = 0; index < count; ++index) {
        const QDateTime start = day.startOfDay().addSecs(qint64(index) * period);
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

API::CameraPtr ArchiveWorld::localCamera(int id)
{
    API::CameraPtr camera = API::CameraPtr::create();
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
    for (const WireRequest &request : requests) {
        if (numberIn(request, "camera") == id)
            days.append(QDateTime::fromSecsSinceEpoch(numberIn(request, "startTime")).date());
    }
    return days;
}

WireReply ArchiveWorld::reply(const WireRequest &request)
{
    const int id = int(numberIn(request, "camera"));
    if (refused.contains(id))
        return WireReply::json("no JSON");
    const QDateTime start = QDateTime::fromSecsSinceEpoch(numberIn(request, "startTime"));
    const QDateTime end = QDateTime::fromSecsSinceEpoch(numberIn(request, "endTime"));
    QStringList entries;
    QMap<QDate, int> days;
    const QList<API::ArchiveRecord> records = archives.value(id);
    for (const API::ArchiveRecord &each : records) {
        if (each.start > end || each.end < start)
            continue;
        entries.append(json(each));
        ++days[each.start.date()];
    }
    if (request.path().endsWith("/days")) {
        entries.clear();
        for (auto day = days.cbegin(); day != days.cend(); ++day)
            entries.append(json(day.key(), day.value()));
    }
    return WireReply::json("[" + entries.join(',').toLatin1() + "]");
}

} // namespace ZorvaneClient::Tests
