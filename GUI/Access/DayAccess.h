// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QCoreApplication>
#include <QDate>
#include <QPointer>
#include <QTableView>

namespace ZorvaneClient {
namespace GUI {

class CalendarPopup;

/// One cell of a calendar: a day of the month, a weekday at the top, or a place that shows nothing.
class DayAccess : public QAccessibleInterface,
                  public QAccessibleTableCellInterface,
                  public QAccessibleActionInterface
{
    Q_DECLARE_TR_FUNCTIONS(ZorvaneClient::GUI::DayAccess)

public:
    /// Row and column are those of the view's model, or -1.
    DayAccess(QTableView *view, CalendarPopup *calendar, int row, int column);

    void *interface_cast(QAccessible::InterfaceType type) override;
    bool isValid() const override;
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;

    bool isSelected() const override;
    QList<QAccessibleInterface *> columnHeaderCells() const override;
    QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return column; }
    int rowIndex() const override { return row; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface *table() const override { return parent(); }

    QStringList actionNames() const override;
    void doAction(const QString &action) override;
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    QModelIndex index() const;
    /// Of the month that is shown; invalid for any other cell.
    QDate day() const;

    QPointer<QTableView> view;
    QPointer<CalendarPopup> calendar;
    int row;
    int column;
};

} // namespace GUI
} // namespace ZorvaneClient
