// SPDX-License-Identifier: MIT
#pragma once

#include "tests/server/Packets.h"
#include "tests/support/Test.h"

#include "server/HouseArchive.h"
#include "server/HouseMedia.h"
#include "service/VideoService.h"

namespace ZorvaneClient::Tests {

/// A picture as a receiver got it.
struct SeenPicture {
    qint64 momentMs; ///< that was written into it
    qint64 stampMs;
    qint64 laterMs; ///< it is shown later than its stamp
    bool isKey;
    bool isSub;
    int formats; ///< that were told before it

    QByteArray text() const
    {
        return QByteArray::number(momentMs) + " at " + QByteArray::number(stampMs);
    }
};

/// Takes a stream apart until it has enough.
class Receiver : public ZorvaneService::BodySink
{
public:
    using Enough = std::function<bool(const SeenPicture &)>;
    explicit Receiver(Enough isEnough = {}) : enough(std::move(isEnough)) {}

    bool write(const void *data, std::size_t size) override
    {
        const QByteArray bytes(static_cast<const char *>(data), int(size));
        const auto number = [&](int at, int count) {
            qint64 value = 0;
            while (count-- > 0)
                value = value << 8 | quint8(bytes[at++]);
            return value;
        };
        for (int at = bytes.startsWith("FLV") ? 13 : 0; at < bytes.size();) {
            const int length = int(number(at + 1, 3));
            if (bytes[at] == 9 && bytes[at + 12] == 0)
                ++formats;
            if (bytes[at] == 9 && bytes[at + 12] == 1) {
                // Before a key picture comes the set of six bytes that has no other place.
                const bool isKey = bytes[at + 11] == 0x17;
                const int unit = at + 16 + (isKey ? 6 : 0);
                pictures.push_back({number(unit + 5, 8),
                                    number(at + 7, 1) << 24 | number(at + 4, 3), number(at + 13, 3),
                                    isKey, bytes[unit + 13] == 1, formats});
                last = pictures.back().momentMs;
                open = open && !(enough && enough(pictures.back()));
            }
            at += 11 + length + 4;
        }
        return isOpen();
    }
    bool isOpen() override { return open && !patience.hasExpired(); }
    void breakOff() override { isBroken = true; }

    QVector<SeenPicture> pictures;
    std::atomic<qint64> last{0}; ///< moment of the newest one
    bool isBroken = false;
    QDeadlineTimer patience{60'000};

private:
    const Enough enough;
    int formats = 0;
    std::atomic<bool> open{true};
};

/// A house with one camera, which is asked as its client does.
class House : public ZorvaneService::RosterSource
{
public:
    static constexpr int pictureMs = 40;

    /// With an archive of its own, unless it is told another one.
    explicit House(const QString &archivePath = {})
        : folder((archivePath.isEmpty() ? place.filePath("archive") : archivePath).toStdString())
    {
        folder.prepare();
    }

    std::vector<ZorvaneService::ServerWithCameras> servers() const override { return {gate}; }
    std::optional<ZorvaneService::CameraOfServer>
    camera(const ZorvaneService::CameraId &) const override
    {
        return ZorvaneService::CameraOfServer{gate.server, gate.cameras[0]};
    }
    std::optional<ZorvaneService::ServerWithCameras> lanServer(int) const override { return gate; }
    std::uint64_t generation() const override { return changes; }
    bool setRotation(const ZorvaneService::CameraId &, int) override { return false; }

    static ZorvaneServer::StreamId stream(bool isSub)
    {
        return {"Gate", isSub ? ZorvaneServer::Quality::Sub : ZorvaneServer::Quality::Main};
    }
    /// One that tells its moment and its stream.
    static MediaPacket picture(bool isSub, qint64 momentMs, bool isKey, int width = 1920)
    {
        MediaPacket packet = aPicture(momentMs, isKey, isKey ? 50'000 : 2'000);
        auto format = std::make_shared<ZorvaneServer::StreamFormat>(*packet.format);
        format->width = width;
        // With a second picture set, which FLV has no place for before the pictures.
        format->videoSetup = {
            1, 0x64, 0, 0x28, 0xff, 0xe1, 0,    4, 0x67, 1, 2, std::uint8_t(width),
            2, 0,    1, 0x68, 0,    2,    0x68, 7};
        packet.format = format;
        const auto size = std::uint32_t(packet.data.size() - 4);
        for (int i = 0; i < 4; ++i)
            packet.data[i] = std::uint8_t(size >> (24 - 8 * i));
        for (int i = 0; i < 8; ++i)
            packet.data[5 + i] = std::uint8_t(momentMs >> (56 - 8 * i));
        packet.data[13] = isSub;
        return packet;
    }

    /// Makes a segment, and keeps it open.
    void record(bool isSub, qint64 startMs, qint64 lengthMs, int groupMs, int width = 1920)
    {
        segment =
            folder.create(stream(isSub), picture(isSub, startMs, true, width).format, startMs);
        for (qint64 ms = 0; ms < lengthMs; ms += pictureMs)
            append(picture(isSub, startMs + ms, ms % groupMs == 0, width), isSub);
    }
    void append(const MediaPacket &packet, bool isSub = false)
    {
        segment->append(packet);
        catalogue.grow(stream(isSub), segment->startMs(), segment->lengthMs(), 1);
    }
    void finish(bool isSub)
    {
        const ZorvaneServer::SegmentName name{segment->startMs(), segment->lengthMs()};
        segment->finish();
        folder.rename(stream(isSub), {name.startMs, {}}, name);
        catalogue.finish(stream(isSub), name, 1);
    }

    ZorvaneService::HttpReply ask(const QString &path) const
    {
        ZorvaneService::HttpRequest request;
        request.listener = ZorvaneService::HttpRequest::lanListener;
        request.method = "GET";
        request.path = path.section('?', 0, 0).toStdString();
        request.query = "server=1&camera=0&" + path.section('?', 1).toStdString() + "&sessionId=";
        return service.lan.handle(request);
    }
    /// Until the receiver has enough or the stream has ended, which is true then.
    bool play(const QString &path, Receiver &receiver) const
    {
        const auto reply = ask(path);
        return reply.stream && reply.stream(receiver);
    }

    QTemporaryDir place;
    ZorvaneService::ServerWithCameras gate{{}, std::vector<ZorvaneService::Camera>(1)};
    std::atomic<std::uint64_t> changes{0}; ///< of what may be seen
    ZorvaneServer::ArchiveFolder folder;
    ZorvaneServer::Catalogue catalogue;
    ZorvaneServer::LiveRings rings{{stream(false), stream(true)}};
    ZorvaneServer::CameraNames names = [](const ZorvaneService::CameraId &) { return "Gate"; };
    ZorvaneServer::HouseArchive archive{catalogue, names};
    ZorvaneServer::HouseMedia media{folder, catalogue, rings, names};
    ZorvaneService::Accounts accounts{"", "", place.filePath("accounts").toStdString()};
    mutable ZorvaneService::VideoService service{*this,    archive, media,
                                                 accounts, "",      {{}, 2, std::chrono::hours(1)}};
    std::unique_ptr<ZorvaneServer::SegmentWriter> segment;
};

} // namespace ZorvaneClient::Tests
