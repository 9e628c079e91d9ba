// SPDX-License-Identifier: MIT
#include "service/TlsContext.h"

#include <openssl/ssl.h>

namespace ZorvaneService {

void TlsRelease::operator()(ssl_ctx_st *context) const
{
    SSL_CTX_free(context);
}

TlsContext tlsContext(const std::string &certificateFile, const std::string &keyFile)
{
    TlsContext context(SSL_CTX_new(TLS_server_method()));
    const bool good =
        context && SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION) == 1 &&
        SSL_CTX_use_certificate_chain_file(context.get(), certificateFile.c_str()) == 1 &&
        SSL_CTX_use_PrivateKey_file(context.get(), keyFile.c_str(), SSL_FILETYPE_PEM) == 1;
    return good ? std::move(context) : nullptr;
}

} // namespace ZorvaneService
