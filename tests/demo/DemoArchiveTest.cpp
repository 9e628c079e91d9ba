// SPDX-License-Identifier: MIT
#include <QElapsedTimer>
#include <QtTest>

#include <algorithm>
#include <ctime>

#include "tests/demo/DemoTest.h"
#include "tests/demo/StreamPictures.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;

namespace {

constexpr qint64 second = 1000;
constexpr qint64 minute = 60 * second;
constexpr qint64 hour = 60 * minute;
constexpr qint64 day = 24 * hour;
constexpr qint64 pictureStep = 100; // of the test clips

using Span = QPair<qint64, qint64>;

qint64 now()
{
    return QDateTime::currentMSecsSinceEpoch();
}

/// A second of yesterday that is not the first of its minute.
qint64 yesterday()
{
    return (now() - day) / minute * minute + 47 * second;
}

/// Local time goes by `zone` as long as this lives, also in services that are started.
class LocalZone
{
public:
    explicit LocalZone(const QByteArray &zone)
        : before(qgetenv("TZ")), wasSet(qEnvironmentVariableIsSet("TZ"))
    {
        qputenv("TZ", zone);
        tzset();
    }
    ~LocalZone()
    {
        if (wasSet)
            qputenv("TZ", before);
        else
            qunsetenv("TZ");
        tzset();
    }
    Q_DISABLE_COPY(LocalZone)

private:
    const QByteArray before;
    const bool wasSet;
};

/// A zone whose clocks went forward ten days ago.
QByteArray zoneWithClockChange()
{
    const auto number = [](const QDate &date) {
        return QByteArray::number(QDate(2001, date.month(), qMin(date.day(), 28)).dayOfYear());
    };
    const QDate today = QDateTime::currentDateTimeUtc().date();
    return "<-03>3<-02>,J" + number(today.addDays(-10)) + "/2,J" + number(today.addDays(100)) +
           "/2";
}

qint64 midnight(const QDate &date)
{
    return QDateTime(date, QTime(0, 0)).toMSecsSinceEpoch();
}

} // namespace

/// What the demo service's archive lists, plays and exports.
class DemoArchiveTest : public DemoTest
{
    Q_OBJECT

public:
    DemoArchiveTest() : DemoTest(plainWorld()) {}

private slots:
    void listedRecordsPlayToTheirEnd_data();
    void listedRecordsPlayToTheirEnd();
    void recordsLieInLocalDays_data();
    void recordsLieInLocalDays();
    void speeds_data();
    void speeds();
    void recordInProgressGrows();
    void refusals_data();
    void refusals();
    void exports_data();
    void exports();
    void adjoiningRecordsStayApart();
    void exportKeepsItsRate();

private:
    QString url(const QString &path, const DemoCamera &camera, const QString &times);
    QString playUrl(const DemoCamera &camera, qint64 startMs, int speed = 1);
    QString exportUrl(const DemoCamera &camera, qint64 startMs, qint64 endMs, int uploadRate = 0);
    QString listUrl(const QString &path, const DemoCamera &camera, qint64 startMs, qint64 endMs);
    QVector<Span> listed(const DemoCamera &camera, qint64 startMs, qint64 endMs);
    void checkDay(const DemoCamera &camera, const QDate &date, int expectedCount);

    const qint64 past = yesterday();
    QVector<qint64> gaps;
    int fullestDay = 0;
    int emptyDays = 0;
    int midnights = 0; ///< that a record runs across
};

/// For cloud and LAN cameras.
QString DemoArchiveTest::url(const QString &path, const DemoCamera &camera, const QString &times)
{
    const QString query = client.query(camera, session) + times;
    if (camera.lan)
        return client.lan(QLatin1Char('/') + path) + query;
    if (path.startsWith(QLatin1String("flv/")))
        return client.flv(QLatin1Char('/') + path) + query;
    return client.streaming(QStringLiteral("//") + path) + query;
}

QString DemoArchiveTest::playUrl(const DemoCamera &camera, qint64 startMs, int speed)
{
    return url(QStringLiteral("flv/archive"), camera,
               QStringLiteral("&q=0&startTime=%1&speed=%2").arg(startMs / second).arg(speed));
}

QString DemoArchiveTest::exportUrl(const DemoCamera &camera, qint64 startMs, qint64 endMs,
                                   int uploadRate)
{
    return url(QStringLiteral("flv/archive"), camera,
               QStringLiteral("&q=0&startTime=%1&endTime=%2&uploadRate=%3")
                   .arg(startMs)
                   .arg(endMs)
                   .arg(uploadRate));
}

