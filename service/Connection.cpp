// SPDX-License-Identifier: MIT
#include "service/Connection.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace ZorvaneService {

namespace {

thread_local Connection *served = nullptr;

/// Of a call on a socket: ready, gone, or neither yet.
enum class Wait { Ready, Over };

Wait await(int file, short events, std::chrono::steady_clock::time_point until)
{
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return Wait::Over;
        pollfd one{file, events, 0};
        const auto limited = std::min<std::int64_t>(left.count(), std::numeric_limits<int>::max());
        const int count = poll(&one, 1, static_cast<int>(limited));
        if (count > 0)
            return Wait::Ready;
        if (count < 0 && errno != EINTR)
            return Wait::Over;
    }
}

void describe(const sockaddr_storage &address, socklen_t size, std::string *ip, int *port)
{
    char host[NI_MAXHOST];
    char service[NI_MAXSERV];
    if (getnameinfo(reinterpret_cast<const sockaddr *>(&address), size, host, sizeof host, service,
                    sizeof service, NI_NUMERICHOST | NI_NUMERICSERV) != 0)
        return;
    *ip = host;
    *port = std::stoi(service);
}

} // namespace

Connection::Connection(int socket, SSL_CTX *tls, const HttpLimits &allowed)
    : file(socket), session(tls ? SSL_new(tls) : nullptr), limits(allowed), shaken(!tls)
{
    fcntl(file, F_SETFL, fcntl(file, F_GETFL) | O_NONBLOCK);
    if (session)
        SSL_set_fd(session.get(), file);
    served = this;
}

Connection::~Connection()
{
    served = nullptr;
    if (session && shaken && !isBrokenOff)
        SSL_shutdown(session.get());
    hangUp();
    close(file);
}

Connection *Connection::current()
{
    return served;
}

void Connection::hangUp()
{
    // An ordinary end on the way would come first.
    if (!isBrokenOff)
        shutdown(file, SHUT_RDWR);
}

void Connection::breakOff()
{
    const linger reset{1, 0};
    isBrokenOff = setsockopt(file, SOL_SOCKET, SO_LINGER, &reset, sizeof reset) == 0;
}

bool Connection::awaitRequest()
{
    deadline = Clock::now() + limits.requestTime;
    if (isBroken || (!shaken && !shakeHands()))
        return false;
    deadline = Clock::now() + limits.idleTime;
    if (!is_readable() && !fill())
        return false;
    deadline = Clock::now() + limits.requestTime;
    requestBytes = 0;
    lineLength = 0;
    inHeaders = true;
    return true;
}

bool Connection::shakeHands()
{
    shaken =
        session && whenReady([this] { return SSL_accept(session.get()); }, POLLIN, deadline) > 0;
    return shaken;
}

/// Repeats `attempt` until it has come to something or `until`; waits in between for what it lacks.
template <typename Attempt>
ssize_t Connection::whenReady(Attempt attempt, short events, Clock::time_point until) const
{
    for (;;) {
        errno = 0;
        const ssize_t result = attempt();
        if (result > 0)
            return result;
        const short wanted = wantedEvents(result, events);
        if (wanted == 0 || await(file, wanted, until) == Wait::Over)
            return -1;
    }
}

/// What an attempt that came to nothing waits for; 0 when it is in vain.
short Connection::wantedEvents(ssize_t result, short events) const
{
    if (!session)
        return result < 0 && (errno == EAGAIN || errno == EINTR) ? events : short(0);
    switch (SSL_get_error(session.get(), static_cast<int>(result))) {
    case SSL_ERROR_WANT_READ:
        return POLLIN;
    case SSL_ERROR_WANT_WRITE:
        return POLLOUT;
    default:
        return 0;
    }
}

bool Connection::fill()
{
    const auto receive = [this]() -> ssize_t {
        return session ? SSL_read(session.get(), buffer.data(), static_cast<int>(buffer.size()))
                       : recv(file, buffer.data(), buffer.size(), 0);
    };
    const ssize_t size = whenReady(receive, POLLIN, deadline);
    begin = 0;
    end = static_cast<std::size_t>(std::max<ssize_t>(size, 0));
    return size > 0;
}

ssize_t Connection::read(char *bytes, std::size_t size)
{
    isBroken = isBroken || (!is_readable() && !fill());
    if (isBroken)
        return -1;
    const std::size_t count = std::min(size, end - begin);
    std::copy_n(buffer.begin() + static_cast<std::ptrdiff_t>(begin), count, bytes);
    begin += count;
    isBroken = !mayRead(bytes, count);
    return isBroken ? -1 : static_cast<ssize_t>(count);
}

/// Whether the request is still within its limits. Its headers end with an empty line.
bool Connection::mayRead(const char *bytes, std::size_t size)
{
    requestBytes += size;
    for (std::size_t i = 0; inHeaders && i < size; ++i) {
        inHeaders = bytes[i] != '\n' || lineLength > 0;
        if (bytes[i] != '\r')
            lineLength = bytes[i] == '\n' ? 0 : lineLength + 1;
    }
    return requestBytes <= limits.headerBytes + (inHeaders ? 0 : limits.bodyBytes);
}

ssize_t Connection::write(const char *bytes, std::size_t size)
{
    const auto send = [&]() -> ssize_t {
        const std::size_t most = std::min<std::size_t>(size, std::numeric_limits<int>::max());
        return session ? SSL_write(session.get(), bytes, static_cast<int>(most))
                       : ::send(file, bytes, size, MSG_NOSIGNAL);
    };
    return size == 0 ? 0 : whenReady(send, POLLOUT, Clock::now() + limits.writeTime);
}

bool Connection::is_writable() const
{
    char byte = 0;
    const ssize_t size = recv(file, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return size > 0 || (size < 0 && (errno == EAGAIN || errno == EINTR));
}

void Connection::get_remote_ip_and_port(std::string &ip, int &port) const
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    if (getpeername(file, reinterpret_cast<sockaddr *>(&address), &size) == 0)
        describe(address, size, &ip, &port);
}

void Connection::get_local_ip_and_port(std::string &ip, int &port) const
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    if (getsockname(file, reinterpret_cast<sockaddr *>(&address), &size) == 0)
        describe(address, size, &ip, &port);
}

} // namespace ZorvaneService
