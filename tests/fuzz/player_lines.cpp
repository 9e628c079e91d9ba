// SPDX-License-Identifier: MIT
#include "GUI/Player/FrameFile.h"
#include "GUI/Player/PlayerOutput.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneClient::GUI::Player::Internal;

/// Whatever size is told, the last pixel of such a picture lies in the frame file.
void tryInput(const QByteArray &input)
{
    static FrameFile frameFile;
    check(frameFile.open());
    for (const PlayerEvent &event : PlayerOutput::parse(input).events) {
        const QImage picture = frameFile.image(event.size);
        check(picture.isNull() || picture.constBits()[picture.sizeInBytes() - 1] == 0);
    }
}
