// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <string>

namespace ZorvaneService {

/// What a wrong password costs.
struct PasswordRules {
    std::chrono::milliseconds wrongCosts{0};
    int wrongUntilLocked = 0; ///< 0: a peer is never locked out
    std::chrono::milliseconds lockedFor{0};
};

/// Keeps peers from trying passwords out. Safe to use from any thread.
class PasswordGuard
{
public:
    using Clock = std::chrono::steady_clock;

    explicit PasswordGuard(const PasswordRules &given) : rules(given) {}

    /// Whether a peer that gave the right password, or a wrong one, is let in. Blocks for as long
    /// as a wrong one costs.
    bool admits(const std::string &peer, bool isRight);
    /// The same at `now`, without blocking.
    bool judge(const std::string &peer, bool isRight, Clock::time_point now);

    /// Takes the same time wherever the two differ.
    static bool areEqual(const std::string &given, const std::string &wanted);

private:
    struct Wrong {
        int count = 0;
        Clock::time_point last;
    };

    const PasswordRules rules;
    std::mutex mutex;
    std::map<std::string, Wrong> wrong; ///< by peer
};

} // namespace ZorvaneService
