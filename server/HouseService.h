// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "server/Configuration.h"
#include "server/HouseRoster.h"
#include "server/StateFolder.h"
#include "service/Accounts.h"
#include "service/HttpServer.h"
#include "service/VideoService.h"

namespace ZorvaneServer {

/// What lets the client in, with one account, and shows it the cameras.
class HouseService
{
public:
    /// The account's name; the password is the state folder's.
    static constexpr char account[] = "home";

    /// What it is given must outlive it.
    HouseService(const Configuration::Service &where, const StateFolder &state,
                 const std::string &password, HouseRoster &roster,
                 const ZorvaneService::ArchiveCatalogue &archive,
                 const ZorvaneService::MediaLibrary &media);

    /// Listens on both ports. Empty on success, here and below, else what failed.
    std::string bind();
    /// Answers from now on, on threads of its own, until the process ends.
    void start();

    /// Puts what a client needs into `folder`.
    static std::string writeClientFiles(const Configuration::Service &where,
                                        const StateFolder &state, const std::string &folder);

private:
    using HttpServer = ZorvaneService::HttpServer;

    const Configuration::Service place;
    const StateFolder &stateFolder;
    ZorvaneService::Accounts accounts;
    ZorvaneService::VideoService service;
    std::vector<std::unique_ptr<HttpServer>> listeners;
};

} // namespace ZorvaneServer
