// SPDX-License-Identifier: MIT
#include "App/Environment.h"

#include <QCoreApplication>

namespace ZorvaneClient {
namespace App {

namespace {

std::function<QDateTime()> &clockInForce()
{
    static std::function<QDateTime()> clock;
    return clock;
}

QString &playerPath()
{
    static QString path;
    return path;
}

} // namespace

QDateTime Environment::now()
{
    return clockInForce() ? clockInForce()() : QDateTime::currentDateTime();
}

void Environment::setClock(std::function<QDateTime()> clock)
{
    clockInForce() = std::move(clock);
}

QString Environment::playerProgram()
{
    if (!playerPath().isEmpty())
        return playerPath();
    return QCoreApplication::applicationDirPath() + QLatin1String("/vlc-stream");
}

QString Environment::raisePipe()
{
    return qEnvironmentVariable("ZORVANE_RAISE");
}

void Environment::setPlayerProgram(const QString &path)
{
    playerPath() = path;
}

QString Environment::kioskLayout()
{
    return qEnvironmentVariable("ZORVANE_KIOSK");
}

} // namespace App
} // namespace ZorvaneClient
