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
        std::string folder; ///< unless it is told, "archive" in the state folder
        std::optional<std::int64_t> days;
        std::optional<std::int64_t> bytes;
        std::int64_t keepFreeBytes = 0;
        int keepFreePercent = 5;

        KeepRules rules(std::int64_t diskBytes) const;
    };

    struct Service {
        std::string stateFolder; ///< of `StateFolder`
        /// Where the cameras are shown besides 127.0.0.1; who signs in is on this machine.
        std::string address = "127.0.0.1";
        int port = 8843;
        int camerasPort = 8880;

        /// All those at which the cameras are shown.
        std::vector<std::string> addresses() const;
    };

    Archive archive;
    Service service;
    std::vector<Camera> cameras;
    std::vector<std::string> errors; ///< "FILE:LINE: what is wrong"

    /// `fileName` is for the errors.
    static Configuration parse(const std::string &text, const std::string &fileName);
    /// Appends the file's lines, each with its end. False, with errno, when it can't be read.
    static bool readText(const std::string &fileName, std::string *text);
    /// A file that can't be read is an error, too. Folders that it doesn't name are set.
    static Configuration read(const std::string &fileName, const std::string &stateFolder);
};

} // namespace ZorvaneServer
