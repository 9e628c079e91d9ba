// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "API/ArchiveRecord.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneClient::API;

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QVariant reply = jsonOf(data, size);
    const QDate date(2026, 3, 29);
    const QList<ArchiveRecord> records = archiveRecordsOfDay(reply, date);
    for (const ArchiveRecord &record : records) {
        if (!record.start.isValid() || !record.end.isValid())
            std::abort();
    }
    recordCountsByDay(reply);
    return 0;
}
