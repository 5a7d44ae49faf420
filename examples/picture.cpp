// The road of one picture: load a photograph (or, without one, draw a picture
// through a render target), read its EXIF, make a thumbnail, save a JPEG copy
// with EXIF and an embedded thumbnail, read that copy's EXIF back, and plot
// the histogram as a PNG, and paint a card of the thumbnail with a caption on
// the painting side. Each step says what it did.
//
//   qor_picture [photo [folder]]     (a drawn picture and a scratch folder by default)
#include <qor/tools.h>

#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <string>

using namespace qor::tools;
using direct2d::wic;

namespace {

std::string Utf8(char16_t const *s) {
    string::converter c;
    return c.Utf8(s ? s : u"");
}

void Say(char const *step, std::string const &what) { std::printf("%-10s %s\n", step, what.c_str()); }

std::string Size(wic &image) {
    return std::to_string(int(image.Size().width)) + "x" + std::to_string(int(image.Size().height));
}

std::string Rational(long long value) {
    return std::to_string(value & 0xffffffff) + "/" + std::to_string((value >> 32) & 0xffffffff);
}

container::comptr<ID2D1SolidColorBrush> Brush(direct2d::target<ID2D1RenderTarget> &t, float r, float g, float b,
                                              float a = 1) {
    container::comptr<ID2D1SolidColorBrush> brush;
    t->CreateSolidColorBrush(D2D1::ColorF(r, g, b, a), brush.Addr());
    return brush;
}

// A landscape: sky, sun, two hills and a house.
wic Drawn() {
    wic image(640, 480);
    direct2d::target<ID2D1RenderTarget> t = image.CreateRenderTarget();
    t->BeginDraw();
    t->Clear(D2D1::ColorF(0.55f, 0.75f, 0.95f));
    t->FillEllipse(D2D1::Ellipse(D2D1::Point2F(520, 90), 50, 50), Brush(t, 1, 0.85f, 0.2f));
    t->FillEllipse(D2D1::Ellipse(D2D1::Point2F(160, 520), 360, 200), Brush(t, 0.3f, 0.6f, 0.25f));
    t->FillEllipse(D2D1::Ellipse(D2D1::Point2F(560, 560), 320, 220), Brush(t, 0.2f, 0.5f, 0.2f));
    t->FillRectangle(D2D1::RectF(250, 250, 370, 340), Brush(t, 0.85f, 0.8f, 0.7f));
    t->FillRoundedRectangle(D2D1::RoundedRect(D2D1::RectF(290, 290, 330, 340), 6, 6), Brush(t, 0.45f, 0.25f, 0.1f));
    t->DrawRectangle(D2D1::RectF(250, 250, 370, 340), Brush(t, 0.2f, 0.15f, 0.1f), 3);
    t->DrawLine(D2D1::Point2F(240, 255), D2D1::Point2F(310, 200), Brush(t, 0.6f, 0.1f, 0.1f), 8);
    t->DrawLine(D2D1::Point2F(310, 200), D2D1::Point2F(380, 255), Brush(t, 0.6f, 0.1f, 0.1f), 8);
    t->EndDraw();
    return image;
}

// Four curves, luminance and the three colours, scaled to the largest count.
wic Plot(graphic::histogram &h) {
    wic plot(255 * 2 + 20, 220);
    direct2d::target<ID2D1RenderTarget> t = plot.CreateRenderTarget();
    t->BeginDraw();
    t->Clear(D2D1::ColorF(1, 1, 1));
    float const colours[4][3] = {{0.3f, 0.3f, 0.3f}, {0.9f, 0.1f, 0.1f}, {0.1f, 0.7f, 0.1f}, {0.1f, 0.2f, 0.9f}};
    float top = float(h.MaxValue() + 1);
    for (int channel = 0; channel < 4; ++channel) {
        auto brush = Brush(t, colours[channel][0], colours[channel][1], colours[channel][2], 0.8f);
        unsigned int const *counts = h.Data(channel);
        for (int v = 1; v < graphic::histogram::kEntries; ++v) {
            auto y = [&](int at) { return 210.0f - 200.0f * float(counts[at]) / top; };
            t->DrawLine(D2D1::Point2F(10.0f + 2 * (v - 1), y(v - 1)), D2D1::Point2F(10.0f + 2 * v, y(v)), brush, 1.5f);
        }
    }
    t->EndDraw();
    return plot;
}

// A card on the painting side: the thumbnail, a caption and a rounded frame.
void Card(string const &thumbnailPath, string const &cardPath, std::string const &caption) {
    gdiplus::image thumbnail(thumbnailPath);
    gdiplus::target card(360, 160, Gdiplus::PixelFormat32bppARGB);
    card->SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    card->Clear(Gdiplus::Color(0xFFFAFAF5u));
    card->DrawImage(thumbnail.Get(), 20, 20);
    gdiplus::font title(u"IPAGothic", 13.0f, Gdiplus::FontStyleBold), body(u"DejaVu Sans", 9.0f, 0);
    string::converter text;
    card->DrawString(u"写真カード", -1, title, Gdiplus::PointF{195, 24}, gdiplus::brush(0xFF202020ul));
    card->DrawString(text.Utf8(caption.c_str()), -1, body, Gdiplus::RectF(195, 56, 150, 80), nullptr,
                     gdiplus::brush(0xFF505050ul));
    card.DrawRoundRect(gdiplus::pen(2.0f, 0xFF3060A0ul), 6, 6, 348, 148, 14, 14);
    card.Image().Save(cardPath);
}

}  // namespace

