// SPDX-License-Identifier: MIT
#include "GUI/StyleSheet.h"

#include <QFile>
#include <QStyle>
#include <QVariant>
#include <QWidget>

namespace ZorvaneClient {
namespace GUI {

QString styleSheetOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning("Cannot read style sheet %s", qUtf8Printable(path));
        return QString();
    }
    return QString::fromUtf8(file.readAll());
}

void setStyleProperty(QWidget *widget, const char *name, const QVariant &value)
{
    widget->setProperty(name, value);
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
    widget->update();
}

void markDropTarget(QWidget *widget, bool isTarget)
{
    constexpr auto name = "drop";
    if (widget->property(name).toBool() != isTarget)
        setStyleProperty(widget, name, isTarget);
}

} // namespace GUI
} // namespace ZorvaneClient
