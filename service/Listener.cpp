// SPDX-License-Identifier: MIT
#include "service/Listener.h"

#include <utility>

#include <sys/socket.h>

#include "service/Connection.h"
#include "service/Counted.h"
#include "service/GrowingPool.h"

namespace ZorvaneService {

namespace {

/// Takes from a request what would let few bytes cost many.
void disarm(httplib::Request &request)
{
    request.ranges.clear();
    request.headers.erase("Range");
    request.headers.erase("Content-Encoding");
}

} // namespace

Listener::Listener(TlsContext context, const HttpLimits &allowed)
    : tls(std::move(context)), limits(allowed)
{
    new_task_queue = [] { return new GrowingPool; };
    set_socket_options([](socket_t socket) {
        // The library would also share the port with whoever else asks for it.
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    set_tcp_nodelay(true);
    set_payload_max_length(limits.bodyBytes);
}

void Listener::widenQueue() const
{
    // The library's queue of five would make a wall of tiles wait for new attempts.
    ::listen(svr_sock_, limits.waitingConnections);
}

bool Listener::process_and_close_socket(socket_t socket)
{
    const Counted counted(connections);
    Connection connection(socket, tls.get(), limits);
    if (connections > limits.connections)
        return false;
    bool closes = false;
    for (int left = limits.requestsOfConnection; left > 0 && !closes; --left) {
        if (!connection.awaitRequest() || !process_request(connection, left == 1, closes, disarm))
            return false;
    }
    return true;
}

} // namespace ZorvaneService
