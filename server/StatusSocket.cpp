// SPDX-License-Identifier: MIT
#include "server/StatusSocket.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace ZorvaneServer {

namespace {

constexpr char socketName[] = "status";
constexpr int mostWaiting = 4;
// Who asks and then reads nothing doesn't keep others from asking.
constexpr timeval sendTime{1, 0};

/// A socket's address has little room: by the folder's descriptor any path fits.
sockaddr_un addressIn(const Descriptor &folder)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = "/proc/self/fd/" + std::to_string(folder.get()) + '/' + socketName;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

Descriptor openFolder(const std::string &path)
{
    return Descriptor(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

Descriptor newSocket()
{
    return Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

} // namespace

StatusSocket::StatusSocket(const std::string &stateFolder, std::function<std::string()> tell)
    : folder(stateFolder), answer(std::move(tell))
{
}

std::string StatusSocket::start()
{
    const Descriptor parent = openFolder(folder);
    const sockaddr_un address = addressIn(parent);
    listening = newSocket();
    unlinkat(parent.get(), socketName, 0);
    const auto *plain = reinterpret_cast<const sockaddr *>(&address);
    if (bind(listening.get(), plain, sizeof address) != 0 ||
        fchmodat(parent.get(), socketName, S_IRUSR | S_IWUSR, 0) != 0 ||
        listen(listening.get(), mostWaiting) != 0)
        return folder + '/' + socketName + ": " + std::strerror(errno);
    std::thread([this] { run(); }).detach();
    return {};
}

void StatusSocket::run()
{
    for (;;) {
        const Descriptor peer(accept4(listening.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!peer && errno != EINTR && errno != ECONNABORTED)
            return;
        setsockopt(peer.get(), SOL_SOCKET, SO_SNDTIMEO, &sendTime, sizeof sendTime);
        const std::string text = answer();
        for (std::size_t sent = 0; sent < text.size();) {
            const ssize_t count =
                send(peer.get(), text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (count <= 0)
                break;
            sent += static_cast<std::size_t>(count);
        }
    }
}

std::string StatusSocket::ask(const std::string &folder, std::string *told,
                              std::chrono::milliseconds patience)
{
    using std::chrono::microseconds;
    using std::chrono::seconds;
    const Descriptor parent = openFolder(folder);
    const Descriptor peer = newSocket();
    const sockaddr_un address = addressIn(parent);
    const auto whole = std::chrono::duration_cast<seconds>(patience);
    const timeval limit{whole.count(), microseconds(patience - whole).count()};
    setsockopt(peer.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    // A connection waits, too, where others wait already.
    setsockopt(peer.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    const std::string silent = "the zorvane-server with the folder " + folder + " doesn't answer";
    if (!parent ||
        connect(peer.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        return parent && errno == EAGAIN ? silent
                                         : "no zorvane-server runs with the folder " + folder;
    std::array<char, 4096> buffer;
    ssize_t count = 0;
    while ((count = read(peer.get(), buffer.data(), buffer.size())) > 0)
        told->append(buffer.data(), static_cast<std::size_t>(count));
    return count == 0 && !told->empty() ? std::string() : silent;
}

} // namespace ZorvaneServer
