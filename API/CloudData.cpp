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
    return lastRequest.isValid() && lastRequest > App::Environment::now().addSecs(-throttleSeconds);
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
