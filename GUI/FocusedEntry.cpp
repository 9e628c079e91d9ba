// SPDX-License-Identifier: MIT
#include "GUI/FocusedEntry.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>

#include "GUI/Player/VideoWidget.h"
#include "GUI/Preview.h"
#include "GUI/TippedButton.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

bool isEntry(const QWidget *widget)
{
    return qobject_cast<const Preview *>(widget) ||
           qobject_cast<const Player::VideoWidget *>(widget);
}

/// A picture or text that has the hand of its own, not only as part of something.
bool isPressedLabel(const QWidget *widget)
{
    return qobject_cast<const QLabel *>(widget) && widget->testAttribute(Qt::WA_SetCursor) &&
           widget->cursor().shape() == Qt::PointingHandCursor;
}

/// Of a card or tile, the button inside; of a button, the one beside it or itself.
QMenu *menuOf(const QWidget *widget)
{
    const auto *pressed = qobject_cast<const QPushButton *>(widget);
    if (pressed && pressed->menu())
        return pressed->menu();
    if (!isEntry(widget) && !qobject_cast<const QAbstractButton *>(widget))
        return nullptr;
    const auto buttons = isEntry(widget) ? widget->findChildren<QPushButton *>()
                                         : widget->parentWidget()->findChildren<QPushButton *>(
                                               QString(), Qt::FindDirectChildrenOnly);
    for (const QPushButton *button : buttons) {
        // A tile has its button on a bar that hides at rest; a cloud server's is hidden for good.
        if (button->menu() && (isEntry(widget) || button->isVisible()))
            return button->menu();
    }
    return nullptr;
}

} // namespace

bool canBePressed(const QWidget *widget)
{
    return isEntry(widget) || isPressedLabel(widget) ||
           qobject_cast<const QAbstractButton *>(widget);
}

bool pressEntry(QWidget *widget)
{
    // It becomes the active one, and the window does with that what it does on Return.
    if (auto *tile = qobject_cast<Player::VideoWidget *>(widget)) {
        emit tile->clicked(tile->camera());
        return false;
    }
    if (auto *card = qobject_cast<Preview *>(widget)) {
        emit card->clicked();
    } else if (auto *list = qobject_cast<QComboBox *>(widget)) {
        list->showPopup();
    } else if (auto *picture = qobject_cast<TippedButton *>(widget)) {
        emit picture->clicked();
    } else if (isPressedLabel(widget)) {
        const QPointF middle = widget->rect().center();
        QMouseEvent release(QEvent::MouseButtonRelease, middle,
                            widget->mapToGlobal(widget->rect().center()), Qt::LeftButton,
                            Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(widget, &release);
    } else if (auto *button = qobject_cast<QAbstractButton *>(widget)) {
        button->click();
    } else {
        return false;
    }
    return true;
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
