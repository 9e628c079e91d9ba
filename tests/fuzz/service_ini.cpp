// SPDX-License-Identifier: MIT
#include "App/ServiceProfile.h"
#include "tests/fuzz/Fuzz.h"

/// The file is its own list of authorities as well.
void tryInput(const QByteArray &input)
{
    const QString name = "service.ini";
    writeFile(name, input);
    auto profile = ZorvaneClient::App::ServiceProfile::fromFile(name);
    check(profile.apiPort >= 0 && profile.apiPort <= 65535);
    profile.caCertificate = name;
    profile.setCurrent(profile);
}
