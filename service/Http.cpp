// SPDX-License-Identifier: MIT
#include "service/Http.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>

namespace ZorvaneService {

namespace {

int hexValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

} // namespace

bool beginsWith(const std::string &text, const std::string &beginning)
{
    return text.compare(0, beginning.size(), beginning) == 0;
}

std::string percentDecoded(const std::string &text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '%' && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 &&
                            hexValue(text[i + 2]) >= 0;
        if (!escape) {
            result.push_back(text[i]);
            continue;
        }
        result.push_back(static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2])));
        i += 2;
    }
    return result;
}

std::map<std::string, std::string> decodedItems(const std::string &text, bool plusIsSpace)
{
    std::map<std::string, std::string> result;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('&', begin), text.size());
        std::string item = text.substr(begin, end - begin);
        if (plusIsSpace)
            std::replace(item.begin(), item.end(), '+', ' ');
        const std::size_t equals = std::min(item.find('='), item.size());
        const std::string value = equals < item.size() ? item.substr(equals + 1) : std::string();
        result.emplace(percentDecoded(item.substr(0, equals)), percentDecoded(value));
        begin = end + 1;
    }
    return result;
}

std::int64_t numberOr(const std::string &text, std::int64_t fallback)
{
    std::int64_t value = 0;
    const char *end = text.data() + text.size();
    const auto [stop, code] = std::from_chars(text.data(), end, value);
    return code == std::errc() && stop == end ? value : fallback;
}

std::map<std::string, std::string> HttpRequest::parameters() const
{
    return decodedItems(query, false);
}

HttpReply HttpReply::refusal(int status)
{
    HttpReply reply;
    reply.status = status;
    return reply;
}

HttpReply HttpReply::json(int status, const nlohmann::json &content)
{
    HttpReply reply;
    reply.status = status;
    reply.contentType = "application/json";
    reply.body = content.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    return reply;
}

std::string HttpRequest::header(const std::string &name) const
{
    for (const auto &[key, value] : headers) {
        if (key == name)
            return value;
    }
    return {};
}

} // namespace ZorvaneService
