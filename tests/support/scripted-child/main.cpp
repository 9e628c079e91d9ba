// SPDX-License-Identifier: MIT
// A companion player that does what a script says, for tests of those who start it.
//
// Takes the arguments of the real player: URL, name of the frame file, and so on. The folder
// named by ZORVANE_CHILD_FOLDER holds its `script`, and gets `starts` (one line a start: process
// id and arguments, parted by tabs) and `commands` (the lines of standard input).
// It ends with its standard input, unless the script ends it before. Lines of the script:
//
//   print TEXT            one write; \n, \\ and \xHH stand for bytes
//   flood COUNT TEXT      TEXT as often as that, as fast as it is read
//   complain COUNT TEXT   the same on standard error
//   solid W H RRGGBBAA    fills a frame of that size
//   corners W H           a frame of four coloured quarters
//   pace FPS TEXT         TEXT that many times a second, for good
//   wait NAME             until a file of that name is in the folder
//   until NAME TEXT       the same, and meanwhile TEXT a hundred times a second
//   deaf                  standard input is left unread from the start
//   hang                  stops itself as by SIGSTOP
//   die                   ends itself as by SIGKILL
//   exit CODE
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

std::string folder;

void writeAll(int fd, const std::string &bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (count <= 0)
            ::_exit(1);
        done += static_cast<std::size_t>(count);
    }
}

void append(const std::string &name, const std::string &line)
{
    const int fd = ::open((folder + name).c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    writeAll(fd, line + "\n");
    ::close(fd);
}

std::string unescaped(const std::string &text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
        } else if (text[++i] == 'x') {
            bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            bytes += text[i] == 'n' ? '\n' : text[i];
        }
    }
    return bytes;
}

void recordCommands()
{
    for (std::string line; std::getline(std::cin, line);)
        append("commands", line);
    ::_exit(0);
}

/// Paints the quarters: above left and right, below left and right. Colours are RRGGBBAA.
void paint(const char *frameFile, int width, int height, const std::vector<std::uint32_t> &quarters)
{
    constexpr std::size_t frameFileBytes = 12582912;
    const char *temporary = std::getenv("TMPDIR");
    const std::string path = std::string(temporary ? temporary : "/tmp") + "/" + frameFile;
    const int fd = ::open(path.c_str(), O_RDWR);
    void *memory = ::mmap(nullptr, frameFileBytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (memory == MAP_FAILED)
        ::_exit(3);
    ::close(fd);
    auto *pixel = static_cast<std::uint32_t *>(memory);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::uint32_t rgba = quarters[(y < height / 2 ? 0 : 2) + (x < width / 2 ? 0 : 1)];
            *pixel++ = (rgba >> 8) | (rgba << 24); // in the file: blue, green, red, alpha
        }
    }
}

/// Prints `text` again and again until a file of that name is in the folder.
void waitFor(const std::string &name, const std::string &text, microseconds interval)
{
    while (::access((folder + name).c_str(), F_OK) != 0) {
        writeAll(STDOUT_FILENO, text);
        std::this_thread::sleep_for(interval);
    }
}

[[noreturn]] void pace(int timesPerSecond, const std::string &text)
{
    for (auto next = Clock::now();; next += microseconds(1000000 / timesPerSecond)) {
        std::this_thread::sleep_until(next);
        writeAll(STDOUT_FILENO, text);
    }
}

void flood(int fd, long count, const std::string &text)
{
    std::string block;
    for (long i = 0; i < count; ++i) {
        block += text;
        if (block.size() >= 65536) {
            writeAll(fd, block);
            block.clear();
        }
    }
    writeAll(fd, block);
}

template <typename Value>
Value next(std::istringstream &line)
{
    Value value{};
    line >> value;
    return value;
}

std::string restOf(std::istringstream &line)
{
    std::string text;
    std::getline(line >> std::ws, text);
    return unescaped(text);
}

void obey(const std::string &text, const char *frameFile)
{
    std::istringstream line(text);
    const auto word = next<std::string>(line);
    if (word == "print") {
        writeAll(STDOUT_FILENO, restOf(line));
    } else if (word == "flood" || word == "complain") {
        const auto count = next<long>(line);
        flood(word == "flood" ? STDOUT_FILENO : STDERR_FILENO, count, restOf(line));
    } else if (word == "solid" || word == "corners") {
        const auto width = next<int>(line);
        const auto height = next<int>(line);
        std::vector<std::uint32_t> colours{0xff0000ff, 0x00ff00ff, 0x0000ffff, 0xffffffff};
        if (word == "solid")
            colours.assign(4, std::stoul(next<std::string>(line), nullptr, 16));
        paint(frameFile, width, height, colours);
    } else if (word == "pace") {
        const auto timesPerSecond = next<int>(line);
        pace(timesPerSecond, restOf(line));
    } else if (word == "wait") {
        waitFor(restOf(line), "", std::chrono::milliseconds(2));
    } else if (word == "until") {
        const auto name = next<std::string>(line);
        waitFor(name, restOf(line), std::chrono::milliseconds(10));
    } else if (word == "hang") {
        ::raise(SIGSTOP);
    } else if (word == "die") {
        ::raise(SIGKILL);
    } else if (word == "exit") {
        ::_exit(next<int>(line));
    }
}

} // namespace

int main(int argc, char **argv)
{
    const char *variable = std::getenv("ZORVANE_CHILD_FOLDER");
    if (!variable || argc < 3) {
        std::cerr << "usage: ZORVANE_CHILD_FOLDER=FOLDER scripted-child URL FRAME-FILE ...\n";
        return 2;
    }
    folder = std::string(variable) + "/";
    std::ifstream file(folder + "script");
    std::vector<std::string> script;
    for (std::string line; std::getline(file, line);)
        script.push_back(line);
    std::string start = std::to_string(::getpid());
    for (int i = 1; i < argc; ++i)
        start += std::string("\t") + argv[i];
    append("starts", start);

    const bool isDeaf = !script.empty() && script.front() == "deaf";
    std::thread listener;
    if (!isDeaf)
        listener = std::thread(recordCommands);
    for (const std::string &line : script)
        obey(line, argv[2]);
    while (isDeaf)
        ::pause();
    listener.join();
}
