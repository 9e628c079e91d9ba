// SPDX-License-Identifier: MIT
#pragma once

class QAbstractButton;
class QDialog;
class QString;

namespace ZorvaneClient {
namespace GUI {

/// A tool tip that shows this plain text, in lines where it is long; empty without one.
QString nameTip(const QString &name);

/// Gives a button that shows a picture only its tooltip, and the same as its name for screen
/// readers. `name` is plain text.
void nameIconButton(QAbstractButton *button, const QString &name);

/// Takes the desktop's icons off the buttons at the foot of a dialog, once they are all there.
void showTextButtons(const QDialog &dialog);

} // namespace GUI
} // namespace ZorvaneClient
