// SPDX-License-Identifier: MIT
#include "GUI/Access/CalendarAccess.h"

#include <QTableView>

#include "GUI/Access/DayAccess.h"
#include "GUI/CalendarPopup.h"

namespace ZorvaneClient {
namespace GUI {

CalendarAccess::CalendarAccess(QTableView *ofView, CalendarPopup *ofCalendar)
    : QAccessibleWidget(ofView, QAccessible::Table), calendar(ofCalendar)
{
}

CalendarAccess::~CalendarAccess()
{
    for (const QAccessible::Id id : qAsConst(cells))
        QAccessible::deleteAccessibleInterface(id);
}

void *CalendarAccess::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface *>(this)
                                               : QAccessibleWidget::interface_cast(type);
}

QTableView *CalendarAccess::view() const
{
    return qobject_cast<QTableView *>(widget());
}

QString CalendarAccess::text(QAccessible::Text kind) const
{
    if (kind != QAccessible::Name)
        return QAccessibleWidget::text(kind);
    return calendar->locale().standaloneMonthName(calendar->monthShown()) + QLatin1Char(' ') +
           QString::number(calendar->yearShown());
}

int CalendarAccess::childCount() const
{
    return (rowCount() + 1) * (columnCount() + 1);
}

QAccessibleInterface *CalendarAccess::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    if (!cells.contains(index)) {
        const int width = columnCount() + 1;
        cells.insert(index, QAccessible::registerAccessibleInterface(new DayAccess(
                                view(), calendar, index / width - 1, index % width - 1)));
    }
    return QAccessible::accessibleInterface(cells.value(index));
}

int CalendarAccess::indexOfChild(const QAccessibleInterface *child) const
{
    return cells.key(QAccessible::uniqueId(const_cast<QAccessibleInterface *>(child)), -1);
}

QAccessibleInterface *CalendarAccess::childAt(int x, int y) const
{
    const QPoint place = view()->viewport()->mapFromGlobal(QPoint(x, y));
    const QModelIndex index = view()->indexAt(place);
    return index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
}

QAccessibleInterface *CalendarAccess::focusChild() const
{
    const QModelIndex index = view()->currentIndex();
    return view()->hasFocus() && index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
}

QAccessibleInterface *CalendarAccess::cellAt(int row, int column) const
{
    if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount())
        return nullptr;
    return child((row + 1) * (columnCount() + 1) + column + 1);
}

int CalendarAccess::rowCount() const
{
    return view()->model()->rowCount();
}

int CalendarAccess::columnCount() const
{
    return view()->model()->columnCount();
}

QString CalendarAccess::rowDescription(int) const
{
    return QString();
}

QString CalendarAccess::columnDescription(int column) const
{
    const QAccessibleInterface *heading = cellAt(0, column);
    return heading ? heading->text(QAccessible::Name) : QString();
}

QList<QAccessibleInterface *> CalendarAccess::selectedCells() const
{
    const QModelIndex index = view()->currentIndex();
    QAccessibleInterface *cell = index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
    return cell ? QList<QAccessibleInterface *>{cell} : QList<QAccessibleInterface *>();
}

} // namespace GUI
} // namespace ZorvaneClient
