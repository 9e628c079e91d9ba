// SPDX-License-Identifier: MIT
#pragma once

class QAbstractButton;
class QString;

namespace ZorvaneClient {
namespace GUI {

/// Gives a button that shows a picture only its tooltip, and the same as its name for screen
/// readers. `name` is plain text.
void nameIconButton(QAbstractButton *button, const QString &name);

} // namespace GUI
} // namespace ZorvaneClient
