// SPDX-License-Identifier: MIT
#include "GUI/FocusedEntry.h"

#include <QComboBox>
#include <QDialog>
#include <QMenu>
#include <QPushButton>

#include "GUI/Player/VideoWidget.h"
#include "GUI/Preview.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

/// Of a card or tile, the button inside; of a button, the one beside it or itself.
QMenu *menuOf(const QWidget *widget)
{
    const bool isEntry =
        qobject_cast<const Preview *>(widget) || qobject_cast<const Player::VideoWidget *>(widget);
    const auto *pressed = qobject_cast<const QPushButton *>(widget);
    if (pressed && pressed->menu())
        return pressed->menu();
    if (!isEntry && !qobject_cast<const QAbstractButton *>(widget))
        return nullptr;
    const auto buttons = isEntry ? widget->findChildren<QPushButton *>()
                                 : widget->parentWidget()->findChildren<QPushButton *>(
                                       QString(), Qt::FindDirectChildrenOnly);
    for (const QPushButton *button : buttons) {
        // A tile has its button on a bar that hides at rest; a cloud server's is hidden for good.
        if (button->menu() && (isEntry || button->isVisible()))
            return button->menu();
    }
    return nullptr;
}

} // namespace

bool pressEntry(QWidget *widget)
{
    if (qobject_cast<const QDialog *>(widget->window()))
        return false;
    if (auto *card = qobject_cast<Preview *>(widget)) {
        emit card->clicked();
        return true;
    }
    // It becomes the active one, and the window does with that what it does on Return.
    if (auto *tile = qobject_cast<Player::VideoWidget *>(widget)) {
        emit tile->clicked(tile->camera());
        return false;
    }
    if (auto *list = qobject_cast<QComboBox *>(widget)) {
        list->showPopup();
        return true;
    }
    auto *button = qobject_cast<QAbstractButton *>(widget);
    if (button)
        button->click();
    return button;
}

bool openEntryMenu(QWidget *widget)
{
    QMenu *menu = menuOf(widget);
    if (!menu)
        return false;
    menu->popup(widget->mapToGlobal(widget->rect().center()));
    menu->setActiveAction(menu->actions().value(0));
    return true;
}

} // namespace GUI
} // namespace ZorvaneClient
