// SPDX-License-Identifier: MIT
#pragma once

#include <QTime>
#include <QWidget>

namespace ZorvaneClient {
namespace GUI {

/// The floating label with the time of day under the mouse. A window of its own, in one size;
/// its lower edge points at what it is put above.
class TimelineTooltip : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(TimelineTooltip)

public:
    TimelineTooltip();

public slots:
    void setTime(QTime time);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QTime time;
};

} // namespace GUI
} // namespace ZorvaneClient
