// SPDX-License-Identifier: MIT
#include "GUI/Access/SliderAccess.h"

#include <QSlider>

namespace ZorvaneClient {
namespace GUI {

SliderAccess::SliderAccess(QSlider *ofSlider) : StopAccess(ofSlider, QAccessible::Slider)
{
}

void *SliderAccess::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                               : StopAccess::interface_cast(type);
}

QSlider *SliderAccess::slider() const
{
    return qobject_cast<QSlider *>(widget());
}

QVariant SliderAccess::currentValue() const
{
    return slider()->value();
}

void SliderAccess::setCurrentValue(const QVariant &value)
{
    slider()->setValue(value.toInt());
}

QVariant SliderAccess::maximumValue() const
{
    return slider()->maximum();
}

QVariant SliderAccess::minimumValue() const
{
    return slider()->minimum();
}

QVariant SliderAccess::minimumStepSize() const
{
    return slider()->singleStep();
}

} // namespace GUI
} // namespace ZorvaneClient
