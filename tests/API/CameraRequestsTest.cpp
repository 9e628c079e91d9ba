// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudData.h"
#include "API/Server.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/ScriptedService.h"

using namespace ZorvaneClient::API;

namespace {

const QDate day(2026, 3, 10);
const QSize pictureSize(64, 36);

QByteArray jpeg()
{
    QPixmap picture(pictureSize);
    picture.fill(Qt::green);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "JPEG");
    return buffer.data();
}

QByteArray recordAtNoon()
{
    const qint64 start = QDateTime(day, QTime(12, 0)).toMSecsSinceEpoch();
    return "[{\"startTime\":" + QByteArray::number(start) + ",\"duration\":60000}]";
}

CameraPtr cloudCamera(const QStringList &rights)
{
    const ServerPtr server = ServerPtr::create(QVariantMap{{"id"_s, "s 1&"_s}});
    return CameraPtr::create(server.data(), QVariantMap{{"id"_s, 7}, {"rights"_s, rights}});
}

CameraPtr localCamera(int port)
{
    const CameraPtr camera = CameraPtr::create();
    camera->setId("127.0.0.1:%1"_s.arg(port), 7);
    camera->setKind(LocalCamera);
    camera->setSessionId("pass word"_s);
    return camera;
}

} // namespace

/// What cameras ask of the service and of LAN servers, over real connections.
class CameraRequestsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCoreApplication::setApplicationName("CameraRequestsTest"_s);
        QVERIFY(service.start());
        QVERIFY(lan.start());
        Internal::cloudData.sessionId = "session"_s;
    }

    void init()
    {
        const QString cache = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
        QVERIFY(QDir(cache).removeRecursively());
        QVERIFY(QDir().mkpath(cache));
        service.reset();
        lan.clearRequests();
        lan.setReply(WireReply::json("[]"));
    }

    void cleanup()
    {
        // Clients of cameras that are gone wait to be released.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void preview_data()
    {
        rows<bool>({"local"}, {
                                  {"cloud", false},
                                  {"local", true},
                              });
    }

    void preview()
    {
        QFETCH(bool, local);
        const WireReply reply = WireReply::body(jpeg(), "image/jpeg");
        service.answer("GET", "//preview/live", reply);
        lan.setReply(reply);

        const CameraPtr asking = camera(local);
        QSignalSpy spy(asking.data(), &Camera::previewChanged);
        asking->updatePreview();
        QTRY_COMPARE(spy.size(), 1);
        QCOMPARE(spy.first().first().value<QPixmap>().size(), pictureSize);
        QVERIFY(asking->hasPreview());

        const QUrlQuery query = lastQuery(local);
        const auto value = [&query](const char *key) {
            return query.queryItemValue(QLatin1String(key), QUrl::FullyDecoded);
        };
        QCOMPARE(value("server"), local ? "1"_s : "s 1&"_s);
        QCOMPARE(value("camera"), "7"_s);
        QCOMPARE(value("sessionId"), local ? "pass word"_s : "session"_s);
        // A second camera of the same identity finds the picture in the cache.
        QCOMPARE(camera(local)->preview().size(), pictureSize);
    }

    void previewFailure()
    {
        for (const bool local : {false, true}) {
            const WireReply reply = WireReply::body(local ? "no picture" : "", "image/jpeg");
            service.answer("GET", "//preview/live", reply);
            lan.setReply(reply);
            const CameraPtr asking = camera(local);
            QPixmap old(pictureSize);
            old.fill(Qt::red);
            asking->setPreview(old);
            QSignalSpy spy(asking.data(), &Camera::previewChanged);
            asking->updatePreview();
            QTRY_COMPARE(spy.size(), 1);
            QVERIFY(spy.first().first().value<QPixmap>().isNull());
            QVERIFY(!asking->hasPreview());
            QCOMPARE(asking->preview().size(), pictureSize);
        }
    }

    void timeline_data() { preview_data(); }

    void timeline()
    {
        QFETCH(bool, local);
        service.answer("GET", "//archive/list", WireReply::json(recordAtNoon()));
        lan.setReply(WireReply::json(recordAtNoon()));

        const CameraPtr asking = camera(local);
        QCOMPARE(asking->rights(), local ? 0 : int(RightArchive));
        QSignalSpy spy(asking.data(), &Camera::recordsChanged);
        asking->updateTimeline(day);
        QTRY_COMPARE(spy.size(), 1);
        QCOMPARE(spy.first().first().toDate(), day);
        QCOMPARE(asking->records(day).size(), 1);
        QCOMPARE(asking->records(day).first().start, QDateTime(day, QTime(12, 0, 1)));
        QVERIFY(asking->hasRecords(day));
        QVERIFY(!asking->hasRecords(day.addDays(1)));

        const QUrlQuery query = lastQuery(local);
        const qint64 first = QDateTime(day, QTime(0, 0)).toSecsSinceEpoch();
        QCOMPARE(query.queryItemValue("startTime"_s).toLongLong(), first);
        QCOMPARE(query.queryItemValue("endTime"_s).toLongLong(), first + 86399);
        QCOMPARE(query.queryItemValue("sessionId"_s, QUrl::FullyDecoded),
                 local ? "pass word"_s : "session"_s);

        // The day is empty after a reply without records.
        service.answer("GET", "//archive/list", WireReply::json("{}"));
        lan.setReply(WireReply::json("[]"));
        asking->updateTimeline(day);
        QTRY_COMPARE(spy.size(), 2);
        QVERIFY(!asking->hasRecords(day));
    }

    void timelineFailureKeepsTheDay()
    {
        lan.setReply(WireReply::json(recordAtNoon()));
        const CameraPtr asking = camera(true);
        asking->updateTimeline(day);
        QTRY_VERIFY(asking->hasRecords(day));

        QSignalSpy changed(asking.data(), &Camera::recordsChanged);
        QSignalSpy failed(asking.data(), &Camera::recordsError);
        lan.setReply(WireReply::json("no JSON"));
        asking->updateTimeline(day);
        QTRY_COMPARE(failed.size(), 1);
        QVERIFY(changed.isEmpty());
        QVERIFY(asking->hasRecords(day));
    }

    void lostArchiveRight()
    {
        const QDate other = day.addDays(1);
        const qint64 start = QDateTime(day, QTime(23, 0)).toMSecsSinceEpoch();
        service.answer("GET", "//archive/list",
                       WireReply::json("[{\"startTime\":" + QByteArray::number(start) +
                                       ",\"duration\":7200000}]"));
        service.answer("GET", "//archive/days",
                       WireReply::json("[{\"date\":1,\"recordsCount\":1}]"));
        const CameraPtr asking = camera(false);
        asking->updateTimeline(day);
        asking->updateTimeline(other);
        asking->updateCalendar(day, other);
        QTRY_VERIFY(asking->hasRecords(day) && asking->hasRecords(other));
        QTRY_VERIFY(!asking->calendar().isEmpty());

        Server server;
        asking->update(&server, QVariantMap());
        service.reset();
        QSignalSpy spy(asking.data(), &Camera::recordsChanged);
        asking->updateTimeline(other);
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.first().first().toDate(), other);
        QVERIFY(!asking->hasRecords(day) && !asking->hasRecords(other));
        asking->updateCalendar(day, other);
        QVERIFY(asking->calendar().isEmpty());
        QVERIFY(service.requests().isEmpty());
    }

    void calendar()
    {
        const auto reply = [](const QDate &date, int count) {
            const qint64 noon = QDateTime(date, QTime(12, 0)).toSecsSinceEpoch();
            return WireReply::json("[{\"date\":" + QByteArray::number(noon) +
                                   ",\"recordsCount\":" + QByteArray::number(count) + "}]");
        };
        const CameraPtr asking = camera(true);
        QVERIFY(asking->calendar().isEmpty());
        QSignalSpy spy(asking.data(), &Camera::calendarChanged);
        lan.setReply(reply(day, 3));
        asking->updateCalendar(day.addDays(-9), day.addDays(9));
        QTRY_COMPARE(spy.size(), 1);
        QCOMPARE(spy.first().at(0).toDate(), day.addDays(-9));
        QCOMPARE(spy.first().at(1).toDate(), day.addDays(9));
        const WireRequest request = lan.requests().last();
        QCOMPARE(request.path(), QByteArray("/archive/days"));

        // Days that a reply doesn't mention stay as they were.
        lan.setReply(reply(day.addDays(1), 5));
        asking->updateCalendar(day, day.addDays(1));
        QTRY_COMPARE(spy.size(), 2);
        const QMap<QDate, int> expected{{day, 3}, {day.addDays(1), 5}};
        QCOMPARE(asking->calendar(), expected);
    }

    void cloudRotation()
    {
        const QByteArray path = "//public/servers/s%201&/cameras/7/rotation";
        const CameraPtr turned = camera(false);
        turned->setRotation(-90);
        QTRY_COMPARE(service.requestsTo(path).size(), 1);
        const QUrlQuery body(QString::fromLatin1(service.requestsTo(path).first().body));
        QCOMPARE(body.queryItemValue("degrees"_s), "-90"_s);
        QCOMPARE(turned->rotation(), -90); // also where the service refuses
    }

    void cameraDiesWhileAsking()
    {
        const WireReply reply = WireReply::body(jpeg(), "image/jpeg");
        lan.setReply(reply);
        service.answer("GET", "//preview/live", reply);
        service.answer("GET", "//archive/list", WireReply::json(recordAtNoon()));
        int heard = 0;
        for (const bool local : {false, true}) {
            CameraPtr dying = camera(local);
            connect(dying.data(), &Camera::previewChanged, this, [&heard] { ++heard; });
            connect(dying.data(), &Camera::recordsChanged, this, [&heard] { ++heard; });
            dying->updatePreview();
            dying->updateTimeline(day);
            dying->updateCalendar(day, day);
        }
        // Whatever was sent of theirs is over when a camera that asks after them has its answer.
        const CameraPtr later = camera(false);
        QSignalSpy spy(later.data(), &Camera::previewChanged);
        later->updatePreview();
        QTRY_COMPARE(spy.size(), 1);
        QTRY_COMPARE(lan.openConnections() + service.server().openConnections(), 0);
        QCOMPARE(heard, 0);
    }

    void cameraReleasedByItsOwnSignal()
    {
        lan.setReply(WireReply::json(recordAtNoon()));
        CameraPtr held = camera(true);
        const QWeakPointer<Camera> watched = held;
        connect(held.data(), &Camera::recordsChanged, this, [&held] { held.reset(); });
        held->updateTimeline(day);
        QTRY_VERIFY(watched.isNull());
    }

private:
    /// A camera of either kind whose requests go to a running server.

    CameraPtr camera(bool local)
    {
        return local ? localCamera(lan.port()) : cloudCamera({"archive"_s});
    }

    QUrlQuery lastQuery(bool local) const
    {
        const QList<WireRequest> requests = local ? lan.requests() : service.requests();
        const QByteArray target = requests.isEmpty() ? QByteArray() : requests.last().target();
        return QUrlQuery(QString::fromLatin1(target.split('?').value(1)));
    }

    ScriptedService service;
    MisbehavingServer lan;
};

QTEST_MAIN(CameraRequestsTest)
#include "CameraRequestsTest.moc"
