// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QPixmap>

namespace ZorvaneClient {
namespace API {

/// Decodes a preview. Null if the bytes are no picture of `format` (any known one by default)
/// or one far larger than a preview can be: its header alone could exhaust the memory.
QPixmap decodePreview(const QByteArray &bytes, const char *format = nullptr);

/// `preview` turned clockwise by `rotation` degrees, any number of them, and mirrored then.
QPixmap orientedPreview(const QPixmap &preview, int rotation, bool mirror);

} // namespace API
} // namespace ZorvaneClient
