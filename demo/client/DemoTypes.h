// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace ZorvaneDemo {

/// One camera of the running demo service, as its control interface lists it.
struct DemoCamera {
    QString server; ///< for a LAN server "host:port"
    int camera = 0;
    int number = 0; ///< what the strip in its pictures says
    QString name;
    QString serverName;
    bool online = false;
    bool paid = false;
    bool live = false;    ///< the right
    bool archive = false; ///< the right
    bool lan = false;

    /// By the objects that the control interface lists.
    static DemoCamera from(const QJsonObject &server, const QJsonObject &camera);
};

/// One request that the demo service received.
struct DemoRequest {
    QString method;
    QString path;  ///< as it stood on the wire
    QString query; ///< as it stood on the wire
    QByteArray body;

    static DemoRequest from(const QJsonObject &json);
};

/// What goes wrong on purpose; docs/demo-service.md tells the kinds.
struct DemoFault {
    QString kind; ///< close, stall, truncate, garble, slow, delay, empty, redirect, nonjson, status
    QString route;    ///< path, or its beginning when it ends in '*'; empty: every path
    QString listener; ///< "api", "streaming", "flv" or "lan"; empty: all
    QString server;   ///< only requests for this server; empty: all
    int camera = -1;  ///< only requests for this camera; -1: all
    int times = -1;   ///< how many requests it hits; -1: all until cleared
    qint64 value = 0; ///< bytes a second, milliseconds or status, by kind
    qint64 after = 0; ///< bytes of the body that are let through first
    QString location; ///< where a redirect points

    QJsonObject toJson() const;
};

} // namespace ZorvaneDemo
