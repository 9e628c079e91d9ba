// SPDX-License-Identifier: MIT
#include "App/OwnerOnly.h"

#include <QFile>
#include <QFileInfo>

namespace ZorvaneClient {
namespace App {

void restrictToOwner(const QString &fileName)
{
    constexpr auto owner = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    if (QFileInfo(fileName).isFile())
        QFile::setPermissions(fileName, QFile::permissions(fileName) & owner);
}

} // namespace App
} // namespace ZorvaneClient
