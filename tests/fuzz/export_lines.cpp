// SPDX-License-Identifier: MIT
#include "GUI/Player/ExportOutput.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneClient::GUI::Player::Internal;

/// Done is told last, and of the complaints only what the child says in its own name.
void tryInput(const QByteArray &input)
{
    const QVector<ExportEvent> events = exportEvents(input);
    for (int i = 0; i + 1 < events.size(); ++i)
        check(events.at(i).kind != ExportEvent::Kind::Done);
    check(exportComplaint(input).isEmpty() || input.contains("vlc-stream: "));
}