QString DemoArchiveTest::listUrl(const QString &path, const DemoCamera &camera, qint64 startMs,
                                 qint64 endMs)
{
    return url(
        path, camera,
        QStringLiteral("&startTime=%1&endTime=%2").arg(startMs / second).arg(endMs / second));
}

QVector<Span> DemoArchiveTest::listed(const DemoCamera &camera, qint64 startMs, qint64 endMs)
{
    QVector<Span> result;
    const QJsonArray list =
        client.get(listUrl(QStringLiteral("archive/list"), camera, startMs, endMs)).list();
    for (const QJsonValue record : list) {
        const auto start = static_cast<qint64>(record[QLatin1String("startTime")].toDouble());
        result.append({start, start + record[QLatin1String("duration")].toInt()});
    }
    return result;
}

void DemoArchiveTest::listedRecordsPlayToTheirEnd_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("with breaks") << 1;
    QTest::newRow("at every motion") << 2;
    QTest::newRow("in working hours") << 3;
    QTest::newRow("by night") << 4;
    QTest::newRow("round the clock, at a LAN server") << 5;
}

void DemoArchiveTest::listedRecordsPlayToTheirEnd()
{
    QFETCH(int, number);
    const DemoCamera camera = service.camera(number);
    const QVector<Span> records = listed(camera, now() - 4 * day, now() - day);
    QVERIFY(records.size() >= 2);
    const qint64 end = records.at(1).second;
    const qint64 start = (end / second - 1) * second;
    const StreamPictures stream = StreamPictures::from(playUrl(camera, start), 100);
    QVERIFY(stream.ended);
    QVERIFY(!stream.damaged);
    QCOMPARE(qint64(stream.pictures.size()), (end - start + pictureStep - 1) / pictureStep);
    for (const auto &picture : stream.pictures) {
        QCOMPARE(picture.strip.camera, number);
        QCOMPARE(qint64(picture.strip.milliseconds), (start + picture.stampMs) % minute);
    }
    QCOMPARE(client.get(playUrl(camera, end + second)).status, 404);
}

void DemoArchiveTest::recordsLieInLocalDays_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::newRow("UTC") << QByteArray("UTC0");
    QTest::newRow("ahead by half hours") << QByteArray("<+0530>-5:30");
    QTest::newRow("behind, with a clock change") << zoneWithClockChange();
}

void DemoArchiveTest::recordsLieInLocalDays()
{
    QFETCH(QByteArray, zone);
    const LocalZone local(zone);
    QVERIFY2(service.restart(), qPrintable(service.errorString()));
    const QDate today = QDate::currentDate();
    for (int number = 1; number <= 5; ++number) {
        const DemoCamera camera = service.camera(number);
        const QJsonArray days =
            client
                .get(listUrl(QStringLiteral("archive/days"), camera, midnight(today.addDays(-28)),
                             midnight(today) - second))
                .list();
        QMap<QDate, int> counts;
        for (const QJsonValue value : days) {
            const auto noon = static_cast<qint64>(value[QLatin1String("date")].toDouble());
            counts.insert(QDateTime::fromSecsSinceEpoch(noon).date(),
                          value[QLatin1String("recordsCount")].toInt());
        }
        gaps.clear();
        fullestDay = emptyDays = midnights = 0;
        for (QDate date = today.addDays(-28); date < today; date = date.addDays(1))
            checkDay(camera, date, counts.take(date));
        QVERIFY2(counts.isEmpty(), "days were told that were not asked for");
        QCOMPARE(emptyDays, 4);
        QCOMPARE(fullestDay > 200, number == 2);
        QCOMPARE(midnights > 0, number >= 4);
        // Seconds round the clock; minutes and a few hours with breaks; hours by night.
        const auto [least, most] = std::minmax_element(gaps.begin(), gaps.end());
        QVERIFY(number != 5 || (*least < 10 * second && *most >= second));
        QVERIFY(number != 1 || (*least<20 * minute && * most> 2 * hour));
    }
    const DemoCamera camera = service.camera(2);
    const QVector<Span> before = listed(camera, past - 9 * day, past);
    QVERIFY2(service.restart(), qPrintable(service.errorString()));
    QCOMPARE(listed(camera, past - 9 * day, past), before);
}

