// Umbrella header: everything QorTools offers.
#pragma once

#include "qor/tools/algorithm/singleton.h"
#include "qor/tools/allocator.h"
#include "qor/tools/container/array.h"
#include "qor/tools/container/base.h"
#include "qor/tools/container/btree.h"
#include "qor/tools/container/list.h"
#include "qor/tools/container/policy.h"
#include "qor/tools/container/ptr.h"
#include "qor/tools/container/sptr.h"
#include "qor/tools/container/two.h"
#include "qor/tools/exception.h"
#include "qor/tools/platform/com.h"
#include "qor/tools/platform/types.h"
#include "qor/tools/string.h"
