// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QObject>

namespace ZorvaneClient {
namespace API {

/// Whether the service answers, by the exchanges with its API host that are made anyway. An
/// answer that says no is one. GUI thread only.
class ServiceLink : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ServiceLink)

public:
    /// The one of the process.
    static ServiceLink &instance();

    /// When an exchange failed first since the last answer; null while the service answers.
    QDateTime silentSince() const { return since; }
    /// The outcome of an exchange.
    void setAnswered(bool isAnswered);

signals:
    void changed();

private:
    ServiceLink() = default;

    QDateTime since;
};

} // namespace API
} // namespace ZorvaneClient
