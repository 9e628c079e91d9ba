// SPDX-License-Identifier: MIT
#include "GUI/Player/PlayerOutput.h"
#include "tests/fuzz/Fuzz.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    ZorvaneClient::GUI::Player::Internal::PlayerOutput::parse(bytesOf(data, size));
    return 0;
}
