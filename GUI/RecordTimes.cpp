// SPDX-License-Identifier: MIT
#include "GUI/RecordTimes.h"

#include <QTime>

#include <algorithm>

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

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
