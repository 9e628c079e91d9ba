// SPDX-License-Identifier: MIT
#include "GUI/Access/SpokenTime.h"

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace ZorvaneClient {
namespace GUI {

QString spokenTime(const QDateTime &moment)
{
    const QString date = QLocale().toString(moment.date(), QLocale::LongFormat);
    return date + moment.time().toString(QStringLiteral(", hh:mm:ss"));
}

} // namespace GUI
} // namespace ZorvaneClient
