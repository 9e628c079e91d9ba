// SPDX-License-Identifier: MIT
#include "App/OwnerOnly.h"

#include <QFile>
#include <QFileInfo>

namespace ZorvaneClient {
namespace App {

void restrictToOwner(const QString &fileName)
{
    if (QFileInfo(fileName).isFile())
        QFile::setPermissions(fileName, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

} // namespace App
} // namespace ZorvaneClient
