// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QtGlobal>

namespace ZorvaneClient {
namespace Tests {

/// While it lives, takes what is logged from the console into a list. When several live, each
/// gets all lines; the youngest goes first.
class LogCapture
{
    Q_DISABLE_COPY(LogCapture)

public:
    LogCapture();
    ~LogCapture();

    QStringList lines() const;
    /// The lines that begin with `text`.
    QStringList linesOf(const QString &text) const;

private:
    static void capture(QtMsgType type, const QMessageLogContext &context, const QString &text);

    QStringList captured;
    QtMessageHandler previous;
};

} // namespace Tests
} // namespace ZorvaneClient
