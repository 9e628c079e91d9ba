// SPDX-License-Identifier: MIT
#include "API/ServiceLink.h"

#include <chrono>

#include "App/Environment.h"

namespace ZorvaneClient {
namespace API {

namespace {

/// A large roster over a slow line takes seconds.
constexpr std::chrono::seconds longestWait{20};

} // namespace

ServiceLink &ServiceLink::instance()
{
    static ServiceLink link;
    return link;
}

ServiceLink::ServiceLink()
{
    patience.setSingleShot(true);
    patience.setInterval(longestWait);
    connect(&patience, &QTimer::timeout, this, [this] {
        if (since.isNull())
            setSilentSince(asked);
    });
}

void ServiceLink::setAsked()
{
    if (patience.isActive())
        return;
    asked = App::Environment::now();
    patience.start();
}

void ServiceLink::setAnswered(bool isAnswered)
{
    patience.stop();
    if (isAnswered != since.isNull())
        setSilentSince(isAnswered ? QDateTime() : App::Environment::now());
}

void ServiceLink::setSilentSince(const QDateTime &moment)
{
    since = moment;
    emit changed();
}

} // namespace API
} // namespace ZorvaneClient
