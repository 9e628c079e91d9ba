// SPDX-License-Identifier: MIT
#include "demo/ClipStore.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "demo/ClipMaker.h"
#include "demo/SoundMaker.h"

namespace ZorvaneDemo {

namespace {

constexpr int framesPerSecond = 25;
constexpr int testFramesPerSecond = 10;
constexpr int barWidth = 40;

/// Holds the folder's lock file while it lives.
class FolderLock
{
public:
    explicit FolderLock(const std::string &folder)
        : file(open((folder + "/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
    {
        while (file >= 0 && flock(file, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    ~FolderLock()
    {
        if (file >= 0)
            close(file);
    }
    FolderLock(const FolderLock &) = delete;
    FolderLock &operator=(const FolderLock &) = delete;
    bool held() const { return file >= 0; }

private:
    int file;
};

/// One line on standard error that fills up.
class ProgressBar
{
public:
    explicit ProgressBar(int allSteps) : steps(allSteps), terminal(isatty(STDERR_FILENO)) {}

    void step()
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

private:
    const int steps;
    const bool terminal;
    std::atomic<int> count{0};
    std::mutex mutex;
    int shown = -1;
};

} // namespace

ClipStore::ClipStore(std::string cacheFolder, ClipForm clipForm)
    : folder(std::move(cacheFolder)), form(clipForm)
{
}

std::string ClipStore::videoFile(int scene, int quality) const
{
    const PictureSize size = pictureSizes[static_cast<std::size_t>(quality)];
    return folder + "/scene-" + std::to_string(scene) + (form.test ? "-test" : "") +
           (form.noise ? "-noise-" : "-") + std::to_string(size.width) + "x" +
           std::to_string(size.height) + ".clip";
}

std::string ClipStore::soundFile() const
{
    return folder + "/sound.clip";
}

bool ClipStore::openScene(int scene)
{
    std::array<std::shared_ptr<const Clip>, qualityCount> clips;
    for (int quality = 0; quality < qualityCount; ++quality) {
        auto &clip = clips[static_cast<std::size_t>(quality)];
        clip = Clip::open(videoFile(scene, quality));
        if (!clip)
            return false;
    }
    const std::lock_guard<std::mutex> lock(mutex);
    videos[scene] = std::move(clips);
    return true;
}

std::string ClipStore::prepare(const std::set<int> &scenes)
{
    std::error_code code;
    std::filesystem::create_directories(folder, code);
    const FolderLock lock(folder);
    if (!lock.held())
        return "cannot use the clip folder " + folder + ": " + std::strerror(errno);

    std::set<int> missing;
    for (const int scene : scenes) {
        if (!openScene(scene))
            missing.insert(scene);
    }
    std::string failure = makeMissing(missing);
    soundClip = Clip::open(soundFile());
    if (failure.empty() && !soundClip) {
        failure = makeSoundClip(soundFile());
        soundClip = Clip::open(soundFile());
    }
    return failure;
}

std::string ClipStore::makeMissing(const std::set<int> &scenes)
{
    if (scenes.empty())
        return {};
    ProgressBar bar(static_cast<int>(scenes.size()) * secondsPerMinute);
    const std::vector<int> work(scenes.begin(), scenes.end());
    std::vector<std::string> failures(work.size());
    std::atomic<std::size_t> next{0};
    const auto makeClips = [&] {
        for (std::size_t i = next++; i < work.size(); i = next++) {
            ClipMaker maker;
            maker.scene = work[i];
            maker.framesPerSecond = form.test ? testFramesPerSecond : framesPerSecond;
            maker.noise = form.noise;
            for (int quality = 0; quality < qualityCount; ++quality)
                maker.fileNames[static_cast<std::size_t>(quality)] = videoFile(work[i], quality);
            maker.secondDone = [&bar] { bar.step(); };
            failures[i] = maker.run();
            if (failures[i].empty() && !openScene(work[i]))
                failures[i] = "cannot read back " + videoFile(work[i], 0);
        }
    };
    const unsigned processors = std::max(1u, std::thread::hardware_concurrency());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < std::min<std::size_t>(processors, work.size()); ++i)
        threads.emplace_back(makeClips);
    for (std::thread &thread : threads)
        thread.join();
    for (const std::string &failure : failures) {
        if (!failure.empty())
            return failure;
    }
    return {};
}

std::shared_ptr<const Clip> ClipStore::video(int scene, int quality) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = videos.find(scene);
    return found == videos.end() ? nullptr : found->second[static_cast<std::size_t>(quality)];
}

std::shared_ptr<const Clip> ClipStore::sound() const
{
    return soundClip;
}

} // namespace ZorvaneDemo
