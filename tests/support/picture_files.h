// Pictures of several frames or pages, made by the codec libraries as other
// programs make them, for tests that read only the first.
#pragma once

#include <string>

namespace qor::tools::testing {

// A 6 by 4 screen whose first frame, 4 by 2 at (1, 1), is interlaced and has
// index 0 transparent (red, red, clear, green over green, green, green, red);
// a second frame covers the whole screen in blue.
std::string MakeAnimatedGif();
// Two pages of 3 by 2 16-bit grey: the first black, mid grey, white in each
// row, the second black, black, white. `path` is a scratch file, removed.
std::string MakeTiffPages(char const *path);

}  // namespace qor::tools::testing
