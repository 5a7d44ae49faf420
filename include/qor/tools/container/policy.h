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

// Gives nothing back: the thing belongs to someone else.
struct QOR_TOOLS_API none {
    // Does nothing.
    template <typename T>
    static void GiveBack(T *) noexcept {}
};

// Deletes what it gives back.
struct QOR_TOOLS_API object {
    // delete p.
    template <typename T>
    static void GiveBack(T *p) { delete p; }
};

// Releases the interface it gives back.
struct QOR_TOOLS_API com {
    // p->Release().
    template <typename T>
    static void GiveBack(T *p) { p->Release(); }
};

namespace array {

// Common base of array policies: the block comes from the array allocator.
struct QOR_TOOLS_API _base {
    // A block of `bytes` bytes (null for 0), and its freeing.
    static void *AllocBlock(std::size_t bytes) { return ArrayAlloc(bytes); }
    static void FreeBlock(void *block) noexcept { ArrayFree(block); }
};

// Elements that stand in the block: destroyed in place.
struct QOR_TOOLS_API object : _base {
    // Runs the element's destructor (the mark does not matter).
    template <typename T>
    static void Destroy(T &element, bool) { element.~T(); }
};

// Elements that need nothing: plain values, or pointers that are not owned.
struct QOR_TOOLS_API data : _base {
    // Does nothing.
    template <typename T>
    static void Destroy(T &, bool) noexcept {}
};

}  // namespace array

namespace set {

// Pointers to elements that the set owns.
struct QOR_TOOLS_API object : array::data {
    // Deletes the element unless the body's mark is set, and clears the slot.
    template <typename T>
    static void Destroy(T *&element, bool reference) {
        if (!reference) delete element;
        element = nullptr;
    }
};

}  // namespace set

}  // namespace qor::tools::container::pif
