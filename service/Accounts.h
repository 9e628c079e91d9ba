// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <atomic>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "service/FormerContents.h"

namespace ZorvaneService {

/// The one account, and what the service keeps for it across restarts: its sessions and its
/// layouts. Safe to use from any thread.
class Accounts
{
public:
    /// With `formerLayouts`, lists of layouts that were replaced are kept under that name. A
    /// damaged `stateFile` is said, and put aside as "FILE.damaged".
    Accounts(std::string email, std::string password, std::string stateFile,
             std::optional<FormerContents> formerLayouts = {});

    bool isAccount(const std::string &givenEmail, const std::string &givenPassword) const;
    /// Its id. A client that is never signed out leaves one behind with each start, so the oldest
    /// beyond a hundred end; another password ends all.
    std::string newSession();
    /// False when there is no such session.
    bool signOut(const std::string &session);
    bool isSignedIn(const std::string &session) const;
    void dropSessions();
    /// Whether who wants to sign in is turned away, whatever the password.
    void setRefused(bool refused) { signInRefused = refused; }
    bool isRefused() const { return signInRefused; }

    /// `{last_update, layouts}` as stored, or an empty list of age 0.
    nlohmann::json layouts() const;
    /// Stores the list if there is none yet. If that is so for damage, it is older than whatever
    /// a client still knows of what was lost.
    void beginWith(const nlohmann::json &list);
    /// Stores the list and stamps it with the present second; one that is stored already stays as
    /// it is.
    void saveLayouts(const nlohmann::json &list);

private:
    void putAside();
    /// Writes all that is kept; the caller holds the lock.
    void store() const;

    std::string email;
    std::string password;
    std::string stateFile;
    const std::optional<FormerContents> former;
    std::atomic<bool> signInRefused{false};
    mutable std::mutex mutex;
    std::vector<std::string> sessions; ///< the oldest first
    nlohmann::json document;
    bool wasDamaged = false;
};

} // namespace ZorvaneService
