// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "server/ArchiveFolder.h"
#include "server/Capture.h"
#include "server/Catalogue.h"
#include "server/Configuration.h"
#include "server/Keeper.h"
#include "server/Recorder.h"

namespace ZorvaneServer {

/// The cameras of a configuration, recorded into its archive.
class Server
{
public:
    explicit Server(const Configuration &configuration);
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    /// Knows what the archive holds and finishes what an end without warning has left.
    void openArchive();
    void start();
    /// Finishes all segments.
    void stop();

private:
    void addStream(const StreamId &id, const CameraSource &source);

    const ArchiveFolder folder;
    Catalogue catalogue;
    std::vector<StreamId> streams;
    std::vector<CameraSource> sources;
    std::unique_ptr<Keeper> keeper;
    std::unique_ptr<Recorder> recorder;
    std::vector<std::unique_ptr<Capture>> captures;
};

} // namespace ZorvaneServer
