// SPDX-License-Identifier: MIT
#include "GUI/CalendarPopup.h"

#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QTableView>
#include <QTextCharFormat>
#include <QVBoxLayout>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/Colours.h"
#include "GUI/HouseStyle.h"
#include "GUI/StyleBackground.h"
#include "GUI/StyleSheet.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr QSize popupSize(320, 312);
constexpr int monthsBack = 6;
constexpr int cellWidth = 40;
constexpr int cellHeight = 34;
constexpr int dayPointSize = 10;
constexpr int markRadius = 14;

constexpr int translucent = 240; // the alpha of lines and of the chosen day
const QColor greyColour(118, 120, 122);

QTextCharFormat weekdayFormat()
{
    QTextCharFormat format;
    format.setForeground(greyColour);
    format.setBackground(Colours::panel());
    format.setFontCapitalization(QFont::Capitalize);
    return format;
}

void fixSections(QHeaderView *header, int sections, int size)
{
    header->setSectionResizeMode(QHeaderView::Fixed);
    for (int section = 0; section < sections; ++section)
        header->resizeSection(section, size);
}

/// Round the middle of a cell.
QRect markOf(const QRect &cell)
{
    const int x = (cell.left() + cell.right()) / 2;
    const int y = (cell.top() + cell.bottom()) / 2;
    return QRect(QPoint(x - markRadius, y - markRadius),
                 QPoint(x + markRadius - 1, y + markRadius - 1));
}

} // namespace

CalendarPopup::CalendarPopup(QWidget *parent) : QCalendarWidget(parent)
{
    setFixedSize(popupSize);
    setWindowFlags(Qt::Popup);
    setAttribute(Qt::WA_TranslucentBackground);
    setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    setDateEditEnabled(false);
    // As in the country of the user: not every language is known to be spoken there.
    setFirstDayOfWeek(QLocale::system().firstDayOfWeek());
    arrange();
    for (int day = Qt::Monday; day <= Qt::Sunday; ++day)
        setWeekdayTextFormat(static_cast<Qt::DayOfWeek>(day), weekdayFormat());
    setStyleSheet(styleSheetOf(QStringLiteral(":/calendar/calendar.qss")));
}

void CalendarPopup::arrange()
{
    auto *top = new QLabel(this);
    top->setObjectName(QStringLiteral("calendar_spacer_top"));
    auto *middle = new QLabel(this);
    middle->setObjectName(QStringLiteral("calendar_spacer_mid"));
    if (auto *rows = qobject_cast<QVBoxLayout *>(layout())) {
        rows->insertWidget(0, top);
        rows->insertWidget(2, middle);
        rows->setSpacing(0);
    }
    if (auto *days = findChild<QTableView *>(QStringLiteral("qt_calendar_calendarview"))) {
        days->viewport()->setCursor(Qt::PointingHandCursor);
        constexpr int weekdays = 7;
        constexpr int rowsWithHeading = 7;
        fixSections(days->horizontalHeader(), weekdays, cellWidth);
        fixSections(days->verticalHeader(), rowsWithHeading, cellHeight);
    }
}

void CalendarPopup::addCamera(API::CameraPtr camera)
{
    if (!camera)
        return;
    cameras.append(camera);
    connect(camera.data(), &API::Camera::calendarChanged, this, &CalendarPopup::calendarUpdated,
            Qt::UniqueConnection);
    const QDate today = App::Environment::now().date();
    camera->updateCalendar(today.addMonths(-monthsBack), today);
}

void CalendarPopup::clear()
{
    recordDays.clear();
    cameras.clear();
    update();
}

void CalendarPopup::clear(API::CameraPtr camera)
{
    if (!camera)
        return;
    cameras.removeAll(camera);
    const QMap<QDate, int> counts = camera->calendar();
    for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
        const auto entry = recordDays.find(it.key());
        if (entry != recordDays.end())
            *entry -= it.value();
    }
    update();
}

void CalendarPopup::calendarUpdated()
{
    recordDays.clear();
    for (const API::CameraPtr &camera : qAsConst(cameras)) {
        const QMap<QDate, int> counts = camera->calendar();
        for (auto it = counts.cbegin(); it != counts.cend(); ++it)
            recordDays.insert(it.key(), it.value());
    }
    update();
}

bool CalendarPopup::hasRecords(QDate date) const
{
    const auto entry = recordDays.constFind(date);
    return entry != recordDays.constEnd() && *entry > 0;
}

void CalendarPopup::paintEvent(QPaintEvent *)
{
    drawStyleBackground(*this);
}

void CalendarPopup::paintCell(QPainter *painter, const QRect &rect, CalendarDate date) const
{
    if (date.year() != yearShown() || date.month() != monthShown())
        return;
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    if (date == selectedDate()) {
        painter->setPen(Colours::accent(translucent));
        painter->setBrush(Colours::accent(translucent));
        painter->drawEllipse(markOf(rect));
    }
    painter->setPen(Colours::faint(translucent));
    painter->drawLine(rect.topLeft(), rect.topRight());
    painter->setFont(QFont(fontFamily, dayPointSize));
    painter->setPen(hasRecords(date) ? QColor(Qt::white) : greyColour);
    painter->drawText(rect, Qt::AlignCenter | Qt::TextSingleLine, QString::number(date.day()));
    painter->restore();
}

} // namespace GUI
} // namespace ZorvaneClient
