// SPDX-License-Identifier: MIT
#include <QTemporaryFile>

#include <cstdlib>

#include "App/ServiceProfile.h"
#include "tests/fuzz/Fuzz.h"

using ZorvaneClient::App::ServiceProfile;

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr int maxPort = 65535;
    QTemporaryFile file;
    if (!file.open() || file.write(bytesOf(data, size)) < 0 || !file.flush())
        std::abort();
    const ServiceProfile profile = ServiceProfile::fromFile(file.fileName());
    if (profile.apiPort < 0 || profile.apiPort > maxPort)
        std::abort();
    return 0;
}
