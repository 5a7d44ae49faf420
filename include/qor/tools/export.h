// QOR_TOOLS_API marks what the shared library exports: its documented
// interface. Everything else is built with hidden visibility and stays inside.
#pragma once

// Exported from the shared library (empty when built as a static library).
#if defined(QORTOOLS_STATIC)
#define QOR_TOOLS_API
#else
#define QOR_TOOLS_API __attribute__((visibility("default")))
#endif

// Members of exported classes that only the library itself calls, and whose
// signatures name its inner types: kept out of the exported interface.
#define QOR_TOOLS_LOCAL __attribute__((visibility("hidden")))
