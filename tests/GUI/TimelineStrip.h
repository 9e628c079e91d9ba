// SPDX-License-Identifier: MIT
// A day's strip, and the notation in which its tests speak of times.
#pragma once

#include "tests/support/ArchiveWorld.h"

#include <ctime>

#include "API/Camera.h"
#include "GUI/TimelinePrivate.h"
#include "tests/support/FakeTime.h"

namespace ZorvaneClient::Tests {

inline const QDate stripDay(2026, 3, 10);
inline const QColor stripGround(41, 44, 49);
constexpr int stripWidth = 1030; ///< with 1000 pixels of scale, from x 15 to 1015

// Zones as rules, so that the tests need no time zone database.
inline const QByteArray berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
/// The clock goes forward at midnight.
inline const QByteArray brasilia = "BRT3BRST,M11.1.0/0,M2.3.0/0";

inline void useZone(const QByteArray &zone)
{
    qputenv("TZ", zone);
    tzset();
}

/// "h:mm" or "h:mm:ss" of the day, or of another one by "+1 " or "-1 " in front.
inline QDateTime at(const QString &text)
{
    const QString clock = text.section(' ', -1);
    const QString format = clock.count(':') == 1 ? "h:mm"_s : "h:mm:ss"_s;
    return {stripDay.addDays(text.section(' ', 0, -2).toInt()), QTime::fromString(clock, format)};
}

inline QString textOf(const QDateTime &time)
{
    const QString clock = time.toString("h:mm:ss.zzz").remove(QRegularExpression("(:00)?.000$"));
    const qint64 days = stripDay.daysTo(time.date());
    return days == 0 ? clock : (days > 0 ? "+%1 %2"_s : "%1 %2"_s).arg(days).arg(clock);
}

/// "10:00 to 11:00".
inline API::ArchiveRecord spanOf(const QString &text)
{
    return {at(text.section(" to ", 0, 0)), at(text.section(" to ", 1))};
}

inline QString textOf(const QDateTime &start, const QDateTime &end)
{
    return textOf(start) + " to " + textOf(end);
}

inline QString windowOf(const GUI::Timeline &timeline)
{
    return textOf(timeline.startValue(), timeline.endValue());
}

inline void setWindow(GUI::Timeline &timeline, const QString &span)
{
    timeline.setStartValue(spanOf(span).start);
    timeline.setEndValue(spanOf(span).end);
}

/// "10:00 to 11:00, 12:00 to 12:30".
inline QList<API::ArchiveRecord> recordsOf(const QString &text)
{
    QList<API::ArchiveRecord> records;
    const QStringList spans = text.isEmpty() ? QStringList() : text.split(", ");
    for (const QString &span : spans)
        records.append(spanOf(span));
    return records;
}

/// From instants to hours long, overlapping, in any order, some with the same start.
inline QList<API::ArchiveRecord> randomRecords(QDate date, int count, quint32 seed)
{
    constexpr int lengths[] = {1, 10, 60, 600, 7200};
    QRandomGenerator random(seed);
    QList<API::ArchiveRecord> records;
    for (int i = 0; i < count; ++i) {
        const int second = random.bounded(23 * 3600);
        const QDateTime start = date.startOfDay().addSecs(i % 3 == 0 ? second / 600 * 600 : second);
        const int length = 1 + random.bounded(lengths[random.bounded(i % 20 == 0 ? 5 : 4)]);
        records.append({start, start.addSecs(length)});
    }
    return records;
}

/// What the window shows, as the last paint event left it.
inline QImage onScreen(QWidget &window)
{
    const QPixmap shown = window.screen()->grabWindow(window.winId());
    return shown.toImage().convertToFormat(QImage::Format_RGB32);
}

/// What it would show if it was painted now.
inline QImage picture(QWidget &widget)
{
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

inline bool showStrip(GUI::Timeline &timeline)
{
    timeline.resize(stripWidth, timeline.height());
    timeline.show();
    return QTest::qWaitForWindowExposed(&timeline);
}

/// Puts a camera on the strip and waits for what it received; null if it didn't.
inline API::CameraPtr putCamera(GUI::Timeline &timeline, const API::CameraPtr &camera)
{
    QSignalSpy received(camera.data(), &API::Camera::recordsChanged);
    timeline.addCamera(camera);
    return received.wait(30000) ? camera : API::CameraPtr();
}

inline API::CameraPtr putCamera(GUI::Timeline &timeline, ArchiveWorld &world, int id,
                                const QList<API::ArchiveRecord> &records)
{
    world.setRecords(id, records);
    return putCamera(timeline, world.localCamera(id));
}

/// What each test of the strip begins with: no records yet, at noon in Berlin.
class StripWorld : public ArchiveWorld
{
public:
    bool begin()
    {
        useZone(berlin);
        reset();
        clock.time = at("12:00");
        isStarted = isStarted || start();
        return isStarted;
    }

    FakeClock clock;

private:
    bool isStarted = false;
};

/// "10:00 to 11:00" of the day, on a strip of that width.
inline GUI::Internal::DayWindow dayWindow(const QString &span, int width = stripWidth)
{
    return {stripDay, spanOf(span).start, spanOf(span).end, width};
}

/// A timeline of that width, and a state for it beside its own that a test can set.
struct TimelineStrip {
    GUI::Timeline owner;
    GUI::Internal::TimelinePrivate state;

    explicit TimelineStrip(int width = stripWidth, QDate date = stripDay)
        : owner(date), state(&owner, date)
    {
        owner.resize(width, owner.height());
        state.recordsImage = QImage(owner.size(), QImage::Format_ARGB32);
        state.recordsImage.fill(0);
    }

    void setSelection(const QString &span)
    {
        state.selectionMode = true;
        state.selectionStart = spanOf(span).start;
        state.selectionEnd = spanOf(span).end;
    }

    QString selection() const { return textOf(state.selectionStart, state.selectionEnd); }

    void add(const API::CameraPtr &camera) { state.cameras.insert(camera->globalId(), camera); }
};

} // namespace ZorvaneClient::Tests
