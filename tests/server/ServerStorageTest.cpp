// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>

#include "server/ArchiveFolder.h"
#include "server/SegmentReader.h"
#include "server/UtcTime.h"
#include "tests/server/Packets.h"

using namespace ZorvaneServer;

namespace {

constexpr std::int64_t startMs = 1'763'806'568'123; // 2025-11-22T10-16-08.123Z

bool sameMedia(const MediaPacket &one, const MediaPacket &other)
{
    return one.track == other.track && one.isKey == other.isKey && one.momentMs == other.momentMs &&
           one.data == other.data;
}

} // namespace

/// What is on the disk, and what is found there.
class ServerStorageTest : public QObject
{
    Q_OBJECT

    QTemporaryDir folder;
    const StreamId door{"Front door", Quality::Main};

    ArchiveFolder archive() const { return ArchiveFolder(folder.path().toStdString()); }
    QString pathOf(const SegmentName &name) const
    {
        return QString::fromStdString(archive().pathOf(door, name));
    }

    /// Where each packet ends in the file.
    std::vector<std::uint64_t> write(SegmentWriter &writer, const std::vector<MediaPacket> &packets)
    {
        std::vector<std::uint64_t> ends;
        for (const MediaPacket &packet : packets) {
            if (writer.append(packet) != SegmentWriter::Outcome::Written)
                return {};
            ends.push_back(writer.bytes());
        }
        return ends;
    }

    /// How many of the packets are read in their order; -1 when another one is.
    static int readBack(SegmentReader &reader, const std::vector<MediaPacket> &packets)
    {
        std::size_t at = 0;
        while (const PacketPtr packet = reader.next()) {
            if (at >= packets.size() || !sameMedia(*packet, packets[at++]))
                return -1;
        }
        return int(at);
    }

private slots:
    void init()
    {
        QVERIFY(QDir(folder.path()).removeRecursively());
        QVERIFY(archive().prepare());
    }

    /// A segment is read as it was written, from wherever one asks, while it grows and later.
    void readAsWritten_data()
    {
        rows<unsigned>({"seed"}, {{"one", 1u}, {"two", 2u}, {"three", 3u}});
    }

    void readAsWritten()
    {
        const auto [seed] = row<unsigned>();
        const auto packets = randomPackets(seed, 1500, startMs);
        const auto writer = archive().create(door, aFormat(), startMs);
        QVERIFY(writer);
        const auto reader = SegmentReader::open(pathOf({startMs, {}}).toStdString());
        QVERIFY(reader && *reader->format() == *aFormat() && reader->startMs() == startMs);
        for (std::size_t i = 0; i < packets.size(); ++i) {
            QVERIFY(!reader->next());
            QVERIFY(writer->append(packets[i]) == SegmentWriter::Outcome::Written);
            const PacketPtr packet = reader->next();
            QVERIFY(packet && sameMedia(*packet, packets[i]));
        }
        const auto seeksRight = [&packets](SegmentReader &from) {
            for (std::int64_t timeMs = -5000; timeMs < 400'000; timeMs += 1777) {
                std::size_t expected = 0;
                for (std::size_t i = 0; i < packets.size(); ++i) {
                    if (packets[i].isKeyPicture() && packets[i].momentMs <= startMs + timeMs)
                        expected = i;
                }
                const PacketPtr packet = from.seek(timeMs) ? from.next() : nullptr;
                if (!packet || !sameMedia(*packet, packets[expected]))
                    return false;
            }
            return from.seek(0) && readBack(from, packets) == int(packets.size());
        };
        QVERIFY(seeksRight(*reader));
        QVERIFY(writer->finish());
        const auto finished = SegmentReader::open(pathOf({startMs, {}}).toStdString());
        QVERIFY(finished && seeksRight(*finished));
        QVERIFY(finished->keyFrames().size() > 20);
        QCOMPARE(finished->keyFrames().size(), reader->keyFrames().size());
    }

    /// When the last picture ends, by when the ones before it were shown.
    void lengths_data()
    {
        rows<QList<int>, int>({"timesMs", "endMs"},
                              {{"none", {}, 0},
                               {"one", {0}, 40},
                               {"ten a second", {0, 100, 200}, 300},
                               {"out of order", {0, 120, 40, 80, 240, 160, 200}, 280},
                               {"the same again", {0, 100, 100}, 200},
                               {"after a silence", {0, 50, 9000}, 9050}});
    }

