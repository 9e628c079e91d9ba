// SPDX-License-Identifier: MIT
#pragma once

#include <QLocale>
#include <QString>

namespace ZorvaneClient {
namespace App {

/// Loads the translations of `language` into the application, and makes its names of months and
/// days those of windows made from then on; only its first two characters count. "en" is the
/// language of the source texts and has none. A language that is loaded already is left alone.
void loadLanguage(const QString &language);

/// Names months and days in the language of that code.
QLocale localeFor(const QString &code, const QLocale &system);

} // namespace App
} // namespace ZorvaneClient
