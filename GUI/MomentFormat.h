// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

namespace ZorvaneClient {
namespace GUI {

/// How people write a local moment: a date in their own order, then the time.
struct MomentFormat {
    QString date; ///< with all digits, such as "dd/MM/yyyy"

    QString text(const QDateTime &moment) const;
    /// Takes single digits, a date parted by strokes, dots or hyphens, and a time without seconds
    /// or without a date, which is one of `day`.
    /// Invalid if `text` is anything else, or a time that the clock skips.
    QDateTime moment(const QString &text, QDate day) const;
};

} // namespace GUI
} // namespace ZorvaneClient
