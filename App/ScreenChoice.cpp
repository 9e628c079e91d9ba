// SPDX-License-Identifier: MIT
#include "App/ScreenChoice.h"

#include <QSet>

namespace ZorvaneClient {
namespace App {

namespace {

constexpr int cascadeOffsetPixels = 30;

int screenOf(const QRect &window, const QList<QRect> &screens)
{
    int found = noScreen;
    qint64 largestArea = 0;
    for (int number = 0; number < screens.size(); ++number) {
        const QRect part = screens.at(number).intersected(window);
        const qint64 area = part.isEmpty() ? 0 : qint64(part.width()) * part.height();
        if (area > largestArea) {
            largestArea = area;
            found = number;
        }
    }
    return found;
}

} // namespace

int freeScreen(const QList<QRect> &windows, const QList<QRect> &screens)
{
    if (screens.size() < 2)
        return noScreen;
    QSet<int> taken;
    for (const QRect &window : windows)
        taken.insert(screenOf(window, screens));
    for (int number = 0; number < screens.size(); ++number) {
        if (!taken.contains(number))
            return number;
    }
    return noScreen;
}

QRect cascaded(const QRect &source, bool fillsScreen, const QRect &freeArea)
{
    const QRect moved = source.translated(cascadeOffsetPixels, cascadeOffsetPixels);
    return fillsScreen ? moved.intersected(freeArea) : moved;
}

} // namespace App
} // namespace ZorvaneClient
