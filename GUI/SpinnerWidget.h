// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QWidget>

namespace ZorvaneClient {
namespace GUI {

/// A turning arc that says "busy". Hidden until start(), hidden again by stop().
class SpinnerWidget : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(SpinnerWidget)

public:
    explicit SpinnerWidget(QWidget *parent = nullptr);

    /// Colour of the arc's head; its tail fades out. White unless set.
    void setColor(QColor color);
    /// Width of the arc in pixels, 3 unless set.
    void setLineWidth(int lineWidth);

    QSize minimumSizeHint() const override;

public slots:
    /// Shows the spinner and turns it; does nothing while it turns.
    void start();
    /// Stops and hides the spinner; does nothing while it stands.
    void stop();

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    static constexpr double startDegrees = 90;

    QColor color = Qt::white;
    double angle = startDegrees; ///< of the head, in degrees
    int lineWidth = 3;
    bool running = false;
    int timerId = 0;
};

} // namespace GUI
} // namespace ZorvaneClient