    void lengths()
    {
        const auto [timesMs, endMs] = row<QList<int>, int>();
        PictureLength length;
        for (const int timeMs : timesMs)
            length.take(timeMs);
        QCOMPARE(int(length.endMs()), endMs);
    }

    /// However much of the end is missing, and whatever stands there instead, no whole packet is
    /// lost, and what is left is a file like any other.
    void cutAnywhere()
    {
        const auto packets = randomPackets(7, 600, startMs);
        auto writer = archive().create(door, aFormat(), startMs);
        const auto ends = write(*writer, packets);
        QVERIFY(!archive().recover(door, {startMs, {}}));
        writer.reset();
        QCOMPARE(ends.size(), packets.size());
        const SegmentName part{startMs, {}};
        QFile file(pathOf(part));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray whole = file.readAll();
        std::mt19937 random(11);
        for (int i = 0; i < 40; ++i) {
            const auto cut = i == 0 ? whole.size()
                                    : SegmentHead::bytes + random() % (std::size_t(whole.size()) -
                                                                       SegmentHead::bytes);
            const QByteArray tail = i % 2 == 0 ? QByteArray() : QByteArray(1000, '\0');
            QFile torn(pathOf(part));
            QVERIFY(torn.open(QIODevice::WriteOnly));
            torn.write(whole.left(int(cut)) + tail);
            torn.close();
            const auto left = std::upper_bound(ends.begin(), ends.end(), cut) - ends.begin();
            // The head of a block and as many zeros as it says make a block, too.
            const auto finished = archive().recover(door, part);
            if (left == 0 && !finished) {
                QVERIFY(!torn.exists());
                continue;
            }
            QVERIFY(finished);
            const auto reader = SegmentReader::open(pathOf(*finished).toStdString());
            QVERIFY(reader);
            for (std::size_t k = 0; k < std::size_t(left); ++k) {
                const PacketPtr packet = reader->next();
                QVERIFY(packet && sameMedia(*packet, packets[k]));
            }
            if (tail.isEmpty()) {
                QVERIFY(!reader->next());
                QCOMPARE(QFileInfo(pathOf(*finished)).size(), qint64(ends[std::size_t(left) - 1]));
            }
            QVERIFY(QFile::remove(pathOf(*finished)));
        }
    }

