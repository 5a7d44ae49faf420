#include "qor/tools/gdiplus/factory.h"

#include "qor/tools/platform/gdiplus.h"

template class qor::tools::algorithm::singleton<qor::tools::gdiplus::factory>;

namespace qor::tools::gdiplus {

void factory::Initialize() {
    Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&mToken, &input, nullptr);
}

void factory::Terminate() {
    Gdiplus::GdiplusShutdown(mToken);
    algorithm::singleton<factory>::Terminate();
}

}  // namespace qor::tools::gdiplus