void DemoArchiveTest::checkDay(const DemoCamera &camera, const QDate &date, int expectedCount)
{
    const QVector<Span> records =
        listed(camera, midnight(date), midnight(date.addDays(1)) - second);
    QCOMPARE(records.size(), expectedCount);
    fullestDay = qMax(fullestDay, records.size());
    emptyDays += records.isEmpty() ? 1 : 0;
    qint64 end = 0;
    for (const Span &record : records) {
        QVERIFY2(record.first >= end && record.second > record.first, "out of order");
        if (end > 0)
            gaps.append(record.first - end);
        end = record.second;
    }
    midnights += end > midnight(date.addDays(1)) ? 1 : 0;
}

void DemoArchiveTest::speeds_data()
{
    QTest::addColumn<int>("speed");
    QTest::addColumn<int>("count");
    QTest::addColumn<qint64>("step"); // from picture to picture, in the archive
    QTest::newRow("1x") << 1 << 15 << pictureStep;
    QTest::newRow("2x") << 2 << 15 << pictureStep;
    QTest::newRow("4x") << 4 << 5 << second;
    QTest::newRow("8x") << 8 << 12 << second;
    QTest::newRow("32x") << 32 << 33 << 2 * second;
}

void DemoArchiveTest::speeds()
{
    QFETCH(int, speed);
    QFETCH(int, count);
    QFETCH(qint64, step);
    const DemoCamera camera = service.camera(1);
    QVERIFY(service.setArchive(camera, {{past, past + hour}}));
    QElapsedTimer clock;
    clock.start();
    const StreamPictures stream = StreamPictures::from(playUrl(camera, past, speed), count);
    QCOMPARE(stream.pictures.size(), count);
    QVERIFY(!stream.damaged);
    QCOMPARE(stream.sound, speed == 1);
    for (int i = 0; i < count; ++i) {
        const auto &picture = stream.pictures.at(i);
        QCOMPARE(picture.stampMs, i * step / speed);
        QCOMPARE(qint64(picture.strip.milliseconds), (past + i * step) % minute);
        QCOMPARE(picture.keyFrame, i * step % second == 0);
    }
    // Half a second comes in advance.
    QVERIFY(clock.elapsed() >= stream.pictures.last().stampMs - 500);
}

void DemoArchiveTest::recordInProgressGrows()
{
    const DemoCamera camera = service.camera(1);
    const qint64 begin = now();
    QVERIFY(!service.setArchive(camera, {{begin, begin + 2}, {begin + 1, begin + 3}}));
    QVERIFY(service.setArchive(camera, {{begin - 10 * second, begin + hour}}));
    const auto listedEnd = [&] { return listed(camera, begin, begin + hour).value(0).second; };
    const qint64 end = listedEnd();
    QVERIFY(end >= begin && end <= now());
    QTRY_VERIFY(listedEnd() > end);

    const qint64 asked = now();
    const qint64 start = asked / second * second - second;
    QCOMPARE(client.get(playUrl(camera, asked + minute)).status, 404);
    // Fast through what there is, then at the pace of the recorder.
    const StreamPictures stream = StreamPictures::from(playUrl(camera, start, 4), 4);
    QCOMPARE(stream.pictures.size(), 4);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(qint64(stream.pictures.at(i).strip.milliseconds), (start + i * second) % minute);
        QVERIFY(stream.pictures.at(i).receivedMs >= start + i * second);
    }
}

void DemoArchiveTest::refusals_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("times");
    QTest::addColumn<int>("status");
    const QString play = QStringLiteral("flv/archive");
    const QString list = QStringLiteral("archive/list");
    const QString days = QStringLiteral("archive/days");
    const auto at = [](qint64 time) { return QStringLiteral("&startTime=%1").arg(time); };
    const auto span = [&](qint64 from, qint64 to) {
        return at(from) + QStringLiteral("&endTime=%1").arg(to);
    };
    const qint64 start = past / second;
    QTest::newRow("before the first key frame") << 1 << play << at(start) << 404;
    QTest::newRow("in the gap after it") << 1 << play << at(start + 6) << 404;
    QTest::newRow("future") << 1 << play << at(4'000'000'000) << 404;
    QTest::newRow("no time") << 1 << play << QString() << 400;
    QTest::newRow("export of a gap") << 5 << play << span(past + 6000, past + 9000) << 404;
    QTest::newRow("export without an end") << 5 << play << span(past + 1000, -1) << 400;
    QTest::newRow("export from the cloud") << 1 << play << span(past + 1000, past + 3000) << 403;
    QTest::newRow("list that ends early") << 1 << list << span(start, start - 1) << 400;
    QTest::newRow("not shared") << 2 << play << at(start + 2) << 403;
    QTest::newRow("list not shared") << 2 << list << span(start, start + 9) << 403;
    QTest::newRow("days not shared") << 2 << days << span(start, start + 9) << 403;
}

