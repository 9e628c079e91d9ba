// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QVariant;
class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// The sheet in a file of the resources. One that can't be read is empty, with a warning.
QString styleSheetOf(const QString &path);

/// Sets a property that a style sheet has rules for, and applies the sheet anew: by itself a
/// sheet looks at properties once only.
void setStyleProperty(QWidget *widget, const char *name, const QVariant &value);

/// Says to the sheets whether something that `widget` takes is dragged over it.
void markDropTarget(QWidget *widget, bool isTarget);

} // namespace GUI
} // namespace ZorvaneClient
