// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QVariant>

#include <cstddef>
#include <cstdint>

/// Called over and over with other bytes; a crash or a sanitizer's word is a finding.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

inline QByteArray bytesOf(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size));
}

inline QVariant jsonOf(const uint8_t *data, size_t size)
{
    return QJsonDocument::fromJson(bytesOf(data, size)).toVariant();
}