void DemoArchiveTest::refusals()
{
    QFETCH(int, number);
    QFETCH(QString, path);
    QFETCH(QString, times);
    QFETCH(int, status);
    const DemoCamera camera = service.camera(number);
    QVERIFY(service.setArchive(camera, {{past + 400, past + 5350}}));
    if (number == 2) {
        QVERIFY(
            service.setCamera(camera.server, camera.camera,
                              {{QStringLiteral("rights"), QJsonArray{QStringLiteral("live")}}}));
    }
    const Answer answer = client.get(url(path, camera, times));
    QCOMPARE(answer.status, status);
    QVERIFY(answer.body.isEmpty());
}

void DemoArchiveTest::exports_data()
{
    QTest::addColumn<qint64>("from");
    QTest::addColumn<qint64>("to");
    QTest::addColumn<qint64>("begin"); // of what is sent
    QTest::addColumn<int>("count");    // of pictures before the gap
    QTest::addColumn<int>("further");  // of pictures after it
    QTest::newRow("over a gap") << 2000ll << 602'000ll << 2000ll << 20 << 20;
    QTest::newRow("from the gap") << 100'000ll << 602'000ll << 600'000ll << 0 << 20;
    QTest::newRow("into the gap") << 3000ll << 100'000ll << 3000ll << 10 << 0;
    QTest::newRow("from between key frames") << 2500ll << 3500ll << 2000ll << 15 << 0;
    QTest::newRow("to the end") << 3000ll << 900'000ll << 3000ll << 10 << 34;
}

void DemoArchiveTest::exports()
{
    QFETCH(qint64, from);
    QFETCH(qint64, to);
    QFETCH(qint64, begin);
    QFETCH(int, count);
    QFETCH(int, further);
    const DemoCamera camera = service.camera(5);
    QVERIFY(
        service.setArchive(camera, {{past + 1000, past + 4000}, {past + 600'000, past + 603'350}}));
    const StreamPictures stream =
        StreamPictures::from(exportUrl(camera, past + from, past + to), 1000);
    QVERIFY(stream.ended);
    QVERIFY(stream.sound);
    QVERIFY(!stream.damaged);
    QCOMPARE(stream.pictures.size(), count + further);
    for (int i = 0; i < stream.pictures.size(); ++i) {
        const qint64 moment =
            i < count ? begin + i * pictureStep : 600'000 + (i - count) * pictureStep;
        QCOMPARE(stream.pictures.at(i).strip.camera, 5);
        QCOMPARE(qint64(stream.pictures.at(i).strip.milliseconds), (past + moment) % minute);
        QCOMPARE(stream.pictures.at(i).stampMs, i * pictureStep);
    }
}

void DemoArchiveTest::adjoiningRecordsStayApart()
{
    const DemoCamera camera = service.camera(5);
    const qint64 middle = past + 2 * second;
    QVERIFY(service.setArchive(camera, {{past, middle}, {middle, middle + second}}));
    const StreamPictures played = StreamPictures::from(playUrl(camera, past), 100);
    QVERIFY(played.ended);
    QCOMPARE(played.pictures.size(), 20);
    const QString whole = exportUrl(camera, past, past + minute);
    QCOMPARE(StreamPictures::from(whole, 100).pictures.size(), 30);
}

void DemoArchiveTest::exportKeepsItsRate()
{
    const DemoCamera camera = service.camera(6);
    QVERIFY(service.setArchive(camera, {{past, past + hour}}));
    QElapsedTimer clock;
    clock.start();
    const int size = client.get(exportUrl(camera, past, past + 10 * second, 100)).body.size();
    QVERIFY(clock.elapsed() >= size / 100);
    clock.start();
    QVERIFY(client.get(exportUrl(camera, past, past + minute)).body.size() > 4 * size);
    QVERIFY2(clock.elapsed() < 40 * second, "the span came in real time");
}

QTEST_GUILESS_MAIN(DemoArchiveTest)
#include "DemoArchiveTest.moc"
