// SPDX-License-Identifier: MIT
#include "GUI/Access/StopAccess.h"

#include <QTextDocumentFragment>
#include <QTimer>
#include <QWidget>

#include "GUI/FocusedEntry.h"
#include "GUI/TabOrder.h"

namespace ZorvaneClient {
namespace GUI {

StopAccess::StopAccess(QWidget *stop, QAccessible::Role role) : QAccessibleWidget(stop, role)
{
}

QAccessible::State StopAccess::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.focusable = widget()->isEnabled() && isTabStop(widget());
    return state;
}

QString StopAccess::text(QAccessible::Text kind) const
{
    QString given = QAccessibleWidget::text(kind);
    if (kind != QAccessible::Description)
        return given;
    // It is the tip unless it was set: with tags, and often the name once more.
    const QString plain = QTextDocumentFragment::fromHtml(given).toPlainText();
    return plain == text(QAccessible::Name) ? QString() : plain;
}

QStringList StopAccess::actionNames() const
{
    if (!state().focusable)
        return QStringList();
    QStringList names{setFocusAction()};
    if (canBePressed(widget()))
        names.prepend(pressAction());
    return names;
}

void StopAccess::doAction(const QString &action)
{
    if (!actionNames().contains(action))
        return;
    if (action == setFocusAction())
        widget()->setFocus(Qt::OtherFocusReason);
    // Later: a menu or a dialog that it opens would keep whoever asked for it waiting.
    else if (action == pressAction())
        QTimer::singleShot(0, widget(), [stop = widget()] { pressEntry(stop); });
    else if (action == showMenuAction())
        QTimer::singleShot(0, widget(), [stop = widget()] { openEntryMenu(stop); });
}

} // namespace GUI
} // namespace ZorvaneClient
