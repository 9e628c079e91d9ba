// SPDX-License-Identifier: MIT
#include "server/Options.h"

#include <map>

namespace ZorvaneServer {

const char *Options::usage()
{
    return "usage: zorvane-server [--config FILE]          records the cameras of the file\n"
           "       zorvane-server check [--config FILE]    says what is wrong with the file\n"
           "       zorvane-server probe ADDRESS            tells what a camera sends\n"
           "       zorvane-server prepare FOLDER           makes the folder one for an archive\n"
           "       zorvane-server --help | --version\n";
}

bool Options::parse(int count, char **arguments)
{
    const std::map<std::string, Command> commands{{"check", Command::Check},
                                                  {"probe", Command::Probe},
                                                  {"prepare", Command::Prepare},
                                                  {"--help", Command::Help},
                                                  {"--version", Command::Version}};
    bool hasCommand = false;
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        const auto found = commands.find(word);
        if (word == "--config" && i + 1 < count) {
            configFile = arguments[++i];
        } else if (found != commands.end() && !hasCommand) {
            command = found->second;
            hasCommand = true;
        } else if (hasCommand && argument.empty()) {
            argument = word;
        } else {
            return false;
        }
    }
    const bool takesArgument = command == Command::Probe || command == Command::Prepare;
    return takesArgument != argument.empty();
}

} // namespace ZorvaneServer
