// Buffered paint: an ARGB32 picture of the target's rectangle, transparent to
// begin with and in the target's coordinates, painted over the target (so
// that what was not drawn leaves the target as it was) when it ends.
// Handles are numbers looked up in a table, so that ending a paint twice (as
// copies of a paint object do) finds nothing the second time.
#include <cairo.h>

#include <cstdint>
#include <mutex>
#include <unordered_map>

#include "qor/tools/platform/uxtheme.h"

namespace qor::tools {

namespace {

struct buffer {
    cairo_t *mTarget;
    cairo_t *mDc;
};

std::mutex gBuffersLock;
std::unordered_map<std::uintptr_t, buffer> gBuffers;
std::uintptr_t gLastBuffer = 0;

}  // namespace

HPAINTBUFFER BeginBufferedPaint(HDC target, tagRECT const *rect, BP_BUFFERFORMAT, BP_PAINTPARAMS const *, HDC *dc) {
    if (dc) *dc = nullptr;
    if (!target || !rect || !dc || cairo_status(target) != CAIRO_STATUS_SUCCESS) return nullptr;
    int width = rect->right - rect->left, height = rect->bottom - rect->top;
    if (width < 1 || height < 1 || width > 32767 || height > 32767) return nullptr;
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_surface_set_device_offset(surface, -rect->left, -rect->top);
    cairo_t *cr = cairo_create(surface);
    cairo_surface_destroy(surface);
    if (cairo_status(cr) != CAIRO_STATUS_SUCCESS) {
        cairo_destroy(cr);
        return nullptr;
    }
    std::lock_guard guard(gBuffersLock);
    gBuffers.emplace(++gLastBuffer, buffer{cairo_reference(target), cr});
    *dc = cr;
    return reinterpret_cast<HPAINTBUFFER>(gLastBuffer);
}

HRESULT EndBufferedPaint(HPAINTBUFFER handle, int update) {
    buffer ended;
    {
        std::lock_guard guard(gBuffersLock);
        auto found = gBuffers.find(reinterpret_cast<std::uintptr_t>(handle));
        if (found == gBuffers.end()) return E_INVALIDARG;
        ended = found->second;
        gBuffers.erase(found);
    }
    if (update) {
        cairo_save(ended.mTarget);
        cairo_set_source_surface(ended.mTarget, cairo_get_target(ended.mDc), 0, 0);
        cairo_paint(ended.mTarget);
        cairo_restore(ended.mTarget);
    }
    cairo_destroy(ended.mDc);
    cairo_destroy(ended.mTarget);
    return S_OK;
}

HRESULT BufferedPaintInit() { return S_OK; }

HRESULT BufferedPaintUnInit() { return S_OK; }

}  // namespace qor::tools
