// Painting: 10,000 shapes filled and stroked into a 1920 by 1080 image
// through gdiplus::target, against Cairo drawing the same shapes bare; and a
// buffered paint of a full 1920 by 1080 window (a prepared image transferred
// into the buffer, the buffer painted onto the window's context), against
// Cairo doing the same two copies through an image surface of its own.
#include <benchmark/benchmark.h>

#include <cairo.h>

#include <cmath>
#include <cstring>

#include "qor/tools/gdiplus/bdc.h"
#include "qor/tools/gdiplus/factory.h"
#include "qor/tools/gdiplus/font.h"

using namespace qor::tools;

namespace {

constexpr int kWidth = 1920, kHeight = 1080, kShapes = 10000;

void Start() {
    static bool started = [] {
        (new gdiplus::factory)->Initialize();
        return true;
    }();
    (void)started;
}

// Where shape i goes: a pseudo-random box inside the picture.
struct box {
    float x, y, w, h;
};
box BoxOf(int i) {
    unsigned h = unsigned(i) * 2654435761u;
    return {float(h % (kWidth - 120)), float((h >> 12) % (kHeight - 80)), 20.0f + float(h % 100), 10.0f + float((h >> 7) % 70)};
}

std::uint32_t ColourOf(int i) { return 0xFF000000u | (unsigned(i) * 0x9E3779B9u >> 8); }

void ShapesFilledAndStroked(benchmark::State &state) {
    Start();
    gdiplus::target canvas(kWidth, kHeight, Gdiplus::PixelFormat32bppARGB);
    gdiplus::pen outline(2.0f, 0xFF000000ul);
    for (auto _ : state) {
        for (int i = 0; i < kShapes; ++i) {
            box b = BoxOf(i);
            gdiplus::brush fill(static_cast<unsigned long>(ColourOf(i)));
            if (i % 2) {
                canvas->FillRectangle(fill, b.x, b.y, b.w, b.h);
                canvas->DrawRectangle(outline, b.x, b.y, b.w, b.h);
            } else {
                canvas->FillEllipse(fill, b.x, b.y, b.w, b.h);
                canvas->DrawEllipse(outline, b.x, b.y, b.w, b.h);
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * kShapes);
}

void ShapesFilledAndStroked_Anchor(benchmark::State &state) {
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWidth, kHeight);
    cairo_t *cr = cairo_create(surface);
    cairo_set_antialias(cr, CAIRO_ANTIALIAS_NONE);
    cairo_set_line_width(cr, 2.0);
    for (auto _ : state) {
        for (int i = 0; i < kShapes; ++i) {
            box b = BoxOf(i);
            std::uint32_t c = ColourOf(i);
            cairo_set_source_rgb(cr, ((c >> 16) & 0xff) / 255.0, ((c >> 8) & 0xff) / 255.0, (c & 0xff) / 255.0);
            if (i % 2) {
                cairo_rectangle(cr, b.x, b.y, b.w, b.h);
            } else {
                cairo_save(cr);
                cairo_translate(cr, b.x + b.w / 2, b.y + b.h / 2);
                cairo_scale(cr, b.w / 2, b.h / 2);
                cairo_arc(cr, 0, 0, 1, 0, 2 * M_PI);
                cairo_restore(cr);
            }
            cairo_fill_preserve(cr);
            cairo_set_source_rgb(cr, 0, 0, 0);
            cairo_stroke(cr);
        }
    }
    state.SetItemsProcessed(state.iterations() * kShapes);
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
}

gdiplus::image Prepared() {
    gdiplus::target prepared(kWidth, kHeight, Gdiplus::PixelFormat32bppARGB);
    prepared->Clear(Gdiplus::Color(0xFFF0F0F0u));
    prepared->FillEllipse(gdiplus::brush(0xFF2060C0ul), 100.0f, 100.0f, 800.0f, 600.0f);
    return prepared.Image();
}

void BufferedPaintOfAWindow(benchmark::State &state) {
    Start();
    gdiplus::image picture = Prepared();
    cairo_surface_t *window = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
    cairo_t *cr = cairo_create(window);
    CRect client{0, 0, kWidth, kHeight};
    for (auto _ : state) {
        gdiplus::bdc paint(cr, client, picture);
    }
    state.SetItemsProcessed(state.iterations());
    cairo_destroy(cr);
    cairo_surface_destroy(window);
}

void BufferedPaintOfAWindow_Anchor(benchmark::State &state) {
    Start();
    gdiplus::image picture = Prepared();
    cairo_surface_t *source = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWidth, kHeight);
    {
        gdiplus::image::lock pixels(picture, Gdiplus::ImageLockModeRead);
        cairo_surface_flush(source);
        for (int y = 0; y < kHeight; ++y) {
            std::memcpy(cairo_image_surface_get_data(source) + y * cairo_image_surface_get_stride(source),
                        pixels.Data() + y * pixels.Stride(), std::size_t(kWidth) * 4);
        }
        cairo_surface_mark_dirty(source);
    }
    cairo_surface_t *window = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
    cairo_t *cr = cairo_create(window);
    for (auto _ : state) {
        cairo_surface_t *buffer = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWidth, kHeight);
        cairo_t *b = cairo_create(buffer);
        cairo_set_operator(b, CAIRO_OPERATOR_SOURCE);
        cairo_set_source_surface(b, source, 0, 0);
        cairo_pattern_set_filter(cairo_get_source(b), CAIRO_FILTER_NEAREST);
        cairo_paint(b);
        cairo_destroy(b);
        cairo_set_source_surface(cr, buffer, 0, 0);
        cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_NEAREST);
        cairo_paint(cr);
        cairo_surface_destroy(buffer);
    }
    state.SetItemsProcessed(state.iterations());
    cairo_destroy(cr);
    cairo_surface_destroy(window);
    cairo_surface_destroy(source);
}

}  // namespace

BENCHMARK(ShapesFilledAndStroked)->Unit(benchmark::kMillisecond);
BENCHMARK(ShapesFilledAndStroked_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(BufferedPaintOfAWindow)->Unit(benchmark::kMillisecond);
BENCHMARK(BufferedPaintOfAWindow_Anchor)->Unit(benchmark::kMillisecond);
