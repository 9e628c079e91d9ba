// SPDX-License-Identifier: MIT
// What the timeline's cameras have to play.
#include "GUI/TimelinePrivate.h"

#include <algorithm>
#include <vector>

#include "API/Camera.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

/// What is left of one camera's records, ascending by start.
struct Run {
    const API::CameraPtr *camera;
    const RecordTimes *times;
    size_t next;
    qint64 nextStart;

    bool isOver() const { return next == times->starts().size(); }
    void step(size_t count)
    {
        next += count;
        nextStart = isOver() ? 0 : times->starts()[next];
    }
};

/// For the standard heap, which has the largest in front.
bool startsLater(const Run &a, const Run &b)
{
    return a.nextStart > b.nextStart;
}

/// Records that have begun before `from` and go on after it, from there on. There are few.
void appendRunning(Playlist &playlist, const Run &run, const QDateTime &from, qint64 fromMoment)
{
    for (size_t index = run.next; index > 0 && run.times->reaches()[index - 1] > fromMoment;
         --index) {
        const API::ArchiveRecord &record = run.times->record(index - 1);
        if (from < record.end)
            playlist.append(PlaylistItemPtr(new PlaylistItem(*run.camera, from, record.end)));
    }
}

/// All that is left of the runs, in the order of the starts.
void appendMerged(Playlist &playlist, std::vector<Run> &runs)
{
    std::make_heap(runs.begin(), runs.end(), startsLater);
    while (!runs.empty()) {
        std::pop_heap(runs.begin(), runs.end(), startsLater);
        Run &run = runs.back();
        const API::ArchiveRecord &record = run.times->record(run.next);
        playlist.append(PlaylistItemPtr(new PlaylistItem(*run.camera, record.start, record.end)));
        run.step(1);
        if (run.isOver())
            runs.pop_back();
        else
            std::push_heap(runs.begin(), runs.end(), startsLater);
    }
}

} // namespace

void TimelinePrivate::forgetOldRecords()
{
    recordTimes.retain(cameras, {date, currentValue.date()});
}

QDateTime TimelinePrivate::nextRecorded(const QDateTime &position, QDate day)
{
    const qint64 moment = position.toMSecsSinceEpoch();
    QDateTime next = position.addDays(1);
    qint64 nextMoment = next.toMSecsSinceEpoch();
    for (const API::CameraPtr &camera : qAsConst(cameras)) {
        const RecordTimes &times = recordTimes.timesOf(camera, day);
        const size_t index = times.countBefore(moment);
        if (index > 0 && times.reaches()[index - 1] > moment)
            return position;
        if (index < times.starts().size() && times.starts()[index] < nextMoment) {
            next = times.record(index).start;
            nextMoment = times.starts()[index];
        }
    }
    return next;
}

Playlist TimelinePrivate::playlistForCameras(const QDateTime &position)
{
    forgetOldRecords();
    const QDate day = position.date();
    const QDateTime next = nextRecorded(position, day);
    const qint64 nextMoment = next.toMSecsSinceEpoch();

    // Each camera's records are sorted already, so that merging them is enough.
    Playlist playlist;
    std::vector<Run> runs;
    size_t count = 0;
    for (const API::CameraPtr &camera : qAsConst(cameras)) {
        const RecordTimes &times = recordTimes.timesOf(camera, day);
        Run run{&camera, &times, 0, 0};
        run.step(times.countBefore(nextMoment));
        appendRunning(playlist, run, next, nextMoment);
        if (run.isOver())
            continue;
        count += times.starts().size() - run.next;
        runs.push_back(run);
    }
    playlist.reserve(playlist.size() + static_cast<int>(count));
    appendMerged(playlist, runs);
    return playlist;
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
