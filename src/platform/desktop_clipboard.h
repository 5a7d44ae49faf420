// The desktop clipboard through GTK 3: text in UTF-8 and pictures. GTK is
// initialised at the first call if the application has not done it; without
// a display every call fails.
#pragma once

#include <string>

#include "qor/tools/platform/handles.h"

namespace qor::tools::platform::clipboard {

bool PutText(std::string const &utf8);
// False when the clipboard holds no text.
bool GetText(std::string &utf8);
bool HasText();
bool HasImage();
// A picture of the widget as it draws itself, at its allocated size.
bool PutWidgetImage(GtkWidget *widget);

}  // namespace qor::tools::platform::clipboard
