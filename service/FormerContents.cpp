// SPDX-License-Identifier: MIT
#include "service/FormerContents.h"

#include <cstdio>
#include <fstream>
#include <sstream>

#include <unistd.h>

#include "service/OwnerFile.h"

namespace ZorvaneService {

namespace {

constexpr int coming = 0; ///< whole, but the others have not made room for it yet

bool exists(const std::string &fileName)
{
    return access(fileName.c_str(), F_OK) == 0;
}

std::string contentOf(const std::string &fileName)
{
    std::ostringstream content;
    content << std::ifstream(fileName).rdbuf();
    return content.str();
}

} // namespace

/// Makes the coming one the newest, if there is one. A kill in between leaves a gap, which the
/// next call fills.
bool FormerContents::moveUp() const
{
    if (!exists(nameOf(coming)))
        return true;
    int number = coming + 1;
    while (number < kept && exists(nameOf(number)))
        ++number;
    for (; number > coming; --number) {
        if (std::rename(nameOf(number - 1).c_str(), nameOf(number).c_str()) != 0)
            return false;
    }
    return true;
}

bool FormerContents::keep(const std::string &content) const
{
    // For one who was killed before, here or before the file itself was changed.
    if (!moveUp())
        return false;
    if (contentOf(nameOf(coming + 1)) == content)
        return true;
    return writeOwnerFile(nameOf(coming), content) && moveUp();
}

} // namespace ZorvaneService
