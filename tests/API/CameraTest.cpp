// SPDX-License-Identifier: MIT
#include "tests/API/CloudFixture.h"

#include <ctime>

#include "API/ArchiveRecord.h"
#include "API/CameraPrivate.h"
#include "API/CloudData.h"
#include "API/PreviewImage.h"
#include "App/ServiceProfile.h"

namespace {

// Zones as rules, so that the tests need no time zone database.
const QByteArray utc = "UTC0";
const QByteArray berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
/// The clock goes forward at midnight.
const QByteArray brasilia = "BRT3BRST,M11.1.0/0,M2.3.0/0";

void setZone(const QByteArray &zone)
{
    qputenv("TZ", zone);
    tzset();
}

CameraPtr makeCamera(const QString &server)
{
    CameraPtr camera = CameraPtr::create();
    camera->setId(server, 7);
    return camera;
}

} // namespace

/// What servers and cameras of the roster say of themselves.
class CameraTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        setZone(utc);
        emptyCacheFolder();
        // A rotation is told to the service: to one that nobody is.
        App::ServiceProfile nobody;
        nobody.apiHost = "127.0.0.1"_s;
        nobody.apiPort = 1;
        App::ServiceProfile::setCurrent(nobody);
    }

    void laterRosterOfACamera()
    {
        Server server(parse("{'id':'s1','name':'Depot'}"));
        Camera camera(&server, parse("{'id':5,'name':'Gate','vcodec':'h264','width':640,"
                                     "'height':360,'rotation':-90,'mirror':true,'online':true,"
                                     "'rights':['live','archive','ptz']}"));
        QSignalSpy flagsSpy(&camera, &Camera::flagsChanged);
        QSignalSpy rightsSpy(&camera, &Camera::rightsChanged);
        camera.update(&server, parse("{'id':6,'name':'Yard','vcodec':'mpeg4','width':1,"
                                     "'height':2,'rotation':180,'mirror':false,'online':true,"
                                     "'rights':['ptz','live','archive','live','other']}"));
        QCOMPARE(camera.fullName(), "Depot-Yard"_s);
        // What the first roster said and later ones don't change.
        const QVariantList kept{5, "h264", QSize(640, 360), -90, true, CloudCamera, false};
        QCOMPARE((QVariantList{camera.id(), camera.vcodec(), camera.videoSize(), camera.rotation(),
                               camera.isMirrored(), camera.kind(), camera.isExportEnabled()}),
                 kept);
        QCOMPARE(flagsSpy.size() + rightsSpy.size(), 0);

        camera.update(&server, parse("{'online':false,'rights':['Live','ptz'],'services':[1]}"));
        QCOMPARE(camera.flags(), CameraOffline | CameraNotPaid);
        QCOMPARE(camera.rights(), int(RightPtz));
        camera.setFlags(CameraOffline | CameraNotPaid);
        QCOMPARE(flagsSpy.size(), 1);
        QCOMPARE(rightsSpy.size(), 1);
        // The word beside "active" can also be the name of a service, which pays for nothing.
        for (const auto &active : QByteArrayList{"true", "'true'", "'camera'"}) {
            camera.update(&server, parse("{'services':{'enabled':{'active':" + active + "}}}"));
            QCOMPARE(camera.isPaid(), active != "'camera'");
        }

        // Below a LAN server the stored rotation counts.
        LocalServer lan("LAN"_s, "127.0.0.1"_s, 1, QString());
        App::settings().setValue("cameras/127.0.0.1:1/7/rotation"_s, 90);
        const Camera stored(&lan, parse("{'id':7,'rotation':180}"));
        QVERIFY(stored.rotation() == 90 && stored.isExportEnabled());
    }

    void laterRosterOfAServer()
    {
        Server server(parse("{'id':'s1','name':'Depot','owner':true,'online':true,'info':"
                            "{'functions':['arc_search','speed_play'],'build_type':'arm-camera'},"
                            "'cameras':{'3':{'id':3,'online':true},'4':{}}}"));
        QCOMPARE(server.cameras().keys(), QList<camera_id_t>{3});
        const CameraPtr camera = server.cameras().value(3);
        QSignalSpy flagsSpy(&server, &Server::flagsChanged);
        QSignalSpy aliasSpy(&server, &Server::aliasChanged);
        QSignalSpy liveSpy(&server, &Server::liveEnabledChanged);
        QSignalSpy archiveSpy(&server, &Server::archiveEnabledChanged);
        QStringList heard;
        connect(&server, &Server::cameraAdded, this,
                [&heard](const CameraPtr &added) { heard << "+%1"_s.arg(added->id()); });
        connect(&server, &Server::cameraRemoved, this,
                [&heard](camera_id_t number) { heard << "-%1"_s.arg(number); });

        // Where a key and a number disagree, the key decides what stays.
        server.update(parse("{'id':'other','name':'Depot','online':false,'live':true,'cameras':"
                            "{'3':{'id':3,'name':'Gate'},'9':{'id':9},'7':{'id':8}}}"));
        QCOMPARE(heard, (QStringList{"+8", "+9", "-8"}));
        QCOMPARE((QVariantList{server.id(), server.isOnline(), server.isOwner(), server.isCamera(),
                               server.isArcSearchEnabled(), server.isSpeedPlayEnabled()}),
                 (QVariantList{"s1", false, true, true, true, true}));
        QVERIFY(flagsSpy.isEmpty() && aliasSpy.isEmpty() && liveSpy.size() == 1);
        QVERIFY(archiveSpy.isEmpty());
        // The object that widgets hold is the one that is brought up to date.
        QCOMPARE(server.cameras().value(3), camera);
        QCOMPARE(camera->name(), "Gate"_s);

        server.update(parse("{'name':'Yard','online':true,'archive':true}"));
        QVERIFY(server.isOnline() && aliasSpy.size() == 1 && liveSpy.size() == 2);
        QVERIFY(archiveSpy.size() == 1 && server.isArchiveEnabled());
        for (const ServerFlags flags : {0, 8, 8})
            server.setFlags(flags);
        QVERIFY(flagsSpy.size() == 1 && !server.isOnline());
        server.removeCamera(3); // gone by now
        QCOMPARE(heard, (QStringList{"+8", "+9", "-8", "-3", "-9"}));
        // A camera that was removed is frozen.
        server.update(parse("{'cameras':{'3':{'id':3,'name':'new'}}}"));
        QCOMPARE(camera->name(), "Gate"_s);
        QVERIFY(server.cameras().value(3) != camera);

        const Server other(parse("{'info':{'functions':'arc_search','build_type':'Camera'}}"));
        QVERIFY(!other.isArcSearchEnabled() && !other.isSpeedPlayEnabled() && !other.isCamera());
    }

    void sortedCameras()
    {
        // Offline ones last, but not those that aren't paid for either.
        Server server(parse("{'cameras':{'0':{'id':1,'name':'b'},'1':{'id':2,'name':'a'},"
                            "'2':{'id':3,'name':'C'},'3':{'id':4,'name':'c'}}}"));
        server.cameras().value(1)->setFlags(0);
        server.cameras().value(2)->setFlags(CameraOffline);
        server.cameras().value(3)->setFlags(0);
        QString order;
        for (const CameraPtr &camera : server.sortedCameras())
            order += camera->name();
        QCOMPARE(order, "Cbca"_s);
    }

    void streamUrls_data()
    {
        rows<QString, QString, QString>(
            {"server", "password", "start"}, // as far as the stream's own values
            {{"cloud", "s%3%5", "secret",
              "http://flv.example:8080/flv/live?server=s%3%5&camera=7&q=2&sessionId=a&b%2"},
             {"LAN", "10.0.0.5:80", "%6 %7&%1+/%20",
              "http://10.0.0.5:80/flv/live?server=1&camera=7&q=2&sessionId=%6 %7&%1+/%20"},
             {"LAN without a password", "10.0.0.5:80", "",
              "http://10.0.0.5:80/flv/live?server=1&camera=7&q=2&sessionId="}});
    }

    /// Values that look like markers go in as they are.
    void streamUrls()
    {
        const auto [server, password, start] = row<QString, QString, QString>();
        const bool local = start.startsWith("http://10."_s);
        App::ServiceProfile profile;
        profile.flvHost = "flv.example:8080"_s;
        App::ServiceProfile::setCurrent(profile);
        Internal::cloudData.sessionId = "a&b%2"_s;
        const CameraPtr camera = makeCamera(server);
        camera->setKind(local ? LocalCamera : CloudCamera);
        camera->setSessionId(password);
        const QString codecs = "&vcodec=h264&vcodec=flv&vcodec=mpeg4&acodec=mp3"_s;
        QCOMPARE(camera->liveUrl(2), start + codecs);
        const QString archive = QString(start).replace("/live?"_s, "/archive?"_s);
        QCOMPARE(camera->archiveUrl(2, 4, 17, 0), archive + "&startTime=17&speed=4" + codecs);
        const QString span = "&startTime=1700000000000&endTime=1700000060000&uploadRate=500"
                             "&vcodec=flv&vcodec=h264&vcodec=mpeg4&acodec=mp3"_s;
        const QString exported = camera->exportUrl(1700000000000, 1700000060000);
        QCOMPARE(exported, local ? archive + span : QString());
    }

    void finishedRequestsAreLetGo()
    {
        Internal::CameraPrivate state;
        for (int i = 0; i < 100; ++i) {
            QObject finished;
            state.keep(connect(i == 50 ? this : &finished, &QObject::objectNameChanged, [] {}));
        }
        // What is still out can still be cut when the camera dies.
        QCOMPARE(state.connections.size(), 2);
        QVERIFY(disconnect(state.connections.first()));
    }

    void previewOrientation()
    {
        QImage image(2, 1, QImage::Format_RGB32);
        image.fill(Qt::red);
        image.setPixelColor(1, 0, Qt::blue);
        const QImage upright = image.transformed(QTransform().rotate(-90)); // blue on top
        const CameraPtr camera = makeCamera("10.0.0.5:80"_s);
        camera->setPreview(QPixmap::fromImage(image));
        camera->setRotation(-450); // as -90, to the pixel
        QCOMPARE(camera->preview().toImage(), upright);
        // A picture that comes later is turned in the same way, and mirrored afterwards.
        camera->setPreview(QPixmap::fromImage(image));
        camera->setMirrored(true);
        QCOMPARE(camera->preview().toImage(), upright);
        camera->setRotation(0);
        QCOMPARE(camera->preview().toImage(), image.mirrored(true, false));
        QCOMPARE(camera->sourcePreview().toImage(), image);
    }

    void previewFile()
    {
        const QSize size(32, 18);
        const QPixmap picture = QPixmap::fromImage(QImage(size, QImage::Format_RGB32));
        const QString server = "../outside/%2"_s; // must not lead out of the folder
        const CameraPtr first = makeCamera(server);
        first->setRotation(90);
        first->setPreview(picture);
        const QStringList files = cacheFolder().entryList(QDir::Files | QDir::Hidden);
        QCOMPARE(files, QStringList{".._outside_%2_7.jpeg"});
        const QString file = cacheFolder().filePath(files.first());
        QVERIFY(QFile::setPermissions(file, QFile::permissions(file) | QFile::ReadOther));
        first->setPreview(picture);
        QVERIFY(!(QFile::permissions(file) & QFile::ReadOther));

        // It keeps the picture as it was received, also for who has let go of its own.
        first->setPreview(QPixmap());
        QCOMPARE(first->sourcePreview().size(), size);
        const CameraPtr second = makeCamera(server);
        QVERIFY(!second->hasPreview());
        QVERIFY(second->preview().size() == size && second->hasPreview());
    }

    void previewDecoding()
    {
        QBuffer jpeg;
        QImage(64, 36, QImage::Format_RGB32).save(&jpeg, "JPEG");
        QVERIFY(decodePreview(QByteArray(4096, 'x')).isNull());
        QVERIFY(decodePreview(jpeg.data().left(20)).isNull());
        // A header that promises 20,000 by 10,000 pixels, which would be 800 MB.
        jpeg.buffer().replace(jpeg.data().indexOf("\xff\xc0") + 5, 4, "\x27\x10\x4e\x20");
        QVERIFY(decodePreview(jpeg.data()).isNull());
    }

    void records_data()
    {
        const QString day = "2026-03-10"_s;
        const QString shortDay = "2026-03-29"_s;   // an hour of it doesn't exist
        const QString noMidnight = "2018-11-04"_s; // begins at one
        rows<QByteArray, QString, QString, int, QString>(
            {"zone", "date", "start", "seconds", "record"}, // times in UTC
            {{"one second", utc, day, "10T12:00:00", 1, "10T12:00:01 10T12:00:02"},
             {"no length", utc, day, "10T12:00:00", 0, ""},
             {"from the day before", utc, day, "09T23:50:00", 1200, "10T00:00:00 10T00:10:01"},
             {"into the next day", utc, day, "10T23:50:00", 1200, "10T23:50:01 10T23:59:59"},
             {"nothing left after clipping", utc, day, "10T23:59:58", 5, ""},
             {"of the day before", utc, day, "09T12:00:00", 60, ""},
             {"of the next day", utc, day, "11T00:00:00", 60, ""},
             {"missing hour", berlin, shortDay, "29T00:30:00", 3600, "29T00:30:01 29T01:30:01"},
             {"no midnight", brasilia, noMidnight, "04T02:50:00", 1200,
              "04T03:00:00 04T03:10:01"}});
    }

    void records()
    {
        const auto [zone, date, start, seconds, expected] =
            row<QByteArray, QString, QString, int, QString>();
        setZone(zone);
        const QDate day = QDate::fromString(date, Qt::ISODate);
        const auto first = QDateTime::fromSecsSinceEpoch(firstSecondOfDay(day));
        const auto last = QDateTime::fromSecsSinceEpoch(lastSecondOfDay(day));
        QVERIFY(first.date() == day && first.addSecs(-1).date() == day.addDays(-1));
        QVERIFY(last.date() == day && last.addSecs(1).date() == day.addDays(1));
        // Milliseconds below a second are cut off, not rounded.
        const auto startTime = QDateTime::fromString(date.left(8) + start + "Z", Qt::ISODate);
        const QVariantMap record{{"startTime"_s, startTime.toMSecsSinceEpoch() + 999},
                                 {"duration"_s, seconds * 1000 + 999}};
        // Numbers beyond all dates lie elsewhere.
        const QVariantMap far{{"startTime"_s, Q_INT64_C(1) << 62}};
        QStringList found;
        for (const ArchiveRecord &each : archiveRecordsOfDay(QVariantList{"x", record, far}, day)) {
            for (const QDateTime &time : {each.start, each.end})
                found << time.toUTC().toString("dd'T'HH:mm:ss"_s);
        }
        QCOMPARE(found.join(' '), expected);
    }

    void countsOfDays()
    {
        setZone(berlin);
        // Late in the evening of UTC; the last number is beyond 32 bits.
        const auto reply = parse("{'days':[{'date':1773099000,'recordsCount':4},"
                                 "{'date':1773185400},{'date':6068239096,'recordsCount':7}]}");
        const QMap<QDate, int> expected{{{2026, 3, 10}, 4}, {{2026, 3, 11}, 0}, {{2026, 3, 12}, 7}};
        QCOMPARE(recordCountsByDay(reply.value("days"_s)), expected);
    }
};

QTEST_MAIN(CameraTest)
#include "CameraTest.moc"
