// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace ZorvaneClient {
namespace GUI {

/// The frame round the widget that has the keyboard. It is a child of that widget, so that it
/// moves, is clipped and goes with it, and takes no room and no mouse.
class FocusRing : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(FocusRing)

public:
    explicit FocusRing(QWidget *target);

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace GUI
} // namespace ZorvaneClient
