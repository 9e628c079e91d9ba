// SPDX-License-Identifier: MIT
#include "GUI/SpinnerWidget.h"

#include <QConicalGradient>
#include <QPainter>
#include <QPen>
#include <QTimerEvent>

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int stepIntervalMs = 50;
constexpr double stepDegrees = 20;
constexpr int minimumSidePixels = 14;

} // namespace

SpinnerWidget::SpinnerWidget(QWidget *parent) : QWidget(parent)
{
    setVisible(false);
}

void SpinnerWidget::setColor(QColor newColor)
{
    color = newColor;
    update();
}

void SpinnerWidget::setLineWidth(int newLineWidth)
{
    lineWidth = newLineWidth;
    update();
}

QSize SpinnerWidget::minimumSizeHint() const
{
    return QSize(minimumSidePixels, minimumSidePixels);
}

void SpinnerWidget::start()
{
    if (running)
        return;
    running = true;
    angle = startDegrees;
    update();
    timerId = startTimer(stepIntervalMs, Qt::CoarseTimer);
    setVisible(true);
}

void SpinnerWidget::stop()
{
    if (!running)
        return;
    running = false;
    killTimer(timerId);
    timerId = 0;
    setVisible(false);
}

void SpinnerWidget::paintEvent(QPaintEvent *)
{
    const QPointF centre(QPoint(width() / 2, height() / 2));
    const int radius = qMin(width() / 2, height() / 2) - lineWidth;

    QConicalGradient fade(centre, angle);
    fade.setColorAt(0, color);
    fade.setColorAt(1, Qt::transparent);

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(fade, lineWidth, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter.drawEllipse(QRectF(centre - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius)));
}

void SpinnerWidget::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != timerId) {
        QWidget::timerEvent(event);
        return;
    }
    update();
    angle -= stepDegrees;
}

} // namespace GUI
} // namespace ZorvaneClient
