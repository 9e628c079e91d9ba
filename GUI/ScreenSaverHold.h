// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace ZorvaneClient {
namespace GUI {

/// Keeps the desktop's screen saver away over the session bus. Without a bus, or a desktop that
/// hears it, nothing happens; what it holds goes with it.
class ScreenSaverHold : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ScreenSaverHold)

public:
    explicit ScreenSaverHold(QObject *parent = nullptr);
    ~ScreenSaverHold() override;

    /// Does not wait for the answer. Where it was refused, the next call asks again.
    void setHeld(bool held);

private:
    void ask();
    void answered(bool isHeld, uint newCookie);
    void release();

    enum class State { Free, Asking, Held };

    State state = State::Free;
    bool isWanted = false;
    uint cookie = 0;
};

} // namespace GUI
} // namespace ZorvaneClient
