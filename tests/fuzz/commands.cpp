// SPDX-License-Identifier: MIT
#include <sys/socket.h>
#include <unistd.h>

#include "companion/CommandInput.h"
#include "companion/Controls.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneClient::Companion;

/// True if that leaves the player paused, each of `reads` being one. Whatever came before, it
/// still takes a command.
static bool isPausedAfter(const QByteArrayList &reads)
{
    int ends[2];
    check(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) == 0);
    for (const QByteArray &read : reads)
        ::send(ends[1], read.data(), static_cast<size_t>(read.size()), 0);
    ::close(ends[1]);
    Controls controls;
    CommandInput(ends[0], controls).run();
    ::close(ends[0]);
    if (controls.elapsed() >= CommandInput::pingLimit)
        return isPausedAfter(reads); // the machine stood still, and that looks like no ping
    check(controls.volume() == 37);
    return controls.isPaused();
}

/// It is all one whether the bytes come at once or in two reads.
void tryInput(const QByteArray &input)
{
    const QByteArray bytes = input.left(4000) + "\nvolume 37\n";
    const int place = 1 + static_cast<uchar>(bytes.at(0)) * 16 % (bytes.size() - 1);
    check(isPausedAfter({bytes}) == isPausedAfter({bytes.left(place), bytes.mid(place)}));
}
