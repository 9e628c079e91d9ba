// SPDX-License-Identifier: MIT
#include "server/Options.h"

#include <map>

namespace ZorvaneServer {

const char *Options::usage()
{
    return "usage: zorvane-server [--config FILE] [COMMAND]\n"
           "\n"
           "Without a command it records the cameras of the file and shows them to the client.\n"
           "\n"
           "  check             says what is wrong with the file\n"
           "  add               asks for a camera, tries it and writes it into the file\n"
           "  probe ADDRESS     tells what a camera sends\n"
           "  prepare [FOLDER]  makes the folder, or the file's, one for an archive\n"
           "  client-files DIR  writes what a client needs that is started in DIR\n"
           "  status            tells how the server that runs is doing\n"
           "  --help            says this\n"
           "  --version         says the version\n";
}

bool Options::parse(int count, char **arguments)
{
    enum class Argument { None, Maybe, Needed };
    struct Form {
        Command command;
        Argument argument;
    };
    const std::map<std::string, Form> forms{
        {"check", {Command::Check, Argument::None}},
        {"add", {Command::Add, Argument::None}},
        {"probe", {Command::Probe, Argument::Needed}},
        {"prepare", {Command::Prepare, Argument::Maybe}},
        {"client-files", {Command::ClientFiles, Argument::Needed}},
        {"status", {Command::Status, Argument::None}},
        {"--help", {Command::Help, Argument::None}},
        {"--version", {Command::Version, Argument::None}}};
    Form form{Command::Run, Argument::None};
    bool hasCommand = false;
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        const auto found = forms.find(word);
        if (word == "--config" && i + 1 < count) {
            configFile = arguments[++i];
        } else if (found != forms.end() && !hasCommand) {
            form = found->second;
            hasCommand = true;
        } else if (form.argument != Argument::None && argument.empty() && !word.empty()) {
            argument = word;
        } else {
            return false;
        }
    }
    command = form.command;
    return form.argument != Argument::Needed || !argument.empty();
}

} // namespace ZorvaneServer
