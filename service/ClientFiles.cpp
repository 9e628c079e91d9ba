// SPDX-License-Identifier: MIT
#include "service/ClientFiles.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "service/OwnerFile.h"
#include "service/RosterJson.h"

namespace ZorvaneService {

namespace {

/// A value of an INI file as it is, whatever it holds of ASCII.
std::string quoted(const std::string &text)
{
    std::string result = "\"";
    for (const char letter : text) {
        if (letter == '"' || letter == '\\')
            result += '\\';
        result += letter;
    }
    return result + '"';
}

/// The `own` servers, and behind them what else the file names. An older entry of an own one has
/// its address or its password.
nlohmann::json withOthersOf(const std::string &fileName, nlohmann::json own)
{
    std::ifstream in(fileName);
    const auto known = nlohmann::json::parse(in, nullptr, false);
    if (!known.is_array())
        return own;
    auto all = own;
    for (const auto &entry : known) {
        const auto isSame = [&entry](const nlohmann::json &one) {
            const auto agree = [&](const char *key) {
                return entry.value(key, nlohmann::json()) == one[key];
            };
            return entry.is_object() && ((agree("ip") && agree("port")) || agree("password"));
        };
        if (std::none_of(own.begin(), own.end(), isSame))
            all.push_back(entry);
    }
    return all;
}

} // namespace

bool ClientFiles::write(const std::string &folder,
                        const std::vector<ServerWithCameras> &roster) const
{
    std::error_code code;
    std::filesystem::create_directories(folder, code);
    const std::string streams = host + ':' + std::to_string(flvPort);
    std::ostringstream profile;
    profile << "[service]\n"
            << "apiHost=" << host << "\napiPort=" << apiPort << "\nstreamingHost=" << host
            << "\nstreamingPort=" << streamingPort << "\nflvHost=" << streams
            << "\nredirectorHost=" << streams << "\ncaCertificate=" << caCertificate << "\n";
    const std::string rosterFile = folder + "/local_roster.txt";
    const auto servers = withOthersOf(rosterFile, localRosterJson(roster));
    return writeOwnerFile(folder + "/service.ini", profile.str()) &&
           writeOwnerFile(rosterFile, servers.dump(4) + '\n');
}

bool ClientFiles::writeAccount(const std::string &folder, const std::string &email,
                               const std::string &password)
{
    const std::string fileName = folder + "/ZorvaneClient.ini";
    std::error_code code;
    return std::filesystem::exists(fileName, code) ||
           writeOwnerFile(fileName, "[auth]\nemail=" + quoted(email) +
                                        "\npassword=" + quoted(password) + "\nsaveAuth=true\n");
}

} // namespace ZorvaneService
