// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneClient {
namespace Companion {

class ExportOutput;
class TargetFile;

/// Ends the process, and removes the unfinished file, when the client closes standard input or
/// a signal asks for the end, whatever the other threads are at. Nothing has to be pinged.
class ExportWatch
{
public:
    /// Takes the signals of this thread and of those it starts later, so it is made first.
    ExportWatch();
    /// `file` is open.
    void start(TargetFile &file, ExportOutput &output) const;

private:
    int signalFd;
};

} // namespace Companion
} // namespace ZorvaneClient
