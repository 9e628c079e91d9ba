// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>

class QActionGroup;

namespace ZorvaneClient {
namespace GUI {

/// The choice of whether layouts are opened in turn, and how fast.
class TourButton : public QPushButton
{
    Q_OBJECT
    Q_DISABLE_COPY(TourButton)

public:
    explicit TourButton(QWidget *parent = nullptr);

    /// Emits nothing.
    void showTour(bool isOn, int seconds);

signals:
    /// 0 is off.
    void chosen(int seconds);

private:
    QActionGroup *intervals;
};

} // namespace GUI
} // namespace ZorvaneClient
