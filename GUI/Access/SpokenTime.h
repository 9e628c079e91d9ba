// SPDX-License-Identifier: MIT
#pragma once

class QDateTime;
class QString;

namespace ZorvaneClient {
namespace GUI {

/// A moment in words and numbers of the program's language, to the second.
QString spokenTime(const QDateTime &moment);

} // namespace GUI
} // namespace ZorvaneClient
