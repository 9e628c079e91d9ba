// SPDX-License-Identifier: MIT
#include "GUI/BubbleMask.h"

#include <QBitmap>
#include <QImage>
#include <QWidget>

namespace ZorvaneClient {
namespace GUI {

void cutToPainting(QWidget *bubble)
{
    QImage painted(bubble->size(), QImage::Format_ARGB32_Premultiplied);
    painted.fill(Qt::transparent);
    bubble->render(&painted, QPoint(), QRegion(), QWidget::DrawChildren | QWidget::IgnoreMask);
    bubble->setMask(QBitmap::fromImage(painted.createAlphaMask()));
}

} // namespace GUI
} // namespace ZorvaneClient
