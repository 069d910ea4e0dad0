// The objects behind the handles: pens, brushes, fonts, regions and bitmaps.
//
// Each object counts its selections (into contexts and their saved states). `DeleteObject` of a
// selected object only marks it; it goes when the last selection ends. Stock objects live for the
// whole process.
#pragma once

#include "platform/Gdi.h"
#include "platform/gdi/Region.h"

#include <QImage>

#include <memory>

namespace vl {

class TGdiObject {
public:
    virtual ~TGdiObject() = default;
    virtual int ObjectType() const = 0;

    bool IsStock() const { return FStock; }
    void MarkStock() { FStock = true; }
    void AddRef() { ++FRefs; }
    // Ends one selection; deletes the object when it was marked for deletion and nothing holds it.
    void Release();
    // Deletes now, or marks for deletion while selected. Stock objects stay.
    void Delete();

protected:
    TGdiObject();

private:
    int FRefs = 0;
    bool FStock = false;
    bool FDeletePending = false;
};

class TGdiPen final : public TGdiObject {
public:
    explicit TGdiPen(const LOGPEN& pen) : FLogPen(pen) {}
    int ObjectType() const override { return OBJ_PEN; }
    LOGPEN FLogPen;
};

class TGdiBrush final : public TGdiObject {
public:
    explicit TGdiBrush(const LOGBRUSH& brush) : FLogBrush(brush) {}
    int ObjectType() const override { return OBJ_BRUSH; }
    LOGBRUSH FLogBrush;
};

class TGdiFont final : public TGdiObject {
public:
    explicit TGdiFont(const LOGFONTW& font) : FLogFont(font) {}
    int ObjectType() const override { return OBJ_FONT; }
    LOGFONTW FLogFont;
};

class TGdiRegion final : public TGdiObject {
public:
    explicit TGdiRegion(gdi::TShapePtr shape) : FShape(std::move(shape)) {}
    int ObjectType() const override { return OBJ_REGION; }
    gdi::TShapePtr FShape;
};

class TGdiBitmap final : public TGdiObject {
public:
    explicit TGdiBitmap(QImage image) : FImage(std::move(image)) {}
    int ObjectType() const override { return OBJ_BITMAP; }
    QImage FImage; // RGB32
};

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
