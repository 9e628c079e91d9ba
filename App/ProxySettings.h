// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ZorvaneClient {
namespace App {

/// The HTTP proxy that the user has chosen: for the service and for the players' streams, never
/// for LAN servers.
struct ProxySettings {
    bool isOn = false;
    QString host;
    int port = 0;
    QString userName;
    QString password;

    /// What the settings file says; also what it keeps while the proxy is switched off.
    static ProxySettings load();
    /// While switched off only that is written: the file keeps the rest.
    void save() const;
};

} // namespace App
} // namespace ZorvaneClient
