// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

struct ssl_ctx_st;

namespace ZorvaneService {

struct TlsRelease {
    void operator()(ssl_ctx_st *context) const;
};
using TlsContext = std::unique_ptr<ssl_ctx_st, TlsRelease>;

/// For a server with these PEM files, from TLS 1.2 on. Null when they can't be used.
TlsContext tlsContext(const std::string &certificateFile, const std::string &keyFile);

} // namespace ZorvaneService
