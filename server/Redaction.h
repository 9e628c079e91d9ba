// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace ZorvaneServer {

/// Takes secrets out of texts that others will read.
class Redaction
{
public:
    /// What the address holds of secrets is hidden from now on wherever it stands.
    void learn(const std::string &url);
    std::string hide(std::string text) const;

private:
    void addWithPieces(const std::string &secret);
    void add(const std::string &secret);

    std::vector<std::string> secrets;
};

/// The text with "%40" and the like as what they stand for.
std::string unescaped(const std::string &text);

} // namespace ZorvaneServer
