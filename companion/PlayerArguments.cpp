// SPDX-License-Identifier: MIT
#include "companion/PlayerArguments.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "companion/StreamUrl.h"

namespace ZorvaneClient {
namespace Companion {

const char *const usageLine =
    "Usage: vlc-stream URL FRAME-FILE-NAME [:http-proxy=http://[USER@]HOST:"
    "PORT/ [:http-proxy-pwd=PASSWORD]]\n"
    "       vlc-stream export URL mp4|avi LENGTH-MS PATH";

namespace {

const std::string proxyOption = ":http-proxy=";
const std::string passwordOption = ":http-proxy-pwd=";
const std::string httpScheme = "http://";
constexpr long maxPort = 65535;

bool startsWith(const std::string &text, const std::string &prefix)
{
    return text.compare(0, prefix.size(), prefix) == 0;
}

bool isBareName(const std::string &name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

bool isPort(const std::string &text)
{
    return !text.empty() && text.size() <= 5 &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); }) &&
           std::strtol(text.c_str(), nullptr, 10) <= maxPort;
}

struct ProxyAddress {
    std::string user;
    std::string host;
    std::string port;
};

/// The user name stands unescaped, so it reaches to the last '@'.
std::optional<ProxyAddress> parseProxyAddress(std::string text)
{
    if (!startsWith(text, httpScheme))
        return std::nullopt;
    text.erase(0, httpScheme.size());
    if (!text.empty() && text.back() == '/')
        text.pop_back();

    ProxyAddress address;
    const size_t at = text.rfind('@');
    if (at != std::string::npos) {
        address.user = text.substr(0, at);
        text.erase(0, at + 1);
    }
    const size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0)
        return std::nullopt;
    address.host = text.substr(0, colon);
    address.port = text.substr(colon + 1);
    if (!isPort(address.port) || address.host.find('/') != std::string::npos)
        return std::nullopt;
    if (address.host.find(':') != std::string::npos && address.host.front() != '[')
        address.host = "[" + address.host + "]";
    return address;
}

std::string proxyUrlOf(const ProxyAddress &address, const std::string &password)
{
    std::string url = httpScheme;
    if (!address.user.empty() || !password.empty())
        url += percentEncoded(address.user) + ":" + percentEncoded(password) + "@";
    return url + requestSafe(address.host) + ":" + address.port + "/";
}

} // namespace

std::optional<PlayerArguments> parsePlayerArguments(const std::vector<std::string> &arguments)
{
    if (arguments.size() < 2 || arguments.size() > 4)
        return std::nullopt;
    if (!hasScheme(arguments[0]) || !isBareName(arguments[1]))
        return std::nullopt;

    PlayerArguments parsed;
    parsed.url = requestSafe(arguments[0]);
    parsed.frameName = arguments[1];
    parsed.live = isLive(parsed.url);
    if (arguments.size() == 2)
        return parsed;

    if (!startsWith(arguments[2], proxyOption))
        return std::nullopt;
    const auto address = parseProxyAddress(arguments[2].substr(proxyOption.size()));
    if (!address)
        return std::nullopt;
    std::string password;
    if (arguments.size() == 4) {
        if (!startsWith(arguments[3], passwordOption))
            return std::nullopt;
        password = arguments[3].substr(passwordOption.size());
    }
    parsed.proxyUrl = proxyUrlOf(*address, password);
    return parsed;
}

} // namespace Companion
} // namespace ZorvaneClient
