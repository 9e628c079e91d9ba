// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/LayoutDocument.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneClient::API;

/// Taken as the service's, then written and read again: nothing changes any more.
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    CloudAPIClient client;
    bool isTaken = false;
    QMetaObject::invokeMethod(&client, "parseLayouts", Q_RETURN_ARG(bool, isTaken),
                              Q_ARG(QVariant, jsonOf(data, size)));
    for (const LayoutPtr &layout : CloudAPIClient::layoutList()) {
        const QVariantMap written = layout->toVariantMap();
        if (Layout(written).toVariantMap() != written || layout->rows() > 32)
            std::abort();
    }
    client.logout(); // else the stamp of this one makes all others old
    return 0;
}
