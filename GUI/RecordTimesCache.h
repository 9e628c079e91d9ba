// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QList>
#include <QMap>

#include <map>
#include <utility>

#include "API/Types.h"
#include "GUI/RecordTimes.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

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

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
