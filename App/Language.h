// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ZorvaneClient {
namespace App {

/// Loads the translations of `language` into the application; only its first two characters
/// count. "en" is the language of the source texts and has none. A language that is loaded
/// already is left alone.
void loadLanguage(const QString &language);

} // namespace App
} // namespace ZorvaneClient
