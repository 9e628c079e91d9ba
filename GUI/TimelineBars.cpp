// SPDX-License-Identifier: MIT
#include "GUI/TimelineBars.h"

#include <QTime>

#include <algorithm>

#include "API/Camera.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

constexpr int hoursPerDay = 24;

/// Reads local times of one day. On a day without a change of the clock it asks the time zone
/// only once, as that takes a multiple of all else.
class DayReader
{
public:
    explicit DayReader(QDate date)
        : day(date), begin(date.startOfDay()), isEven(begin.time() == QTime(0, 0))
    {
        for (int hour = 1; hour < hoursPerDay; ++hour)
            isEven = isEven && hasOffsetOfBegin(QTime(hour, 0));
        isEven = isEven && hasOffsetOfBegin(QTime(23, 59, 59));
    }

    qint64 moment(const QDateTime &time) const
    {
        if (!isEven || time.timeSpec() != Qt::LocalTime || time.date() != day)
            return time.toMSecsSinceEpoch();
        return beginMoment + time.time().msecsSinceStartOfDay();
    }

private:
    bool hasOffsetOfBegin(QTime time) const
    {
        return QDateTime(day, time).offsetFromUtc() == begin.offsetFromUtc();
    }

    const QDate day;
    const QDateTime begin;
    const qint64 beginMoment = begin.toMSecsSinceEpoch();
    bool isEven;
};

struct Span {
    qint64 start;
    qint64 end;
    const API::ArchiveRecord *record;
};

std::vector<Span> spansOf(const QList<API::ArchiveRecord> &records)
{
    std::vector<Span> spans;
    if (records.isEmpty())
        return spans;
    spans.reserve(static_cast<size_t>(records.size()));
    const DayReader reader(records.first().start.date());
    for (const API::ArchiveRecord &record : records)
        spans.push_back({reader.moment(record.start), reader.moment(record.end), &record});
    // Records come in the service's order, which is not ours to trust.
    const auto startsBefore = [](const Span &a, const Span &b) { return a.start < b.start; };
    if (!std::is_sorted(spans.cbegin(), spans.cend(), startsBefore))
        std::sort(spans.begin(), spans.end(), startsBefore);
    return spans;
}

} // namespace

RecordTimes::RecordTimes(const QList<API::ArchiveRecord> &dayRecords) : records(dayRecords)
{
    const std::vector<Span> spans = spansOf(records);
    startMoments.reserve(spans.size());
    reachMoments.reserve(spans.size());
    ascending.reserve(spans.size());
    for (const Span &span : spans) {
        startMoments.push_back(span.start);
        reachMoments.push_back(reachMoments.empty() ? span.end
                                                    : qMax(reachMoments.back(), span.end));
        ascending.push_back(span.record);
    }
}

bool RecordTimes::isOf(const QList<API::ArchiveRecord> &dayRecords) const
{
    return records.isSharedWith(dayRecords);
}

const std::vector<qint64> &RecordTimes::starts() const
{
    return startMoments;
}

const std::vector<qint64> &RecordTimes::reaches() const
{
    return reachMoments;
}

const API::ArchiveRecord &RecordTimes::record(size_t index) const
{
    return *ascending[index];
}

size_t RecordTimes::countBefore(qint64 moment) const
{
    const auto first = std::lower_bound(startMoments.cbegin(), startMoments.cend(), moment);
    return static_cast<size_t>(first - startMoments.cbegin());
}

const RecordTimes &RecordTimesCache::timesOf(const API::CameraPtr &camera, QDate date)
{
    const QList<API::ArchiveRecord> records = camera->records(date);
    RecordTimes &entry = times[{camera->globalId(), date}];
    if (!entry.isOf(records))
        entry = RecordTimes(records);
    return entry;
}

void RecordTimesCache::retain(const QMap<API::camera_global_id_t, API::CameraPtr> &cameras,
                              const QList<QDate> &dates)
{
    for (auto it = times.begin(); it != times.end();) {
        const bool isNeeded = cameras.contains(it->first.first) && dates.contains(it->first.second);
        it = isNeeded ? std::next(it) : times.erase(it);
    }
}

CoveredColumns::CoveredColumns(const TimeAxis &timeAxis) : axis(timeAxis)
{
    for (int x = axis.firstPixel(); x <= axis.lastPixel(); ++x)
        columnEnds.push_back(axis.firstMomentAt(x + 1));
    covered.resize(columnEnds.size());
}

void CoveredColumns::add(const RecordTimes &times)
{
    const std::vector<qint64> &starts = times.starts();
    const std::vector<qint64> &reaches = times.reaches();
    const auto isLeftOfAxis = [this](qint64 end) { return axis.pixelAt(end) < axis.firstPixel(); };
    const auto firstVisible = std::partition_point(reaches.cbegin(), reaches.cend(), isLeftOfAxis);
    auto record = static_cast<size_t>(firstVisible - reaches.cbegin());

    // All records that begin in one column are one bar, together with what reaches into it.
    const size_t columns = columnEnds.size();
    size_t column = 0;
    size_t end = 0; // of the bar
    while (record < starts.size()) {
        while (column < columns && starts[record] >= columnEnds[column])
            ++column;
        if (column == columns)
            return;
        while (record < starts.size() && starts[record] < columnEnds[column])
            ++record;
        size_t from = qMax(column, end);
        while (end + 1 < columns && reaches[record - 1] >= columnEnds[end])
            ++end;
        const size_t to = qMax(column + 1, end);
        for (; from < to; ++from)
            covered[from] = true;
    }
}

QVector<QRect> CoveredColumns::bars(int top, int bottom) const
{
    QVector<QRect> rectangles;
    auto begin = covered.cbegin();
    while ((begin = std::find(begin, covered.cend(), true)) != covered.cend()) {
        const auto end = std::find(begin, covered.cend(), false);
        const auto left = axis.firstPixel() + static_cast<int>(begin - covered.cbegin());
        rectangles.append(QRect(left, top, static_cast<int>(end - begin), bottom - top));
        begin = end;
    }
    return rectangles;
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
