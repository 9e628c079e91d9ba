// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ZorvaneClient {
namespace GUI {

/// Names for what shows a picture or no text at all. Each of these words stands in the catalogue
/// already, as a text of a form: it is asked for there, so that it has one translation.
namespace SharedTexts {

QString options();
QString close();
QString records();
QString sound();
QString cameras();
QString layouts();

} // namespace SharedTexts

} // namespace GUI
} // namespace ZorvaneClient
