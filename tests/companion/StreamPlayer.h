// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "tests/companion/Clips.h"
#include "tests/support/PlayerProcess.h"
#include "tests/support/StreamServer.h"

namespace ZorvaneClient::Tests {

/// The player, and the server of its stream.
class StreamPlayer : public PlayerProcess
{
public:
    static constexpr int deadline = 40'000;

    bool play(const StreamScript &script, const QByteArray &path = "/flv/live")
    {
        return server.start(script) && start(server.url(path));
    }
    /// Wait for it.
    bool shows(int count)
    {
        return QTest::qWaitFor([this, count] { return frames() >= count; }, deadline);
    }
    bool ends()
    {
        return QTest::qWaitFor([this] { return !isRunning(); }, deadline);
    }

    StreamServer server;
};

/// The script with one of its members set.
template <typename Value, typename Given>
StreamScript with(StreamScript script, Value StreamScript::*member, const Given &value)
{
    script.*member = value;
    return script;
}

/// Serves the beginning of a clip, and then nothing.
inline StreamScript stallScript(const FlvClip &clip, int stopAt = -1)
{
    return with(with(StreamScript::of(clip), &StreamScript::stopAt, stopAt), &StreamScript::ending,
                StreamScript::Ending::Stall);
}

} // namespace ZorvaneClient::Tests

Q_DECLARE_METATYPE(ZorvaneClient::Tests::StreamScript)
