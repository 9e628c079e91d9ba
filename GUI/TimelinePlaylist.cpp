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

struct Run {
    API::CameraPtr camera;
    const RecordTimes *times;
    size_t next;
    qint64 start;
};
void appendRunning(Playlist &playlist, const Run &run, const QDateTime &from, qint64 fromMoment)
{
    for (size_t index = run.next; index-- > 0 && run.times->reaches()[index] > fromMoment;) {
        const API::ArchiveRecord &record = run.times->record(index);
        if (from < record.end)
            playlist.append(PlaylistItemPtr(new PlaylistItem(run.camera, from, record.end)));
    }
}
void appendMerged(Playlist &playlist, std::vector<Run*> &runs)
{
    auto later=[](const Run*a,const Run*b){return a->start>b->start;};
    std::make_heap(runs.begin(), runs.end(), later);
    while (!runs.empty()) {
        Run &run = *runs.front();
        const API::ArchiveRecord &record = run.times->record(run.next);
        playlist.append(PlaylistItemPtr(new PlaylistItem(run.camera, record.start, record.end)));
        ++run.next;
        if (run.next==run.times->starts().size()) {
            std::pop_heap(runs.begin(), runs.end(), later);
            runs.pop_back();
        } else {
            run.start=run.times->starts()[run.next];
            // sift down
            size_t hole=0; const size_t n=runs.size(); Run*v=&run;
            for(;;){ size_t c=2*hole+1; if(c>=n) break; if(c+1<n && runs[c+1]->start<runs[c]->start) ++c; if(!(runs[c]->start<v->start)) break; runs[hole]=runs[c]; hole=c; }
            runs[hole]=v;
        }
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

    Playlist playlist;
    std::vector<Run> store; std::vector<Run*> runs; store.reserve(size_t(cameras.size()));
    size_t count = 0;
    for (const API::CameraPtr &camera : qAsConst(cameras)) {
        const RecordTimes &times = recordTimes.timesOf(camera, day);
        Run run{camera, &times, times.countBefore(nextMoment),0};
        appendRunning(playlist, run, next, nextMoment);
        if (run.next==times.starts().size())
            continue;
        run.start=times.starts()[run.next];
        count += times.starts().size() - run.next;
        store.push_back(run);
        runs.push_back(&store.back());
    }
    playlist.reserve(playlist.size() + static_cast<int>(count));
    appendMerged(playlist, runs);
    return playlist;
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
