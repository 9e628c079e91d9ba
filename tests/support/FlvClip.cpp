// SPDX-License-Identifier: MIT
#include "tests/support/FlvClip.h"

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

namespace ZorvaneClient {
namespace Tests {

namespace {

constexpr int headerBytes = 13;
constexpr int tagHeadBytes = 11;
constexpr int sizeFieldBytes = 4;
constexpr int makeLimitMilliseconds = 60'000;

int byteAt(const QByteArray &bytes, int index)
{
    return static_cast<unsigned char>(bytes.at(index));
}

int timestampOf(const QByteArray &tag)
{
    return (byteAt(tag, 7) << 24) | (byteAt(tag, 4) << 16) | (byteAt(tag, 5) << 8) | byteAt(tag, 6);
}

FlvTag movedTo(FlvTag tag, int milliseconds)
{
    tag.milliseconds = milliseconds;
    tag.bytes[4] = static_cast<char>(milliseconds >> 16);
    tag.bytes[5] = static_cast<char>(milliseconds >> 8);
    tag.bytes[6] = static_cast<char>(milliseconds);
    tag.bytes[7] = static_cast<char>(milliseconds >> 24);
    return tag;
}

FlvClip fromBytes(const QByteArray &bytes)
{
    FlvClip clip;
    clip.header = bytes.left(headerBytes);
    int position = headerBytes;
    while (position + tagHeadBytes < bytes.size()) {
        const int size = (byteAt(bytes, position + 1) << 16) | (byteAt(bytes, position + 2) << 8) |
                         byteAt(bytes, position + 3);
        const QByteArray tag = bytes.mid(position, tagHeadBytes + size + sizeFieldBytes);
        clip.tags.append({timestampOf(tag), tag});
        position += tag.size();
    }
    return clip;
}

} // namespace

FlvClip FlvClip::make(const QStringList &arguments)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("clip.flv"));
    QProcess ffmpeg;
    ffmpeg.setProcessChannelMode(QProcess::ForwardedChannels);
    ffmpeg.start(
        QStringLiteral("ffmpeg"),
        QStringList{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-nostdin")} +
            arguments + QStringList{path});
    QFile file(path);
    if (!ffmpeg.waitForFinished(makeLimitMilliseconds) || ffmpeg.exitCode() != 0 ||
        !file.open(QIODevice::ReadOnly))
        return {};
    return fromBytes(file.readAll());
}

int FlvClip::duration() const
{
    return tags.isEmpty() ? 0 : tags.last().milliseconds;
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
    const int start = duration() + gap;
    for (const FlvTag &tag : other.tags)
        joined.tags.append(movedTo(tag, start + tag.milliseconds));
    return joined;
}

FlvClip FlvClip::repeated(int count) const
{
    FlvClip joined = *this;
    for (int i = 1; i < count; ++i)
        joined = joined.then(*this);
    return joined;
}

FlvClip FlvClip::faster(int factor) const
{
    FlvClip clip = *this;
    for (FlvTag &tag : clip.tags)
        tag = movedTo(tag, tag.milliseconds / factor);
    return clip;
}

QByteArray garbled(QByteArray bytes, quint32 seed, int count, int from)
{
    QRandomGenerator random(seed);
    for (int i = 0; i < count; ++i)
        bytes[random.bounded(from, int(bytes.size()))] = static_cast<char>(random.bounded(256));
    return bytes;
}

} // namespace Tests
} // namespace ZorvaneClient
