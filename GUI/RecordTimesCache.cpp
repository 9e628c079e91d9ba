// SPDX-License-Identifier: MIT
#include "GUI/RecordTimesCache.h"

#include <iterator>

#include "API/Camera.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

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

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
