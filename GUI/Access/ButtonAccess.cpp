// SPDX-License-Identifier: MIT
#include "GUI/Access/ButtonAccess.h"

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>

#include "GUI/FocusedEntry.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

bool hasMenu(const QWidget *button)
{
    const auto *pushed = qobject_cast<const QPushButton *>(button);
    return pushed && pushed->menu();
}

QAccessible::Role roleOf(const QWidget *button)
{
    if (qobject_cast<const QCheckBox *>(button))
        return QAccessible::CheckBox;
    if (qobject_cast<const QRadioButton *>(button))
        return QAccessible::RadioButton;
    return hasMenu(button) ? QAccessible::ButtonMenu : QAccessible::Button;
}

/// Without the marks of letters to type.
QString plainText(QString text)
{
    return text.remove(QLatin1Char('&'));
}

} // namespace

ButtonAccess::ButtonAccess(QWidget *button) : StopAccess(button, roleOf(button))
{
}

QAccessible::Role ButtonAccess::role() const
{
    return canBePressed(widget()) ? StopAccess::role() : QAccessible::StaticText;
}

QAccessible::State ButtonAccess::state() const
{
    QAccessible::State state = StopAccess::state();
    state.hasPopup = hasMenu(widget());
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget())) {
        state.checkable = button->isCheckable();
        state.checked = button->isChecked();
        state.pressed = button->isDown();
    }
    return state;
}

QString ButtonAccess::text(QAccessible::Text kind) const
{
    const QString given = StopAccess::text(kind);
    return kind == QAccessible::Name && given.isEmpty()
               ? plainText(widget()->property("text").toString())
               : given;
}

} // namespace GUI
} // namespace ZorvaneClient