    /// A disk without room keeps what it has, and goes on where it stopped.
    void noRoom()
    {
        const auto packets = randomPackets(3, 60, startMs);
        const auto writer = archive().create(door, aFormat(), startMs);
        rlimit before{};
        getrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, SIG_IGN);
        for (const MediaPacket &packet : packets) {
            const std::uint64_t size = writer->bytes();
            const rlimit little{size + packet.data.size() / 2 + 1, before.rlim_max};
            setrlimit(RLIMIT_FSIZE, &little);
            const auto refused = writer->append(packet);
            setrlimit(RLIMIT_FSIZE, &before);
            QVERIFY(refused == SegmentWriter::Outcome::NoRoom);
            QCOMPARE(QFileInfo(pathOf({startMs, {}})).size(), qint64(size));
            QVERIFY(writer->append(packet) == SegmentWriter::Outcome::Written);
        }
        QVERIFY(writer->finish());
        const auto reader = SegmentReader::open(pathOf({startMs, {}}).toStdString());
        QCOMPARE(readBack(*reader, packets), int(packets.size()));
    }

    void names_data()
    {
        rows<QString, QString>(
            {"name", "understood"},
            {{"finished", "2025-11-22T10-16-08.123Z+300040.mkv", "1763806568123+300040"},
             {"growing", "2025-11-22T10-16-08.123Z.part", "1763806568123"},
             {"leap day", "2024-02-29T23-59-59.999Z+1.mkv", "1709251199999+1"},
             {"other ending", "2025-11-22T10-16-08.123Z+300040.mp4", ""},
             {"other file", "notes.txt", ""},
             {"no length", "2025-11-22T10-16-08.123Z+.mkv", ""},
             {"length below nothing", "2025-11-22T10-16-08.123Z+-1.mkv", ""},
             {"length beyond all", "2025-11-22T10-16-08.123Z+99999999999.mkv", ""},
             {"no month", "2025-13-22T10-16-08.123Z.part", ""},
             {"nothing", "", ""}});
    }

    void names()
    {
        const auto [name, understood] = row<QString, QString>();
        const auto segment = SegmentName::of(name.toStdString());
        QString text;
        if (segment) {
            text = QString::number(segment->startMs);
            if (segment->lengthMs)
                text += "+%1"_s.arg(*segment->lengthMs);
            QCOMPARE(QString::fromStdString(segment->text()), name);
        }
        QCOMPARE(text, understood);
    }

    /// Segments as start+length, "~" for one that grows, in seconds; records as start-end.
    void records_data()
    {
        rows<QString, QString, QString>(
            {"segments", "asked", "records"},
            {{"apart", "0+10 20+10", "0-100", "0-10 20-30"},
             {"one after the other", "10+10 0+10 20+10", "0-100", "0-30"},
             {"a breath between", "0+10 12+10 25+1", "0-100", "0-22 25-26"},
             {"one within the other", "0+60 10+5 59+2", "0-100", "0-61"},
             {"clock set back", "0+30 5+10 20+30", "40-60", "20-50"},
             {"outside", "0+10 20+10 40+10", "10-40", "20-30"},
             {"one that grows", "0+10 10~7", "0-100", "0-17"},
             {"none", "", "0-100", ""}});
    }

    void records()
    {
        const auto [segments, asked, records] = row<QString, QString, QString>();
        Catalogue catalogue;
        std::vector<SegmentName> finished;
        for (const QString &word : segments.split(' ', Qt::SkipEmptyParts)) {
            const auto parts = word.split(QRegularExpression("[+~]"_s));
            const std::int64_t start = parts[0].toInt() * secondMs;
            if (word.contains('~'))
                catalogue.grow(door, start, parts[1].toInt() * secondMs, 0);
            else
                finished.push_back(SegmentName{start, parts[1].toInt() * secondMs});
        }
        catalogue.add(door, finished);
        const auto bounds = asked.split('-');
        QStringList found;
        const auto all =
            catalogue.records(door, bounds[0].toInt() * secondMs, bounds[1].toInt() * secondMs);
        for (const Record &record : all)
            found << "%1-%2"_s.arg(record.startMs / secondMs).arg(record.endMs / secondMs);
        QCOMPARE(found.join(' '), records);
        QCOMPARE(catalogue.recordsBetween(
                     door, {bounds[0].toInt() * secondMs, bounds[1].toInt() * secondMs}),
                 std::vector<int>{int(found.size())});
    }

    /// The folder tells the next start what the last one knew; a folder without the marker isn't
    /// written to, and two segments of one moment don't meet.
    void folderTellsAll()
    {
        const auto packets = randomPackets(5, 50, startMs);
        for (int i = 0; i < 2; ++i) {
            const auto writer = archive().create(door, aFormat(), startMs);
            QVERIFY(!write(*writer, packets).empty());
            QCOMPARE(writer->startMs(), startMs + i);
        }
        const SegmentName part{startMs, {}};
        const auto finished = archive().recover(door, part);
        QVERIFY(finished);
        Catalogue catalogue;
        std::vector<std::int64_t> growing;
        archive().list(catalogue, [&](const StreamId &stream, const SegmentName &name) {
            QVERIFY(stream == door);
            growing.push_back(name.startMs);
        });
        QCOMPARE(growing, std::vector<std::int64_t>{startMs + 1});
        QCOMPARE(catalogue.size(), std::size_t(1));
        catalogue.finish(door, *finished, 5);
        catalogue.add(door, {*finished});
        QVERIFY(catalogue.size() == 1 && catalogue.knownBytes() == 5);
        const auto found = catalogue.segmentFrom(door, startMs + 1);
        QVERIFY(found && found->name.text() == finished->text());
        QVERIFY(!catalogue.segmentFrom(door, found->endMs));
        QVERIFY(archive().remove(door, *finished));
        QVERIFY(archive().remove(door, {startMs + 1, {}}));
        QVERIFY(!QFileInfo::exists(QFileInfo(pathOf(part)).path()));
        QVERIFY(QFile::remove(folder.filePath(ArchiveFolder::marker)));
        QVERIFY(!archive().create(door, aFormat(), startMs));
        QVERIFY(!QFileInfo::exists(QFileInfo(pathOf(part)).path()));
    }
};

QTEST_GUILESS_MAIN(ServerStorageTest)
#include "ServerStorageTest.moc"
