// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <string>

namespace ZorvaneClient {
namespace Companion {

/// The lines of an export to the client, each in one write of its own. All of them together fit
/// into a pipe, so a client that doesn't read holds nothing up.
class ExportOutput
{
public:
    explicit ExportOutput(int descriptor);

    void start() { write("export-start"); }
    /// Said once for each percent, and never for less than before.
    void percent(int percent);
    // The last word is one of these, whoever comes first; any thread may say it.
    void done();
    void error();

private:
    void sayLast(const std::string &line);
    void write(const std::string &line) const;

    int fd;
    int toldPercent = 0;
    std::atomic_flag lastSaid = ATOMIC_FLAG_INIT;
};

} // namespace Companion
} // namespace ZorvaneClient
