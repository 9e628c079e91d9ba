// SPDX-License-Identifier: MIT
#include "API/CloudAPIClient.h"

#include <QBuffer>
#include <QPixmap>
#include <QSignalSpy>
#include <QTest>

#include "API/Layout.h"
#include "API/Server.h"
#include "tests/support/ScriptedService.h"

using namespace ZorvaneClient::API;
using namespace ZorvaneClient::Tests;

namespace {

const QString localhost = QStringLiteral("127.0.0.1");
const camera_global_id_t camera{QStringLiteral("s 1&"), 7};

QByteArray jpeg()
{
    QImage image(32, 24, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "JPEG");
    return bytes;
}

} // namespace

class CloudCameraRequestsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void preview_data();
    void preview();
    void previewFails();
    void archiveFromTheService_data();
    void archiveFromTheService();
    void archiveFromLanServer_data();
    void archiveFromLanServer();
    void archiveFails_data();
    void archiveFails();
    void rotation_data();
    void rotation();
    void rotationFails();

private:
    ScriptedService service;
};

void CloudCameraRequestsTest::initTestCase()
{
    QVERIFY(service.start());
    service.succeed("POST", "/public/sessions", R"({"session_id":"abc"})");
    CloudAPIClient client;
    QSignalSpy success(&client, &CloudAPIClient::loginSuccess);
    client.tryLogin(QString(), QString());
    QTRY_COMPARE(success.count(), 1);
}

void CloudCameraRequestsTest::init()
{
    service.reset();
}

void CloudCameraRequestsTest::preview_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QSize>("size");
    QTest::newRow("picture") << jpeg() << QSize(32, 24);
    QTest::newRow("no picture") << QByteArray("busy") << QSize(0, 0);
}

void CloudCameraRequestsTest::preview()
{
    QFETCH(QByteArray, body);
    QFETCH(QSize, size);

    service.answer("GET", "//preview/live", WireReply::body(body, "image/jpeg"));
    CloudAPIClient client;
    QSignalSpy received(&client, &CloudAPIClient::previewReceived);
    client.requestPreview(camera.server, camera.camera);
    QTRY_COMPARE(received.count(), 1);
    QCOMPARE(received.at(0).at(0).value<QPixmap>().size(), size);
    QCOMPARE(service.requests().constFirst().requestLine(),
             QByteArray("GET //preview/live?camera=7&q=0&server=s%201%26&sessionId=abc HTTP/1.1"));
    QCOMPARE(service.requests().constFirst().header("Accept"), QByteArray("*/*"));
}

void CloudCameraRequestsTest::previewFails()
{
    service.answer("GET", "//preview/live", WireReply::body("", "image/jpeg"));
    CloudAPIClient client;
    QSignalSpy received(&client, &CloudAPIClient::previewReceived);
    QSignalSpy failed(&client, &CloudAPIClient::previewError);
    client.requestPreview(camera.server, camera.camera);
    QTRY_COMPARE(failed.count(), 1);
    QCOMPARE(received.count(), 0);
}

void CloudCameraRequestsTest::archiveFromTheService_data()
{
    QTest::addColumn<bool>("calendar");
    QTest::addColumn<bool>("plain");
    QTest::newRow("list") << false << true;
    QTest::newRow("days") << true << true;
    QTest::newRow("list, port and password without a host") << false << false;
    QTest::newRow("days, port and password without a host") << true << false;
}

void CloudCameraRequestsTest::archiveFromTheService()
{
    QFETCH(bool, calendar);
    QFETCH(bool, plain);

    const QByteArray path = calendar ? "//archive/days" : "//archive/list";
    service.answer("GET", path, WireReply::json(R"([{"duration":5}])"));
    CloudAPIClient client;
    QSignalSpy received(&client, calendar ? &CloudAPIClient::archiveDatesReceived
                                          : &CloudAPIClient::archivesReceived);
    constexpr uint start = 1;
    constexpr uint end = 4294967295;
    const QString secret = QStringLiteral("secret");
    constexpr int ignoredPort = 9;
    const auto ask = calendar ? &CloudAPIClient::getCalendar : &CloudAPIClient::getTimeline;
    if (!plain)
        (client.*ask)(camera, start, end, QString(), ignoredPort, secret);
    else if (calendar)
        client.getCalendar(camera, start, end);
    else
        client.getTimeline(camera, start, end);
    QTRY_COMPARE(received.count(), 1);
    const QVariantList records = received.at(0).at(0).value<QVariant>().toList();
    QCOMPARE(records.value(0).toMap().value(QStringLiteral("duration")).toInt(), 5);
    QCOMPARE(service.requests().constFirst().target(),
             path + "?camera=7&endTime=4294967295&server=s%201%26&sessionId=abc&startTime=1");
    QCOMPARE(service.requests().constFirst().header("Accept"), QByteArray("application/json"));
}

