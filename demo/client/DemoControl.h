// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QObject>
#include <QPair>
#include <QVector>

#include "demo/client/DemoTypes.h"

namespace ZorvaneDemo {

/// The control interface of a running demo service. Every call blocks in a local event loop
/// until the service has answered; a call that fails returns its empty value and leaves the
/// reason in `errorString()`.
class DemoControl : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(DemoControl)

public:
    using QObject::QObject;

    QString errorString() const { return error; }

    QVector<DemoCamera> cameras();
    /// The camera of that number; number 0 when there is none.
    DemoCamera camera(int number);

    bool setCameraOnline(const QString &server, int camera, bool online);
    bool setServerOnline(const QString &server, bool online);
    /// Sets any of: online, name, paid, rights (array), rotation, mirror.
    bool setCamera(const QString &server, int camera, const QJsonObject &values);
    /// Gives the camera these records, each begin and end in milliseconds since the epoch,
    /// in place of the made-up ones.
    bool setArchive(const DemoCamera &camera, const QVector<QPair<qint64, qint64>> &records);
    /// Sets any of: online, name, live, archive.
    bool setServer(const QString &server, const QJsonObject &values);
    /// Returns the new server's id.
    QString addServer(const QString &name, int cameras);

    bool dropSessions();
    /// Returns the fault's number, 0 on failure.
    int addFault(const DemoFault &fault);
    bool clearFaults();

    /// Requests received so far whose path is `path`; an empty path: all.
    QVector<DemoRequest> requests(const QString &path = QString());
    int requestCount(const QString &path);
    /// How many FLV streams are being sent.
    int openStreams();
    /// Faults off, sign-in accepted, requests forgotten, the world as at the start.
    bool reset();

    /// One exchange with the control interface; an empty `body` with GET.
    QJsonObject control(const QByteArray &method, const QString &path, const QJsonObject &body);

protected:
    virtual int controlPort() const = 0;

    QString error;

private:
    /// True if it was accepted.
    bool post(const char *path, const QJsonObject &body);
};

} // namespace ZorvaneDemo
