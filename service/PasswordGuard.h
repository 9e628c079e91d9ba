// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <set>
#include <string>

namespace ZorvaneService {

/// What a wrong password costs. One that the peer has given before counts no further time: a
/// program with an old password locks nobody out.
struct PasswordRules {
    std::chrono::milliseconds wrongCosts{0};
    std::size_t wrongUntilLocked = 0; ///< 0: a peer is never locked out
    std::chrono::milliseconds lockedFor{0};
};

/// Keeps peers from trying passwords out. Safe to use from any thread.
class PasswordGuard
{
public:
    using Clock = std::chrono::steady_clock;

    explicit PasswordGuard(const PasswordRules &given) : rules(given) {}

    /// Whether a peer that gave this password, right or wrong, is let in. Blocks for as long as a
    /// wrong one costs when it isn't.
    bool admits(const std::string &peer, const std::string &given, bool isRight);
    /// The same at `now`, without blocking.
    bool judge(const std::string &peer, const std::string &given, bool isRight,
               Clock::time_point now);

    /// Takes the same time wherever the two differ.
    static bool areEqual(const std::string &given, const std::string &wanted);

private:
    struct Wrong {
        std::set<std::string> digests; ///< of different ones
        Clock::time_point last;        ///< when one was new
    };

    const PasswordRules rules;
    std::mutex mutex;
    std::map<std::string, Wrong> wrong; ///< by peer
};

} // namespace ZorvaneService
