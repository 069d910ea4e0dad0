// Internals of the objects behind the handles: the live-handle registry and counted references.
#pragma once

#include "platform/gdi/Gdi.h"
#include "platform/gdi/Region.h"

#include <QImage>

#include <memory>

namespace vl {

// Whether `object` is a live handle of this layer.
bool IsLiveObject(const TGdiObject* object);

// A counted reference held by a context's state.
class TObjRef {
public:
    TObjRef() = default;
    explicit TObjRef(TGdiObject* object) : FObject(object) {
        if (FObject) FObject->AddRef();
    }
    TObjRef(const TObjRef& other) : TObjRef(other.FObject) {}
    TObjRef& operator=(const TObjRef& other) {
        if (this != &other) {
            TObjRef copy(other);
            std::swap(FObject, copy.FObject);
        }
        return *this;
    }
    ~TObjRef() {
        if (FObject) FObject->Release();
    }
    TGdiObject* Get() const { return FObject; }

private:
    TGdiObject* FObject = nullptr;
};

} // namespace vl
