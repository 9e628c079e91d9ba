// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <ctime>
#include <limits>

#include "API/ArchiveRecord.h"

using API::ArchiveRecord;

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

qint64 epoch(const char *utcText)
{
    const QDateTime time = QDateTime::fromString(QString::fromLatin1(utcText), Qt::ISODate);
    return time.toSecsSinceEpoch();
}

QVariant record(qint64 startMs, qint64 durationMs)
{
    return QVariantMap{{"startTime"_s, startMs}, {"duration"_s, durationMs}};
}

} // namespace

class ArchiveRecordsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { setZone(utc); }

    void clipping_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<QByteArray>("serviceStart");
        QTest::addColumn<int>("serviceSeconds");
        QTest::addColumn<QByteArray>("start"); // empty: no record
        QTest::addColumn<QByteArray>("end");

        const auto row = [](const char *name, const QByteArray &zone, const QDate &date,
                            const char *serviceStart, int seconds, const char *start,
                            const char *end) {
            QTest::newRow(name) << zone << date << QByteArray(serviceStart) << seconds
                                << QByteArray(start) << QByteArray(end);
        };
        const QDate day(2026, 3, 10);
        row("one second", utc, day, "2026-03-10T12:00:00Z", 1, "2026-03-10T12:00:01Z",
            "2026-03-10T12:00:02Z");
        row("no length", utc, day, "2026-03-10T12:00:00Z", 0, "", "");
        row("from the day before", utc, day, "2026-03-09T23:50:00Z", 1200, "2026-03-10T00:00:00Z",
            "2026-03-10T00:10:01Z");
        row("into the next day", utc, day, "2026-03-10T23:50:00Z", 1200, "2026-03-10T23:50:01Z",
            "2026-03-10T23:59:59Z");
        row("nothing left after clipping", utc, day, "2026-03-10T23:59:58Z", 5, "", "");
        row("local midnight is not that of UTC", berlin, day, "2026-03-09T22:30:00Z", 3600,
            "2026-03-09T23:00:00Z", "2026-03-09T23:30:01Z");
        row("hour that does not exist", berlin, QDate(2026, 3, 29), "2026-03-29T00:30:00Z", 3600,
            "2026-03-29T00:30:01Z", "2026-03-29T01:30:01Z");
        row("day that begins at one", brasilia, QDate(2018, 11, 4), "2018-11-04T02:50:00Z", 1200,
            "2018-11-04T03:00:00Z", "2018-11-04T03:10:01Z");
    }

    void clipping()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QDate, date);
        QFETCH(QByteArray, serviceStart);
        QFETCH(int, serviceSeconds);
        QFETCH(QByteArray, start);
        QFETCH(QByteArray, end);
        setZone(zone);

        // Milliseconds below a second are cut off, not rounded.
        const qint64 startMs = epoch(serviceStart) * 1000 + 999;
        const qint64 durationMs = serviceSeconds * 1000LL + 999;
        if (start.isEmpty()) {
            QTest::ignoreMessage(QtDebugMsg, "Archive record skipped");
        }
        const QList<ArchiveRecord> records =
            API::archiveRecordsOfDay(QVariantList{record(startMs, durationMs)}, date);

        QCOMPARE(records.size(), start.isEmpty() ? 0 : 1);
        if (!records.isEmpty()) {
            QCOMPARE(records.first().start.toSecsSinceEpoch(), epoch(start));
            QCOMPARE(records.first().end.toSecsSinceEpoch(), epoch(end));
            QCOMPARE(records.first().start.date(), date);
            QCOMPARE(records.first().end.date(), date);
        }
    }

    void recordOfAnotherDay()
    {
        setZone(utc);
        QTest::ignoreMessage(QtWarningMsg,
                             "Received record with start.date() QDate(\"2026-03-11\") end.date() "
                             "QDate(\"2026-03-11\") but current date is QDate(\"2026-03-10\")");
        const QVariantList reply{record(epoch("2026-03-11T00:00:00Z") * 1000, 60000)};
        QVERIFY(API::archiveRecordsOfDay(reply, QDate(2026, 3, 10)).isEmpty());

        // Numbers beyond all dates are cut to 32 bits and lie elsewhere, too.
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Received record"_s));
        const QVariantList farReply{record(std::numeric_limits<qint64>::max(), 0)};
        QVERIFY(API::archiveRecordsOfDay(farReply, QDate(2026, 3, 10)).isEmpty());
    }

    void keepsOrderAndSkipsWhatIsNoRecord()
    {
        setZone(utc);
        const qint64 noon = epoch("2026-03-10T12:00:00Z");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Received record"_s));
        const QVariantList reply{record((noon + 600) * 1000, 60000), "no record"_s,
                                 record(noon * 1000, 60000)};
        const QList<ArchiveRecord> records = API::archiveRecordsOfDay(reply, QDate(2026, 3, 10));
        QCOMPARE(records.size(), 2);
        QCOMPARE(records.at(0).start.toSecsSinceEpoch(), noon + 601);
        QCOMPARE(records.at(1).start.toSecsSinceEpoch(), noon + 1);

        QVERIFY(API::archiveRecordsOfDay(QVariantMap{{"startTime"_s, 1}}, QDate(2026, 3, 10))
                    .isEmpty());
    }

    void requestSpan()
    {
        setZone(berlin);
        const QDate shortDay(2026, 3, 29);
        QCOMPARE(qint64(API::firstSecondOfDay(shortDay)), epoch("2026-03-28T23:00:00Z"));
        QCOMPARE(qint64(API::lastSecondOfDay(shortDay)), epoch("2026-03-29T21:59:59Z"));
        setZone(brasilia);
        const QDate noMidnight(2018, 11, 4);
        QCOMPARE(qint64(API::firstSecondOfDay(noMidnight)), epoch("2018-11-04T03:00:00Z"));
        QCOMPARE(qint64(API::lastSecondOfDay(noMidnight)), epoch("2018-11-05T01:59:59Z"));
    }

    void calendarDays()
    {
        setZone(berlin);
        const auto day = [](qint64 seconds, int count) {
            return QVariantMap{{"date"_s, seconds}, {"recordsCount"_s, count}};
        };
        constexpr qint64 beyond32Bits = Q_INT64_C(1) << 32;
        const QMap<QDate, int> counts = API::recordCountsByDay(QVariantList{
            day(epoch("2026-03-09T23:30:00Z"), 4), day(epoch("2026-03-11T12:00:00Z"), 0),
            day(beyond32Bits + epoch("2026-03-12T12:00:00Z"), 7)});
        const QMap<QDate, int> expected{
            {QDate(2026, 3, 10), 4}, {QDate(2026, 3, 11), 0}, {QDate(2026, 3, 12), 7}};
        QCOMPARE(counts, expected);
    }
};

QTEST_GUILESS_MAIN(ArchiveRecordsTest)
#include "ArchiveRecordsTest.moc"
