// SPDX-License-Identifier: MIT
#include "App/ServiceProfile.h"
#include "tests/fuzz/Fuzz.h"

using ZorvaneClient::App::ServiceProfile;

/// The file is its own list of authorities as well.
void tryInput(const QByteArray &input)
{
    const QString name = "service.ini";
    writeFile(name, input);
    ServiceProfile profile = ServiceProfile::fromFile(name);
    check(profile.apiPort >= 0 && profile.apiPort <= 65535);
    profile.caCertificate = name;
    ServiceProfile::setCurrent(profile);
}
