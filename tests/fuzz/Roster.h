// SPDX-License-Identifier: MIT
#pragma once

#include "API/CloudAPIClient.h"
#include "tests/fuzz/Fuzz.h"

/// Has a roster taken as a reply of the service.
inline void takeRoster(const QVariant &reply)
{
    ZorvaneClient::API::CloudAPIClient client;
    QMetaObject::invokeMethod(&client, "onNewRosterReceived", Q_ARG(QVariant, reply));
}

/// The server "s1" with the cameras 7 and 8, for documents that name them.
inline void takeUsualRoster()
{
    takeRoster(jsonOf(R"({"s1":{"id":"s1","cameras":{"7":{"id":7},"8":{"id":8}}}})"));
}
