// SPDX-License-Identifier: MIT
#include "server/HouseService.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "server/FirstLayout.h"
#include "service/Certificates.h"
#include "service/ClientFiles.h"
#include "service/OwnerFile.h"

#ifndef ZORVANE_VERSION
#error "the build defines the version"
#endif

namespace ZorvaneServer {

using namespace ZorvaneService;

namespace {

// A wrong password costs a second; after ten different ones their peer is locked out for a minute.
constexpr PasswordRules passwordRules{std::chrono::seconds(1), 10, std::chrono::minutes(1)};
// A house has few watchers, each of whom may fill a wall.
constexpr int mostConnections = 300;
// Nothing is asked of the cameras' port with a body, and other machines may reach it.
constexpr std::size_t largestCamerasBody = 1024;
constexpr char authorityName[] = "Zorvane home authority";
constexpr char authorityFile[] = "/authority.pem";

std::string contentOf(const std::string &fileName)
{
    std::ostringstream content;
    content << std::ifstream(fileName).rdbuf();
    return content.str();
}

std::string certificates(const StateFolder &state, Certificates *made)
{
    *made = Certificates::inFolder(state.folder(), authorityName);
    return made->error;
}

} // namespace

HouseService::HouseService(const Configuration::Service &where, const StateFolder &state,
                           const std::string &password, HouseRoster &roster,
                           const ArchiveCatalogue &archive, const MediaLibrary &media)
    : place(where)
    , stateFolder(state)
    , accounts(account, password, state.file("account.json"), FormerContents(state.file("layouts")))
    , service(roster, archive, media, accounts, ZORVANE_VERSION, passwordRules)
{
    const auto lan = roster.lanServer(where.camerasPort);
    if (lan && !lan->cameras.empty())
        accounts.beginWith(firstLayouts(*lan));
}

std::string HouseService::bind()
{
    Certificates files;
    if (std::string failure = certificates(stateFolder, &files); !failure.empty())
        return failure;
    const HttpServer::Tls tls{files.serverFile, files.serverKeyFile};
    HttpLimits limits;
    limits.connections = mostConnections;
    // Previews and archives of the cloud would be asked for here, too: there are none.
    listeners.push_back(std::make_unique<HttpServer>(
        "api", [this](const HttpRequest &request) { return service.api.handle(request); }, &tls,
        limits));
    // Who signs in is on this machine: the certificate is for no other address.
    if (listeners.back()->bind(place.port) == 0)
        return "cannot listen on port " + std::to_string(place.port) + " of " + loopback;
    limits.bodyBytes = largestCamerasBody;
    for (const std::string &address : place.addresses()) {
        listeners.push_back(std::make_unique<HttpServer>(
            HttpRequest::lanListener,
            [this](const HttpRequest &request) { return service.lan.handle(request); }, nullptr,
            limits));
        if (listeners.back()->bind(place.camerasPort, address) == 0)
            return "cannot listen on port " + std::to_string(place.camerasPort) + " of " + address;
    }
    return {};
}

void HouseService::start()
{
    for (const auto &listener : listeners)
        listener->start();
}

std::string HouseService::writeClientFiles(const Configuration::Service &where,
                                           const StateFolder &state, const std::string &folder)
{
    std::string password;
    Certificates made;
    for (const std::string &failure :
         {state.make(), state.readPassword(&password), certificates(state, &made)}) {
        if (!failure.empty())
            return failure;
    }
    std::error_code code;
    const std::string whole = std::filesystem::absolute(folder, code).string();
    ClientFiles files;
    files.host = loopback;
    files.apiPort = files.streamingPort = where.port;
    files.flvPort = where.camerasPort;
    files.caCertificate = whole + authorityFile;
    const HouseRoster roster({}, loopback, where.camerasPort, password, {});
    const bool good = files.write(whole, roster.servers()) &&
                      writeOwnerFile(files.caCertificate, contentOf(made.authorityFile)) &&
                      ClientFiles::writeAccount(whole, account, password);
    return good ? std::string() : folder + ": " + std::strerror(errno);
}

} // namespace ZorvaneServer
