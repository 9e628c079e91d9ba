// SPDX-License-Identifier: MIT
// The fragment to export: where it begins, and how it follows the mouse.
#include "GUI/TimelinePrivate.h"

#include <QDebug>

#include "API/Camera.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

/// The start of the latest of the cameras' records that begins at or before `before`, looking
/// no further once one is near; a day before `before` if there is none.
QDateTime latestStart(const QMap<API::camera_global_id_t, API::CameraPtr> &cameras, QDate day,
                      const QDateTime &before)
{
    QDateTime best = before.addDays(-1);
    for (const API::CameraPtr &camera : cameras) {
        const QList<API::ArchiveRecord> records = camera->records(day);
        for (const API::ArchiveRecord &record : records) {
            if (!(before < record.start) && best < record.start)
                best = record.start;
            if (!(record.end < before))
                break;
        }
        if (best.secsTo(before) <= Fragment::firstSeconds)
            break;
    }
    return best;
}

} // namespace

Fragment TimelinePrivate::fragment() const
{
    return {selectionStart, selectionEnd};
}

FragmentDrag TimelinePrivate::drag() const
{
    FragmentDrag drag{fragment(), FragmentPart::None, draggingBody, selectionAnchor};
    if (draggingStart)
        drag.held = FragmentPart::Start;
    else if (draggingEnd)
        drag.held = FragmentPart::End;
    else if (draggingBody)
        drag.held = FragmentPart::Body;
    return drag;
}

void TimelinePrivate::setDrag(const FragmentDrag &drag)
{
    selectionStart = drag.fragment.start;
    selectionEnd = drag.fragment.end;
    selectionAnchor = drag.anchor;
    draggingStart = drag.held == FragmentPart::Start;
    draggingEnd = drag.held == FragmentPart::End;
    draggingBody = drag.carries;
}

bool TimelinePrivate::isDraggingFragment() const
{
    return draggingStart || draggingEnd || draggingBody;
}

void TimelinePrivate::startFragmentDrag(int x)
{
    FragmentDrag started = drag();
    started.take(x, window());
    setDrag(started);
}

void TimelinePrivate::dragFragment(int x)
{
    if (!selectionMode || !selectionEditable)
        return;
    FragmentDrag moved = drag();
    moved.moveTo(x, window(), labelStep);
    setDrag(moved);
}

void TimelinePrivate::stopFragmentDrag()
{
    draggingStart = false;
    draggingEnd = false;
    draggingBody = false;
}

void TimelinePrivate::selectFrom(const QDateTime &start)
{
    const Fragment fragment = Fragment::from(start, window());
    selectionStart = fragment.start;
    selectionEnd = fragment.end;
    qDebug() << "Selection start:" << selectionStart << "; end:" << selectionEnd;
}

bool TimelinePrivate::defaultSelection()
{
    const QDateTime middle = startValue.addSecs(startValue.secsTo(endValue) / 2);
    selectFrom(middle.addSecs(-Fragment::firstSeconds / 2));
    const QDateTime next = nextRecorded(selectionStart, date);
    if (!(next < selectionStart) && next < selectionEnd)
        return true;
    const QDateTime start = next.date() == date ? next : latestStart(cameras, date, selectionStart);
    if (start.date() != date)
        return false;
    selectFrom(start);
    return true;
}

bool TimelinePrivate::selectionAtCurrentTime()
{
    selectFrom(currentValue.addSecs(-Fragment::firstSeconds / 2));
    return selectionStart < selectionEnd;
}

} // namespace Internal

bool Timeline::enterSelectionMode(bool fromCurrentTime, bool keepExisting)
{
    if (!d->canExport())
        return false;
    const bool keeps = keepExisting && d->selectionStart.date() == d->date;
    if (!keeps && !(fromCurrentTime ? d->selectionAtCurrentTime() : d->defaultSelection()))
        return false;
    d->selectionMode = true;
    glideTo(d->fragment().viewFrom(d->window()));
    update();
    return true;
}

void Timeline::leaveSelectionMode()
{
    d->selectionMode = false;
    d->stopFragmentDrag();
    d->overSelection = false;
    d->selectionEditable = true;
    update();
}

QDateTime Timeline::selectionStart() const
{
    return d->selectionStart;
}

QDateTime Timeline::selectionEnd() const
{
    return d->selectionEnd;
}

void Timeline::setSelectionEditable(bool editable)
{
    d->selectionEditable = editable;
}

} // namespace GUI
} // namespace ZorvaneClient
