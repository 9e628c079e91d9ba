// SPDX-License-Identifier: MIT
#include "demo/ProgressBar.h"

#include <cstdio>
#include <string>

#include <unistd.h>

namespace ZorvaneDemo {

namespace {

constexpr int barWidth = 40;

} // namespace

ProgressBar::ProgressBar(int allSteps) : steps(allSteps), terminal(isatty(STDERR_FILENO))
{
}

void ProgressBar::step()
{
    const int done = ++count;
    const int percent = 100 * done / steps;
    const std::lock_guard<std::mutex> lock(mutex);
    // A log file gets a line for each tenth, a terminal a bar that moves.
    if (percent <= shown || (!terminal && percent / 10 == shown / 10))
        return;
    shown = percent;
    const int filled = barWidth * percent / 100;
    const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                            std::string(static_cast<std::size_t>(barWidth - filled), '.');
    std::fprintf(stderr, "%szorvane-demo: drawing scenes [%s] %3d%%%s", terminal ? "\r" : "",
                 bar.c_str(), percent, terminal && percent < 100 ? "" : "\n");
    std::fflush(stderr);
}

} // namespace ZorvaneDemo
