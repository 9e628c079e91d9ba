// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QScopedPointer>
#include <QWidget>

#include "API/Types.h"

namespace Ui {
class ArchiveControlPanel;
}

namespace ZorvaneClient {
namespace GUI {

class CalendarPopup;

/// The panel above the strip: the day, with buttons to step it and a calendar to pick it,
/// a message, and the zoom. Changes nothing itself but the day and zoom that it shows.
class ArchiveControlPanel : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(ArchiveControlPanel)

public:
    explicit ArchiveControlPanel(QWidget *parent = nullptr);
    ~ArchiveControlPanel() override;

    /// Marks the days with records of that camera in the calendar.
    void addCamera(API::CameraPtr camera);
    void setDate(QDate date);

public slots:
    /// Takes all cameras out of the calendar.
    void clear();
    void clear(API::CameraPtr camera);
    /// Shows the zoom level, 0 to 100.
    void zoom(int level);
    void showSelectFragmentMessage();
    void showExportingMessage();
    void hideMessage();

signals:
    void dateChanged(QDate newDate);
    void zoomedIn();
    void zoomedOut();
    void zoomed(int level);

protected:
    void paintEvent(QPaintEvent *event) override;

private slots:
    void on_prevDayButton_clicked();
    void on_nextDayButton_clicked();

private:
    void setUpDateEdit();
    /// Each has the day that it leads to as its name.
    void nameDayButtons();

    QScopedPointer<Ui::ArchiveControlPanel> ui;
    CalendarPopup *calendar;
};

} // namespace GUI
} // namespace ZorvaneClient
