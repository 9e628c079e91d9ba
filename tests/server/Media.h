// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "server/SegmentReader.h"

namespace ZorvaneClient::Tests {

/// What a program says, on both of its channels, until it has ended.
inline QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    return process.waitForFinished(200'000) ? process.readAll() : "not finished";
}

/// The part of a configuration that keeps a program apart from others that run meanwhile.
inline QString serviceSection(const QString &state)
{
    QTcpServer one;
    QTcpServer other;
    one.listen(QHostAddress::LocalHost);
    other.listen(QHostAddress::LocalHost);
    return "[service]\nstate = %1\nport = %2\ncameras_port = %3\n"_s.arg(state)
        .arg(one.serverPort())
        .arg(other.serverPort());
}

/// Makes a moving picture of three seconds with a tone. What went wrong.
inline QByteArray makeClip(const QString &path, const QStringList &codec)
{
    const QStringList sources = {
        "-v", "error", "-f", "lavfi",        "-i", "testsrc2=s=320x180:r=25",
        "-f", "lavfi", "-i", "sine=r=16000", "-t", "3"};
    return outputOf("ffmpeg", sources + codec + QStringList{path});
}

/// All files below the folder of that pattern, by name.
inline QStringList filesBelow(const QString &folder, const QString &pattern)
{
    QStringList found;
    QDirIterator all(folder, {pattern}, QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext())
        found << all.next();
    found.sort();
    return found;
}

/// The packets of a track of those files, one file after the other.
inline std::vector<ZorvaneServer::PacketPtr>
packetsOf(const QStringList &paths, ZorvaneServer::Track track = ZorvaneServer::Track::Video)
{
    std::vector<ZorvaneServer::PacketPtr> packets;
    for (const QString &path : paths) {
        const auto reader = ZorvaneServer::SegmentReader::open(path.toStdString());
        while (const ZorvaneServer::PacketPtr packet = reader ? reader->next() : nullptr) {
            if (packet->track == track)
                packets.push_back(packet);
        }
    }
    return packets;
}

} // namespace ZorvaneClient::Tests
