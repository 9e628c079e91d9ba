// SPDX-License-Identifier: MIT
#pragma once

#include "GUI/Access/StopAccess.h"

namespace ZorvaneClient {
namespace GUI {

/// A button, or a label that can be pressed at times. Its text is its name unless it has another.
class ButtonAccess : public StopAccess
{
public:
    explicit ButtonAccess(QWidget *button);

    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    QString text(QAccessible::Text kind) const override;
};

} // namespace GUI
} // namespace ZorvaneClient
