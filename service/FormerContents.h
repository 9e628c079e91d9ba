// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ZorvaneService {

/// What a file held before, beside it: "NAME.1" is the newest, "NAME.10" the oldest.
class FormerContents
{
public:
    static constexpr int kept = 10;

    explicit FormerContents(std::string name) : base(std::move(name)) {}

    /// To be called before the file is changed, with what it holds. The ten newest are there at
    /// any moment, as whole files: one that a kill kept from becoming "NAME.1" is "NAME.0".
    /// False, with errno, when it can't be kept; that costs none of the others.
    bool keep(const std::string &content) const;

private:
    std::string nameOf(int number) const { return base + '.' + std::to_string(number); }
    bool moveUp() const;

    const std::string base;
};

} // namespace ZorvaneService