int main(int argc, char **argv) {
    std::setlocale(LC_ALL, "C.UTF-8");
    std::string folder = argc > 2 ? argv[2] : "";
    if (folder.empty()) {
        char pattern[] = "/tmp/qor-picture-XXXXXX";
        folder = ::mkdtemp(pattern);
    }
    string::converter names;
    auto in = [&](char const *name) { return string(names.Utf8((folder + "/" + name).c_str())); };

    CoInitialize(nullptr);
    auto *factory = new direct2d::factory;
    auto *painting = new gdiplus::factory;
    painting->Initialize();
    try {
        factory->Initialize(D2D1_FACTORY_TYPE_SINGLE_THREADED);
        wic photo;
        wic::exif found;
        if (argc > 1 && *argv[1]) {
            photo.Load(names.Utf8(argv[1]), &found);
            Say("load", argv[1] + std::string(" ") + Size(photo));
            Say("exif", "make '" + Utf8(found.mMake) + "' model '" + Utf8(found.mModel) + "' taken '" +
                            Utf8(found.mDateTimeOriginal) + "' resolution " + Rational(found.mXResolution));
        } else {
            photo = Drawn();
            Say("draw", "a landscape of " + Size(photo) + " through a render target");
            photo.Save(in("drawn.png"), nullptr);
            Say("save", folder + "/drawn.png");
        }

        wic thumbnail = photo.Scale(160, 120);
        thumbnail.Save(in("thumbnail.png"), nullptr);
        Say("thumbnail", Size(thumbnail) + " in " + folder + "/thumbnail.png");

        wic::exif record = found;
        record.mMake = u"QorTools";
        record.mSoftware = u"qor_picture";
        record.mXResolution = record.mYResolution = (1LL << 32) | 72;
        record.mResolutionUnit = 2;
        photo.Save(0.9f, in("copy.jpg"), &record);
        Say("save", folder + "/copy.jpg at quality 0.9, stamped " + Utf8(record.mDateTime) + ", thumbnail " +
                        std::to_string(record.mThumbnailWidth) + "x" + std::to_string(record.mThumbnailHeight) + " (" +
                        std::to_string(record.mThumbnail.Size()) + " bytes)");

        wic::exif back;
        photo.LoadExif(in("copy.jpg"), &back);
        Say("exif", "read back: make '" + Utf8(back.mMake) + "' software '" + Utf8(back.mSoftware) + "' date '" +
                        Utf8(back.mDateTime) + "' pixels " + std::to_string(back.mPixelXDimension) + "x" +
                        std::to_string(back.mPixelYDimension));

        graphic::histogram h;
        h.Image(photo);
        unsigned int brightest = 0;
        for (int v = 0; v < graphic::histogram::kEntries; ++v) {
            if (h.Data(0)[v] > h.Data(0)[brightest]) brightest = unsigned(v);
        }
        wic plot = Plot(h);
        plot.Save(in("histogram.png"), nullptr);
        Say("histogram", "most common luminance " + std::to_string(brightest) + ", largest count " +
                             std::to_string(h.MaxValue() + 1) + ", plot in " + folder + "/histogram.png");

        Card(in("thumbnail.png"), in("card.png"), Size(photo) + ", luminance " + std::to_string(brightest));
        Say("card", "thumbnail, caption and frame painted in " + folder + "/card.png");
    } catch (exception const &e) {
        Say("failed", Utf8(e.mMessage));
        factory->Terminate();
        painting->Terminate();
        return 1;
    }
    factory->Terminate();
    painting->Terminate();
    CoUninitialize();
    return 0;
}
