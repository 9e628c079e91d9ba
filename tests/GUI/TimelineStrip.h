// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "API/Camera.h"
#include "GUI/TimelinePrivate.h"

namespace ZorvaneClient::Tests {

inline const QDate stripDay(2026, 3, 10);
constexpr int thousandPixelScale = 1030;

/// "h:mm:ss" of the day, or of another one by "+1 " or "-1 " in front.
inline QDateTime at(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(' '));
    const int offset = parts.size() > 1 ? parts.first().toInt() : 0;
    return QDateTime(stripDay.addDays(offset), QTime::fromString(parts.last(), "h:mm:ss"_s));
}

/// A timeline of that width, and a state for it beside its own that a test can set.
struct TimelineStrip {
    GUI::Timeline owner;
    GUI::Internal::TimelinePrivate state;

    explicit TimelineStrip(int width = thousandPixelScale, QDate date = stripDay)
        : owner(date), state(&owner, date)
    {
        owner.resize(width, owner.height());
    }

    void setWindow(const QString &start, const QString &end)
    {
        state.startValue = at(start);
        state.endValue = at(end);
    }

    void setSelection(const QString &start, const QString &end)
    {
        state.selectionMode = true;
        state.selectionStart = at(start);
        state.selectionEnd = at(end);
    }

    void addCamera(const API::CameraPtr &camera)
    {
        state.cameras.insert(camera->globalId(), camera);
    }
};

} // namespace ZorvaneClient::Tests
