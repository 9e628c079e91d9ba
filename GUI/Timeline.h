// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QDateTime>
#include <QSharedPointer>
#include <QString>
#include <QWidget>

#include "API/Types.h"
#include "GUI/Playlist.h"

namespace ZorvaneClient {
namespace GUI {

namespace Internal {
struct DayWindow;
struct TimelinePrivate;
} // namespace Internal

/// One day of archive as a strip: the records of all cameras, the scale, the play cursor and
/// the fragment to export. Shows the window from `startValue` to `endValue`; times are local.
/// Plays nothing: it emits the moment that the user picked. GUI thread only.
class Timeline : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(Timeline)
    Q_PROPERTY(TimeFormat timeFormat READ timeFormat WRITE setTimeFormat)
    Q_PROPERTY(QDateTime currentValue READ currentValue WRITE setCurrentValue)
    Q_PROPERTY(QDateTime startValue READ startValue WRITE setStartValue)
    Q_PROPERTY(QDateTime endValue READ endValue WRITE setEndValue)
    Q_PROPERTY(bool sliderVisible READ sliderVisible WRITE setSliderVisible)

public:
    enum TimeFormat { Full = 0, HourOnly = 1 };
    Q_ENUM(TimeFormat)

    explicit Timeline(QDate date, QWidget *parent = nullptr);
    ~Timeline() override;

    TimeFormat timeFormat() const;
    void setTimeFormat(TimeFormat format);
    /// The play position, shown by the red cursor.
    QDateTime currentValue() const;
    void setCurrentValue(QDateTime value);
    /// The two ends of the window; written, they are kept within the day and in order.
    QDateTime startValue() const;
    void setStartValue(QDateTime value);
    QDateTime endValue() const;
    void setEndValue(QDateTime value);
    /// True while archive plays.
    bool sliderVisible() const;
    void setSliderVisible(bool visible);

    /// Makes the records of `id` the bright ones; of no camera if `id` isn't shown.
    void setActiveCameraId(API::camera_global_id_t id);
    bool hasCamera(API::camera_global_id_t id) const;
    /// Pans to `time` of the day that is shown, unless it is in the window.
    void reveal(const QDateTime &time);
    void removeCamera(API::camera_global_id_t id);
    int cameraCount() const;
    /// Null without one.
    API::CameraPtr activeCamera() const;

    /// True when the active camera is a LAN camera with records on the day of the cursor.
    bool canExport() const;
    /// Puts up a fragment to export and brings it into view. False, and nothing is up, when the
    /// active camera can't export or has nothing to select.
    bool enterSelectionMode(bool fromCurrentTime, bool keepExisting);
    void leaveSelectionMode();
    QDateTime selectionStart() const;
    QDateTime selectionEnd() const;
    /// False makes the fragment stand still until the selection is left.
    void setSelectionEditable(bool editable);

public slots:
    /// Takes all cameras off the strip.
    void clear();
    void addMSecs(qlonglong msecs);
    void zoomIn();
    void zoomOut();
    /// 0, the whole day, to 100; goes on in whole steps until it is reached or passed.
    void zoom(int level);
    // The side is that to which the picture goes.
    void scrollLeft();
    void scrollRight();
    /// Over the strip, unless there are records to see.
    void showText(QString text);
    void hideText();
    /// Asks for the camera's records and follows them from then on.
    void addCamera(API::CameraPtr camera);
    void changeDate(QDate newDate);
    /// For the cameras' signals only: the sender has received the records of `date`.
    void setupArchives(QDate date);
    void archivesError();
    /// What there is to play on the day of `position`, from the first recorded moment at or
    /// after it.
    Playlist playlistForCameras(QDateTime position);

signals:
    /// The user clicked a moment of the window.
    void playTime(QDateTime time);
    void zoomed(int level);
    void exportEnabled(bool enabled);
    void recordsUpdated();

protected:
    bool event(QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    /// False if the window stayed as it was.
    bool zoomAtCenter(int direction);
    void scroll(int delta);
    void zoomByWheel(int steps, int x);
    void showHover(int x);
    /// Tells by the cursor's shape what a press at `x` would do.
    void updateCursor(int x, bool leftHeld);
    void glideTo(const Internal::DayWindow &window);
    void makeRecordsImage();
    /// At the next paint.
    void redrawRecords();
    void updateRecords();
    void updateCameras();

    QSharedPointer<Internal::TimelinePrivate> d;
};

} // namespace GUI
} // namespace ZorvaneClient
