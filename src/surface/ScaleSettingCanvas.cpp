// The scale setting's access to the device context of its borrowed canvas.

#include "surface/ScaleSetting.h"

#include "platform/Exceptions.h"

#if 0 // the canvas class is wired in as soon as it builds
#include "platform/Graphics.h"
#define VL_SCALE_HAS_CANVAS 1
#endif

namespace vl {

HDC TScaleSetting::CanvasHandle() const {
    if (FCanvas == nullptr) throw Exception(QStringLiteral("Scale setting has no canvas"));
#ifdef VL_SCALE_HAS_CANVAS
    return FCanvas->Handle();
#else
    throw Exception(QStringLiteral("Canvas not available"));
#endif
}

} // namespace vl
