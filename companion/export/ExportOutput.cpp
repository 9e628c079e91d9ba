// SPDX-License-Identifier: MIT
#include "companion/export/ExportOutput.h"

#include <unistd.h>

#include <cerrno>

namespace ZorvaneClient {
namespace Companion {

ExportOutput::ExportOutput(int descriptor) : fd(descriptor)
{
}

void ExportOutput::percent(int percent)
{
    if (percent <= toldPercent)
        return;
    toldPercent = percent;
    write("export-percent " + std::to_string(percent));
}

void ExportOutput::done()
{
    sayLast("export-done");
}

void ExportOutput::error()
{
    sayLast("export-error");
}

void ExportOutput::sayLast(const std::string &line)
{
    if (!lastSaid.test_and_set())
        write(line);
}

/// A client that has gone is noticed by its end of standard input.
void ExportOutput::write(const std::string &line) const
{
    const std::string text = line + "\n";
    while (::write(fd, text.data(), text.size()) < 0 && errno == EINTR) {
    }
}

} // namespace Companion
} // namespace ZorvaneClient
