// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>

class QTableView;

namespace ZorvaneClient {
namespace GUI {

class CalendarPopup;

/// The days of a calendar as a table of DayAccess. Its children are numbered as the toolkit's
/// events number them: row by row, with a row and a column for headings that are never shown.
class CalendarAccess : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    /// `view` is the table inside of `calendar`.
    CalendarAccess(QTableView *view, CalendarPopup *calendar);
    ~CalendarAccess() override;

    void *interface_cast(QAccessible::InterfaceType type) override;
    QString text(QAccessible::Text kind) const override;
    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;

    QAccessibleInterface *cellAt(int row, int column) const override;
    int rowCount() const override;
    int columnCount() const override;
    QString rowDescription(int row) const override;
    QString columnDescription(int column) const override;
    int selectedCellCount() const override { return 1; }
    QList<QAccessibleInterface *> selectedCells() const override;
    // One day is chosen by its own action, rows and columns never.
    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return 0; }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override { return {}; }
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int) const override { return false; }
    bool selectRow(int) override { return false; }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    // The cells ask the view each time.
    void modelChange(QAccessibleTableModelChangeEvent *) override {}

private:
    QTableView *view() const;

    CalendarPopup *calendar;
    mutable QHash<int, QAccessible::Id> cells; ///< by their number; made when asked for
};

} // namespace GUI
} // namespace ZorvaneClient
