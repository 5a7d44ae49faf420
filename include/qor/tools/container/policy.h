// Ownership policies: how a body gives back what it holds. A policy is a base
// class of the body, so a policy with per-body data gets it in every body.
//
//   pif::none           nothing is given back: the thing belongs to someone else
//   pif::object         delete
//   pif::com            IUnknown::Release
//   pif::array::object  elements stand in the block and are destroyed in place
//   pif::array::data    pointer elements that are not owned
//   pif::set::object    pointer elements that are deleted unless the body's mark is set
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/allocator.h"

namespace qor::tools::container::pif {

struct QOR_TOOLS_API none {
    template <typename T>
    static void GiveBack(T *) noexcept {}
};

struct QOR_TOOLS_API object {
    template <typename T>
    static void GiveBack(T *p) { delete p; }
};

struct QOR_TOOLS_API com {
    template <typename T>
    static void GiveBack(T *p) { p->Release(); }
};

namespace array {

// Common base of array policies: the block comes from the array allocator.
struct QOR_TOOLS_API _base {
    static void *AllocBlock(std::size_t bytes) { return ArrayAlloc(bytes); }
    static void FreeBlock(void *block) noexcept { ArrayFree(block); }
};

struct QOR_TOOLS_API object : _base {
    template <typename T>
    static void Destroy(T &element, bool) { element.~T(); }
};

struct QOR_TOOLS_API data : _base {
    template <typename T>
    static void Destroy(T &, bool) noexcept {}
};

}  // namespace array

namespace set {

struct QOR_TOOLS_API object : array::data {
    template <typename T>
    static void Destroy(T *&element, bool reference) {
        if (!reference) delete element;
        element = nullptr;
    }
};

}  // namespace set

}  // namespace qor::tools::container::pif
