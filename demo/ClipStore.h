// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "demo/Clip.h"
#include "demo/ClipForm.h"
#include "demo/PictureSizes.h"
#include "demo/ServiceWords.h"

namespace ZorvaneDemo {

/// The clips in the cache folder. Several processes may share the folder: one of them makes
/// what is missing while the others wait for it.
class ClipStore
{
public:
    ClipStore(std::string folder, ClipForm form);

    /// Makes the clips of these scenes that are missing, in parallel, with a progress bar on
    /// standard error, and opens them. Empty on success, else what failed.
    std::string prepare(const std::set<int> &scenes);

    /// A clip that was prepared.
    std::shared_ptr<const Clip> video(int scene, int quality) const;
    std::shared_ptr<const Clip> sound() const;

private:
    std::string videoFile(int scene, int quality) const;
    std::string soundFile() const;
    bool openScene(int scene);
    std::string makeMissing(const std::set<int> &scenes);

    std::string folder;
    ClipForm form;
    mutable std::mutex mutex;
    std::map<int, std::array<std::shared_ptr<const Clip>, qualityCount>> videos;
    std::shared_ptr<const Clip> soundClip;
};

} // namespace ZorvaneDemo
