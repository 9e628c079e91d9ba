// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QObject>
#include <QTimer>

namespace ZorvaneClient {
namespace API {

/// Whether the service answers, by the exchanges with its API host that are made anyway. An
/// answer that says no is one. An exchange that hangs is left alone; when it has been waited for
/// too long, and no other was answered meanwhile, the service counts as silent. GUI thread only.
class ServiceLink : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ServiceLink)

public:
    /// The one of the process.
    static ServiceLink &instance();

    /// When an exchange failed first since the last answer, or the first that hangs was begun; null
    /// while the service answers.
    QDateTime silentSince() const { return since; }
    /// An exchange begins.
    void setAsked();
    /// The outcome of an exchange.
    void setAnswered(bool isAnswered);

signals:
    void changed();

private:
    ServiceLink();
    void setSilentSince(const QDateTime &moment);

    QDateTime since;
    QDateTime asked; ///< when `patience` began
    QTimer patience{this};
};

} // namespace API
} // namespace ZorvaneClient
