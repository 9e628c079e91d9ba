// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

#include <functional>

namespace ZorvaneClient {
namespace App {

/// What the program takes from the world around it. The wall clock and the place of the
/// companion player can be replaced by a caller. GUI thread only.
class Environment
{
public:
    /// Local time of the wall clock in force.
    static QDateTime now();
    /// Replaces the wall clock; an empty function puts the system's clock back.
    static void setClock(std::function<QDateTime()> clock);

    /// Full path of the companion player: beside this program unless set.
    static QString playerProgram();
    /// Replaces the path; an empty path puts the default back.
    static void setPlayerProgram(const QString &path);

    /// Name of the layout that the first window shows alone on the whole screen, as the
    /// variable ZORVANE_KIOSK says; empty in all other cases.
    static QString kioskLayout();

    /// Path of the pipe through which a second start asks for the windows, as the variable
    /// ZORVANE_RAISE says; empty if there is none.
    static QString raisePipe();
};

} // namespace App
} // namespace ZorvaneClient
