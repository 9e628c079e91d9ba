// SPDX-License-Identifier: MIT
#include "server/Server.h"

#include "server/WallClock.h"
#include "service/Loopback.h"

namespace ZorvaneServer {

namespace {

std::vector<std::string> namesOf(const std::vector<Configuration::Camera> &cameras)
{
    std::vector<std::string> names;
    names.reserve(cameras.size());
    for (const Configuration::Camera &camera : cameras)
        names.push_back(camera.name);
    return names;
}

} // namespace

Server::Server(const Configuration &given, const StateFolder &state, const std::string &password)
    : configuration(given)
    , folder(given.archive.folder)
    , roster(namesOf(given.cameras), ZorvaneService::loopback, given.service.camerasPort, password,
             state.file("cameras.json"))
{
    for (std::size_t i = 0; i < configuration.cameras.size(); ++i) {
        const Configuration::Camera &camera = configuration.cameras[i];
        streams.push_back({{camera.name, Quality::Main}, camera.main, i});
        if (camera.sub)
            streams.push_back({{camera.name, Quality::Sub}, *camera.sub, i});
    }
    std::vector<StreamId> ids;
    for (const Stream &stream : streams)
        ids.push_back(stream.id);
    formats.resize(streams.size());

    keeper = std::make_unique<Keeper>(folder, catalogue, configuration.archive);
    recorder = std::make_unique<Recorder>(folder, catalogue, *keeper, ids);
    for (std::size_t i = 0; i < streams.size(); ++i) {
        meters.push_back(std::make_unique<StreamMeter>());
        captures.push_back(
            std::make_unique<Capture>(streams[i].id.text(), streams[i].source,
                                      [this, i](PacketPtr packet) { take(i, std::move(packet)); }));
    }
    rings = std::make_unique<LiveRings>(ids);
    const auto nameOf = [this](const HouseRoster::CameraId &id) { return roster.nameOf(id); };
    archive = std::make_unique<HouseArchive>(catalogue, nameOf);
    media = std::make_unique<HouseMedia>(folder, catalogue, *rings, nameOf);
    service = std::make_unique<HouseService>(configuration.service, state, password, roster,
                                             *archive, *media);
}

/// On the thread of the stream's capture.
void Server::take(std::size_t stream, PacketPtr packet)
{
    meters[stream]->take(packet.get(), steadyTime(), wallMs());
    const FormatPtr format = packet ? packet->format : nullptr;
    if (format != formats[stream] && streams[stream].id.quality == Quality::Main) {
        roster.setOnline(streams[stream].camera, format != nullptr);
        if (format)
            roster.setSize(streams[stream].camera, {format->width, format->height});
    }
    formats[stream] = format;
    rings->find(streams[stream].id)->put(packet);
    recorder->take(stream, std::move(packet));
}

void Server::start()
{
    keeper->start();
    recorder->start();
    for (const auto &capture : captures)
        capture->start();
    service->start();
}

void Server::stop()
{
    for (const auto &capture : captures)
        capture->end();
    for (const auto &capture : captures)
        capture->stop();
    recorder->stop();
    keeper->stop();
}

std::vector<Status::Stream> Server::streamStatus() const
{
    std::vector<Status::Stream> all;
    const std::int64_t nowMs = wallMs();
    for (std::size_t i = 0; i < streams.size(); ++i) {
        Status::Stream stream{streams[i].id, meters[i]->read(steadyTime()), 0,
                              recorder->dropped(i)};
        for (const Record &record : catalogue.records(streams[i].id, 0, nowMs))
            stream.recordedMs += record.endMs - record.startMs;
        all.push_back(stream);
    }
    return all;
}

Status Server::status() const
{
    Status status;
    status.streams = streamStatus();
    status.archiveFolder = configuration.archive.folder;
    status.room = folder.room();
    status.segments = catalogue.size();
    status.isWritten = folder.isReady() && !recorder->isRefused();
    return status;
}

} // namespace ZorvaneServer
