// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace ZorvaneClient {
namespace GUI {

/// The popup that lists all keys. Esc, F1 or a click anywhere closes it, and it deletes itself.
class KeyCard : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(KeyCard)

public:
    explicit KeyCard(QWidget *parent = nullptr);

    /// In the middle of `window`.
    void showOver(const QWidget &window);

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
};

} // namespace GUI
} // namespace ZorvaneClient
