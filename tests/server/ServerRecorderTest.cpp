// SPDX-License-Identifier: MIT
#include "tests/server/Media.h"

#include "server/Recorder.h"
#include "server/UtcTime.h"
#include "tests/server/Packets.h"

using namespace ZorvaneServer;

/// What comes in and what is in the files, with one thread that brings and others that write.
class ServerRecorderTest : public QObject
{
    Q_OBJECT

    static constexpr std::int64_t startMs = 1'763'806'500'000;

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<ArchiveFolder> archive;
    std::unique_ptr<Catalogue> catalogue;
    std::unique_ptr<Keeper> keeper;
    std::unique_ptr<Recorder> recorder;
    const StreamId door{"Front door", Quality::Main};

    void take(const MediaPacket &packet)
    {
        recorder->take(0, std::make_shared<MediaPacket>(packet));
    }

    QStringList files(const QString &pattern) const { return filesBelow(folder->path(), pattern); }

private slots:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        archive = std::make_unique<ArchiveFolder>(folder->filePath("archive").toStdString());
        catalogue = std::make_unique<Catalogue>();
        keeper = std::make_unique<Keeper>(*archive, *catalogue,
                                          Configuration::Archive{{}, {}, 40 << 20, 0, 0});
        recorder =
            std::make_unique<Recorder>(*archive, *catalogue, *keeper, std::vector<StreamId>{door});
        recorder->start();
        QVERIFY(archive->prepare());
    }

    void cleanup() { recorder->stop(); }

    /// A word for each second: "K" and "p" for pictures, "w" for a key picture of another size,
    /// "r" for one of a new run, "-" for the end of a connection, "." for nothing, "h" for a key
    /// picture an hour earlier; then the pictures of each segment, in order of time.
    void cuts_data()
    {
        rows<QString, QString>({"pictures", "segments"},
                               {{"one", "KppKpp", "6"},
                                {"nothing before a key picture", "ppKpp", "3"},
                                {"another size", "KpwpKp", "2 2 2"},
                                {"a new run", "Kprp", "2 2"},
                                {"a connection's end", "Kp-ppKp", "2 2"},
                                {"a silence", "Kp...Kp", "2 2"},
                                {"clock set back", "KpKphp", "2 4"},
                                {"each alone", "K-K-K", "1 1 1"},
                                {"an eighth of the room", "KKKKKKKKKKKKKKKK", "14 2"},
                                {"nothing", "-", ""}});
    }

    void cuts()
    {
        const auto [pictures, segments] = row<QString, QString>();
        unsigned run = 1;
        std::int64_t momentMs = startMs;
        QString key = "Khrw"_s;
        for (const QChar &word : pictures) {
            momentMs += secondMs;
            if (word == '-') {
                recorder->take(0, nullptr);
                continue;
            }
            if (word == '.')
                continue;
            if (word == 'h')
                momentMs -= 3600 * secondMs;
            run += word == 'h' || word == 'r' ? 1 : 0;
            // Large enough to be cut on a disk that is taken to be small.
            MediaPacket packet = aPicture(momentMs, key.contains(word), 400'000);
            packet.format = aFormat(word == 'w' ? 640 : 1920);
            packet.run = run;
            take(packet);
        }
        recorder->stop();
        QStringList found;
        for (const QString &file : files("*.mkv"))
            found << QString::number(packetsOf({file}).size());
        QCOMPARE(found.join(' '), segments);
        QVERIFY(files("*.part").isEmpty());
        QCOMPARE(catalogue->size(), std::size_t(found.size()));
    }

    /// While the archive isn't there its pictures wait; once it is back all of them are in it.
    void waitsForItsDisk()
    {
        QVERIFY(QFile::remove(folder->filePath("archive/.zorvane-archive")));
        const auto packets = randomPackets(4, 400, startMs);
        for (const MediaPacket &packet : packets)
            take(packet);
        QTRY_VERIFY_WITH_TIMEOUT(recorder->isRefused(), 30'000);
        QVERIFY(files("*").isEmpty());
        QVERIFY(archive->prepare());
        QTRY_COMPARE_WITH_TIMEOUT(
            packetsOf(files("*.mkv") + files("*.part")).size() +
                packetsOf(files("*.mkv") + files("*.part"), Track::Sound).size(),
            packets.size(), 30'000);
        QCOMPARE(recorder->dropped(0), std::int64_t(0));
    }

    /// A disk that comes late brings what it holds, and has finished what was left growing there;
    /// one that goes and comes back loses nothing of what grows on it, exchanged all of it goes.
    void diskComesLate()
    {
        const auto mount = [&](const char *from, const char *to) {
            QVERIFY(QDir(folder->path()).rename(from, to));
            keeper->wrote(std::int64_t(1) << 40);
        };
        archive->create(door, aFormat(), startMs - 9000)->append(aPicture(startMs - 9000, true));
        mount("archive", "late");
        keeper->open();
        keeper->start();
        take(aPicture(startMs, true));
        QTRY_VERIFY_WITH_TIMEOUT(recorder->isRefused(), 30'000);
        mount("late", "archive");
        QTRY_COMPARE(catalogue->size(), std::size_t(2));
        QVERIFY(ArchiveFolder(folder->filePath("empty").toStdString()).prepare());
        mount("archive", "late");
        mount("empty", "archive");
        QTRY_COMPARE(catalogue->size(), std::size_t(1));
        QCOMPARE(catalogue->knownBytes(), std::int64_t(QFileInfo(files("*.part")[0]).size()));
        mount("archive", "empty");
        mount("late", "archive");
        QTRY_COMPARE(catalogue->size(), std::size_t(2));
        QTRY_VERIFY(catalogue->unmeasured().empty());
        take(aPicture(startMs + secondMs, false));
        recorder->stop();
        QCOMPARE(packetsOf(files("*.mkv")).size(), std::size_t(3));
        keeper->stop();
    }

    /// What grows is in the catalogue, as long as it is by now.
    void growingIsKnown()
    {
        const auto record = [&] {
            const auto records = catalogue->records(door, 0, startMs * 2);
            return records.size() == 1 ? records.front().endMs - records.front().startMs : 0;
        };
        take(aPicture(startMs, true));
        for (int second = 1; second < 9; ++second) {
            take(aPicture(startMs + second * secondMs, second % 3 == 0));
            QTRY_COMPARE(record(), (second + 1) * secondMs);
        }
        QVERIFY(catalogue->segmentFrom(door, startMs)->name.isGrowing());
        recorder->stop();
        QCOMPARE(record(), 9 * secondMs);
        QVERIFY(!catalogue->segmentFrom(door, startMs)->name.isGrowing());
        QCOMPARE(catalogue->knownBytes(), std::int64_t(QFileInfo(files("*.mkv")[0]).size()));
    }
};

QTEST_GUILESS_MAIN(ServerRecorderTest)
#include "ServerRecorderTest.moc"
