// SPDX-License-Identifier: MIT
#include "server/Configuration.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "server/ConfigurationParser.h"
#include "service/Loopback.h"

namespace ZorvaneServer {

namespace {

constexpr std::int64_t percent = 100;

} // namespace

KeepRules Configuration::Archive::rules(std::int64_t diskBytes) const
{
    const std::int64_t share = diskBytes / percent * keepFreePercent;
    return {days, bytes, keepFreeBytes > 0 ? keepFreeBytes : share};
}

std::vector<std::string> Configuration::Service::addresses() const
{
    const std::string own = ZorvaneService::loopback;
    if (address == own || address == "0.0.0.0")
        return {address};
    // Rosters and layouts of this machine's client name the cameras by it.
    return {own, address};
}

Configuration Configuration::parse(const std::string &text, const std::string &fileName)
{
    Configuration configuration;
    ConfigurationParser parser(fileName, configuration);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        parser.take(line);
    parser.finish();
    return configuration;
}

bool Configuration::readText(const std::string &fileName, std::string *text)
{
    std::ifstream file(fileName);
    for (std::string line; std::getline(file, line);)
        *text += line + '\n';
    // A folder can be opened, and a file without a letter is no failure.
    return file.is_open() && !file.bad();
}

Configuration Configuration::read(const std::string &fileName, const std::string &stateFolder)
{
    Configuration configuration;
    std::string text;
    if (readText(fileName, &text))
        configuration = parse(text, fileName);
    else
        configuration.errors.push_back(fileName + ": " + std::strerror(errno));
    if (configuration.service.stateFolder.empty())
        configuration.service.stateFolder = stateFolder;
    if (configuration.archive.folder.empty())
        configuration.archive.folder = configuration.service.stateFolder + "/archive";
    return configuration;
}

} // namespace ZorvaneServer
