// SPDX-License-Identifier: MIT
#include "API/LocalServer.h"
#include "tests/fuzz/Fuzz.h"

/// Without making a server, which would call the address that the bytes name.
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QVariantList entries = jsonOf(data, size).toList();
    for (const QVariant &entry : entries)
        ZorvaneClient::API::LocalServer::idOf(entry.toMap());
    return 0;
}
