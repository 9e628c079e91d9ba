// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "server/CameraSource.h"
#include "server/KeepRules.h"

namespace ZorvaneServer {

/// What the file says that the program is run with. A file with errors isn't run.
struct Configuration {
    struct Camera {
        std::string name; ///< also of its folder in the archive
        CameraSource main;
        std::optional<CameraSource> sub;
        int line = 0;
    };
    struct Archive {
        std::string folder = "/var/lib/zorvane-server/archive";
        std::optional<std::int64_t> days;
        std::optional<std::int64_t> bytes;
        std::int64_t keepFreeBytes = 0;
        int keepFreePercent = 5;

        KeepRules rules(std::int64_t diskBytes) const;
    };

    Archive archive;
    std::vector<Camera> cameras;
    std::vector<std::string> errors; ///< "FILE:LINE: what is wrong"

    /// `fileName` is for the errors.
    static Configuration parse(const std::string &text, const std::string &fileName);
    /// A file that can't be read is an error, too.
    static Configuration read(const std::string &fileName);
};

} // namespace ZorvaneServer
