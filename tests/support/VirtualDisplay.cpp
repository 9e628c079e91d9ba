// SPDX-License-Identifier: MIT
#include "tests/support/VirtualDisplay.h"

namespace ZorvaneClient::Tests {

namespace {

constexpr int startDeadlineMs = 30000;

} // namespace

VirtualDisplay::VirtualDisplay(int width, int height)
{
    server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // A test that crashes leaves no server behind.
    const QString command = QStringLiteral("setpriv --pdeathsig TERM Xvfb -displayfd 1 "
                                           "-screen 0 %1x%2x24 -nolisten tcp -noreset");
    const QStringList words = command.arg(width).arg(height).split(QLatin1Char(' '));
    server.start(words.first(), words.mid(1));
    // Its one line, once it is ready: the number of its display.
    while (!server.canReadLine() && server.waitForReadyRead(startDeadlineMs)) {
    }
    if (server.canReadLine())
        display = ':' + server.readLine().trimmed();
}

VirtualDisplay::~VirtualDisplay()
{
    server.terminate();
    server.waitForFinished();
}

void VirtualDisplay::use() const
{
    qputenv("DISPLAY", display);
    qputenv("QT_QPA_PLATFORM", QByteArrayLiteral("xcb"));
    qunsetenv("WAYLAND_DISPLAY");
}

} // namespace ZorvaneClient::Tests
