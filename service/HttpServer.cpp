// SPDX-License-Identifier: MIT
#include "service/HttpServer.h"

#include <httplib.h>

#include <algorithm>
#include <cctype>
#include <condition_variable>
#include <list>
#include <mutex>
#include <utility>

#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include "service/Loopback.h"

namespace ZorvaneService {

namespace {

/// A paused player reads nothing for as long as it likes.
constexpr time_t writeTimeoutSeconds = time_t(24) * 3600;
constexpr time_t readTimeoutSeconds = 60;
constexpr int waitingConnections = 512;
constexpr std::size_t largestBody = std::size_t(16) * 1024 * 1024;

/// A thread for every connection: a stream holds its own for as long as it is watched.
/// Threads that have nothing to do are used again.
class GrowingPool : public httplib::TaskQueue
{
public:
    void enqueue(std::function<void()> task) override
    {
        const std::lock_guard<std::mutex> lock(mutex);
        tasks.push_back(std::move(task));
        if (idle < tasks.size())
            std::thread([this] { work(); }).detach();
        else
            wake.notify_one();
    }

    void shutdown() override {}

private:
    [[noreturn]] void work()
    {
        std::unique_lock<std::mutex> lock(mutex);
        for (;;) {
            ++idle;
            wake.wait(lock, [this] { return !tasks.empty(); });
            --idle;
            const std::function<void()> task = std::move(tasks.front());
            tasks.pop_front();
            lock.unlock();
            task();
            lock.lock();
        }
    }

    std::mutex mutex;
    std::condition_variable wake;
    std::list<std::function<void()>> tasks;
    std::size_t idle = 0;
};

class Sink : public BodySink
{
public:
    explicit Sink(httplib::DataSink &target) : sink(target) {}

    bool write(const void *data, std::size_t size) override
    {
        return sink.write(static_cast<const char *>(data), size);
    }

    bool isOpen() override { return sink.is_writable(); }

private:
    httplib::DataSink &sink;
};

bool hasPorts(int socket, int localPort, int remotePort)
{
    sockaddr_in local{};
    sockaddr_in remote{};
    socklen_t localSize = sizeof local;
    socklen_t remoteSize = sizeof remote;
    return getsockname(socket, reinterpret_cast<sockaddr *>(&local), &localSize) == 0 &&
           getpeername(socket, reinterpret_cast<sockaddr *>(&remote), &remoteSize) == 0 &&
           local.sin_family == AF_INET && ntohs(local.sin_port) == localPort &&
           ntohs(remote.sin_port) == remotePort;
}

/// Closes both directions of the connection that `request` came by, at once. The library keeps
/// its sockets to itself, so the connection is looked for by its ports.
void hangUp(const HttpRequest &request)
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    for (int file = 3; file < static_cast<int>(std::min<rlim_t>(limit.rlim_cur, 65'536)); ++file) {
        if (hasPorts(file, request.localPort, request.remotePort)) {
            shutdown(file, SHUT_RDWR);
            return;
        }
    }
}

HttpRequest wireRequest(const std::string &listener, const httplib::Request &from)
{
    HttpRequest request;
    request.listener = listener;
    request.method = from.method;
    const std::size_t question = std::min(from.target.find('?'), from.target.size());
    request.path = from.target.substr(0, question);
    if (question < from.target.size())
        request.query = from.target.substr(question + 1);
    for (const auto &[key, value] : from.headers) {
        std::string name = key;
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char letter) {
            return static_cast<char>(std::tolower(letter));
        });
        // The library's own additions were not on the wire.
        if (name != "remote_addr" && name != "remote_port" && name != "local_addr" &&
            name != "local_port")
            request.headers.emplace_back(name, value);
    }
    request.body = from.body;
    request.localPort = from.local_port;
    request.remotePort = from.remote_port;
    return request;
}

void send(const HttpRequest &request, const HttpReply &reply, httplib::Response *to)
{
    if (reply.hangUp)
        hangUp(request);
    to->status = reply.status;
    for (const auto &[key, value] : reply.headers)
        to->set_header(key, value);
    if (!reply.stream) {
        to->set_content(reply.body, reply.contentType);
        return;
    }
    to->set_header("Connection", "close");
    const auto provide = [request, stream = reply.stream](std::size_t, httplib::DataSink &target) {
        Sink sink(target);
        if (stream(sink))
            target.done();
        hangUp(request);
        return false;
    };
    if (to->has_header("Content-Length"))
        to->set_content_provider(reply.contentType, provide);
    else
        to->set_chunked_content_provider(reply.contentType, provide);
}

} // namespace

HttpServer::HttpServer(std::string listenerName, Handler requestHandler, const Tls *tls)
    : name(std::move(listenerName)), handler(std::move(requestHandler))
{
    if (tls)
        server = std::make_unique<httplib::SSLServer>(tls->certificateFile.c_str(),
                                                      tls->keyFile.c_str());
    else
        server = std::make_unique<httplib::Server>();
    server->new_task_queue = [] { return new GrowingPool; };
    server->set_socket_options([this](socket_t socket) {
        // The library would also share the port with whoever else asks for it.
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        listener = socket;
    });
    server->set_tcp_nodelay(true);
    server->set_write_timeout(writeTimeoutSeconds);
    server->set_read_timeout(readTimeoutSeconds);
    server->set_payload_max_length(largestBody);
    const auto serve = [this](const httplib::Request &from, httplib::Response &to) {
        const HttpRequest request = wireRequest(name, from);
        send(request, handler(request), &to);
    };
    server->Get(".*", serve);
    server->Post(".*", serve);
    server->Put(".*", serve);
    server->Patch(".*", serve);
    server->Delete(".*", serve);
    server->Options(".*", serve);
}

HttpServer::~HttpServer()
{
    if (thread.joinable())
        thread.detach();
}

int HttpServer::bind(int port)
{
    if (!server->is_valid())
        return 0;
    const int bound = port == 0 ? server->bind_to_any_port(loopback)
                                : (server->bind_to_port(loopback, port) ? port : 0);
    // The library's queue of five would make a wall of tiles wait for new attempts.
    if (bound > 0)
        listen(listener, waitingConnections);
    return std::max(0, bound);
}

void HttpServer::start()
{
    thread = std::thread([this] { server->listen_after_bind(); });
}

} // namespace ZorvaneService
