// SPDX-License-Identifier: MIT
#include "service/Accounts.h"

#include <openssl/rand.h>
#include <openssl/sha.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "service/OwnerFile.h"
#include "service/PasswordGuard.h"

namespace ZorvaneService {

namespace {

constexpr std::size_t mostSessions = 100;
constexpr char digestKey[] = "password_digest"; ///< of the password that the sessions began with

template <typename Bytes>
std::string hexOf(const Bytes &bytes)
{
    std::string text;
    for (const unsigned char byte : bytes) {
        char hex[3];
        std::snprintf(hex, sizeof hex, "%02x", byte);
        text += hex;
    }
    return text;
}

std::string randomId()
{
    std::array<unsigned char, 16> random{};
    if (RAND_bytes(random.data(), static_cast<int>(random.size())) != 1)
        throw std::runtime_error("no random numbers");
    return hexOf(random);
}

std::string digestOf(const std::string &text)
{
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    SHA256(reinterpret_cast<const unsigned char *>(text.data()), text.size(), digest.data());
    return hexOf(digest);
}

std::int64_t presentSecond()
{
    return std::time(nullptr);
}

nlohmann::json emptyDocument()
{
    return {{"last_update", 0}, {"layouts", nlohmann::json::array()}};
}

bool isDocument(const nlohmann::json &stored)
{
    return stored.is_object() && stored.contains("last_update") && stored.contains("layouts") &&
           stored["last_update"].is_number_integer() && stored["layouts"].is_array();
}

} // namespace

Accounts::Accounts(std::string accountEmail, std::string accountPassword, std::string file,
                   std::optional<FormerContents> formerLayouts)
    : email(std::move(accountEmail))
    , password(std::move(accountPassword))
    , stateFile(std::move(file))
    , former(std::move(formerLayouts))
    , document(emptyDocument())
{
    std::ifstream in(stateFile);
    if (!in && errno == ENOENT)
        return;
    const auto stored = nlohmann::json::parse(in, nullptr, false);
    const bool isNew = stored.is_object() && !stored.contains(email);
    if (isNew)
        return;
    if (!stored.is_object() || !isDocument(stored[email])) {
        putAside();
        return;
    }
    document = stored[email];
    if (document.value(digestKey, nlohmann::json()) == digestOf(password)) {
        for (const auto &session : document.value("sessions", nlohmann::json::array())) {
            if (session.is_string())
                sessions.push_back(session.get<std::string>());
        }
    }
    document.erase("sessions");
    document.erase(digestKey);
}

void Accounts::putAside()
{
    wasDamaged = true;
    const std::string aside = stateFile + ".damaged";
    const bool moved = std::rename(stateFile.c_str(), aside.c_str()) == 0;
    std::fprintf(stderr, "%s: %s is damaged, so layouts begin anew; what it holds is %s\n",
                 program_invocation_short_name, stateFile.c_str(),
                 moved ? ("in " + aside).c_str() : "lost with the next change");
}

bool Accounts::isAccount(const std::string &givenEmail, const std::string &givenPassword) const
{
    const bool emailIsRight = PasswordGuard::areEqual(givenEmail, email);
    return PasswordGuard::areEqual(givenPassword, password) && emailIsRight;
}

std::string Accounts::newSession()
{
    std::string session = randomId();
    const std::lock_guard<std::mutex> lock(mutex);
    if (sessions.size() >= mostSessions)
        sessions.erase(sessions.begin());
    sessions.push_back(session);
    store();
    return session;
}

bool Accounts::signOut(const std::string &session)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto known = std::find(sessions.begin(), sessions.end(), session);
    if (known == sessions.end())
        return false;
    sessions.erase(known);
    store();
    return true;
}

bool Accounts::isSignedIn(const std::string &session) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return std::find(sessions.begin(), sessions.end(), session) != sessions.end();
}

void Accounts::dropSessions()
{
    const std::lock_guard<std::mutex> lock(mutex);
    sessions.clear();
    store();
}

nlohmann::json Accounts::layouts() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return document;
}

void Accounts::beginWith(const nlohmann::json &list)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (document["last_update"] != 0)
        return;
    const std::int64_t oldest = 1;
    document = {{"last_update", wasDamaged ? oldest : presentSecond()}, {"layouts", list}};
    store();
}

void Accounts::saveLayouts(const nlohmann::json &list)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const bool isFirst = document["last_update"] == 0;
    const bool isSame = document["layouts"] == list;
    // Clients that have nothing new send the same list again and again. It is as old as it was,
    // unless a clock was wrong: what is saved next must be newer.
    if (isSame && !isFirst && document["last_update"] <= presentSecond())
        return;
    if (former && !isFirst && !isSame && !former->keep(document.dump(2) + '\n'))
        std::fprintf(stderr, "%s: cannot keep the former layouts\n", program_invocation_short_name);
    document = {{"last_update", presentSecond()}, {"layouts", list}};
    store();
}

void Accounts::store() const
{
    nlohmann::json stored = nlohmann::json::object();
    if (std::ifstream in(stateFile); in) {
        const auto before = nlohmann::json::parse(in, nullptr, false);
        if (before.is_object())
            stored = before;
    }
    stored[email] = document;
    stored[email]["sessions"] = sessions;
    stored[email][digestKey] = digestOf(password);
    if (!writeOwnerFile(stateFile, stored.dump(2) + '\n'))
        std::fprintf(stderr, "%s: cannot write %s\n", program_invocation_short_name,
                     stateFile.c_str());
}

} // namespace ZorvaneService
