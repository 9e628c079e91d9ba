// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>
#include <QObject>

namespace ZorvaneClient {
namespace Bench {

/// Counts the paints of the widgets that it is installed on.
class PaintCounter : public QObject
{
public:
    int paints = 0;

    bool eventFilter(QObject *, QEvent *event) override
    {
        paints += event->type() == QEvent::Paint;
        return false;
    }
};

} // namespace Bench
} // namespace ZorvaneClient
