// SPDX-License-Identifier: MIT
#pragma once

#include <httplib.h>

#include <atomic>

#include "service/HttpLimits.h"
#include "service/TlsContext.h"

namespace ZorvaneService {

/// The HTTP library's server over connections of our own.
class Listener : public httplib::Server
{
public:
    /// Without `context` it speaks plain http.
    Listener(TlsContext context, const HttpLimits &allowed);

    /// What the system is asked to let wait; after binding.
    void widenQueue() const;

private:
    bool process_and_close_socket(socket_t socket) override;

    const TlsContext tls;
    const HttpLimits limits;
    std::atomic<int> connections{0};
};

} // namespace ZorvaneService
