// SPDX-License-Identifier: MIT
#include "GUI/HouseStyle.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QStyleFactory>
#include <QStyleOption>
#include <QToolTip>
#include <qdrawutil.h>

#include "GUI/Access/AccessFactory.h"
#include "GUI/FocusMark.h"
#include "GUI/Palette.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

bool isClickable(const QWidget *widget)
{
    return qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QComboBox *>(widget);
}

} // namespace

HouseStyle::HouseStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion")))
{
}

void HouseStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    if (isClickable(widget) && !widget->testAttribute(Qt::WA_SetCursor))
        widget->setCursor(Qt::PointingHandCursor);
}

void HouseStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                               QPainter *painter, const QWidget *widget) const
{
    // The sheet of the widget below would colour its frame.
    if (element == PE_PanelTipLabel) {
        const QBrush ground = toolTipPalette().toolTipBase();
        const QColor frame = toolTipPalette().color(QPalette::WindowText);
        qDrawPlainRect(painter, option->rect, frame, 1, &ground);
    } else if (element != PE_FrameFocusRect) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void useHouseStyle(QApplication *application)
{
    QApplication::setStyle(new HouseStyle);
    QApplication::setPalette(housePalette());
    QToolTip::setPalette(toolTipPalette());
    new FocusMark(application);
    installAccess();
}

} // namespace GUI
} // namespace ZorvaneClient
