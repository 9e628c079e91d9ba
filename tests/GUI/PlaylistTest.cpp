// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <ctime>

#include "API/Camera.h"
#include "GUI/Timeline.h"
#include "tests/GUI/ArchiveWorld.h"

using GUI::Playlist;
using GUI::Timeline;
using Tests::ArchiveWorld;

namespace {

const QDate day(2026, 3, 10);
const QString timeFormat = "h:mm:ss"_s;

QDateTime at(const QString &text)
{
    return QDateTime(day, QTime::fromString(text, timeFormat));
}

/// "10:00:00-11:00:00 12:00:00-12:30:00"
QList<API::ArchiveRecord> recordsOf(const QString &text)
{
    QList<API::ArchiveRecord> records;
    const QStringList spans = text.split(' ');
    for (const QString &span : spans) {
        const QStringList ends = span.split('-');
        if (ends.size() == 2)
            records.append({at(ends.first()), at(ends.last())});
    }
    return records;
}

/// The items as "camera start-end", those with the same start by camera.
QStringList itemsOf(const Playlist &playlist)
{
    QStringList items;
    for (const auto &item : playlist) {
        items << "%1 %2-%3"_s.arg(item->camera->id())
                     .arg(item->start.toString(timeFormat), item->end.toString(timeFormat));
    }
    const auto key = [](const QString &item) { return item.section('-', 0, 0).section(' ', 1); };
    std::sort(items.begin(), items.end(), [key](const QString &a, const QString &b) {
        const QTime first = QTime::fromString(key(a), timeFormat);
        const QTime second = QTime::fromString(key(b), timeFormat);
        return first != second ? first < second : a < b;
    });
    return items;
}

QString momentsOf(const API::CameraPtr &camera, const QDateTime &start, const QDateTime &end)
{
    return "%1 %2-%3"_s.arg(camera->id())
        .arg(start.toMSecsSinceEpoch())
        .arg(end.toMSecsSinceEpoch());
}

QStringList momentsOf(const Playlist &playlist)
{
    QStringList items;
    for (const auto &item : playlist)
        items << momentsOf(item->camera, item->start, item->end);
    items.sort();
    return items;
}

/// The items found by looking at each record, one after the other.
QStringList momentsByTheRule(const QList<API::CameraPtr> &cameras, const QDateTime &position)
{
    QDateTime next = position.addDays(1);
    for (const API::CameraPtr &camera : cameras) {
        for (const API::ArchiveRecord &record : camera->records(position.date())) {
            if (record.start < position && record.end > position)
                next = position;
            else if (record.start >= position && record.start < next)
                next = record.start;
        }
    }
    QStringList items;
    for (const API::CameraPtr &camera : cameras) {
        for (const API::ArchiveRecord &record : camera->records(position.date())) {
            if (record.start >= next || record.end > next)
                items << momentsOf(camera, qMax(record.start, next), record.end);
        }
    }
    items.sort();
    return items;
}

bool isSortedByStart(const Playlist &playlist)
{
    return std::is_sorted(playlist.begin(), playlist.end(),
                          [](const auto &a, const auto &b) { return a->start < b->start; });
}

} // namespace

