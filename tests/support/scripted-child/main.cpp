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
//   film FPS W H          frames of that size that change colour, announced, for good
//   wait NAME             until a file of that name is in the folder
//   until NAME TEXT       the same, and meanwhile TEXT a hundred times a second
//   deaf                  standard input is left unread from the start
//   hang                  stops itself as by SIGSTOP
//   die                   ends itself as by SIGKILL
//   exit CODE
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
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

constexpr std::size_t frameFileBytes = 12582912;
constexpr auto pollInterval = std::chrono::milliseconds(2);

std::string folder;

std::string inFolder(const std::string &name)
{
    return folder + "/" + name;
}

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
    const int fd = ::open(inFolder(name).c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    writeAll(fd, line + "\n");
    ::close(fd);
}

std::string unescaped(const std::string &text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            bytes += text[i];
            continue;
        }
        const char kind = text[++i];
        if (kind == 'n') {
            bytes += '\n';
        } else if (kind == 'x' && i + 2 < text.size()) {
            bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            bytes += kind;
        }
    }
    return bytes;
}

void recordCommands()
{
    std::string line;
    while (std::getline(std::cin, line))
        append("commands", line);
    ::_exit(0);
}

std::uint32_t *frameMemory(const char *name)
{
    const char *temporary = std::getenv("TMPDIR");
    const std::string path = std::string(temporary ? temporary : "/tmp") + "/" + name;
    const int fd = ::open(path.c_str(), O_RDWR);
    if (fd < 0)
        ::_exit(3);
    void *memory = ::mmap(nullptr, frameFileBytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    ::close(fd);
    if (memory == MAP_FAILED)
        ::_exit(3);
    return static_cast<std::uint32_t *>(memory);
}

/// A pixel in file order blue, green, red, alpha.
std::uint32_t pixel(std::uint32_t rgba)
{
    return (rgba >> 8) | (rgba << 24);
}

void fillCorners(std::uint32_t *memory, int width, int height)
{
    constexpr std::uint32_t red = 0xff0000ff;
    constexpr std::uint32_t green = 0x00ff00ff;
    constexpr std::uint32_t blue = 0x0000ffff;
    constexpr std::uint32_t white = 0xffffffff;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool left = x < width / 2;
            const std::uint32_t color =
                y < height / 2 ? (left ? red : green) : (left ? blue : white);
            *memory++ = pixel(color);
        }
    }
}

void waitFor(const std::string &name)
{
    while (::access(inFolder(name).c_str(), F_OK) != 0)
        std::this_thread::sleep_for(pollInterval);
}

void printUntil(const std::string &name, const std::string &text)
{
    constexpr auto interval = std::chrono::milliseconds(10);
    while (::access(inFolder(name).c_str(), F_OK) != 0) {
        writeAll(STDOUT_FILENO, text);
        std::this_thread::sleep_for(interval);
    }
}

/// Does `act` that many times a second, for good.
template <typename Act>
[[noreturn]] void pace(int timesPerSecond, Act act)
{
    const auto interval = std::chrono::microseconds(1000000 / timesPerSecond);
    for (auto next = Clock::now();; next += interval) {
        std::this_thread::sleep_until(next);
        act();
    }
}

[[noreturn]] void film(int framesPerSecond, std::uint32_t *memory, std::size_t pixels)
{
    std::uint32_t frame = 0;
    pace(framesPerSecond, [&] {
        std::fill_n(memory, pixels, 0xff000000 | ++frame);
        writeAll(STDOUT_FILENO, "frame\n");
    });
}

void flood(int fd, long count, const std::string &text)
{
    constexpr std::size_t blockBytes = 65536;
    std::string block;
    for (long i = 0; i < count; ++i) {
        block += text;
        if (block.size() >= blockBytes) {
            writeAll(fd, block);
            block.clear();
        }
    }
    writeAll(fd, block);
}

std::string restOf(std::istringstream &line)
{
    std::string text;
    std::getline(line >> std::ws, text);
    return unescaped(text);
}

void obey(const std::string &text, const char *frameFileName)
{
    std::istringstream line(text);
    std::string word;
    line >> word;
    if (word == "print") {
        writeAll(STDOUT_FILENO, restOf(line));
    } else if (word == "flood" || word == "complain") {
        long count = 0;
        line >> count;
        flood(word == "flood" ? STDOUT_FILENO : STDERR_FILENO, count, restOf(line));
    } else if (word == "solid") {
        std::size_t width = 0;
        std::size_t height = 0;
        std::string color;
        line >> width >> height >> color;
        const auto rgba = static_cast<std::uint32_t>(std::stoul(color, nullptr, 16));
        std::fill_n(frameMemory(frameFileName), width * height, pixel(rgba));
    } else if (word == "corners") {
        int width = 0;
        int height = 0;
        line >> width >> height;
        fillCorners(frameMemory(frameFileName), width, height);
    } else if (word == "pace") {
        int framesPerSecond = 1;
        line >> framesPerSecond;
        const std::string bytes = restOf(line);
        pace(framesPerSecond, [&] { writeAll(STDOUT_FILENO, bytes); });
    } else if (word == "film") {
        int framesPerSecond = 1;
        std::size_t width = 0;
        std::size_t height = 0;
        line >> framesPerSecond >> width >> height;
        film(framesPerSecond, frameMemory(frameFileName), width * height);
    } else if (word == "wait") {
        waitFor(restOf(line));
    } else if (word == "until") {
        std::string name;
        line >> name;
        printUntil(name, restOf(line));
    } else if (word == "hang") {
        ::raise(SIGSTOP);
    } else if (word == "die") {
        ::raise(SIGKILL);
    } else if (word == "exit") {
        int code = 0;
        line >> code;
        ::_exit(code);
    }
}

std::vector<std::string> readScript()
{
    std::ifstream file(inFolder("script"));
    std::vector<std::string> lines;
    std::string line;
    while (std::getline(file, line))
        lines.push_back(line);
    return lines;
}

} // namespace

int main(int argc, char **argv)
{
    const char *variable = std::getenv("ZORVANE_CHILD_FOLDER");
    if (!variable || argc < 3) {
        std::cerr << "usage: ZORVANE_CHILD_FOLDER=FOLDER scripted-child URL FRAME-FILE ...\n";
        return 2;
    }
    folder = variable;
    const std::vector<std::string> script = readScript();
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
    if (isDeaf) {
        for (;;)
            ::pause();
    }
    listener.join();
}
