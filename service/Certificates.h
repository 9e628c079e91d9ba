// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ZorvaneService {

/// The certificate authority of this service and the server certificate it signed, as PEM
/// files. Keys can be read by their owner only.
struct Certificates {
    std::string authorityFile;
    std::string serverFile;
    std::string serverKeyFile;
    std::string error; ///< empty on success

    /// Makes in `folder` what is missing or has less than a month to live. A new authority gets
    /// that name; the server certificate is for 127.0.0.1 and localhost.
    static Certificates inFolder(const std::string &folder, const std::string &authorityName);
};

} // namespace ZorvaneService
