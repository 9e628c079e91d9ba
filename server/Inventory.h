// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "server/ArchiveFolder.h"
#include "server/Catalogue.h"

namespace ZorvaneServer {

/// Has the catalogue hold what the archive's folder does, also when a disk is mounted there
/// later, or another one. Of one thread at a time.
class Inventory
{
public:
    Inventory(const ArchiveFolder &folder, Catalogue &catalogue);

    /// Forgets what it knew of finished segments and lists the folder; finishes what an end
    /// without warning has left there. What somebody still writes stays as it is.
    void take();
    /// Takes it again if the folder's disk has come, come back or been exchanged since. True
    /// when it did.
    bool follow();

private:
    const ArchiveFolder &folder;
    Catalogue &catalogue;
    std::string listed; ///< the folder's identity by then
};

} // namespace ZorvaneServer
