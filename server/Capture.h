// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "server/BackOff.h"
#include "server/CameraSource.h"
#include "server/MediaPacket.h"
#include "server/PacketMaker.h"
#include "server/RunClock.h"
#include "server/SoundClock.h"

namespace ZorvaneServer {

class CaptureInput;

/// Keeps one stream of a camera coming, on a thread of its own: connects, and connects again
/// when it ends or no picture comes, for ever.
class Capture
{
public:
    /// What comes of a connection, from its first key picture on; null when it ends. Called on
    /// the capture's thread.
    using Sink = std::function<void(PacketPtr)>;

    /// So long without a picture is a failure, whatever else the camera sends.
    static constexpr auto pictureLimit = std::chrono::seconds(10);

    /// `name` is for the log.
    Capture(std::string name, CameraSource source, Sink sink);
    ~Capture();
    Capture(const Capture &) = delete;
    Capture &operator=(const Capture &) = delete;

    void start();
    /// Asks it to end, without waiting.
    void end();
    /// Returns when it has ended.
    void stop();

private:
    void run();
    std::string connection();
    bool takePicture(const CaptureInput &input, const AVPacket &packet, PacketMaker &maker);
    void takeSound(const CaptureInput &input, const AVPacket &packet, const PacketMaker &maker);
    void send(MediaPacket packet, Arrival::Duration moment);
    bool isLate() const;
    void nap(std::chrono::seconds length);

    const std::string name;
    const CameraSource source;
    const Sink sink;
    BackOff backOff;
    std::string saidFailure;

    // Of one connection.
    RunClock clock;
    SoundClock soundClock;
    unsigned earlierRuns = 0;
    std::chrono::microseconds lastPicture{0}; ///< or the connection's begin

    std::atomic<bool> isOver{false};
    std::mutex mutex;
    std::condition_variable wake;
    std::thread thread;
};

} // namespace ZorvaneServer
