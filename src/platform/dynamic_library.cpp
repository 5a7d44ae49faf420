// Loaded libraries are counted here as well as by the dynamic loader, so
// that a handle freed more often than it was loaded (as copies of a library
// object do) never reaches dlclose with a handle it has let go of.
#include <dlfcn.h>

#include <mutex>
#include <unordered_map>

#include "qor/tools/platform/library.h"
#include "utf8.h"

namespace qor::tools {

namespace {

std::mutex gLoadedLock;
std::unordered_map<void *, int> gLoaded;

}  // namespace

HINSTANCE LoadLibraryW(char16_t const *path) {
    if (!path || !*path) return nullptr;
    void *module = ::dlopen(detail::ToUtf8(path).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module) return nullptr;
    std::lock_guard guard(gLoadedLock);
    ++gLoaded[module];
    return module;
}

bool FreeLibrary(HINSTANCE module) {
    {
        std::lock_guard guard(gLoadedLock);
        auto found = gLoaded.find(module);
        if (found == gLoaded.end()) return false;
        if (--found->second == 0) gLoaded.erase(found);
    }
    return ::dlclose(module) == 0;
}

void *GetProcAddress(HINSTANCE module, char const *name) {
    if (!module || !name) return nullptr;
    {
        std::lock_guard guard(gLoadedLock);
        if (!gLoaded.count(module)) return nullptr;
    }
    return ::dlsym(module, name);
}

}  // namespace qor::tools