/// What a timeline has to play from a moment on.
class PlaylistTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("TZ", "Europe/Berlin");
        tzset();
        QVERIFY(world.start());
    }

    void init() { world.reset(); }

    void spans_data()
    {
        const QStringList one{"10:00:00-11:00:00 12:00:00-12:30:00"};
        const QStringList two{"9:00:00-12:00:00", "11:00:00-11:30:00 13:00:00-14:00:00"};
        rows<QStringList, QString, QStringList>(
            {"cameras", "position", "expected"},
            {
                {"no cameras", QStringList(), "10:00:00", QStringList()},
                {"no records", QStringList{""}, "10:00:00", QStringList()},
                {"in a record", one, "10:30:00",
                 QStringList{"1 10:30:00-11:00:00", "1 12:00:00-12:30:00"}},
                {"on a start", one, "10:00:00",
                 QStringList{"1 10:00:00-11:00:00", "1 12:00:00-12:30:00"}},
                {"before all", one, "0:00:00",
                 QStringList{"1 10:00:00-11:00:00", "1 12:00:00-12:30:00"}},
                {"on an end", one, "11:00:00", QStringList{"1 12:00:00-12:30:00"}},
                {"in a gap", one, "11:50:00", QStringList{"1 12:00:00-12:30:00"}},
                {"on the last end", one, "12:30:00", QStringList()},
                {"past all", one, "23:59:59", QStringList()},
                {"one plays, one waits", two, "10:59:00",
                 QStringList{"1 10:59:00-12:00:00", "2 11:00:00-11:30:00", "2 13:00:00-14:00:00"}},
                {"both play", two, "11:10:00",
                 QStringList{"1 11:10:00-12:00:00", "2 11:10:00-11:30:00", "2 13:00:00-14:00:00"}},
                {"the later camera's gap ends first",
                 QStringList{"8:00:00-9:00:00 12:00:00-13:00:00", "11:00:00-11:30:00"}, "10:00:00",
                 QStringList{"2 11:00:00-11:30:00", "1 12:00:00-13:00:00"}},
                {"equal starts",
                 QStringList{"11:00:00-11:30:00", "11:00:00-11:40:00", "11:00:00-11:20:00"},
                 "10:00:00",
                 QStringList{"1 11:00:00-11:30:00", "2 11:00:00-11:40:00", "3 11:00:00-11:20:00"}},
                {"records over each other",
                 QStringList{"10:00:00-12:00:00 10:30:00-11:00:00 11:30:00-13:00:00"}, "11:10:00",
                 QStringList{"1 11:10:00-12:00:00", "1 11:30:00-13:00:00"}},
                {"a long record over short ones",
                 QStringList{"8:00:00-14:00:00 9:00:00-9:30:00 10:00:00-10:30:00"}, "11:00:00",
                 QStringList{"1 11:00:00-14:00:00"}},
                {"records in no order",
                 QStringList{"14:00:00-15:00:00 9:00:00-9:30:00 12:00:00-13:00:00",
                             "16:00:00-17:00:00 11:00:00-11:10:00"},
                 "10:00:00",
                 QStringList{"2 11:00:00-11:10:00", "1 12:00:00-13:00:00", "1 14:00:00-15:00:00",
                             "2 16:00:00-17:00:00"}},
            });
    }

    void spans()
    {
        const auto [cameras, position, expected] = row<QStringList, QString, QStringList>();
        Timeline timeline(day);
        for (int index = 0; index < cameras.size(); ++index)
            QVERIFY(addCamera(timeline, index + 1, recordsOf(cameras.at(index))));
        const Playlist playlist = timeline.playlistForCameras(at(position));
        QCOMPARE(itemsOf(playlist), expected);
        QVERIFY(isSortedByStart(playlist));
    }

    void readsOneDayOnly()
    {
        const QDate next = day.addDays(1);
        const QTime morning(8, 0);
        world.setRecords(1, {Tests::record(day, QTime(10, 0), QTime(11, 0)),
                             Tests::record(next, morning, QTime(9, 0))});
        const API::CameraPtr camera = world.localCamera(1);
        QVERIFY(ArchiveWorld::load(camera, next));
        Timeline timeline(day);
        QVERIFY(addCamera(timeline, camera));
        QVERIFY(timeline.playlistForCameras(at("11:00:00")).isEmpty());
        // The day is that of the moment, not that of the strip.
        const Playlist playlist = timeline.playlistForCameras(QDateTime(next, QTime(0, 0)));
        QCOMPARE(playlist.size(), 1);
        QCOMPARE(playlist.first()->camera, camera);
        QCOMPARE(playlist.first()->start, QDateTime(next, morning));
    }

    void newRecordsReplaceTheOldOnes()
    {
        Timeline timeline(day);
        world.setRecords(1, recordsOf("10:00:00-11:00:00"));
        const API::CameraPtr camera = world.localCamera(1);
        QVERIFY(addCamera(timeline, camera));
        QCOMPARE(itemsOf(timeline.playlistForCameras(at("0:00:00"))),
                 QStringList{"1 10:00:00-11:00:00"});
        world.setRecords(1, recordsOf("12:00:00-13:00:00"));
        QVERIFY(ArchiveWorld::load(camera, day));
        QCOMPARE(itemsOf(timeline.playlistForCameras(at("0:00:00"))),
                 QStringList{"1 12:00:00-13:00:00"});
    }

    void sameAsByTheRule_data()
    {
        rows<QDate>({"date"}, {
                                  {"24 hours", day},
                                  {"23 hours", QDate(2026, 3, 29)},
                                  {"25 hours", QDate(2026, 10, 25)},
                              });
    }

    void sameAsByTheRule()
    {
        QFETCH(QDate, date);
        constexpr int cameraCount = 5;
        constexpr int recordCount = 40;
        constexpr int positions = 200;
        QRandomGenerator random(1);
        const QDateTime begin = date.startOfDay();
        const int daySeconds = static_cast<int>(begin.secsTo(date.endOfDay()));
        const auto anyMoment = [&] { return begin.addSecs(random.bounded(daySeconds)); };
        Timeline timeline(date);
        QList<API::CameraPtr> cameras;
        for (int id = 1; id <= cameraCount; ++id) {
            // In no order, over each other, and with the same starts.
            QList<API::ArchiveRecord> records;
            for (int index = 0; index < recordCount; ++index) {
                const QDateTime start = begin.addSecs(random.bounded(daySeconds) / 600 * 600);
                records.append({start, start.addSecs(random.bounded(1, 1200))});
            }
            world.setRecords(id, records);
            cameras.append(world.localCamera(id));
            QVERIFY(addCamera(timeline, cameras.last()));
        }
        for (int index = 0; index < positions; ++index) {
            const QDateTime position = anyMoment();
            const Playlist playlist = timeline.playlistForCameras(position);
            QVERIFY(isSortedByStart(playlist));
            QCOMPARE(momentsOf(playlist), momentsByTheRule(cameras, position));
        }
    }

    void crossesTheMetaObjectSystem()
    {
        Timeline timeline(day);
        QVERIFY(addCamera(timeline, 1, recordsOf("10:00:00-11:00:00")));
        Playlist playlist;
        QVERIFY(QMetaObject::invokeMethod(&timeline, "playlistForCameras",
                                          Q_RETURN_ARG(Playlist, playlist),
                                          Q_ARG(QDateTime, at("10:30:00"))));
        QCOMPARE(itemsOf(playlist), QStringList{"1 10:30:00-11:00:00"});
        QCOMPARE(QMetaType::type("Playlist"), qMetaTypeId<Playlist>());
    }

private:
    /// Puts a camera on the strip and waits for its records.

    bool addCamera(Timeline &timeline, const API::CameraPtr &camera)
    {
        QSignalSpy received(camera.data(), &API::Camera::recordsChanged);
        timeline.addCamera(camera);
        return received.wait(30000);
    }

    bool addCamera(Timeline &timeline, int id, const QList<API::ArchiveRecord> &records)
    {
        world.setRecords(id, records);
        return addCamera(timeline, world.localCamera(id));
    }

    ArchiveWorld world;
};

QTEST_MAIN(PlaylistTest)
#include "PlaylistTest.moc"
