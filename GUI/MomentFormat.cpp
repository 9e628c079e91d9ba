// SPDX-License-Identifier: MIT
#include "GUI/MomentFormat.h"

#include <QRegularExpression>

namespace ZorvaneClient {
namespace GUI {

namespace {

/// The numbers of a date count, not what stands between them.
QString dotted(QString date)
{
    static const QRegularExpression separator(QStringLiteral("[/-]"));
    return date.replace(separator, QStringLiteral("."));
}

} // namespace

QString MomentFormat::text(const QDateTime &moment) const
{
    return moment.toString(date + QStringLiteral(" hh:mm:ss"));
}

QDateTime MomentFormat::moment(const QString &text, QDate day) const
{
    QStringList words = text.simplified().split(QLatin1Char(' '));
    const QString clock = words.takeLast();
    QTime time = QTime::fromString(clock, QStringLiteral("h:m:s"));
    if (!time.isValid())
        time = QTime::fromString(clock, QStringLiteral("h:m"));

    QString shortDate = date;
    shortDate.replace(QLatin1String("dd"), QLatin1String("d"));
    shortDate.replace(QLatin1String("MM"), QLatin1String("M"));
    if (!words.isEmpty())
        day = QDate::fromString(dotted(words.join(QLatin1Char(' '))), dotted(shortDate));
    // Without this an invalid time would be midnight.
    return time.isValid() ? QDateTime(day, time) : QDateTime();
}

} // namespace GUI
} // namespace ZorvaneClient
