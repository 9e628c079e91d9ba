// SPDX-License-Identifier: MIT
#include "server/Server.h"

#include <algorithm>

#include "server/Log.h"

namespace ZorvaneServer {

Server::Server(const Configuration &configuration) : folder(configuration.archive.folder)
{
    for (const Configuration::Camera &camera : configuration.cameras) {
        addStream({camera.name, Quality::Main}, camera.main);
        if (camera.sub)
            addStream({camera.name, Quality::Sub}, *camera.sub);
    }
    const std::int64_t diskBytes = folder.room().totalBytes;
    const KeepRules rules = configuration.archive.rules(diskBytes);
    keeper = std::make_unique<Keeper>(folder, catalogue, rules);
    const std::int64_t room = std::max<std::int64_t>(diskBytes - rules.keepFreeBytes, 0);
    recorder = std::make_unique<Recorder>(folder, catalogue, *keeper, streams,
                                          std::min(room, rules.bytes.value_or(room)));
    for (std::size_t i = 0; i < streams.size(); ++i) {
        captures.push_back(
            std::make_unique<Capture>(streams[i].text(), sources[i], [this, i](PacketPtr packet) {
                recorder->take(i, std::move(packet));
            }));
    }
}

Server::~Server()
{
    stop();
}

void Server::addStream(const StreamId &id, const CameraSource &source)
{
    streams.push_back(id);
    sources.push_back(source);
}

void Server::openArchive()
{
    int left = 0;
    int recovered = 0;
    folder.list(catalogue, [&](const StreamId &stream, const SegmentName &part) {
        ++left;
        if (const auto finished = folder.recover(stream, part)) {
            catalogue.finish(stream, *finished, folder.sizeOf(stream, *finished));
            ++recovered;
        }
    });
    Log::say("the archive holds " + std::to_string(catalogue.size()) + " segments");
    if (left > 0)
        Log::say(std::to_string(recovered) + " of " + std::to_string(left) +
                 " segments finished that were left unfinished");
}

void Server::start()
{
    keeper->start();
    recorder->start();
    for (const auto &capture : captures)
        capture->start();
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

} // namespace ZorvaneServer
