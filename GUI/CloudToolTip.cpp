// SPDX-License-Identifier: MIT
#include "GUI/CloudToolTip.h"

#include <QLabel>
#include <QMargins>
#include <QPainter>
#include <QVBoxLayout>

#include "GUI/BubbleMask.h"

namespace {

// The bottom margin leaves room for the pointer.
const QMargins contentMargins(10, 7, 10, 17);
constexpr int pointerShiftPixels = 10;
constexpr int pointerHalfWidthPixels = 10;
constexpr int pointerHeightPixels = 10;
// Round the bubble; the pointer stands in the one at the bottom.
constexpr QMargins bubbleMargins(3, 3, 1, pointerHeightPixels);
constexpr int cornerRadiusPixels = 5;

} // namespace

CloudToolTip *CloudToolTip::currentTip = nullptr;

CloudToolTip::CloudToolTip(const QString &text, QWidget *parent)
    : QWidget(parent, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_TranslucentBackground);
    setAutoFillBackground(false);
    // The parent's sheet reaches the tip too, and would colour the text's background.
    setStyleSheet(QStringLiteral(
        "QLabel { background: transparent; color: rgb(64, 69, 78); font-size: 14px; }"));

    auto *label = new QLabel(text, this);
    label->setAttribute(Qt::WA_TranslucentBackground);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
}

CloudToolTip::~CloudToolTip()
{
    if (currentTip == this)
        currentTip = nullptr;
}

void CloudToolTip::showTip(QString text, QPoint target, QWidget *parent)
{
    hideTip();
    if (text.isEmpty())
        return;
    currentTip = new CloudToolTip(text, parent);
    currentTip->setContentsMargins(contentMargins);
    const QSize size = currentTip->sizeHint();
    currentTip->move(target.x() - (size.width() - 1) / 2 + pointerShiftPixels,
                     target.y() + 1 - size.height());
    currentTip->show();
    ZorvaneClient::GUI::cutToPainting(currentTip);
}

void CloudToolTip::hideTip()
{
    if (!currentTip)
        return;
    currentTip->hide();
    delete currentTip;
    currentTip = nullptr;
}

bool CloudToolTip::isVisible()
{
    return currentTip != nullptr;
}

void CloudToolTip::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::white);
    painter.setBrush(Qt::white);

    const int w = width();
    const int h = height();
    const int c = (w - 1) / 2;
    const int pointerTop = h - 1 - pointerHeightPixels;
    const QPoint pointer[] = {QPoint(w - 1 - (c - pointerHalfWidthPixels), pointerTop),
                              QPoint(c, h - 1), QPoint(c - pointerHalfWidthPixels + 1, pointerTop)};
    painter.drawPolygon(pointer, 3);
    painter.drawRoundedRect(rect().marginsRemoved(bubbleMargins), cornerRadiusPixels,
                            cornerRadiusPixels);
}