void CloudCameraRequestsTest::archiveFromLanServer_data()
{
    QTest::addColumn<bool>("calendar");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QByteArray>("sessionItem");
    QTest::newRow("list") << false << "secret" << QByteArray("sessionId=secret");
    QTest::newRow("days") << true << "secret" << QByteArray("sessionId=secret");
    QTest::newRow("password goes in as it is") << false << "p w" << QByteArray("sessionId=p%20w");
    QTest::newRow("empty password") << false << "" << QByteArray("sessionId=");
}

void CloudCameraRequestsTest::archiveFromLanServer()
{
    QFETCH(bool, calendar);
    QFETCH(QString, password);
    QFETCH(QByteArray, sessionItem);

    MisbehavingServer lan;
    QVERIFY(lan.start());
    lan.setReply(WireReply::json("[]"));
    CloudAPIClient client;
    QSignalSpy received(&client, calendar ? &CloudAPIClient::archiveDatesReceived
                                          : &CloudAPIClient::archivesReceived);
    if (calendar)
        client.getCalendar(camera, 1, 2, localhost, lan.port(), password);
    else
        client.getTimeline(camera, 1, 2, localhost, lan.port(), password);
    QTRY_COMPARE(received.count(), 1);
    QCOMPARE(lan.requests().constFirst().target(),
             (calendar ? QByteArray("/archive/days") : QByteArray("/archive/list")) +
                 "?camera=7&endTime=2&server=s%201%26&" + sessionItem + "&startTime=1");
    QCOMPARE(service.requests().size(), 0);
}

void CloudCameraRequestsTest::archiveFails_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("not JSON") << WireReply::json("[{").bytes;
    QTest::newRow("empty body") << WireReply::json("").bytes;
    QTest::newRow("closed") << QByteArray();
}

void CloudCameraRequestsTest::archiveFails()
{
    QFETCH(QByteArray, reply);

    service.answer("GET", "//archive/list", WireReply::raw(reply));
    service.answer("GET", "//archive/days", WireReply::raw(reply));
    CloudAPIClient client;
    QSignalSpy listFailed(&client, &CloudAPIClient::archivesError);
    QSignalSpy daysFailed(&client, &CloudAPIClient::archiveDatesError);
    client.getTimeline(camera, 1, 2);
    QTRY_COMPARE(listFailed.count(), 1);
    QCOMPARE(daysFailed.count(), 0);
    client.getCalendar(camera, 1, 2);
    QTRY_COMPARE(daysFailed.count(), 1);
    QCOMPARE(listFailed.count(), 1);
}

void CloudCameraRequestsTest::rotation_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<int>("angle");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body");
    const QByteArray path = "//public/servers/s1/cameras/7/rotation";
    QTest::newRow("clockwise") << "s1" << 90 << path << QByteArray("degrees=90&sessionId=abc");
    QTest::newRow("back") << "s1" << -90 << path << QByteArray("degrees=-90&sessionId=abc");
    QTest::newRow("server to be encoded")
        << "s 1%2&" << 90 << QByteArray("//public/servers/s%201%252&/cameras/7/rotation")
        << QByteArray("degrees=90&sessionId=abc");
}

void CloudCameraRequestsTest::rotation()
{
    QFETCH(QString, server);
    QFETCH(int, angle);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);

    service.succeed("POST", path, "null");
    CloudAPIClient client;
    QSignalSpy ok(&client, &CloudAPIClient::ok);
    QTest::ignoreMessage(QtDebugMsg, "Rotation saved to API");
    client.setCameraRotation({server, 7}, angle);
    QTRY_COMPARE(ok.count(), 1);
    const WireRequest request = service.requests().constFirst();
    QCOMPARE(request.requestLine(), "POST " + path + " HTTP/1.1");
    QCOMPARE(request.body, body);
}

void CloudCameraRequestsTest::rotationFails()
{
    CloudAPIClient client;
    QSignalSpy failed(&client, &CloudAPIClient::error);
    QTest::ignoreMessage(QtWarningMsg, "Error saving rotation 10001 500");
    client.setCameraRotation(camera, 90);
    QTRY_COMPARE(failed.count(), 1);
}

QTEST_MAIN(CloudCameraRequestsTest)
#include "CloudCameraRequestsTest.moc"
