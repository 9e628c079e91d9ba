// SPDX-License-Identifier: MIT
#include "App/FreedMemory.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace ZorvaneClient {
namespace App {

void giveBackFreedMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace App
} // namespace ZorvaneClient
