// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "App/Environment.h"
#include "App/QtShims.h"
#include "GUI/CalendarPopup.h"
#include "tests/support/MisbehavingServer.h"

namespace {

const QDate today(2026, 8, 31);
const QColor grey(118, 120, 122);
constexpr QRect cell(0, 0, 40, 34);

/// Shows how single cells are painted.
class Calendar : public GUI::CalendarPopup
{
public:
    Calendar() { setSelectedDate(today); }

    QImage cellOf(QDate date) const
    {
        QImage image(cell.size(), QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        paintCell(&painter, cell, date);
        return image;
    }

    /// "white" or "grey" by the day's number, "" for a cell that is left empty.
    QString look(QDate date) const
    {
        const QImage image = cellOf(date);
        int brightest = 0;
        for (int y = 1; y < image.height(); ++y) { // below the line
            for (int x = 0; x < image.width(); ++x)
                brightest = qMax(brightest, image.pixelColor(x, y).red());
        }
        if (brightest == 0)
            return QString();
        return brightest > grey.red() + 10 ? "white"_s : "grey"_s;
    }
};

} // namespace

class CalendarPopupTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        App::Environment::setClock([] { return QDateTime(today, QTime(12, 0)); });
        QVERIFY(server.start());
        server.setHandler([this](const WireRequest &request) {
            const QUrlQuery query(QString::fromLatin1(request.target().split('?').value(1)));
            const int id = query.queryItemValue("camera"_s).toInt();
            QByteArrayList days;
            const QMap<QDate, int> ofCamera = counts.value(id);
            for (auto it = ofCamera.cbegin(); it != ofCamera.cend(); ++it) {
                const qint64 noon = QDateTime(it.key(), QTime(12, 0)).toSecsSinceEpoch();
                days.append("{\"date\":" + QByteArray::number(noon) +
                            ",\"recordsCount\":" + QByteArray::number(it.value()) + "}");
            }
            return WireReply::json("[" + days.join(',') + "]");
        });
    }

    void init()
    {
        counts.clear();
        server.clearRequests();
    }

    void cleanupTestCase() { App::Environment::setClock({}); }

    void asksForSixMonths()
    {
        Calendar calendar;
        load(calendar, camera(1));
        const WireRequest request = server.requests().first();
        const QUrlQuery query(QString::fromLatin1(request.target().split('?').value(1)));
        const auto day = [&query](const char *key) {
            const qint64 seconds = query.queryItemValue(QLatin1String(key)).toLongLong();
            return fromEpochSeconds(seconds).date();
        };
        QCOMPARE(request.path(), QByteArray("/archive/days"));
        QCOMPARE(day("startTime"), QDate(2026, 2, 28)); // February has no 31st
        QCOMPARE(day("endTime"), today);
    }

    void daysWithRecordsAreWhite()
    {
        counts[1] = {{QDate(2026, 8, 3), 5}, {QDate(2026, 8, 4), 0}};
        Calendar calendar;
        QCOMPARE(calendar.look(QDate(2026, 8, 3)), "grey"_s);
        load(calendar, camera(1));
        QCOMPARE(calendar.look(QDate(2026, 8, 3)), "white"_s);
        QCOMPARE(calendar.look(QDate(2026, 8, 4)), "grey"_s);
        QCOMPARE(calendar.look(QDate(2026, 8, 5)), "grey"_s);
    }

    void dayStaysWhiteUntilItsCameraIsCleared()
    {
        counts[1] = {{QDate(2026, 8, 3), 5}};
        counts[2] = {{QDate(2026, 8, 4), 5}};
        Calendar calendar;
        const API::CameraPtr first = camera(1);
        load(calendar, first);
        load(calendar, camera(2));
        QCOMPARE(calendar.look(QDate(2026, 8, 3)), "white"_s);
        QCOMPARE(calendar.look(QDate(2026, 8, 4)), "white"_s);
        calendar.clear(first);
        QCOMPARE(calendar.look(QDate(2026, 8, 3)), "grey"_s);
        QCOMPARE(calendar.look(QDate(2026, 8, 4)), "white"_s);
    }

    void newestEntryDecides()
    {
        const QDate date(2026, 8, 3);
        counts[1] = {{date, 3}};
        counts[2] = {{date, 5}};
        Calendar calendar;
        const API::CameraPtr first = camera(1);
        const API::CameraPtr second = camera(2);
        load(calendar, first);
        load(calendar, second);
        // The five of the second camera stand before the three of the first one.
        calendar.clear(first);
        QCOMPARE(calendar.look(date), "white"_s);
        load(calendar, first);
        QCOMPARE(calendar.look(date), "white"_s);
        // Now the three of the first camera are the newest, and five are taken off them.
        calendar.clear(second);
        QCOMPARE(calendar.look(date), "grey"_s);
    }

    void clearForgetsAll()
    {
        counts[1] = {{QDate(2026, 8, 3), 5}};
        Calendar calendar;
        load(calendar, camera(1));
        calendar.clear();
        QCOMPARE(calendar.look(QDate(2026, 8, 3)), "grey"_s);
    }

    void lateReplyOfAClearedCamera()
    {
        counts[1] = {{QDate(2026, 8, 3), 5}};
        Calendar calendar;
        const API::CameraPtr late = camera(1);
        QSignalSpy changed(late.data(), &API::Camera::calendarChanged);
        calendar.addCamera(late);
        calendar.clear(late);
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(calendar.look(QDate(2026, 8, 3)), "grey"_s);
    }

    void onlyTheShownMonth()
    {
        Calendar calendar;
        calendar.setCurrentPage(2026, 8);
        QCOMPARE(calendar.look(QDate(2026, 8, 1)), "grey"_s);
        QCOMPARE(calendar.look(QDate(2026, 7, 31)), QString());
        QCOMPARE(calendar.look(QDate(2026, 9, 1)), QString());
        QCOMPARE(calendar.look(QDate(2025, 8, 1)), QString());
    }

    void selectedDay()
    {
        Calendar calendar;
        calendar.setSelectedDate(QDate(2026, 8, 3));
        const QImage selected = calendar.cellOf(QDate(2026, 8, 3));
        // A disc of 28 pixels round (19, 16), the middle in whole numbers.
        const auto isBlue = [&selected](int x, int y) {
            const QColor colour = selected.pixelColor(x, y);
            return colour.blue() > 200 && colour.red() < 80;
        };
        QVERIFY(isBlue(19, 4) && isBlue(19, 28) && isBlue(7, 16) && isBlue(31, 16));
        QVERIFY(!isBlue(7, 4) && !isBlue(31, 28) && !isBlue(36, 16) && !isBlue(2, 16));
        const QImage plain = calendar.cellOf(QDate(2026, 8, 4));
        for (const int x : {7, 19, 31})
            QVERIFY(plain.pixelColor(x, 4).blue() < 100);
    }

    void shownCellsAreRepainted()
    {
        counts[1] = {{QDate(2026, 8, 3), 5}};
        Calendar calendar;
        calendar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&calendar));
        const auto *days = calendar.findChild<QTableView *>("qt_calendar_calendarview"_s);
        struct Counter : QObject {
            bool eventFilter(QObject *, QEvent *event) override
            {
                paints += event->type() == QEvent::Paint ? 1 : 0;
                return false;
            }
            int paints = 0;
        } counter;
        QCoreApplication::processEvents();
        days->viewport()->installEventFilter(&counter);
        load(calendar, camera(1));
        QTRY_VERIFY(counter.paints > 0);
    }

    void nullCamera()
    {
        Calendar calendar;
        calendar.addCamera(API::CameraPtr());
        calendar.clear(API::CameraPtr());
        QCOMPARE(server.requests().size(), 0);
    }

    void looks()
    {
        Calendar calendar;
        calendar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&calendar));
        const auto labelHeight = [&calendar](const char *name) {
            return calendar.findChild<QLabel *>(QLatin1String(name))->height();
        };
        QCOMPARE(labelHeight("calendar_spacer_top"), 18);
        QCOMPARE(labelHeight("calendar_spacer_mid"), 1);
        auto *days = calendar.findChild<QTableView *>("qt_calendar_calendarview"_s);
        const QAbstractItemModel *model = days->model();
        QCOMPARE(model->columnCount(), 7);
        for (int row = 0; row < model->rowCount(); ++row) {
            for (int column = 0; column < 7; ++column) {
                const QRect place = days->visualRect(model->index(row, column));
                QCOMPARE(place.size(), QSize(40, 34));
                QVERIFY(days->viewport()->rect().contains(place));
            }
        }
        // The panel's colour at 90% above what lies behind.
        const QRgb ground = calendar.grab().toImage().pixel(2, 300);
        QVERIFY(qAlpha(ground) >= 228 && qAlpha(ground) <= 231);
    }

private:
    API::CameraPtr camera(int id) const
    {
        const API::CameraPtr camera = API::CameraPtr::create();
        camera->setId("127.0.0.1:%1"_s.arg(server.port()), id);
        camera->setKind(API::LocalCamera);
        return camera;
    }

    /// Adds the camera and waits for its days.

    void load(Calendar &calendar, const API::CameraPtr &camera)
    {
        QSignalSpy changed(camera.data(), &API::Camera::calendarChanged);
        calendar.addCamera(camera);
        QTRY_COMPARE(changed.count(), 1);
    }

    MisbehavingServer server;
    QHash<int, QMap<QDate, int>> counts; ///< by camera
};

QTEST_MAIN(CalendarPopupTest)
#include "CalendarPopupTest.moc"
