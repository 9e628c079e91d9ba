// SPDX-License-Identifier: MIT
#pragma once

#include <QSet>

#include <functional>

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// Runs its task when the application object goes; one that is destroyed before that never runs
/// it. The application's thread only.
class ExitTask
{
    Q_DISABLE_COPY(ExitTask)

public:
    explicit ExitTask(std::function<void()> task);
    ~ExitTask();

private:
    static QSet<ExitTask *> &pending();
    static void runAll();

    std::function<void()> run;
};

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
