// SPDX-License-Identifier: MIT
#include "server/Configuration.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "server/ConfigurationParser.h"

namespace ZorvaneServer {

namespace {

constexpr std::int64_t percent = 100;

} // namespace

KeepRules Configuration::Archive::rules(std::int64_t diskBytes) const
{
    const std::int64_t share = diskBytes / percent * keepFreePercent;
    return {days, bytes, keepFreeBytes > 0 ? keepFreeBytes : share};
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

Configuration Configuration::read(const std::string &fileName)
{
    std::ifstream file(fileName);
    std::ostringstream text;
    if (!(file && text << file.rdbuf())) {
        Configuration configuration;
        configuration.errors.push_back(fileName + ": " + std::strerror(errno));
        return configuration;
    }
    return parse(text.str(), fileName);
}

} // namespace ZorvaneServer
