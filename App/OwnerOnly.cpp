// SPDX-License-Identifier: MIT
#include "App/OwnerOnly.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace ZorvaneClient {
namespace App {

void restrictToOwner(const QString &fileName)
{
    constexpr auto owner = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    if (QFileInfo(fileName).isFile())
        QFile::setPermissions(fileName, QFile::permissions(fileName) & owner);
}

bool writeForOwner(const QString &fileName, const QByteArray &content)
{
    const OwnerOnlyFiles guard; // where the new file has a name before it is whole
    QSaveFile file(fileName);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    // commit() does not look at what the last of the buffer came to: on a full disk it would put
    // a torn file in place.
    return file.write(content) == content.size() && file.flush() && file.commit();
}

} // namespace App
} // namespace ZorvaneClient
