// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ZorvaneService {

/// Writes a file that its owner alone may read, beside its name first: a crash or a full disk
/// leaves the old content or the new one. One that root writes into somebody's folder is that
/// one's. False, with errno, on failure.
bool writeOwnerFile(const std::string &fileName, const std::string &content);

} // namespace ZorvaneService
