// SPDX-License-Identifier: MIT
#include "service/PasswordGuard.h"

#include <openssl/crypto.h>
#include <openssl/sha.h>

#include <thread>

namespace ZorvaneService {

namespace {

/// So many peers at once guess at no camera; beyond that any one is forgotten.
constexpr std::size_t keptPeers = 1000;

/// A wrong password may be right elsewhere: it isn't kept itself.
std::string digestOf(const std::string &given)
{
    std::string digest(SHA256_DIGEST_LENGTH, '\0');
    SHA256(reinterpret_cast<const unsigned char *>(given.data()), given.size(),
           reinterpret_cast<unsigned char *>(digest.data()));
    return digest;
}

} // namespace

bool PasswordGuard::admits(const std::string &peer, const std::string &given, bool isRight)
{
    const bool admitted = judge(peer, given, isRight, Clock::now());
    // Also a right one that is locked out: who gives it is not to learn that it is.
    if (!admitted)
        std::this_thread::sleep_for(rules.wrongCosts);
    return admitted;
}

bool PasswordGuard::judge(const std::string &peer, const std::string &given, bool isRight,
                          Clock::time_point now)
{
    if (rules.wrongUntilLocked == 0)
        return isRight;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = wrong.find(peer);
    if (found != wrong.end() && now - found->second.last >= rules.lockedFor)
        wrong.erase(found);
    else if (found != wrong.end() && found->second.digests.size() >= rules.wrongUntilLocked)
        return false;
    if (isRight) {
        wrong.erase(peer);
        return true;
    }
    if (wrong.size() >= keptPeers && wrong.count(peer) == 0)
        wrong.erase(wrong.begin());
    Wrong &entry = wrong[peer];
    if (entry.digests.insert(digestOf(given)).second)
        entry.last = now;
    return false;
}

bool PasswordGuard::areEqual(const std::string &given, const std::string &wanted)
{
    return given.size() == wanted.size() &&
           CRYPTO_memcmp(given.data(), wanted.data(), wanted.size()) == 0;
}

} // namespace ZorvaneService
