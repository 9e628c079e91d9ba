// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QMap>
#include <QRect>
#include <QVector>

#include <map>
#include <utility>
#include <vector>

#include "API/ArchiveRecord.h"
#include "API/Types.h"
#include "GUI/TimeAxis.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

/// The records of one camera's day in the form that drawing and searching need, in milliseconds
/// since the epoch, ascending by start.
class RecordTimes
{
public:
    RecordTimes() = default;
    explicit RecordTimes(const QList<API::ArchiveRecord> &dayRecords);

    /// True if they were made of this very list.
    bool isOf(const QList<API::ArchiveRecord> &dayRecords) const;

    const std::vector<qint64> &starts() const;
    /// For each record the latest end of itself and all before it.
    const std::vector<qint64> &reaches() const;
    const API::ArchiveRecord &record(size_t index) const;

    /// How many records begin before `moment`.
    size_t countBefore(qint64 moment) const;

private:
    QList<API::ArchiveRecord> records; ///< keeps the list's identity taken
    std::vector<qint64> startMoments;
    std::vector<qint64> reachMoments;
    std::vector<const API::ArchiveRecord *> ascending; ///< those of `records`
};

/// The records of cameras as they were needed last. Reading a local time costs far more than
/// drawing it, and mostly the records are as they were.
class RecordTimesCache
{
public:
    /// Valid until the same is asked for again or retain().
    const RecordTimes &timesOf(const API::CameraPtr &camera, QDate date);
    /// Forgets cameras that are not among `cameras`, and days that are not among `dates`.
    void retain(const QMap<API::camera_global_id_t, API::CameraPtr> &cameras,
                const QList<QDate> &dates);

private:
    std::map<std::pair<API::camera_global_id_t, QDate>, RecordTimes> times;
};

/// The pixel columns of a strip on which some record lies. What is drawn of them is bounded
/// by the strip's width, however many records there are.
class CoveredColumns
{
public:
    explicit CoveredColumns(const TimeAxis &axis);

    void add(const RecordTimes &times);
    /// One rectangle for each run of columns, from `top` to above `bottom`.
    QVector<QRect> bars(int top, int bottom) const;

private:
    const TimeAxis axis;
    std::vector<qint64> columnEnds; ///< first moment right of each column of the axis
    std::vector<char> covered;
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
