// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneClient {
namespace App {

/// Opens `zorvane_client_log.txt` in the working directory, emptying it, and sends every
/// message but those of qInfo() there, on top of the usual output.
/// A file that can't be opened ends the process. Call once.
void openLog();

} // namespace App
} // namespace ZorvaneClient
