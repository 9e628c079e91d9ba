// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QCoreApplication>

#include "GUI/Access/StopAccess.h"

namespace ZorvaneClient {
namespace GUI {

class Timeline;

/// The archive's strip as a slider: its value is the cursor in seconds of the day that is shown.
/// Setting it plays that moment, as a click does.
class StripAccess : public StopAccess, public QAccessibleValueInterface
{
    Q_DECLARE_TR_FUNCTIONS(ZorvaneClient::GUI::StripAccess)

public:
    explicit StripAccess(Timeline *strip);

    void *interface_cast(QAccessible::InterfaceType type) override;
    QString text(QAccessible::Text kind) const override;
    QVariant currentValue() const override;
    void setCurrentValue(const QVariant &value) override;
    QVariant maximumValue() const override;
    QVariant minimumValue() const override;
    QVariant minimumStepSize() const override;

private:
    Timeline *strip() const;
};

} // namespace GUI
} // namespace ZorvaneClient
