// Umbrella header: everything QorTools offers.
#pragma once

#include "qor/tools/allocator.h"
#include "qor/tools/exception.h"
#include "qor/tools/platform/types.h"
#include "qor/tools/string.h"
