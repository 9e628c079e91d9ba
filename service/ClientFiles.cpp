// SPDX-License-Identifier: MIT
#include "service/ClientFiles.h"

#include <filesystem>
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
    return writeOwnerFile(folder + "/service.ini", profile.str()) &&
           writeOwnerFile(folder + "/local_roster.txt", localRosterJson(roster).dump(4) + '\n');
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
