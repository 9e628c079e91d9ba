// SPDX-License-Identifier: MIT
#include "API/PrivateFile.h"

#include <QSaveFile>

namespace ZorvaneClient {
namespace API {
namespace Internal {

bool writePrivateFile(const QString &fileName, const QByteArray &content)
{
    QSaveFile file(fileName);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    return file.write(content) == content.size() && file.commit();
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
