// SPDX-License-Identifier: MIT
#include <algorithm>

#include <fcntl.h>

#include "server/SegmentReader.h"
#include "server/SegmentRecovery.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneServer;

static std::vector<Bytes> packetsOf(SegmentReader &reader)
{
    std::vector<Bytes> packets;
    while (const PacketPtr packet = reader.next())
        packets.push_back(packet->data);
    return packets;
}

static std::vector<Bytes> packetsOf(const SegmentName &name)
{
    const auto reader = SegmentReader::open("segments/" + name.text());
    check(reader != nullptr);
    return packetsOf(*reader);
}

/// Whether two packets differ at most in the size of a cluster: a packet whose own size is damaged
/// may hold the head of one, which is put right.
static bool isSamePacket(const Bytes &one, const Bytes &other)
{
    static const Bytes clusterId{0x1F, 0x43, 0xB6, 0x75};
    constexpr std::ptrdiff_t headerBytes = 12;
    auto seen = one.begin();
    auto difference = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    while (difference.first != one.end() && difference.second != other.end()) {
        const auto header =
            std::find_end(seen, difference.first, clusterId.begin(), clusterId.end());
        if (header == difference.first || one.end() - header < headerBytes)
            return false;
        seen = header + headerBytes;
        if (seen <= difference.first)
            return false;
        difference =
            std::mismatch(seen, one.end(), other.begin() + (seen - one.begin()), other.end());
    }
    return difference.first == one.end() && difference.second == other.end();
}

/// What is left of a segment is read as before, once it is finished, and finished only once.
void tryInput(const QByteArray &input)
{
    QDir("segments").removeRecursively();
    const SegmentName part{1'763'806'500'000, {}};
    writeFile("segments/" + QString::fromStdString(part.text()), input);
    std::vector<Bytes> before;
    if (const auto reader = SegmentReader::open("segments/" + part.text())) {
        before = packetsOf(*reader);
        for (const KeyFrame &keyFrame : std::vector(reader->keyFrames()))
            reader->keyPictureFrom(keyFrame.timeMs);
        for (const std::int64_t timeMs : {INT64_MIN / 2, std::int64_t(1000), INT64_MAX / 2})
            check(!reader->seek(timeMs) || reader->next() != nullptr);
    }
    const Descriptor folder(::open("segments", O_RDONLY | O_DIRECTORY));
    const auto finished = recoverSegment(folder.get(), part);
    if (!finished)
        return;
    const std::vector<Bytes> after = packetsOf(*finished);
    check(!after.empty() && after.size() <= before.size());
    check(std::equal(after.begin(), after.end(), before.begin(), isSamePacket));

    check(renameSegment(folder.get(), *finished, part));
    const auto again = recoverSegment(folder.get(), part);
    check(again && again->text() == finished->text() && packetsOf(*again) == after);
}
