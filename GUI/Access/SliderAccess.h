// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>

#include "GUI/Access/StopAccess.h"

class QSlider;

namespace ZorvaneClient {
namespace GUI {

/// A slider with its value.
class SliderAccess : public StopAccess, public QAccessibleValueInterface
{
public:
    explicit SliderAccess(QSlider *slider);

    void *interface_cast(QAccessible::InterfaceType type) override;
    QVariant currentValue() const override;
    void setCurrentValue(const QVariant &value) override;
    QVariant maximumValue() const override;
    QVariant minimumValue() const override;
    QVariant minimumStepSize() const override;

private:
    QSlider *slider() const;
};

} // namespace GUI
} // namespace ZorvaneClient
