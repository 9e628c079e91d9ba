// SPDX-License-Identifier: MIT
#include "server/Log.h"

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <map>
#include <mutex>

extern "C" {
#include <libavutil/log.h>
}

#include "server/Redaction.h"

namespace ZorvaneServer {
namespace Log {

namespace {

constexpr int longestMessage = 1024;
// A camera that is tried for ever doesn't fill the log with FFmpeg's reasons.
constexpr auto sameAfter = std::chrono::minutes(10);
constexpr std::size_t mostMessages = 100;

std::mutex mutex;

Redaction &redaction()
{
    static Redaction secrets;
    return secrets;
}

bool isRepeated(const std::string &text)
{
    static std::map<std::string, std::chrono::steady_clock::time_point> said;
    const std::lock_guard<std::mutex> lock(mutex);
    if (said.size() > mostMessages)
        said.clear();
    const auto now = std::chrono::steady_clock::now();
    const auto [known, isNew] = said.emplace(text, now);
    if (!isNew && now - known->second < sameAfter)
        return true;
    known->second = now;
    return false;
}

void takeMessage(void *, int level, const char *format, va_list arguments)
{
    // What a camera does wrong is said with what comes of it; here is only why.
    if (level > AV_LOG_ERROR)
        return;
    char line[longestMessage];
    int beginsLine = 0;
    av_log_format_line(nullptr, level, format, arguments, line, sizeof line, &beginsLine);
    std::string text = line;
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    if (!text.empty() && !isRepeated(text))
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
