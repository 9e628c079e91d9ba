// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include "GUI/KeyMap.h"

class QKeyEvent;

namespace ZorvaneClient {
namespace GUI {

/// Tells what the keys of a window mean. What has the focus takes its own keys first; of the
/// rest the scrolled pages would take arrows and pages, and come after the key map. Nothing is
/// told while a text field has the focus, or while a dialog or a popup is open.
class KeyDispatcher : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(KeyDispatcher)

public:
    /// `window` has all its scrolled pages by now, and owns this.
    explicit KeyDispatcher(QWidget *window);

signals:
    void triggered(GUI::KeyAction action, int number);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isTyping() const;

    QWidget *window;
};

} // namespace GUI
} // namespace ZorvaneClient
