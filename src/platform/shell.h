// The desktop's side of the file operations: the freedesktop.org trash
// through GIO, and the GTK folder chooser.
#pragma once

#include <functional>
#include <string>

namespace qor::tools::platform {

// Moves a file or folder to the desktop trash.
bool Trash(char16_t const *path);
// The folder chooser; empty when cancelled or when there is no display.
std::u16string ChooseFolder(char16_t const *title, void *owner);
// For tests: called with the dialog once it is shown.
void SetFolderChooserHook(std::function<void(void *dialog)> hook);

}  // namespace qor::tools::platform
