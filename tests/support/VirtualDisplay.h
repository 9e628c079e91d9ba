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
    VirtualDisplay(int width, int height)
    {
        constexpr int deadlineMs = 30000;
        server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // A test that crashes leaves no server behind.
        const QString command = QStringLiteral("setpriv --pdeathsig TERM Xvfb -displayfd 1 "
                                               "-screen 0 %1x%2x24 -nolisten tcp -noreset");
        const QStringList words = command.arg(width).arg(height).split(QLatin1Char(' '));
        server.start(words.first(), words.mid(1));
        // Its one line, once it is ready: the number of its display.
        while (!server.canReadLine() && server.waitForReadyRead(deadlineMs)) {
        }
        if (server.canReadLine())
            display = ':' + server.readLine().trimmed();
    }

    ~VirtualDisplay()
    {
        server.terminate();
        server.waitForFinished();
    }

    /// Such as ":99"; empty if there is no Xvfb or it did not come up.
    QByteArray name() const { return display; }

    /// Makes Qt, and every program started from here on, use this display.
    void use() const
    {
        qputenv("DISPLAY", display);
        qputenv("QT_QPA_PLATFORM", QByteArrayLiteral("xcb"));
        qunsetenv("WAYLAND_DISPLAY");
    }

private:
    QProcess server;
    QByteArray display;
};

} // namespace ZorvaneClient::Tests
