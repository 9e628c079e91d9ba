// SPDX-License-Identifier: MIT
#include "GUI/Player/ExportOutput.h"
#include "tests/fuzz/Fuzz.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    ZorvaneClient::GUI::Player::Internal::exportEvents(bytesOf(data, size));
    return 0;
}
