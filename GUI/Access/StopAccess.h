// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>

namespace ZorvaneClient {
namespace GUI {

/// What screen readers learn of a widget that Tab goes to, whatever its focus policy says: that it
/// can have the focus, and what can be done with it. The widget outlives it.
class StopAccess : public QAccessibleWidget
{
public:
    StopAccess(QWidget *stop, QAccessible::Role role);

    QAccessible::State state() const override;
    QString text(QAccessible::Text kind) const override;
    QStringList actionNames() const override;
    void doAction(const QString &action) override;
};

} // namespace GUI
} // namespace ZorvaneClient
