// The scale setting's access to the device context of its borrowed canvas.

#include "surface/ScaleSetting.h"

#include "platform/core/Exceptions.h"
#include "platform/graphics/Graphics.h"

namespace vl {

HDC TScaleSetting::CanvasHandle() const {
    // A print job's setting gets its canvas after construction; until then nothing can be mapped.
    if (FCanvas == nullptr) throw Exception(QStringLiteral("Scale setting has no canvas"));
    return FCanvas->Handle();
}

} // namespace vl
