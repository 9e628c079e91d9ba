// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QDateTime>
#include <QImage>
#include <QMap>
#include <QString>

#include "API/ArchiveRecord.h"
#include "API/Types.h"
#include "GUI/DayWindow.h"
#include "GUI/FragmentDrag.h"
#include "GUI/Playlist.h"
#include "GUI/RecordTimesCache.h"
#include "GUI/Timeline.h"

namespace ZorvaneClient {
namespace GUI {

class TimelineTooltip;

namespace Internal {

/// What the strip shows: a window of one day, the cameras, the cursor and the fragment to
/// export. The rules for window and fragment are those of DayWindow, Fragment and FragmentDrag,
/// which are made of the fields and put back into them. Nothing here paints.
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

    // The tick plan, filled at every paint; -1, 0 and multiples as TimelineScale tells. They are
    // kept together; only labelStep is read.
    int labelStep = 0; ///< seconds
    int majorEvery = 0;
    int mediumEvery = 0;
    int minorEvery = 0;
    int labelEvery = 0;
    int ticksPerHour = 0;

    QString text;
    bool textVisible = true;
    bool selectionMode = false;
    QImage recordsImage; ///< the record bars, in the widget's size and density
    bool dirty = false;  ///< `recordsImage` is out of date
    bool draggingStart = false;
    bool draggingEnd = false;
    bool draggingBody = false; ///< with one of the two others: that handle carries the fragment
    bool overSelection = false;
    bool selectionEditable = true;
    int pressX = 0;
    int lastX = 0;
    bool pressed = false;
    QDateTime pressTime;
    int zoomLevel = 0; ///< 0, the whole day, to 100
    QImage selectionStartImage;
    QImage selectionEndImage;
    QImage footerImage; ///< nothing draws it yet
    TimelineTooltip *tooltip = nullptr;
    RecordTimesCache recordTimes;

    TimelinePrivate(Timeline *owner, QDate day);
    ~TimelinePrivate();
    Q_DISABLE_COPY(TimelinePrivate)

    DayWindow window() const;
    void clampWindow();
    void scrollBy(int delta);
    // True if the window moved.
    bool setWindow(const DayWindow &window);
    bool zoomStep(int direction, const QDateTime &center);
    bool pan(int x);

    API::CameraPtr activeCamera() const;
    bool canExport() const;
    /// Some camera has a shared archive with records on the day of the cursor.
    bool hasVisibleRecords() const;
    bool hasRecordsOn(QDate day) const;

    // TimelinePlaylist.cpp
    Playlist playlistForCameras(const QDateTime &position);
    /// The first moment at or after `position` at which some camera has a record of `day`; one
    /// day after `position` if there is none.
    QDateTime nextRecorded(const QDateTime &position, QDate day);
    /// Keeps in `recordTimes` only what is shown and what plays.
    void forgetOldRecords();

    // TimelineFragment.cpp
    Fragment fragment() const;
    void startFragmentDrag(int x);
    void dragFragment(int x);
    void stopFragmentDrag();
    bool isDraggingFragment() const;
    /// Chooses where there are records, near the middle of the window; false if there are none.
    bool defaultSelection();
    bool selectionAtCurrentTime();

private:
    FragmentDrag drag() const;
    void setDrag(const FragmentDrag &drag);
    void selectFrom(const QDateTime &start);
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
