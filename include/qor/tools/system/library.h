// system::library: a dynamic library loaded for the life of the object.
// Copies hold the same handle without loading again, and each frees it at
// its end (a second free does nothing), so a copy is only for handing over.
//
//   system::library plugin(u"/usr/lib/app/plugin.so");
//   if (plugin.Module()) auto *entry = GetProcAddress(plugin.Module(), "entry");
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/platform/library.h"

namespace qor::tools::system {

class QOR_TOOLS_API library {
public:
    // Loads the library at `path` (a null module on failure); copies hold the
    // same handle.
    explicit library(char16_t const *path) : mModule(LoadLibraryW(path)) {}
    library(library const &) = default;
    library &operator=(library const &) = default;
    virtual ~library() {
        if (mModule) FreeLibrary(mModule);
    }

    // Null when the load failed.
    HINSTANCE Module() const { return mModule; }

    HINSTANCE mModule;  // the loaded module, or null
};

}  // namespace qor::tools::system
