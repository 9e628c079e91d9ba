// SPDX-License-Identifier: MIT
#include "API/ServiceLink.h"

#include "App/Environment.h"

namespace ZorvaneClient {
namespace API {

ServiceLink &ServiceLink::instance()
{
    static ServiceLink link;
    return link;
}

void ServiceLink::setAnswered(bool isAnswered)
{
    if (isAnswered == since.isNull())
        return;
    since = isAnswered ? QDateTime() : App::Environment::now();
    emit changed();
}

} // namespace API
} // namespace ZorvaneClient
