// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimer>
#include <QWidget>

#include <cstdio>

#include "bench/Measure.h"

namespace ZorvaneClient {
namespace Bench {

/// Waits for the first window to be painted and handed to the display, prints that moment
/// and ends the event loop. Install it on the application.
class FirstPaint : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (!seen && event->type() == QEvent::Paint && watched->isWidgetType() &&
            static_cast<QWidget *>(watched)->isWindow()) {
            seen = true;
            // The paint event itself comes before the window's children and the display's turn.
            QTimer::singleShot(0, this, [] {
                std::printf("%lld\n", nowNanoseconds());
                std::fflush(stdout);
                QCoreApplication::quit();
            });
        }
        return false;
    }

private:
    bool seen = false;
};

} // namespace Bench
} // namespace ZorvaneClient
