// SPDX-License-Identifier: MIT
#include "server/Log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

extern "C" {
#include <libavutil/log.h>
}

#include "server/Redaction.h"

namespace ZorvaneServer {
namespace Log {

namespace {

constexpr int longestMessage = 1024;

std::mutex mutex;

Redaction &redaction()
{
    static Redaction secrets;
    return secrets;
}

void takeMessage(void *source, int level, const char *format, va_list arguments)
{
    // What a camera does wrong is said with what comes of it; here is only why.
    if (level > AV_LOG_ERROR)
        return;
    char line[longestMessage];
    int beginsLine = 1;
    av_log_format_line(source, level, format, arguments, line, sizeof line, &beginsLine);
    std::string text = line;
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    if (!text.empty())
        say(text);
}

} // namespace

std::string hide(const std::string &text)
{
    const std::lock_guard<std::mutex> lock(mutex);
    return redaction().hide(text);
}

void say(const std::string &line)
{
    const std::string text = hide(line) + '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
}

void keepSecret(const std::string &url)
{
    const std::lock_guard<std::mutex> lock(mutex);
    redaction().learn(url);
}

void takeMessages()
{
    av_log_set_callback(takeMessage);
}

} // namespace Log
} // namespace ZorvaneServer
