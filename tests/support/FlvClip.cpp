// SPDX-License-Identifier: MIT
#include "tests/support/FlvClip.h"

#include <QtEndian>

namespace ZorvaneClient::Tests {

namespace {

constexpr int headerBytes = 13;
constexpr int tagHeadBytes = 11;
constexpr int sizeFieldBytes = 4;
/// Of the time stamp in a tag: its three lower bytes, then the highest.
constexpr int stampPlace = 4;

FlvTag movedTo(FlvTag tag, int milliseconds)
{
    const auto stamp = quint32(milliseconds);
    tag.milliseconds = milliseconds;
    qToBigEndian(stamp << 8 | stamp >> 24, tag.bytes.data() + stampPlace);
    return tag;
}

} // namespace

FlvClip FlvClip::make(const QStringList &arguments)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("clip.flv"));
    const QStringList quietly = {"-v", "error", "-nostdin"};
    FlvClip clip;
    if (QProcess::execute("ffmpeg", quietly + arguments + QStringList{file.fileName()}) != 0 ||
        !file.open(QIODevice::ReadOnly))
        return clip;
    clip.header = file.read(headerBytes);
    for (QByteArray tag = file.read(tagHeadBytes); tag.size() == tagHeadBytes;
         tag = file.read(tagHeadBytes)) {
        const auto stamp = qFromBigEndian<quint32>(tag.constData() + stampPlace);
        const auto size = qFromBigEndian<quint32>(tag.constData()) & 0xFFFFFF;
        tag += file.read(size + sizeFieldBytes);
        clip.tags.append({int(stamp >> 8 | stamp << 24), tag});
    }
    return clip;
}

QByteArray FlvClip::bytes() const
{
    QByteArray all = header;
    for (const FlvTag &tag : tags)
        all += tag.bytes;
    return all;
}

FlvClip FlvClip::then(const FlvClip &other, int gap) const
{
    FlvClip joined = *this;
    for (const FlvTag &tag : other.tags)
        joined.tags.append(movedTo(tag, duration() + gap + tag.milliseconds));
    return joined;
}

FlvClip FlvClip::faster(int factor) const
{
    FlvClip clip{header, {}};
    for (const FlvTag &tag : tags)
        clip.tags.append(movedTo(tag, tag.milliseconds / factor));
    return clip;
}

QByteArray garbled(QByteArray bytes, quint32 seed, int count, int from)
{
    QRandomGenerator random(seed);
    for (int i = 0; i < count; ++i)
        bytes[random.bounded(from, int(bytes.size()))] = static_cast<char>(random.bounded(256));
    return bytes;
}

} // namespace ZorvaneClient::Tests
