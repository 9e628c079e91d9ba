// SPDX-License-Identifier: MIT
#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Server.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneClient::API;

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    CloudAPIClient client;
    QMetaObject::invokeMethod(&client, "onNewRosterReceived", Q_ARG(QVariant, jsonOf(data, size)));
    for (const ServerPtr &server : CloudAPIClient::serverList()) {
        for (const CameraPtr &camera : server->cameras())
            camera->statusText();
    }
    CloudAPIClient::clearRoster();
    return 0;
}
