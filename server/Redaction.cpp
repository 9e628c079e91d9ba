// SPDX-License-Identifier: MIT
#include "server/Redaction.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>

namespace ZorvaneServer {

namespace {

constexpr char hidden[] = "***";
// A shorter one stands in too many words; where addresses hold it, it is found all the same.
constexpr std::size_t shortestAnywhere = 4;
constexpr std::array words = {"pas", "pw", "psw", "secret", "token", "auth", "key"};
constexpr char wholeWord[] = "p"; // within others it says nothing

/// Where an address that begins before `from` ends in a text.
std::size_t endOfAddress(const std::string &text, std::size_t from)
{
    return std::min(text.find_first_of(" \t\r\n\"'<>", from), text.size());
}

/// The part before the host; nothing when there is none.
std::string userInfo(const std::string &address)
{
    const std::size_t at = address.rfind('@');
    return at == std::string::npos ? std::string() : address.substr(0, at);
}

bool namesSecret(std::string name)
{
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return name == wholeWord || std::any_of(words.begin(), words.end(), [&name](const char *word) {
               return name.find(word) != std::string::npos;
           });
}

/// Calls `take(begin, size)` for the value of each "name=value" whose name promises a secret.
template <typename Taker>
void forEachSecretValue(const std::string &text, const Taker &take)
{
    for (std::size_t equals = text.find('='); equals != std::string::npos;
         equals = text.find('=', equals + 1)) {
        const std::size_t before = text.find_last_of("?&; \t\"'", equals);
        const std::size_t name = before == std::string::npos ? 0 : before + 1;
        const std::size_t end = std::min(text.find_first_of("&; \t\r\n\"'", equals), text.size());
        if (namesSecret(text.substr(name, equals - name)))
            take(equals + 1, end - equals - 1);
    }
}

} // namespace

std::string unescaped(const std::string &text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '%' && i + 2 < text.size() &&
                              std::isxdigit(static_cast<unsigned char>(text[i + 1])) &&
                              std::isxdigit(static_cast<unsigned char>(text[i + 2]));
        if (isEscape) {
            plain += static_cast<char>(std::strtol(text.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

void Redaction::learn(const std::string &url)
{
    const std::size_t scheme = url.find("://");
    const std::string address = scheme == std::string::npos ? url : url.substr(scheme + 3);
    // Where it ends isn't agreed upon when characters aren't escaped that should be.
    for (const std::size_t end :
         {address.size(), endOfAddress(address, 0), address.find_first_of("/?#")}) {
        const std::string user = userInfo(address.substr(0, end));
        if (const std::size_t colon = user.find(':'); colon != std::string::npos)
            addWithPieces(user.substr(colon + 1));
    }
    forEachSecretValue(url,
                       [&](std::size_t begin, std::size_t size) { add(url.substr(begin, size)); });
}

/// Whoever takes an address apart elsewhere says only a piece of it.
void Redaction::addWithPieces(const std::string &secret)
{
    add(secret);
    for (std::size_t begin = 0; begin < secret.size();) {
        const std::size_t end = std::min(secret.find_first_of("@/?#:", begin), secret.size());
        add(secret.substr(begin, end - begin));
        begin = end + 1;
    }
}

void Redaction::add(const std::string &secret)
{
    for (const std::string &form : {secret, unescaped(secret)}) {
        if (form.size() >= shortestAnywhere)
            secrets.push_back(form);
    }
    // One may be the beginning of another.
    std::sort(secrets.begin(), secrets.end(), [](const std::string &one, const std::string &other) {
        return one.size() > other.size();
    });
}

std::string Redaction::hide(std::string text) const
{
    for (std::size_t at = text.find("://"); at != std::string::npos; at = text.find("://", at)) {
        at += 3;
        const std::string user = userInfo(text.substr(at, endOfAddress(text, at) - at));
        if (!user.empty())
            text.replace(at, user.size(), hidden);
    }
    std::vector<std::pair<std::size_t, std::size_t>> values;
    forEachSecretValue(
        text, [&values](std::size_t begin, std::size_t size) { values.emplace_back(begin, size); });
    for (auto value = values.rbegin(); value != values.rend(); ++value)
        text.replace(value->first, value->second, hidden);
    for (const std::string &secret : secrets) {
        for (std::size_t at = text.find(secret); at != std::string::npos;
             at = text.find(secret, at + sizeof hidden - 1))
            text.replace(at, secret.size(), hidden);
    }
    return text;
}

} // namespace ZorvaneServer
