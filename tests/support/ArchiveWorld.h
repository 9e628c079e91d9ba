// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "API/ArchiveRecord.h"
#include "API/Types.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/ScriptedService.h"

namespace ZorvaneClient::Tests {

/// `count` records of `length` seconds, one every `period` seconds from the begin of `day`.
QList<API::ArchiveRecord> evenRecords(QDate day, int count, int period, int length);

/// A LAN server and a service on loopback, and cameras of theirs whose archive is what the
/// test says. Cameras have their number as identity; a number belongs to one camera.
class ArchiveWorld
{
    Q_DISABLE_COPY(ArchiveWorld)

public:
    ArchiveWorld();

    bool start() { return lan.start() && service.start(); }
    /// Forgets cameras' records, refusals and requests.
    void reset();

    /// What the archive of camera `id` holds, on any day.
    void setRecords(int id, const QList<API::ArchiveRecord> &records);
    /// Requests for the records of camera `id` fail until setRecords().
    void refuseRecords(int id) { refused.append(id); }

    /// A LAN camera that has asked for nothing yet.
    API::CameraPtr localCamera(int id);
    /// The same of the service, with or without the right to its archive.
    API::CameraPtr cloudCamera(int id, bool archiveShared = true);
    /// A LAN camera that has received these records for `day`; null if it didn't.
    API::CameraPtr loadedCamera(int id, QDate day, const QList<API::ArchiveRecord> &records);
    /// Asks for the records of `day` and waits for them.
    static bool load(const API::CameraPtr &camera, QDate day);

    /// The days that were asked for of camera `id`, in order.
    QList<QDate> requestedDays(int id) const;

private:
    WireReply reply(const WireRequest &request);

    MisbehavingServer lan;
    ScriptedService service;
    QHash<int, QList<API::ArchiveRecord>> archives;
    QList<int> refused;
};

} // namespace ZorvaneClient::Tests
