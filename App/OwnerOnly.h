// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace ZorvaneClient {
namespace App {

/// While it lives, files that are made are for their owner only, also in the moment before
/// permissions could be set. For the whole process.
class OwnerOnlyFiles
{
    Q_DISABLE_COPY(OwnerOnlyFiles)

public:
#ifdef Q_OS_UNIX
    OwnerOnlyFiles() : previous(::umask(S_IRWXG | S_IRWXO))
    {
    }
    ~OwnerOnlyFiles()
    {
        ::umask(previous);
    }

private:
    mode_t previous;
#else
    OwnerOnlyFiles() = default;
#endif
};

/// Takes everybody else's access to a file that exists; what its owner may do stays as it is.
/// A device in its place is left alone.
void restrictToOwner(const QString &fileName);

/// Replaces the content of `fileName` as a whole, for its owner only: a crash leaves the old
/// content or the new. Where the folder takes no new file the content is written in place.
/// False when it could not be written.
bool writeForOwner(const QString &fileName, const QByteArray &content);

} // namespace App
} // namespace ZorvaneClient
