// SPDX-License-Identifier: MIT
#include "GUI/HintStack.h"

#include "GUI/PlayerNotification.h"
#include "GUI/Retire.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int leftPixels = 10;
constexpr int topPixels = 10;
constexpr int spacingPixels = 5;

} // namespace

HintStack::HintStack(QWidget *parent) : QObject(parent), place(parent)
{
}

void HintStack::add(const QString &text, bool error)
{
    auto *hint = new PlayerNotification(text, error, place);
    connect(hint, &PlayerNotification::closed, this, [this, hint] { remove(hint); });
    hints.prepend(hint);
    hint->move(leftPixels, -hint->height());
    hint->show();
    updatePositions();
}

void HintStack::updatePositions()
{
    int y = topPixels;
    for (PlayerNotification *hint : qAsConst(hints)) {
        hint->animateTo(QPoint(leftPixels, y));
        y += hint->height() + spacingPixels;
    }
}

void HintStack::clear()
{
    while (!hints.isEmpty())
        retire(hints.takeFirst());
}

void HintStack::remove(PlayerNotification *hint)
{
    hints.removeOne(hint);
    retire(hint);
    updatePositions();
}

} // namespace GUI
} // namespace ZorvaneClient
