// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ZorvaneClient {
namespace GUI {

/// Names for controls that show a picture only. Each of these words stands in the catalogue
/// already, as a text of a form: it is asked for there, so that it has one translation.
namespace SharedTexts {

QString options();
QString close();
QString records();
QString sound();

} // namespace SharedTexts

} // namespace GUI
} // namespace ZorvaneClient
