// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

namespace ZorvaneClient {
namespace API {
namespace Internal {

// What the service says of a camera in the roster, as this program understands it.

struct PaidState {
    bool paid = false;
    QString activeService; ///< the word behind `active`, a service's name or a truth value
};

/// From the camera's `services`.
PaidState paidStateOf(const QVariantMap &services);

/// CameraRight bits; words that are not known give none.
int rightsOf(const QVariantList &words);

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
