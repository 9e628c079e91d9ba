// SPDX-License-Identifier: MIT
#include "demo/ClipStore.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <thread>
#include <utility>
#include <vector>

#include "demo/ClipMaker.h"
#include "demo/FolderLock.h"
#include "demo/ProgressBar.h"
#include "demo/SoundMaker.h"

namespace ZorvaneDemo {

namespace {

constexpr int framesPerSecond = 25;
constexpr int testFramesPerSecond = 10;

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
    if (!lock.isHeld())
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
