// Dynamic libraries: LoadLibraryW is dlopen (all symbols bound at load, kept
// to the library), FreeLibrary dlclose. A handle is freed at most as often as
// it was loaded: freeing it once more answers false and does nothing.
#pragma once

#include "qor/tools/export.h"

namespace qor::tools {

using HINSTANCE = void *;
using HMODULE = HINSTANCE;

// Null when the file cannot be loaded (dlerror's reason is not kept).
QOR_TOOLS_API HINSTANCE LoadLibraryW(char16_t const *path);
QOR_TOOLS_API bool FreeLibrary(HINSTANCE module);
QOR_TOOLS_API void *GetProcAddress(HINSTANCE module, char const *name);

}  // namespace qor::tools
