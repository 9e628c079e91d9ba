// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneService {

struct PictureSize {
    int width = 0;
    int height = 0;
};

} // namespace ZorvaneService
