// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace ZorvaneClient {
namespace GUI {
namespace Player {

/// Eats double clicks of the widgets it is installed on.
class DoubleClickFilter : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(DoubleClickFilter)

public:
    explicit DoubleClickFilter(QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
