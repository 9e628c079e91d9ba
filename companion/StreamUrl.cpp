// SPDX-License-Identifier: MIT
#include "companion/StreamUrl.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>

namespace ZorvaneClient {
namespace Companion {

namespace {

constexpr size_t maxPlainByte = 126;

void appendEscaped(std::string &text, unsigned char byte)
{
    static const char digits[] = "0123456789ABCDEF";
    text += '%';
    text += digits[byte >> 4];
    text += digits[byte & 15];
}

} // namespace

bool hasScheme(const std::string &url)
{
    const size_t colon = url.find("://");
    return colon != std::string::npos && colon > 0 &&
           std::all_of(url.begin(), url.begin() + static_cast<std::ptrdiff_t>(colon),
                       [](unsigned char c) { return std::isalnum(c) || std::strchr("+-.", c); });
}

std::string requestSafe(const std::string &url)
{
    std::string safe;
    for (const unsigned char byte : url) {
        if (byte <= ' ' || byte > maxPlainByte || byte == '"' || byte == '<' || byte == '>')
            appendEscaped(safe, byte);
        else
            safe += static_cast<char>(byte);
    }
    return safe;
}

bool isLive(const std::string &url)
{
    static const std::string ending = "/live";
    const std::string path = url.substr(0, url.find_first_of("?#"));
    return path.size() >= ending.size() &&
           path.compare(path.size() - ending.size(), ending.size(), ending) == 0;
}

std::optional<std::string> queryItem(const std::string &url, const std::string &name)
{
    const size_t query = url.find('?');
    if (query == std::string::npos)
        return std::nullopt;
    for (size_t begin = query; begin < url.size();) {
        const size_t end = std::min(url.find('&', begin + 1), url.size());
        const std::string item = url.substr(begin + 1, end - begin - 1);
        if (item.compare(0, name.size() + 1, name + "=") == 0)
            return item.substr(name.size() + 1);
        begin = end;
    }
    return std::nullopt;
}

std::string percentEncoded(const std::string &text)
{
    std::string encoded;
    for (const unsigned char byte : text) {
        if (byte < 128 && (std::isalnum(byte) || std::strchr("-._~", byte)) && byte != 0)
            encoded += static_cast<char>(byte);
        else
            appendEscaped(encoded, byte);
    }
    return encoded;
}

} // namespace Companion
} // namespace ZorvaneClient
