// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QDateTime>
#include <QImage>
#include <QMap>
#include <QString>

#include "API/ArchiveRecord.h"
#include "API/Types.h"
#include "GUI/Playlist.h"
#include "GUI/Timeline.h"
#include "GUI/TimelineBars.h"

namespace ZorvaneClient {
namespace GUI {

class TimelineTooltip;

namespace Internal {

constexpr int timelineHeight = 56;
constexpr int timelineMargin = 15;

/// `time` of `date`; when the clock skips it on that day, the moment that it shows instead.
QDateTime localTime(QDate date, QTime time);

/// What the strip shows: a window of one day, the cameras, the cursor and the fragment to
/// export. Pixels are local to the widget, times are local times. Nothing here paints.
struct TimelinePrivate {
    QMap<API::camera_global_id_t, API::CameraPtr> cameras;
    QDateTime currentValue;
    Timeline::TimeFormat timeFormat = Timeline::Full;
    QDate date;
    QDateTime startValue;
    QDateTime endValue;
    QDateTime selectionStart;
    QDateTime selectionEnd;
    QDateTime selectionAnchor; ///< time under the mouse at the last step of a body drag
    QDateTime hoverTime;
    bool hoverVisible = false;
    bool sliderVisible = false;
    Timeline *widget = nullptr;
    API::camera_global_id_t activeCameraId;

    // The tick plan, filled at every paint; -1, 0 and multiples as TimelineScale tells.
    int labelStep = 0; ///< seconds
    int majorEvery = 0;
    int mediumEvery = 0;
    int minorEvery = 0;
    int labelEvery = 0;
    int ticksPerHour = 0;

    QString text;
    bool textVisible = true;
    bool selectionMode = false;
    QImage recordsImage; ///< the record bars, in the widget's size
    bool dirty = false;  ///< `recordsImage` is out of date
    bool draggingStart = false;
    bool draggingEnd = false;
    bool draggingBody = false;
    bool overSelection = false;
    bool selectionEditable = true;
    int pressX = 0;
    int lastX = 0;
    bool pressed = false;
    QDateTime pressTime;
    int zoomLevel = 0; ///< 0, the whole day, to 100
    QImage selectionStartImage;
    QImage selectionEndImage;
    QImage footerImage;
    TimelineTooltip *tooltip = nullptr;
    RecordTimesCache recordTimes;

    TimelinePrivate(Timeline *owner, QDate day);
    ~TimelinePrivate();
    Q_DISABLE_COPY(TimelinePrivate)

    /// The widget's width.
    int width() const;
    QDateTime dayStart() const; ///< 00:00:00 of `date`
    QDateTime dayEnd() const;   ///< 23:59:59 of `date`

    QDateTime timeAt(int x) const;
    int pixelAt(const QDateTime &time) const;
    qint64 secondsBetween(int fromX, int toX) const;
    bool isWholeDay() const;
    /// Room in the day for moving the window.
    qint64 secondsBeforeWindow() const;
    qint64 secondsAfterWindow() const;
    void moveWindow(qint64 seconds);

    void clampWindow();
    /// False at the limit of that direction, when there was no step to make.
    bool zoomStep(int direction, const QDateTime &center);
    void scrollBy(int delta);
    /// True if the window moved.
    bool pan(int x);
    /// Tells by the cursor's shape what a press at `x` would do.
    void updateCursor(int x, bool leftHeld);

    API::CameraPtr activeCamera() const;
    bool canExport() const;
    /// Some camera has a shared archive with records on the day of the cursor.
    bool hasVisibleRecords() const;
    Playlist playlistForCameras(const QDateTime &position);
    /// The first moment at or after `position` at which some camera has a record of `day`; one
    /// day after `position` if there is none.
    QDateTime nextRecorded(const QDateTime &position, QDate day);
    /// Keeps in `recordTimes` only what is shown and what plays.
    void forgetOldRecords();

    // The fragment to export.
    void startSelectionDrag(int x);
    void dragSelection(int x);
    void dragStart(const QDateTime &time, int x);
    void dragEnd(const QDateTime &time, int x);
    void dragBody(const QDateTime &time);
    void stopSelectionDrag();
    bool isDraggingSelection() const;
    void normalizeSelection();
    QDateTime snapped(const QDateTime &time) const;
    void fitSelection(int seconds);
    bool defaultSelection();
    bool selectionAtCurrentTime();
    /// Brings the window to the fragment in steps, unless that is in good view already.
    void reveal(const QDateTime &from, const QDateTime &to);
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
