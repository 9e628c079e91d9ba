// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

#include <functional>

namespace ZorvaneClient {
namespace App {

/// What the program takes from the world around it and a caller may replace: the wall clock
/// and the place of the companion player. GUI thread only.
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
};

} // namespace App
} // namespace ZorvaneClient
