#include "qor/tools/direct2d/factory.h"

#include "qor/tools/exception.h"

template class qor::tools::algorithm::singleton<qor::tools::direct2d::factory>;

namespace qor::tools::direct2d {

// Each factory is emptied before it is made again; those made before a
// failure stay.
void factory::Initialize(D2D1_FACTORY_TYPE type) {
    if (FAILED(D2D1CreateFactory(type, IID_ID2D1Factory, nullptr, reinterpret_cast<void **>(mD2dFactory.Addr())))) {
        throw exception(u"direct2d factory initialize");
    }
    if (FAILED(CoCreateInstance(CLSID_WICImagingFactory2, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                reinterpret_cast<void **>(mWicFactory.Addr())))) {
        throw exception(u"direct2d factory initialize");
    }
    if (FAILED(DWriteCreateFactory(DWRITE_FACTORY_TYPE_SHARED, IID_IDWriteFactory,
                                   reinterpret_cast<IUnknown **>(mWriteFactory.Addr())))) {
        throw exception(u"direct2d factory initialize");
    }
}

}  // namespace qor::tools::direct2d
