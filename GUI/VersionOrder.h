// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ZorvaneClient {
namespace GUI {

/// What counts of a version: all before the first hyphen.
QString plainVersion(const QString &version);

/// Compares what counts, piece by piece between the dots as far as both go. A piece that is no
/// number counts as 0.
bool isNewerVersion(const QString &version, const QString &current);

} // namespace GUI
} // namespace ZorvaneClient
