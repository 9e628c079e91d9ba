// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointF>

namespace ZorvaneClient {
namespace GUI {

/// Tells, while it lives, of each key and each use of the mouse in any window of the program. A
/// window that opens or moves under a resting pointer is no use.
class ActivityWatch : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ActivityWatch)

public:
    explicit ActivityWatch(QObject *parent = nullptr);

signals:
    void touched();
    /// Comes behind touched().
    void pointerMoved();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointF pointer;
};

} // namespace GUI
} // namespace ZorvaneClient
