// SPDX-License-Identifier: MIT
#include "tests/support/Table.h"

namespace ZorvaneClient::Tests::TableDetail {

std::vector<const char *> columns;

} // namespace ZorvaneClient::Tests::TableDetail
