// SPDX-License-Identifier: MIT
#include "server/ConfigurationParser.h"

#include <algorithm>

#include <arpa/inet.h>

extern "C" {
#include <libavutil/avstring.h>
}

#include "server/UtcTime.h"

namespace ZorvaneServer {

namespace {

constexpr char blanks[] = " \t\r";
constexpr char byteOrderMark[] = "\xef\xbb\xbf"; ///< that some editors begin UTF-8 with
constexpr char cameraWord[] = "camera";
constexpr std::size_t longestName = 100;
constexpr std::int64_t mostDays = 36'500;
constexpr int mostPercent = 90;
constexpr int lastPort = 65'535;

std::string trimmed(const std::string &text)
{
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

/// A number of bytes, as "500G" or "1.5T" would be without the point.
std::optional<std::int64_t> readBytes(std::string text)
{
    constexpr std::string_view units = "KMGT";
    int power = 0;
    if (const auto unit = text.empty() ? std::string_view::npos : units.find(text.back());
        unit != std::string_view::npos) {
        power = static_cast<int>(unit) + 1;
        text.pop_back();
    }
    const auto number = readDigits(text);
    constexpr int bitsOfUnit = 10;
    constexpr std::int64_t most = std::int64_t(1) << 60;
    if (!number || *number == 0 || *number > most >> power * bitsOfUnit)
        return {};
    return *number << power * bitsOfUnit;
}

bool isUtf8(const std::string &text)
{
    const auto *at = reinterpret_cast<const std::uint8_t *>(text.data());
    const std::uint8_t *end = at + text.size();
    std::int32_t letter = 0;
    while (at < end) {
        if (av_utf8_decode(&letter, &at, end, 0) < 0)
            return false;
    }
    return true;
}

bool isAddress(const std::string &text)
{
    in_addr address{};
    return inet_pton(AF_INET, text.c_str(), &address) == 1;
}

bool isControl(unsigned char letter)
{
    return letter < ' ' || letter == 0x7f;
}

/// Empty when it can be a value. What it says doesn't repeat it, as it may hold a password.
std::string objectionToValue(const std::string &value)
{
    if (value.empty())
        return "no value";
    if (value.find(" #") != std::string::npos || value.find("\t#") != std::string::npos)
        return "a blank and \"#\" in its value: a remark has a line of its own";
    if (std::any_of(value.begin(), value.end(), isControl))
        return "control characters in its value";
    return {};
}

/// Empty when it can be the name of a folder.
std::string objectionToName(const std::string &name)
{
    if (name.empty() || name.size() > longestName)
        return "a camera needs a name of 1 to 100 bytes";
    if (!isUtf8(name))
        return "a camera's name is UTF-8";
    if (name.front() == '.')
        return "a camera's name doesn't begin with a dot";
    const bool isOdd =
        name.find('/') != std::string::npos || std::any_of(name.begin(), name.end(), isControl);
    return isOdd ? "a camera's name has no slash and no control characters" : std::string();
}

} // namespace

void ConfigurationParser::errorAt(int line, const std::string &what)
{
    target.errors.push_back(fileName + ':' + std::to_string(line) + ": " + what);
}

void ConfigurationParser::take(std::string line)
{
    if (++lineNumber == 1 && line.rfind(byteOrderMark, 0) == 0)
        line.erase(0, sizeof byteOrderMark - 1);
    line = trimmed(line);
    if (line.empty() || line.front() == '#' || line.front() == ';')
        return;
    if (line.front() == '[') {
        if (line.back() == ']')
            beginSection(trimmed(line.substr(1, line.size() - 2)));
        else
            error("a section ends with \"]\"");
        return;
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos)
        error("neither \"[section]\" nor \"key = value\"");
    else
        set(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
}

void ConfigurationParser::beginSection(const std::string &title)
{
    endCamera();
    seenKeys.clear();
    section = Section::Unknown;
    const std::size_t word = title.find_first_of(blanks);
    if (title == "archive")
        section = Section::Archive;
    else if (title == "service")
        section = Section::Service;
    else if (title.substr(0, word) == cameraWord)
        beginCamera(word == std::string::npos ? std::string() : trimmed(title.substr(word)));
    else
        error("no section \"" + title + "\": there are \"archive\", \"service\" and " +
              "\"camera NAME\"");
}

void ConfigurationParser::beginCamera(const std::string &name)
{
    section = Section::Camera;
    shared = {};
    if (const std::string objection = objectionToName(name); !objection.empty())
        error(objection);
    for (const Configuration::Camera &camera : target.cameras) {
        if (camera.name == name)
            error("camera \"" + name + "\" stands in line " + std::to_string(camera.line) +
                  " already");
    }
    target.cameras.push_back({name, {}, {}, lineNumber});
}

void ConfigurationParser::set(const std::string &key, const std::string &value)
{
    if (section == Section::Unknown)
        return;
    // Not repeated: it may hold the first part of a password.
    if (key.find("://") != std::string::npos) {
        error("an address stands behind \"url = \" or \"sub = \"");
        return;
    }
    if (section == Section::None) {
        error("\"" + key + "\" stands before the first section");
        return;
    }
    if (!seenKeys.insert(key).second)
        error("\"" + key + "\" stands twice in this section");
    if (const std::string objection = objectionToValue(value); !objection.empty()) {
        error("\"" + key + "\" has " + objection);
        return;
    }
    if (!setIn(key, value))
        error("no key \"" + key + "\" in this section");
}

/// False when the section has no such key.
bool ConfigurationParser::setIn(const std::string &key, const std::string &value)
{
    switch (section) {
    case Section::Archive:
        return setArchive(key, value);
    case Section::Service:
        return setService(key, value);
    default:
        return setCamera(key, value);
    }
}

void ConfigurationParser::setFolder(std::string *folder, const std::string &key,
                                    const std::string &value)
{
    *folder = value;
    if (value.front() != '/')
        error('"' + key + "\" is a whole path, from \"/\" on");
}

void ConfigurationParser::setPort(int *port, const std::string &key, const std::string &value)
{
    portLine = lineNumber;
    const auto number = readDigits(value);
    if (number && *number >= 1 && *number <= lastPort)
        *port = static_cast<int>(*number);
    else
        error('"' + key + "\" is a number from 1 to 65535");
}

bool ConfigurationParser::setService(const std::string &key, const std::string &value)
{
    Configuration::Service &service = target.service;
    if (key == "state") {
        setFolder(&service.stateFolder, key, value);
    } else if (key == "address") {
        service.address = value;
        if (!isAddress(value))
            error("\"address\" is one such as 127.0.0.1, or 0.0.0.0 for all");
    } else if (key == "port") {
        setPort(&service.port, key, value);
    } else if (key == "cameras_port") {
        setPort(&service.camerasPort, key, value);
    } else {
        return false;
    }
    return true;
}

bool ConfigurationParser::setArchive(const std::string &key, const std::string &value)
{
    Configuration::Archive &archive = target.archive;
    if (key == "folder") {
        setFolder(&archive.folder, key, value);
    } else if (key == "days") {
        archive.days = readDigits(value);
        if (!archive.days || *archive.days < 1 || *archive.days > mostDays)
            error("\"days\" is a number from 1 to 36500");
    } else if (key == "bytes") {
        archive.bytes = readBytes(value);
        if (!archive.bytes)
            error("\"bytes\" is a number such as 500G");
    } else if (key == "keep_free") {
        const bool isShare = value.back() == '%';
        const auto share = readDigits(isShare ? value.substr(0, value.size() - 1) : std::string());
        const auto bytes = readBytes(value);
        if (share && *share <= mostPercent)
            archive.keepFreePercent = static_cast<int>(*share);
        else if (bytes)
            archive.keepFreeBytes = *bytes;
        else
            error("\"keep_free\" is a number such as 20G or 5%");
    } else {
        return false;
    }
    return true;
}

bool ConfigurationParser::setCamera(const std::string &key, const std::string &value)
{
    Configuration::Camera &camera = target.cameras.back();
    if (key == "url") {
        setUrl(&camera.main, value);
    } else if (key == "sub") {
        setUrl(&camera.sub.emplace(), value);
    } else if (key == "transport") {
        shared.overUdp = value == "udp";
        if (value != "udp" && value != "tcp")
            error("\"transport\" is tcp or udp");
    } else if (key == "sound") {
        shared.withSound = value == "yes";
        if (value != "yes" && value != "no")
            error("\"sound\" is yes or no");
    } else {
        return false;
    }
    return true;
}

void ConfigurationParser::setUrl(CameraSource *source, const std::string &value)
{
    source->url = value;
    // Not the address itself: it may hold a password.
    if (source->scheme().empty())
        error("not an address: it begins with rtsp://, rtsps://, http://, https:// or file:");
}

void ConfigurationParser::endCamera()
{
    if (section != Section::Camera)
        return;
    Configuration::Camera &camera = target.cameras.back();
    if (seenKeys.count("url") == 0)
        errorAt(camera.line, "camera \"" + camera.name + "\" has no \"url\"");
    for (CameraSource *source : {&camera.main, camera.sub ? &*camera.sub : nullptr}) {
        if (source) {
            source->overUdp = shared.overUdp;
            source->withSound = shared.withSound;
        }
    }
}

void ConfigurationParser::finish()
{
    endCamera();
    if (target.service.port == target.service.camerasPort)
        errorAt(portLine, "\"port\" and \"cameras_port\" are the same");
    if (target.cameras.empty())
        error("there is no camera: write a line \"[camera NAME]\", and below it \"url = ...\"");
}

} // namespace ZorvaneServer
