// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "demo/ServiceWords.h"
#include "service/ArchiveCatalogue.h"
#include "service/LocalTime.h"

namespace ZorvaneDemo {

/// The records that camera `number` begins on that day, ascending and apart; the last one may
/// run on into the next day. The number's last digit decides the camera's habit: round the
/// clock, with breaks, at every motion, in working hours or by night. One day in seven, another
/// one for each camera, has none.
std::vector<Record> plannedRecords(int number, const LocalDay &day);

} // namespace ZorvaneDemo
