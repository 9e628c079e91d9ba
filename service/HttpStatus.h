// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneService {

/// The statuses that this service answers with.
struct HttpStatus {
    enum : int {
        Ok = 200,
        Found = 302,
        BadRequest = 400,
        Forbidden = 403,
        NotFound = 404,
        MethodNotAllowed = 405,
        InternalError = 500
    };
};

} // namespace ZorvaneService
