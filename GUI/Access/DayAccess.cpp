// SPDX-License-Identifier: MIT
#include "GUI/Access/DayAccess.h"

#include "GUI/CalendarPopup.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int daysOfWeek = 7;
constexpr int headingRow = 0;

} // namespace

DayAccess::DayAccess(QTableView *ofView, CalendarPopup *ofCalendar, int atRow, int atColumn)
    : view(ofView), calendar(ofCalendar), row(atRow), column(atColumn)
{
}

void *DayAccess::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TableCellInterface)
        return static_cast<QAccessibleTableCellInterface *>(this);
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this)
                                                : nullptr;
}

bool DayAccess::isValid() const
{
    return view && calendar;
}

QAccessibleInterface *DayAccess::parent() const
{
    return QAccessible::queryAccessibleInterface(view);
}

QModelIndex DayAccess::index() const
{
    return view->model()->index(row, column);
}

QDate DayAccess::day() const
{
    if (row <= headingRow || column < 0)
        return QDate();
    // The days of the months beside it stand in the first and the last rows.
    const int number = index().data().toInt();
    const int week = row - headingRow - 1;
    const bool isOfMonth = number > (week - 1) * daysOfWeek && number < (week + 1) * daysOfWeek;
    return isOfMonth ? QDate(calendar->yearShown(), calendar->monthShown(), number) : QDate();
}

QString DayAccess::text(QAccessible::Text kind) const
{
    const bool isName = kind == QAccessible::Name;
    if (isName && row == headingRow && column >= 0) {
        const int weekday = (calendar->firstDayOfWeek() - Qt::Monday + column) % daysOfWeek;
        return calendar->locale().standaloneDayName(Qt::Monday + weekday);
    }
    const QDate date = day();
    if (!date.isValid())
        return QString();
    if (isName)
        return calendar->locale().toString(date, QLocale::LongFormat);
    if (kind == QAccessible::Description)
        return calendar->hasRecords(date) ? tr("Has records") : tr("No records");
    return QString();
}

QRect DayAccess::rect() const
{
    const QRect place = view->visualRect(index());
    return QRect(view->viewport()->mapToGlobal(place.topLeft()), place.size());
}

QAccessible::Role DayAccess::role() const
{
    return row > headingRow ? QAccessible::Cell : QAccessible::ColumnHeader;
}

QAccessible::State DayAccess::state() const
{
    QAccessible::State state;
    const QDate date = day();
    const bool isShown = date.isValid() || (row == headingRow && column >= 0);
    state.invisible = !isShown || !view->isVisible();
    state.focusable = state.selectable = date.isValid();
    state.selected = isSelected();
    state.focused = state.selected && view->hasFocus();
    return state;
}

bool DayAccess::isSelected() const
{
    return day().isValid() && day() == calendar->selectedDate();
}

QList<QAccessibleInterface *> DayAccess::columnHeaderCells() const
{
    QAccessibleInterface *table = parent();
    return {table->tableInterface()->cellAt(headingRow, column)};
}

QStringList DayAccess::actionNames() const
{
    return day().isValid() ? QStringList{pressAction()} : QStringList();
}

void DayAccess::doAction(const QString &action)
{
    const QDate date = day();
    if (action != pressAction() || !date.isValid())
        return;
    calendar->setSelectedDate(date);
    emit calendar->activated(date);
}

} // namespace GUI
} // namespace ZorvaneClient
