// system::clipboard: text and a picture of a window on the desktop clipboard,
// through GTK 3 (which it initialises if the application has not). CF_TEXT is
// 8-bit text in the current locale's encoding (characters it cannot hold are
// lost), CF_UNICODETEXT the whole text, CF_BITMAP a picture. What is put on
// the clipboard stays available to other programs while this one runs GTK's
// main loop, and goes when it exits (unless a clipboard manager keeps it).
//
//   system::clipboard clip;
//   clip.Text(u"写真一覧");
//   string back = clip.Text();
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/platform/handles.h"
#include "qor/tools/string.h"

namespace qor::tools {

inline constexpr unsigned short CF_TEXT = 1;
inline constexpr unsigned short CF_BITMAP = 2;
inline constexpr unsigned short CF_UNICODETEXT = 13;

using CWnd = GtkWidget;

}  // namespace qor::tools

namespace qor::tools::system {

class QOR_TOOLS_API clipboard {
public:
    // Nothing to hold: copies are alike.
    clipboard() = default;
    clipboard(clipboard const &) = default;
    clipboard &operator=(clipboard const &) = default;
    virtual ~clipboard() = default;

    // Whether the clipboard holds data of that format (CF_TEXT and
    // CF_UNICODETEXT: any text; CF_BITMAP: a picture).
    bool IsData(unsigned short format);
    // The clipboard's text through the locale's 8-bit encoding; empty when none.
    string Text() const;
    // Puts the text as 8-bit text; false for a null or empty text (the
    // clipboard is not touched) or when there is no display.
    bool Text(char16_t const *text);
    // Always empty: text is read through Text().
    string Text2() const;
    bool Text2(char16_t const *text);
    // A picture of the widget's area; false when it cannot be drawn.
    bool Image(CWnd *window);
};

}  // namespace qor::tools::system
