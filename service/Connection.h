// SPDX-License-Identifier: MIT
#pragma once

#include <httplib.h>
#include <openssl/ssl.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "service/HttpLimits.h"

namespace ZorvaneService {

/// One accepted connection, with TLS or without, as the HTTP library reads and writes it. Holds
/// its peer to the limits. Used on one thread.
class Connection : public httplib::Stream
{
public:
    /// Takes the socket over. `tls` null: plain.
    Connection(int socket, SSL_CTX *tls, const HttpLimits &allowed);
    ~Connection() override;
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /// True when a request begins to come in time; first of all shakes hands.
    bool awaitRequest();
    /// Closes both directions at once.
    void hangUp();
    /// Closes it at the end in a way that no peer takes for the end of a reply. Many do so even
    /// where the last chunk is missing.
    void breakOff();
    /// The one that the calling thread serves.
    static Connection *current();

    bool is_readable() const override { return begin < end; }
    /// Whether the peer is still there.
    bool is_writable() const override;
    ssize_t read(char *bytes, std::size_t size) override;
    ssize_t write(const char *bytes, std::size_t size) override;
    void get_remote_ip_and_port(std::string &ip, int &port) const override;
    void get_local_ip_and_port(std::string &ip, int &port) const override;
    socket_t socket() const override { return file; }

private:
    using Clock = std::chrono::steady_clock;
    struct TlsEnd {
        void operator()(SSL *session) const { SSL_free(session); }
    };

    bool shakeHands();
    bool fill();
    template <typename Attempt>
    ssize_t whenReady(Attempt attempt, short events, Clock::time_point until) const;
    short wantedEvents(ssize_t result, short events) const;
    bool mayRead(const char *bytes, std::size_t size);

    const int file;
    const std::unique_ptr<SSL, TlsEnd> session;
    const HttpLimits limits;
    bool shaken = false;
    Clock::time_point deadline; ///< of what is read now
    std::array<char, 4096> buffer;
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t requestBytes = 0;
    std::size_t lineLength = 0; ///< of the header that is being read
    bool inHeaders = true;
    bool isBroken = false;
    bool isBrokenOff = false;
};

} // namespace ZorvaneService
