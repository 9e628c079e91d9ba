// SPDX-License-Identifier: MIT
#include "service/PasswordGuard.h"

#include <openssl/crypto.h>

#include <thread>

namespace ZorvaneService {

namespace {

/// So many peers at once guess at no camera; beyond that any one is forgotten.
constexpr std::size_t keptPeers = 1000;

} // namespace

bool PasswordGuard::admits(const std::string &peer, bool isRight)
{
    const bool admitted = judge(peer, isRight, Clock::now());
    if (!isRight)
        std::this_thread::sleep_for(rules.wrongCosts);
    return admitted;
}

bool PasswordGuard::judge(const std::string &peer, bool isRight, Clock::time_point now)
{
    if (rules.wrongUntilLocked == 0)
        return isRight;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = wrong.find(peer);
    if (found != wrong.end() && now - found->second.last >= rules.lockedFor)
        wrong.erase(found);
    else if (found != wrong.end() && found->second.count >= rules.wrongUntilLocked)
        return false;
    if (isRight) {
        wrong.erase(peer);
        return true;
    }
    if (wrong.size() >= keptPeers && wrong.count(peer) == 0)
        wrong.erase(wrong.begin());
    Wrong &entry = wrong[peer];
    ++entry.count;
    entry.last = now;
    return false;
}

bool PasswordGuard::areEqual(const std::string &given, const std::string &wanted)
{
    return given.size() == wanted.size() &&
           CRYPTO_memcmp(given.data(), wanted.data(), wanted.size()) == 0;
}

} // namespace ZorvaneService
