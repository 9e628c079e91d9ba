// SPDX-License-Identifier: MIT
#include "GUI/CoveredColumns.h"

#include <algorithm>

#include "GUI/RecordTimes.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

/// The column of a moment that doesn't lie left of column `from`; the number of columns if it
/// lies right of all.
size_t columnOf(qint64 moment, const std::vector<qint64> &columnEnds, size_t from)
{
    while (from < columnEnds.size() && moment >= columnEnds[from])
        ++from;
    return from;
}

} // namespace

CoveredColumns::CoveredColumns(const TimeAxis &timeAxis) : axis(timeAxis)
{
    for (int x = axis.firstPixel(); x <= axis.lastPixel(); ++x)
        columnEnds.push_back(axis.firstMomentAt(x + 1));
    covered.resize(columnEnds.size());
}

size_t CoveredColumns::firstVisible(const std::vector<qint64> &reaches) const
{
    const auto isLeftOfAxis = [this](qint64 end) { return axis.pixelAt(end) < axis.firstPixel(); };
    const auto first = std::partition_point(reaches.cbegin(), reaches.cend(), isLeftOfAxis);
    return static_cast<size_t>(first - reaches.cbegin());
}

void CoveredColumns::add(const RecordTimes &times)
{
    const std::vector<qint64> &starts = times.starts();
    const std::vector<qint64> &reaches = times.reaches();
    // Starts ascend and reaches never fall, so that neither column steps back, and what records
    // so far cover is marked: one walk over records and columns is enough.
    size_t column = 0; // of the start
    size_t end = 0;    // of the reach
    for (size_t record = firstVisible(reaches); record < starts.size();) {
        column = columnOf(starts[record], columnEnds, column);
        if (column == columnEnds.size())
            return;
        // All records that begin in one column are one bar.
        while (record < starts.size() && starts[record] < columnEnds[column])
            ++record;
        size_t from = qMax(column, end);
        // What goes on past the strip ends at the pixel of its end.
        end = qMin(columnOf(reaches[record - 1], columnEnds, end), columnEnds.size() - 1);
        for (const size_t to = qMax(column + 1, end); from < to; ++from)
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
