// SPDX-License-Identifier: MIT
#include "GUI/FocusRing.h"

#include <QEvent>
#include <QPainter>

#include "GUI/Colours.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int ringPixels = 2;
/// Cards and tiles have room for it inside of the border that they may have.
constexpr int largeSidePixels = 60;
constexpr int insetPixels = 3;
/// In widths of the line.
constexpr qreal dashLength = 2;

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
    // Broken, unlike the border of the active tile; one of the colours stands out on any ground.
    QPainter painter(this);
    const bool isLarge = width() >= largeSidePixels && height() >= largeSidePixels;
    const qreal middle = ringPixels / 2.0 + (isLarge ? insetPixels : 0);
    const QRectF frame = QRectF(rect()).adjusted(middle, middle, -middle, -middle);
    QPen pen(Colours::tile(), ringPixels, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin);
    painter.setPen(pen);
    painter.drawRect(frame);
    pen.setCapStyle(Qt::FlatCap);
    pen.setColor(Colours::accent());
    pen.setDashPattern({dashLength, dashLength});
    painter.setPen(pen);
    painter.drawRect(frame);
}

} // namespace GUI
} // namespace ZorvaneClient
