// SPDX-License-Identifier: MIT
#include "API/ExitTask.h"

#include <QCoreApplication>

#include <utility>

namespace ZorvaneClient {
namespace API {
namespace Internal {

QSet<ExitTask *> &ExitTask::pending()
{
    // Never freed: tasks may go with the statics.
    static auto *tasks = new QSet<ExitTask *>;
    return *tasks;
}

void ExitTask::runAll()
{
    for (const ExitTask *task : qAsConst(pending()))
        task->run();
}

ExitTask::ExitTask(std::function<void()> task) : run(std::move(task))
{
    // An application object that went has forgotten the routine; one must not have it twice.
    if (pending().isEmpty()) {
        qRemovePostRoutine(runAll);
        qAddPostRoutine(runAll);
    }
    pending().insert(this);
}

ExitTask::~ExitTask()
{
    pending().remove(this);
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
