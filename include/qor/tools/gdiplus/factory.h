// gdiplus::factory: the start and end of the painting layer. The application
// makes one, calls Initialize before the first font, pen, brush, image or
// target, and Terminate after the last has gone.
//
//   new gdiplus::factory;
//   gdiplus::factory::Instance()->Initialize();
//   ...
//   gdiplus::factory::Instance()->Terminate();
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/algorithm/singleton.h"

namespace qor::tools::gdiplus {

class factory;

}  // namespace qor::tools::gdiplus

namespace qor::tools::algorithm {
extern template class QOR_TOOLS_API singleton<gdiplus::factory>;
}  // namespace qor::tools::algorithm

namespace qor::tools::gdiplus {

class QOR_TOOLS_API factory : public algorithm::singleton<factory> {
public:
    // Made empty (Initialize starts the painting); a copy is alike.
    factory() = default;
    factory(factory const &) = default;
    factory &operator=(factory const &) = default;
    ~factory() override = default;

    // Starts the platform's painting; the result is not looked at.
    void Initialize();
    // Ends it and deletes the registered factory.
    void Terminate() override;

    std::uintptr_t mToken = 0;  // the platform's token of the start
};

}  // namespace qor::tools::gdiplus
