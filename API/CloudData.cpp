// SPDX-License-Identifier: MIT
#include "API/CloudData.h"

#include "App/Environment.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

namespace {

constexpr qint64 throttleSeconds = 30;

} // namespace

CloudData cloudData;

bool isFresh(const QDateTime &lastRequest)
{
    const QDateTime now = App::Environment::now();
    // The wall clock can be set back; what lies ahead would hold for as long as that.
    return lastRequest.isValid() && lastRequest <= now &&
           lastRequest > now.addSecs(-throttleSeconds);
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
