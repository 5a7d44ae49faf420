// Text and window drawing: 10,000 short Japanese labels laid out and
// measured through the text layer, against Pango used bare; and a
// 12-megapixel picture drawn scaled into a 1920 by 1080 window target,
// against Cairo scaling the same pixels into a surface of that size.
#include <benchmark/benchmark.h>
#include <gtk/gtk.h>
#include <pango/pangocairo.h>

#include <string>
#include <vector>

#include "qor/tools/direct2d/factory.h"
#include "qor/tools/direct2d/wic.h"

using namespace qor::tools;

namespace {

constexpr int kLabels = 10000;

void Start() {
    static bool started = [] {
        CoInitialize(nullptr);
        (new direct2d::factory)->Initialize(D2D1_FACTORY_TYPE_SINGLE_THREADED);
        return true;
    }();
    (void)started;
}

std::vector<std::u16string> const &Labels() {
    static std::vector<std::u16string> labels = [] {
        std::vector<std::u16string> made;
        char16_t const *words[] = {u"写真", u"画像一覧", u"撮影日", u"ファイル名", u"解像度"};
        for (int i = 0; i < kLabels; ++i) {
            std::string digits = std::to_string(i);
            made.push_back(std::u16string(words[i % 5]) + u" " + std::u16string(digits.begin(), digits.end()));
        }
        return made;
    }();
    return labels;
}

void LabelsMeasured(benchmark::State &state) {
    Start();
    direct2d::font f = direct2d::factory::Instance()->CreateFontW(u"IPAGothic", 14);
    for (auto _ : state) {
        float widest = 0;
        for (auto const &label : Labels()) {
            DWRITE_TEXT_METRICS m;
            f.CreateLayout(direct2d::rectf(0, 0, 300, 40), string(label.c_str()), -1).Metrics(m);
            widest = std::max(widest, m.width);
        }
        benchmark::DoNotOptimize(widest);
    }
    state.SetItemsProcessed(state.iterations() * kLabels);
}

void LabelsMeasured_Anchor(benchmark::State &state) {
    std::vector<std::string> utf8;
    for (auto const &label : Labels()) utf8.push_back(g_utf16_to_utf8(reinterpret_cast<gunichar2 const *>(label.c_str()), -1, nullptr, nullptr, nullptr));
    PangoContext *context = pango_font_map_create_context(pango_cairo_font_map_get_default());
    PangoFontDescription *font = pango_font_description_from_string("IPAGothic");
    pango_font_description_set_absolute_size(font, 14 * PANGO_SCALE);
    for (auto _ : state) {
        int widest = 0;
        for (auto const &label : utf8) {
            PangoLayout *layout = pango_layout_new(context);
            pango_layout_set_font_description(layout, font);
            pango_layout_set_width(layout, 300 * PANGO_SCALE);
            pango_layout_set_text(layout, label.data(), int(label.size()));
            PangoRectangle logical;
            pango_layout_get_extents(layout, nullptr, &logical);
            widest = std::max(widest, logical.width);
            g_object_unref(layout);
        }
        benchmark::DoNotOptimize(widest);
    }
    pango_font_description_free(font);
    g_object_unref(context);
    state.SetItemsProcessed(state.iterations() * kLabels);
}

direct2d::wic &Photo() {
    static direct2d::wic photo = [] {
        Start();
        direct2d::wic made(4000, 3000);
        direct2d::wic::lock pixels(made, WICBitmapLockWrite);
        for (int y = 0; y < 3000; ++y) {
            auto *row = reinterpret_cast<std::uint32_t *>(pixels.Data() + y * pixels.Stride());
            for (int x = 0; x < 4000; ++x) row[x] = 0xff000000u | (x & 0xff) << 16 | (y & 0xff) << 8 | ((x + y) & 0xff);
        }
        return made;
    }();
    return photo;
}

void PhotoIntoWindow(benchmark::State &state) {
    if (!gtk_init_check(nullptr, nullptr)) {
        state.SkipWithError("no display");
        return;
    }
    direct2d::wic &photo = Photo();
    // One window for the process: a window target keeps the first call's window.
    static direct2d::target<ID2D1HwndRenderTarget> t = [] {
        GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        GtkWidget *area = gtk_drawing_area_new();
        gtk_widget_set_size_request(area, 1920, 1080);
        gtk_container_add(GTK_CONTAINER(window), area);
        gtk_widget_show_all(window);
        while (g_main_context_pending(nullptr)) g_main_context_iteration(nullptr, FALSE);
        return direct2d::factory::Instance()->CreateRenderTarget(area, 1920, 1080);
    }();
    container::comptr<ID2D1Bitmap> bitmap;
    t->CreateBitmapFromWicBitmap(photo, nullptr, bitmap.Addr());
    D2D1_RECT_F box = D2D1::RectF(0, 0, 1440, 1080);
    for (auto _ : state) {
        t->BeginDraw();
        t->DrawBitmap(bitmap, &box);
        t->EndDraw();
    }
}

void PhotoIntoWindow_Anchor(benchmark::State &state) {
    direct2d::wic &photo = Photo();
    cairo_surface_t *screen = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1920, 1080);
    cairo_surface_t *pixels = photo->GetCairoSurface();
    for (auto _ : state) {
        cairo_t *cr = cairo_create(screen);
        cairo_scale(cr, 1440.0 / 4000, 1080.0 / 3000);
        cairo_set_source_surface(cr, pixels, 0, 0);
        cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
        cairo_paint(cr);
        cairo_destroy(cr);
        cairo_surface_flush(screen);
    }
    cairo_surface_destroy(screen);
}

}  // namespace

BENCHMARK(LabelsMeasured)->Unit(benchmark::kMillisecond);
BENCHMARK(LabelsMeasured_Anchor)->Unit(benchmark::kMillisecond);
BENCHMARK(PhotoIntoWindow)->Unit(benchmark::kMillisecond);
BENCHMARK(PhotoIntoWindow_Anchor)->Unit(benchmark::kMillisecond);
