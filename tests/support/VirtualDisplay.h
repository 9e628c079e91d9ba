// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>

namespace ZorvaneClient::Tests {

/// An X server of the test's own, without a screen, on a display number that nobody has.
/// Needs no application object: it must stand before the one that is to use it.
class VirtualDisplay
{
    Q_DISABLE_COPY(VirtualDisplay)

public:
    /// Starts Xvfb with one screen of that size and waits until it accepts clients.
    VirtualDisplay(int width, int height);
    /// Ends it.
    ~VirtualDisplay();

    /// Such as ":99"; empty if there is no Xvfb or it did not come up.
    QByteArray name() const { return display; }
    /// Makes Qt, and every program started from here on, use this display.
    void use() const;

private:
    QProcess server;
    QByteArray display;
};

} // namespace ZorvaneClient::Tests
