// SPDX-License-Identifier: MIT
#include "service/HttpServer.h"

#include <algorithm>
#include <utility>

#include "service/HttpExchange.h"
#include "service/Listener.h"

namespace ZorvaneService {

HttpServer::HttpServer(std::string listenerName, Handler requestHandler, const Tls *tls,
                       const HttpLimits &limits)
    : name(std::move(listenerName)), handler(std::move(requestHandler))
{
    TlsContext context = tls ? tlsContext(tls->certificateFile, tls->keyFile) : nullptr;
    if (tls && !context)
        return;
    listener = std::make_unique<Listener>(std::move(context), limits);
    const auto serve = [this](const httplib::Request &from, httplib::Response &to) {
        give(handler(wireRequest(name, from)), &to);
    };
    listener->Get(".*", serve);
    listener->Post(".*", serve);
    listener->Put(".*", serve);
    listener->Patch(".*", serve);
    listener->Delete(".*", serve);
    listener->Options(".*", serve);
}

HttpServer::~HttpServer()
{
    if (thread.joinable())
        thread.detach();
}

int HttpServer::bind(int port, const std::string &address)
{
    if (!listener)
        return 0;
    const int bound = port == 0 ? listener->bind_to_any_port(address)
                                : (listener->bind_to_port(address, port) ? port : 0);
    if (bound > 0)
        listener->widenQueue();
    return std::max(0, bound);
}

void HttpServer::start()
{
    thread = std::thread([this] { listener->listen_after_bind(); });
}

} // namespace ZorvaneService
