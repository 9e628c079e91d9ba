// SPDX-License-Identifier: MIT
#include "server/Configuration.h"
#include "server/Redaction.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneServer;

/// What an address holds of a password, which is said nowhere.
static void tryAddress(const CameraSource &source)
{
    Redaction redaction;
    redaction.learn(source.url);
    const std::string said = redaction.hide("cannot open '" + source.url + "': refused");
    const std::size_t host = source.url.find("://");
    const std::size_t end = source.url.find_first_of(" \t\r\n\"'<>");
    const std::string address = source.url.substr(0, end);
    const std::size_t at = address.rfind('@');
    if (host == std::string::npos || at == std::string::npos || at < host)
        return;
    const std::string user = address.substr(host + 3, at - host - 3);
    const std::size_t colon = user.find(':');
    const std::string password = colon == std::string::npos ? "" : user.substr(colon + 1);
    constexpr std::size_t anyWord = 4;
    if (password.size() >= anyWord && password.find('*') == std::string::npos)
        check(said.find(password) == std::string::npos);
}

/// A file is run with, or each thing that is wrong has its line.
void tryInput(const QByteArray &input)
{
    const auto configuration = Configuration::parse(input.toStdString(), "file");
    for (const std::string &error : configuration.errors)
        check(error.rfind("file:", 0) == 0 && error.find('\n') == std::string::npos);
    for (const Configuration::Camera &camera : configuration.cameras) {
        tryAddress(camera.main);
        if (configuration.errors.empty())
            check(camera.name.find('/') == std::string::npos && !camera.main.scheme().empty());
    }
    tryAddress({input.toStdString()});
}
