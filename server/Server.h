// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "server/ArchiveFolder.h"
#include "server/Capture.h"
#include "server/Catalogue.h"
#include "server/Configuration.h"
#include "server/HouseArchive.h"
#include "server/HouseMedia.h"
#include "server/HouseRoster.h"
#include "server/HouseService.h"
#include "server/Keeper.h"
#include "server/LiveRings.h"
#include "server/Recorder.h"
#include "server/StateFolder.h"
#include "server/Status.h"
#include "server/StreamMeter.h"

namespace ZorvaneServer {

/// The cameras of a configuration: recorded into its archive, and shown to the client. Once it
/// has been started it is there until the process ends, as are those who watch.
class Server
{
public:
    /// `state` must outlive it.
    Server(const Configuration &configuration, const StateFolder &state,
           const std::string &password);
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    /// Listens, without answering yet. Empty on success, else what failed.
    std::string bind() { return service->bind(); }
    /// Knows what the archive holds and finishes what an end without warning has left.
    void openArchive() { keeper->open(); }
    void start();
    /// Finishes all segments.
    void stop();
    /// Any thread may ask, from the start on.
    Status status() const;
    /// The same of the cameras alone, for which no disk is asked.
    std::vector<Status::Stream> streamStatus() const;

private:
    struct Stream {
        StreamId id;
        CameraSource source;
        std::size_t camera; ///< its place in the configuration
    };

    void take(std::size_t stream, PacketPtr packet);

    const Configuration configuration;
    const ArchiveFolder folder;
    Catalogue catalogue;
    HouseRoster roster;
    std::vector<Stream> streams;
    std::vector<FormatPtr> formats; ///< by stream, each of its capture's thread
    std::vector<std::unique_ptr<StreamMeter>> meters;
    std::unique_ptr<LiveRings> rings;
    std::unique_ptr<Keeper> keeper;
    std::unique_ptr<Recorder> recorder;
    std::vector<std::unique_ptr<Capture>> captures;
    std::unique_ptr<HouseArchive> archive;
    std::unique_ptr<HouseMedia> media;
    std::unique_ptr<HouseService> service;
};

} // namespace ZorvaneServer
