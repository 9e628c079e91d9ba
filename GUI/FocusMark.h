// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>

class QApplication;
class QKeyEvent;

namespace ZorvaneClient {
namespace GUI {

class FocusRing;

/// Shows where the keyboard is, from the first Tab until the mouse is pressed, and has Return
/// and the menu key act on it.
class FocusMark : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(FocusMark)

public:
    /// Watches all windows of the application, which owns it.
    explicit FocusMark(QApplication *application);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setShown(bool shown);
    void moveRing();
    bool handleKey(const QKeyEvent &event);

    QPointer<FocusRing> ring;
    bool isShown = false;
};

} // namespace GUI
} // namespace ZorvaneClient
