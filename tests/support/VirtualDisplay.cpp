// SPDX-License-Identifier: MIT
#include "tests/support/VirtualDisplay.h"

#include <cerrno>
#include <csignal>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ZorvaneClient {
namespace Tests {

namespace {

constexpr int startDeadlineMs = 30000;

/// The line that Xvfb writes once it is ready: the number of its display.
QByteArray readLine(int descriptor)
{
    QByteArray line;
    while (!line.endsWith('\n')) {
        pollfd waiting{descriptor, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, startDeadlineMs);
        if (ready < 0 && errno == EINTR)
            continue;
        char byte = 0;
        if (ready <= 0 || ::read(descriptor, &byte, 1) != 1)
            return QByteArray();
        line.append(byte);
    }
    return line.trimmed();
}

[[noreturn]] void runServer(int descriptor, const QByteArray &screen)
{
    // A test that crashes leaves no server behind.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    const QByteArray number = QByteArray::number(descriptor);
    ::execlp("Xvfb", "Xvfb", "-displayfd", number.constData(), "-screen", "0", screen.constData(),
             "-nolisten", "tcp", "-noreset", static_cast<char *>(nullptr));
    ::_exit(127);
}

} // namespace

VirtualDisplay::VirtualDisplay(int width, int height)
{
    int ends[2];
    if (::pipe(ends) != 0)
        return;
    const QByteArray screen =
        QByteArray::number(width) + 'x' + QByteArray::number(height) + QByteArrayLiteral("x24");
    server = ::fork();
    if (server == 0) {
        ::close(ends[0]);
        runServer(ends[1], screen);
    }
    ::close(ends[1]);
    const QByteArray number = readLine(ends[0]);
    ::close(ends[0]);
    if (!number.isEmpty())
        display = ':' + number;
}

VirtualDisplay::~VirtualDisplay()
{
    if (server <= 0)
        return;
    ::kill(server, SIGTERM);
    ::waitpid(server, nullptr, 0);
}

void VirtualDisplay::use() const
{
    qputenv("DISPLAY", display);
    qputenv("QT_QPA_PLATFORM", QByteArrayLiteral("xcb"));
    qunsetenv("WAYLAND_DISPLAY");
}

} // namespace Tests
} // namespace ZorvaneClient
