// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

namespace ZorvaneClient {
namespace API {
namespace Internal {

// What the service says of servers and cameras, as this program understands it.

struct PaidState {
    bool paid = false;
    QString activeService; ///< the word behind `active`, a service's name or a truth value
};

/// From the camera's `services`.
PaidState paidStateOf(const QVariantMap &services);

/// CameraRight bits; words that are not known give none.
int rightsOf(const QVariantList &words);

/// True if `word` is among the functions that a server says it has.
bool hasFunction(const QVariantMap &info, const QString &word);

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
