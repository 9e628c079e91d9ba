// SPDX-License-Identifier: MIT
#pragma once

class QVariant;
class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// Sets a property that a style sheet has rules for, and applies the sheet anew: by itself a
/// sheet looks at properties once only.
void setStyleProperty(QWidget *widget, const char *name, const QVariant &value);

} // namespace GUI
} // namespace ZorvaneClient
