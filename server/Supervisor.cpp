// SPDX-License-Identifier: MIT
#include "server/Supervisor.h"

#include <cstddef>
#include <cstdlib>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "server/Descriptor.h"
#include "server/UtcTime.h"

namespace ZorvaneServer {
namespace Supervisor {

bool tell(const std::string &message)
{
    const char *name = std::getenv("NOTIFY_SOCKET");
    const std::string path = name ? name : "";
    sockaddr_un address{};
    if (path.empty() || path.size() >= sizeof address.sun_path)
        return false;
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, path.size());
    // One that is no file begins with a zero byte.
    if (path.front() == '@')
        address.sun_path[0] = 0;
    const Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    return sendto(socket.get(), message.data(), message.size(), MSG_NOSIGNAL,
                  reinterpret_cast<const sockaddr *>(&address), length) >= 0;
}

std::optional<std::chrono::milliseconds> heartbeat()
{
    const char *limit = std::getenv("WATCHDOG_USEC");
    const char *process = std::getenv("WATCHDOG_PID");
    const auto limitUs = readDigits(limit ? limit : "");
    if (!limitUs || (process && process != std::to_string(getpid())))
        return {};
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::microseconds(*limitUs / 3));
}

} // namespace Supervisor
} // namespace ZorvaneServer
