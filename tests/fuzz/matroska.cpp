// SPDX-License-Identifier: MIT
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

/// What is left of a segment is read as before, once it is finished, and finished only once.
void tryInput(const QByteArray &input)
{
    QDir("segments").removeRecursively();
    const SegmentName part{1'763'806'500'000, {}};
    writeFile("segments/" + QString::fromStdString(part.text()), input);
    std::vector<Bytes> before;
    if (const auto reader = SegmentReader::open("segments/" + part.text())) {
        before = packetsOf(*reader);
        for (const KeyFrame &keyFrame : reader->keyFrames())
            reader->keyPicture(keyFrame);
        for (const std::int64_t timeMs : {INT64_MIN / 2, std::int64_t(1000), INT64_MAX / 2})
            check(!reader->seek(timeMs) || reader->next() != nullptr);
    }
    const Descriptor folder(::open("segments", O_RDONLY | O_DIRECTORY));
    const auto finished = recoverSegment(folder.get(), part);
    if (!finished)
        return;
    const std::vector<Bytes> after = packetsOf(*finished);
    check(!after.empty() && after.size() <= before.size());
    check(std::equal(after.begin(), after.end(), before.begin()));

    check(renameSegment(folder.get(), *finished, part));
    const auto again = recoverSegment(folder.get(), part);
    check(again && again->text() == finished->text() && packetsOf(*again) == after);
}
