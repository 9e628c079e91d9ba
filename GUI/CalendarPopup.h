// SPDX-License-Identifier: MIT
#pragma once

#include <QCalendarWidget>
#include <QDate>
#include <QList>
#include <QMap>

#include "API/Types.h"
#include "App/QtShims.h"

namespace ZorvaneClient {
namespace GUI {

/// A month in which the days with records are bright. Holds its cameras until they are cleared.
class CalendarPopup : public QCalendarWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(CalendarPopup)

public:
    explicit CalendarPopup(QWidget *parent = nullptr);

    /// Asks for the days of the last six months on which the camera has records. A null handle
    /// is ignored.
    void addCamera(API::CameraPtr camera);
    bool hasRecords(QDate date) const;

public slots:
    void clear();
    void clear(API::CameraPtr camera);

protected:
    void paintEvent(QPaintEvent *event) override;
    void paintCell(QPainter *painter, const QRect &rect, CalendarDate date) const override;

private slots:
    void calendarUpdated();

private:
    void arrange();

    QMultiMap<QDate, int> recordDays; ///< an entry for each camera; the newest one decides
    QList<API::CameraPtr> cameras;
};

} // namespace GUI
} // namespace ZorvaneClient
