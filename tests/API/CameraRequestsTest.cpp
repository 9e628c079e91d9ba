// SPDX-License-Identifier: MIT
#include "tests/API/CloudFixture.h"

#include "API/CloudData.h"

namespace {

const QDate day(2026, 3, 10);
const QDate next = day.addDays(1);
constexpr QSize pictureSize(64, 36);

QByteArray picture()
{
    QBuffer buffer;
    QImage(pictureSize, QImage::Format_RGB32).save(&buffer, "JPEG");
    return buffer.data();
}

QByteArray seconds(const QDate &date, const QTime &time)
{
    return QByteArray::number(QDateTime(date, time).toSecsSinceEpoch());
}

const QByteArray recordAtNoon =
    "[{\"startTime\":" + seconds(day, QTime(12, 0)) + "000,\"duration\":60000}]";

/// How many clients go when the camera goes.
int clientCount(const CameraPtr &camera)
{
    struct Open : QObject {
        using QObject::receivers;
    };
    return (camera.data()->*&Open::receivers)(SIGNAL(destroyed(QObject *)));
}

} // namespace

/// What cameras ask of the service and of LAN servers, over real connections. Each function
/// runs for each kind of camera.
class CameraRequestsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data()
    {
        rows<QByteArray>(
            {"sent"},
            {{"cloud", "session"}, {"LAN", "pass%20word"}, {"LAN without a password", ""}});
    }

    void initTestCase()
    {
        QVERIFY(service.start());
        QVERIFY(lan.start());
        Internal::cloudData.sessionId = "session"_s;
        emptyCacheFolder();
    }

    void init()
    {
        QFETCH_GLOBAL(QByteArray, sent);
        session = sent;
        local = session != "session";
        asked = local ? &lan : &service.server();
        lan.clearRequests();
        service.server().clearRequests();
        Server server(QVariantMap{{"id"_s, "s 1"_s}});
        const QVariantMap json{{"id"_s, 7}, {"rights"_s, QStringList{"archive"}}};
        camera = CameraPtr::create(&server, json);
        if (local) {
            camera->setId("127.0.0.1:%1"_s.arg(lan.port()), 7);
            camera->setKind(LocalCamera);
            camera->setSessionId(QUrl::fromPercentEncoding(session));
        }
    }

    void cleanup()
    {
        // Whatever came of its requests, no client of a camera stays.
        QTRY_COMPARE(camera ? clientCount(camera) : 0, 0);
        camera.reset();
    }

    void preview()
    {
        QSignalSpy changed(camera.data(), &Camera::previewChanged);
        for (const QByteArray &body : {picture(), QByteArray("no picture"), QByteArray()}) {
            asked->setReply(WireReply::body(body, "image/jpeg"));
            changed.clear();
            camera->updatePreview();
            QCOMPARE(clientCount(camera), 1);
            QTRY_COMPARE(changed.size(), 1);
            const bool good = body.size() > 100;
            QCOMPARE(changed.last().first().value<QPixmap>().isNull(), !good);
            QCOMPARE(camera->hasPreview(), good);
            QTRY_COMPARE(clientCount(camera), 0);
            QCOMPARE(camera->preview().size(), pictureSize); // if need be that of the cache
        }
        QCOMPARE(target(), local ? "/preview/live?camera=7&server=1&sessionId=" + session
                                 : "//preview/live?camera=7&q=0&server=s%201&sessionId=session");
    }

    void timeline()
    {
        QSignalSpy changed(camera.data(), &Camera::recordsChanged);
        QSignalSpy failed(camera.data(), &Camera::recordsError);
        asked->setReply(WireReply::json(recordAtNoon));
        camera->updateTimeline(day);
        QTRY_COMPARE(changed.size(), 1);
        QCOMPARE(changed.last(), QVariantList{day});
        QCOMPARE(camera->records(day).value(0).start, QDateTime(day, QTime(12, 0, 1)));
        QCOMPARE(target(), archiveTarget("list", day, day));

        // A failure keeps the day; the loss of the right empties it, but a LAN camera needs none.
        asked->setReply(WireReply::json("no JSON"));
        camera->updateTimeline(day);
        QTRY_COMPARE(failed.size(), 1);
        QVERIFY(changed.size() == 1 && camera->hasRecords(day));
        Server server; // of a roster that gives no rights
        camera->update(&server, QVariantMap());
        asked->setReply(WireReply::json("{}"));
        camera->updateTimeline(next);
        QCOMPARE(clientCount(camera), local ? 1 : 0);
        QTRY_COMPARE(changed.size(), 2);
        QCOMPARE(camera->hasRecords(day), local);
        // A reply without records empties it as well.
        camera->updateTimeline(day);
        QTRY_COMPARE(changed.size(), 3);
        QVERIFY(!camera->hasRecords(day));
    }

    void calendar()
    {
        QSignalSpy changed(camera.data(), &Camera::calendarChanged);
        for (const QDate &date : {day, next}) {
            asked->setReply(WireReply::json("[{\"date\":" + seconds(date, QTime(12, 0)) +
                                            ",\"recordsCount\":3}]"));
            changed.clear();
            camera->updateCalendar(day, next);
            QTRY_COMPARE(changed.size(), 1);
            QCOMPARE(changed.last(), (QVariantList{day, next}));
            QCOMPARE(target(), archiveTarget("days", day, next));
        }
        // Days that a reply doesn't mention stay as they were, and so do all after a failure.
        const QMap<QDate, int> both{{day, 3}, {next, 3}};
        asked->setReply(WireReply::json("no JSON"));
        camera->updateCalendar(day, next);
        QTRY_COMPARE(clientCount(camera), 0);
        QCOMPARE(camera->calendar(), both);
        Server server; // of a roster that gives no rights
        camera->update(&server, QVariantMap());
        camera->updateCalendar(day, next);
        QCOMPARE(clientCount(camera), local ? 1 : 0);
        QTRY_COMPARE(clientCount(camera), 0);
        QCOMPARE(camera->calendar(), local ? both : (QMap<QDate, int>()));
        QCOMPARE(changed.size(), 1);
    }

    void rotation()
    {
        camera->setRotation(-90);
        QCOMPARE(camera->rotation(), -90);
        const QString key = "cameras/%1/7/rotation"_s.arg(camera->serverId());
        QCOMPARE(App::settings().value(key).toInt(), local ? -90 : 0);
        // What is asked later has its answer, so whoever was told of the turn has heard it.
        CloudAPIClient later;
        QSignalSpy answered(&later, &CloudAPIClient::updatesError);
        later.checkForUpdates();
        QTRY_VERIFY(answered.size() == 1 && service.server().openConnections() == 0);
        QCOMPARE(service.requests().size() + lan.requests().size(), local ? 1 : 2);
        const auto turns = service.requestsTo("//public/servers/s%201/cameras/7/rotation");
        QCOMPARE(turns.value(0).body, local ? "" : "degrees=-90&sessionId=session");
    }

    void cameraDiesWhileAsking()
    {
        asked->setReply(WireReply::body(picture(), "image/jpeg"));
        int heard = 0;
        connect(camera.data(), &Camera::previewChanged, this, [&heard] { ++heard; });
        camera->updatePreview();
        camera->updateTimeline(day);
        camera->updateCalendar(day, day);
        // Whatever it sent is over when a camera that asks after it has its answer.
        init();
        camera->updatePreview();
        QTRY_VERIFY(camera->hasPreview());
        QTRY_COMPARE(asked->openConnections(), 0);
        QCOMPARE(heard, 0);
    }

    void cameraReleasedByItsOwnSignal()
    {
        asked->setReply(WireReply::json(recordAtNoon));
        connect(camera.data(), &Camera::recordsChanged, this, [this] { camera.reset(); });
        camera->updateTimeline(day);
        QTRY_VERIFY(camera.isNull());
    }

private:
    QByteArray target() const { return asked->requests().last().target(); }

    QByteArray archiveTarget(const QByteArray &what, const QDate &first, const QDate &last) const
    {
        const QByteArray server = QUrl::toPercentEncoding(camera->serverId(), ":");
        const QByteArray end = "?camera=7&endTime=" + seconds(last, QTime(23, 59, 59));
        return (local ? "/archive/" : "//archive/") + what + end + "&server=" + server +
               "&sessionId=" + session + "&startTime=" + seconds(first, QTime(0, 0));
    }

    bool local = false;
    QByteArray session;
    ScriptedService service;
    MisbehavingServer lan;
    MisbehavingServer *asked = nullptr;
    CameraPtr camera;
};

QTEST_MAIN(CameraRequestsTest)
#include "CameraRequestsTest.moc"
