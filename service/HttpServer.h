// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "service/Http.h"

namespace httplib {
class Server;
}

namespace ZorvaneService {

/// One listening port on 127.0.0.1, with a thread for each connection.
class HttpServer
{
public:
    using Handler = std::function<HttpReply(const HttpRequest &)>;

    struct Tls {
        std::string certificateFile; ///< PEM
        std::string keyFile;         ///< PEM
    };

    /// `name` is what requests carry as their listener. The handler is called from many
    /// threads. Without `tls` it speaks plain http.
    HttpServer(std::string name, Handler handler, const Tls *tls = nullptr);
    /// The process ends with its servers: connections that still run are not waited for.
    ~HttpServer();
    HttpServer(const HttpServer &) = delete;
    HttpServer &operator=(const HttpServer &) = delete;

    /// Binds `port`, or a free one for 0. The bound port, or 0 on failure.
    int bind(int port);
    /// Begins to accept.
    void start();

private:
    std::string name;
    Handler handler;
    std::unique_ptr<httplib::Server> server;
    int listener = -1;
    std::thread thread;
};

} // namespace ZorvaneService
