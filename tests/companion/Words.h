// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include <chrono>

inline std::chrono::milliseconds millisecondsOf(const QString &number)
{
    return std::chrono::milliseconds(number.toInt());
}

/// What each of the words brings to be told, where it does.
template <typename Tell>
QString tellAll(const QString &words, Tell tell)
{
    QStringList found;
    for (const QString &word : words.split(' '))
        found << tell(word);
    found.removeAll(QString());
    return found.join(' ');
}
