// SPDX-License-Identifier: MIT
#include "server/AddCamera.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "server/Configuration.h"
#include "server/Log.h"
#include "server/Probe.h"
#include "service/OwnerFile.h"

namespace ZorvaneServer {

namespace {

constexpr char newFile[] = "# The cameras of zorvane-server. See zorvane-server.conf(5).\n";

/// The file's text; of one that is missing, what it begins with. False when it can't be read.
bool readFile(const std::string &fileName, std::string *text)
{
    if (Configuration::readText(fileName, text))
        return true;
    *text = newFile;
    return errno == ENOENT;
}

/// Says all that is wrong with the text.
bool isSound(const std::string &text, const std::string &fileName)
{
    const Configuration configuration = Configuration::parse(text, fileName);
    for (const std::string &error : configuration.errors)
        Log::say(error);
    return configuration.errors.empty();
}

/// Empty also at the end of what is typed.
std::string ask(std::istream &answers, std::ostream &questions, const char *question)
{
    questions << question << std::flush;
    std::string answer;
    std::getline(answers, answer);
    return answer;
}

/// Says what the camera sends.
bool sendsPictures(const std::string &url, std::ostream &report)
{
    Log::keepSecret(url);
    report << "Trying it, for some seconds ...\n" << std::flush;
    std::string found;
    const bool good = probe({url}, &found);
    report << found << std::flush;
    return good;
}

bool refused(const char *why)
{
    Log::say(std::string(why) + "Nothing was added.");
    return false;
}

} // namespace

bool addCamera(std::istream &answers, std::ostream &questions, const std::string &configFile)
{
    std::string text;
    if (!readFile(configFile, &text)) {
        Log::say(configFile + ": " + std::strerror(errno));
        return refused("");
    }
    text += "\n[camera " + ask(answers, questions, "Name of the camera: ") + "]\n";
    // Whatever is wrong so far is said before anything else is asked for.
    if (!isSound(text + "url = file:/\n", configFile))
        return refused("");

    const std::string url = ask(answers, questions, "Address of its stream (rtsp://...): ");
    text += "url = " + url + '\n';
    if (!isSound(text, configFile))
        return refused("");
    if (!sendsPictures(url, questions))
        return refused("This can't be recorded. ");

    const std::string sub =
        ask(answers, questions, "Address of a smaller stream of it (Enter: there is none): ");
    if (!sub.empty()) {
        text += "sub = " + sub + '\n';
        if (!isSound(text, configFile))
            return refused("");
        if (!sendsPictures(sub, questions))
            return refused("This can't be recorded. ");
    }

    std::error_code code;
    std::filesystem::create_directories(std::filesystem::path(configFile).parent_path(), code);
    if (!ZorvaneService::writeOwnerFile(configFile, text)) {
        Log::say(configFile + ": " + std::strerror(errno));
        return refused("");
    }
    questions << "Added to " << configFile
              << ". A server that runs already records it once it is started anew.\n";
    return true;
}

} // namespace ZorvaneServer
