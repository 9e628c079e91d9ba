// SPDX-License-Identifier: MIT
// What the companion player costs beside a loop that only decodes the same stream: processor
// time for each picture, resident memory, and the time to the first picture.
#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <optional>
#include <vector>

#include "bench/DecodeLoop.h"
#include "bench/Measure.h"
#include "bench/Processes.h"
#include "tests/support/FlvClip.h"
#include "tests/support/PlayerProcess.h"
#include "tests/support/StreamServer.h"

using namespace ZorvaneClient::Tests;
using namespace ZorvaneClient::Bench;

namespace {

constexpr int runs = 5;
constexpr int startRuns = 9;
constexpr int clipMilliseconds = 9000;
constexpr int runLimitMilliseconds = 30'000;

constexpr double maxCpuRatio = 1.15;
constexpr double maxMebibytes = 60;
constexpr double maxFirstFrameMilliseconds = 150;

struct PlayerRun {
    double cpuMilliseconds = 0; ///< for each picture after the first
    double mebibytes = 0;
    double firstFrameMilliseconds = 0;
};

/// Plays until `pictures` have come; nothing if they don't.
std::optional<PlayerRun> play(const StreamServer &server, int pictures)
{
    PlayerProcess player;
    QEventLoop loop;
    PlayerRun run;
    clockid_t cpuClock = 0;
    double started = 0;
    bool complete = false;
    QObject::connect(&player, &PlayerProcess::frameShown, &loop, [&] {
        if (player.frames() == 1)
            started = cpuMilliseconds(cpuClock);
        if (player.frames() < pictures || complete)
            return;
        complete = true;
        run.firstFrameMilliseconds = static_cast<double>(player.firstFrameTime());
        if (pictures > 1)
            run.cpuMilliseconds = (cpuMilliseconds(cpuClock) - started) / (pictures - 1);
        run.mebibytes = mebibytesOf(QString::number(player.pid()), "status", "VmHWM");
        loop.quit();
    });
    QTimer::singleShot(runLimitMilliseconds, &loop, &QEventLoop::quit);
    if (!player.start(server.url("/flv/live")) ||
        clock_getcpuclockid(static_cast<pid_t>(player.pid()), &cpuClock) != 0)
        return std::nullopt;
    player.send("volume 0");
    loop.exec();
    return complete ? std::optional<PlayerRun>(run) : std::nullopt;
}

FlvClip cameraClip()
{
    return FlvClip::make(QStringLiteral("-f lavfi -i testsrc2=s=1280x720:r=25 "
                                        "-f lavfi -i sine=frequency=440:sample_rate=44100 "
                                        "-vf noise=alls=6:allf=t -c:v libx264 -preset medium "
                                        "-profile:v main -bf 0 -b:v 2500k -g 50 "
                                        "-pix_fmt yuv420p -c:a libmp3lame -t %1")
                             .arg(clipMilliseconds / 1000)
                             .split(QLatin1Char(' ')));
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    StreamScript script;
    script.clip = cameraClip();
    script.burst = 100; // whatever time stamp the encoder gave it, the key frame is there at once
    StreamServer server;
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("clip.flv")));
    if (script.clip.isEmpty() || !server.start() || !file.open(QIODevice::WriteOnly)) {
        std::fprintf(stderr, "bench_player: the clip can't be made or served\n");
        return 1;
    }
    file.write(script.clip.bytes());
    file.close();
    server.setScript(script);

    std::vector<double> decodePaced;
    std::vector<double> decodeFlatOut;
    std::vector<double> playerCpu;
    std::vector<double> memory;
    std::vector<double> firstFrame;
    const QByteArray path = QFile::encodeName(file.fileName());
    for (int i = 0; i < runs; ++i) {
        decodeFlatOut.push_back(decodeMilliseconds(path, Pace::FlatOut));
        decodePaced.push_back(decodeMilliseconds(path, Pace::Stream));
        const auto run = play(server, measuredPictures + 1);
        if (!run) {
            std::fprintf(stderr, "bench_player: the player showed too few pictures\n");
            return 1;
        }
        playerCpu.push_back(run->cpuMilliseconds);
        memory.push_back(run->mebibytes);
        std::printf("run %d: decode flat out %.2f, decode at 25/s %.2f, player %.2f ms a picture\n",
                    i + 1, decodeFlatOut.back(), decodePaced.back(), playerCpu.back());
        std::fflush(stdout);
    }
    for (int i = 0; i < startRuns; ++i) {
        const auto run = play(server, 1);
        firstFrame.push_back(run ? run->firstFrameMilliseconds : runLimitMilliseconds);
    }

    std::printf("\n1280x720, 25 pictures a second, H.264 and MP3 in FLV over loopback; medians\n");
    std::printf("%-44s %8.2f ms\n", "decode only, flat out, CPU a picture", median(decodeFlatOut));
    std::printf("%-44s %8.2f ms\n", "decode only, 25 a second, CPU a picture", median(decodePaced));
    std::printf("%-44s %8.2f ms\n", "player, CPU a picture", median(playerCpu));
    bool ok = within("player to decode only at the same pace",
                     median(playerCpu) / median(decodePaced), "x", maxCpuRatio);
    ok &= within("player, resident memory at its peak", median(memory), "MiB", maxMebibytes);
    ok &= within("player, start to first picture", median(firstFrame), "ms",
                 maxFirstFrameMilliseconds);
    return ok ? 0 : 1;
}
