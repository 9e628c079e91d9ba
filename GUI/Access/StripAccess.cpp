// SPDX-License-Identifier: MIT
#include "GUI/Access/StripAccess.h"

#include "GUI/Access/SpokenTime.h"
#include "GUI/DayWindow.h"
#include "GUI/Timeline.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

const QString clockFormat = QStringLiteral("hh:mm");

QDateTime dayStart(const Timeline &strip)
{
    return Internal::firstSecond(strip.startValue().date());
}

int daySeconds(const Timeline &strip)
{
    const QDateTime start = dayStart(strip);
    return static_cast<int>(start.secsTo(Internal::lastSecond(start.date())));
}

} // namespace

StripAccess::StripAccess(Timeline *ofStrip) : StopAccess(ofStrip, QAccessible::Slider)
{
}

void *StripAccess::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                               : StopAccess::interface_cast(type);
}

Timeline *StripAccess::strip() const
{
    return qobject_cast<Timeline *>(widget());
}

QString StripAccess::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Name)
        return tr("Time of the records");
    if (kind != QAccessible::Description)
        return StopAccess::text(kind);
    return tr("%1, shown from %2 to %3")
        .arg(spokenTime(strip()->currentValue()), strip()->startValue().toString(clockFormat),
             strip()->endValue().toString(clockFormat));
}

QVariant StripAccess::currentValue() const
{
    const qint64 second = dayStart(*strip()).secsTo(strip()->currentValue());
    return static_cast<int>(qBound(qint64(0), second, qint64(daySeconds(*strip()))));
}

void StripAccess::setCurrentValue(const QVariant &value)
{
    const int second = qBound(0, value.toInt(), daySeconds(*strip()));
    emit strip()->playTime(dayStart(*strip()).addSecs(second));
}

QVariant StripAccess::maximumValue() const
{
    return daySeconds(*strip());
}

QVariant StripAccess::minimumValue() const
{
    return 0;
}

QVariant StripAccess::minimumStepSize() const
{
    return 1;
}

} // namespace GUI
} // namespace ZorvaneClient
