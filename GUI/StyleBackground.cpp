// SPDX-License-Identifier: MIT
#include "GUI/StyleBackground.h"

#include <QPainter>
#include <QStyleOption>
#include <QWidget>

namespace ZorvaneClient {
namespace GUI {

void drawStyleBackground(QPainter &painter, const QWidget &widget)
{
    QStyleOption option;
    option.initFrom(&widget);
    widget.style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, &widget);
}

void drawStyleBackground(QWidget &widget)
{
    QPainter painter(&widget);
    drawStyleBackground(painter, widget);
}

} // namespace GUI
} // namespace ZorvaneClient
