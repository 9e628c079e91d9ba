// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "service/Http.h"
#include "service/HttpLimits.h"
#include "service/Loopback.h"

namespace ZorvaneService {

class Listener;

/// One listening port, with a thread for each connection.
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
    HttpServer(std::string name, Handler handler, const Tls *tls = nullptr,
               const HttpLimits &limits = {});
    /// The process ends with its servers: connections that still run are not waited for.
    ~HttpServer();
    HttpServer(const HttpServer &) = delete;
    HttpServer &operator=(const HttpServer &) = delete;

    /// Binds `port`, or a free one for 0. The bound port, or 0 on failure.
    int bind(int port, const std::string &address = loopback);
    /// Begins to accept.
    void start();

private:
    std::string name;
    Handler handler;
    std::unique_ptr<Listener> listener; ///< null when the certificate can't be used
    std::thread thread;
};

} // namespace ZorvaneService
