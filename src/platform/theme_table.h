// The table from the platform's theme class names, part and state ids to
// GTK 3 style nodes ("name.class.class", outermost first) and state flags.
#pragma once

#include <gtk/gtk.h>

namespace qor::tools::platform::theme {

struct part {
    int mId;
    char const *mNodes[4];  // null-terminated when shorter
    enum class shape { box, check, radio } mShape;
};

struct theme_class {
    char const *mName;
    part const *mParts;
    int mPartCount;
    GtkStateFlags (*mState)(int part, int state);
};

// The class of that name (any case), or null.
theme_class const *FindClass(char const *name, std::size_t length);
// The class's part of that id, or null.
part const *FindPart(theme_class const &entry, int id);

}  // namespace qor::tools::platform::theme
