// SPDX-License-Identifier: MIT
#include "GUI/FocusRing.h"

#include <QEvent>
#include <QPainter>

#include "GUI/Colours.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int ringPixels = 2;
constexpr int edgePixels = 1;

} // namespace

FocusRing::FocusRing(QWidget *target) : QWidget(target)
{
    setObjectName(QStringLiteral("focusRing"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(target->rect());
    target->installEventFilter(this);
    show();
}

bool FocusRing::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parent() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void FocusRing::paintEvent(QPaintEvent *)
{
    // Two colours, of which one stands out wherever the widget lies.
    QPainter painter(this);
    const auto frame = [&painter](const QRect &outer, int pixels, const QColor &colour) {
        const QMargins margins(pixels, pixels, pixels, pixels);
        painter.setClipRegion(QRegion(outer).subtracted(outer.marginsRemoved(margins)));
        painter.fillRect(outer, colour);
    };
    const QMargins ring(ringPixels, ringPixels, ringPixels, ringPixels);
    frame(rect(), ringPixels, Colours::accent());
    frame(rect().marginsRemoved(ring), edgePixels, Colours::tile());
}

} // namespace GUI
} // namespace ZorvaneClient
