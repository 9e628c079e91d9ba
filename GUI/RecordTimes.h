// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

#include <vector>

#include "API/ArchiveRecord.h"

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
    QList<API::ArchiveRecord> records; ///< held, so that isOf() can't take a later list for it
    std::vector<qint64> startMoments;
    std::vector<qint64> reachMoments;
    std::vector<const API::ArchiveRecord *> ascending; ///< those of `records`
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
