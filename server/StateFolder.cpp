// SPDX-License-Identifier: MIT
#include "server/StateFolder.h"

#include <openssl/rand.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "service/OwnerFile.h"

namespace ZorvaneServer {

namespace {

constexpr mode_t ownerFolder = 0700;
constexpr mode_t ownerFile = 0600;
constexpr std::size_t passwordLength = 20;
constexpr std::string_view letters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

/// Empty when there are no random numbers.
std::string newPassword()
{
    // Bytes beyond the last whole round would make some letters likelier.
    constexpr std::size_t fair = 256 / letters.size() * letters.size();
    std::string password;
    while (password.size() < passwordLength) {
        unsigned char byte = 0;
        if (RAND_bytes(&byte, 1) != 1)
            return {};
        if (byte < fair)
            password += letters[byte % letters.size()];
    }
    return password;
}

} // namespace

std::string StateFolder::make() const
{
    std::error_code code;
    const bool isNew = std::filesystem::create_directories(path, code);
    // Another folder's rights are its owner's affair; each file in it has its own.
    if (!code && (!isNew || chmod(path.c_str(), ownerFolder) == 0))
        return {};
    return path + ": " + (code ? code.message() : std::strerror(errno));
}

std::string StateFolder::lock()
{
    held = Descriptor(open(file("lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ownerFile));
    if (!held)
        return file("lock") + ": " + std::strerror(errno);
    return flock(held.get(), LOCK_EX | LOCK_NB) == 0
               ? std::string()
               : "another zorvane-server runs with the folder " + path;
}

std::string StateFolder::readPassword(std::string *password) const
{
    const std::string name = file("password");
    std::ifstream in(name);
    // A user may have put an own one there.
    if (in && std::getline(in, *password) && !password->empty())
        return {};
    if (in.is_open() ? in.bad() : errno != ENOENT)
        return name + ": " + std::strerror(errno);
    if (in >> *password)
        return name + ": its first line is empty";
    *password = newPassword();
    if (password->empty())
        return "no random numbers";
    return ZorvaneService::writeOwnerFile(name, *password + '\n')
               ? std::string()
               : name + ": " + std::strerror(errno);
}

} // namespace ZorvaneServer
