// Generators: the attribute set shared by all the objects of one creator.
//
// Every creator owns exactly one generator; an object holds none of these attributes and reads them
// through its tool. The generator owns its pen, brush, font and picture (and, for text, its
// alignment), and the one scaled font handle that the text objects of the tool share. All generator
// classes have the same fields; they differ in their defaults and in what they publish.
//
// Invariants: `FFontHandle` is either null or the one device font the generator owns; whoever hands a
// font to `SetFontHandle` gives up its ownership. `FFontIsScalable` is 0 (not yet known), 1 or -1.
#pragma once

#include "geometry/Vltypes.h"
#include "platform/core/Classes.h"
#include "platform/core/Sets.h"
#include "platform/core/Streams.h"
#include "platform/gdi/Gdi.h"
#include "platform/graphics/Graphics.h"
#include "platform/graphics/Images.h"

#include <cstdint>
#include <memory>

namespace vl {

// The outline form of point objects; the values reach files.
enum class TShapetype : std::uint8_t {
    stRectangle,
    stEllipse,
    stCircle,
    stSquare,
    stRoundRect,
    stRoundSquare,
    stLine,
    stRegion
};
using enum TShapetype;

// The design options of a generator, bit 0 first.
enum class TGeneratorOption : std::uint8_t {
    goStretchPicture, // the picture is stretched to the object's size
    goRotation,       // objects can be rotated
    goNoSizing,       // sizing is refused; a slave takes its master's angle
    goNoHorzMove,     // moves ignore the x part
    goNoVertMove,     // moves ignore the y part
    goFndCursor,      // an object found under the mouse shows the tool's own cursor
    goDontFind,       // searching tools pass over the objects
    goMasterFont,     // a slave uses its master's font
    goShadows         // objects cast the box's shadow
};
using enum TGeneratorOption;
using TGeneratorOptions = TFlagSet<TGeneratorOption, std::uint16_t, 0x01FF>;

// The run-time options of a generator, bit 0 first.
enum class TRuntimeOption : std::uint8_t {
    roHidden,   // all objects of the tool count as invisible
    roDontSave, // objects are left out of saved files
    roNosy      // objects hear of every paint (200) and every printing (300)
};
using enum TRuntimeOption;
using TRuntimeOptions = TFlagSet<TRuntimeOption, std::uint8_t, 0x07>;

enum class THorzAlign : std::uint8_t { haLeft, haCenter, haRight };
using enum THorzAlign;
enum class TVertAlign : std::uint8_t { vaTop, vaCenter, vaBottom };
using enum TVertAlign;

// The alignment of text in its frame.
class TTextAlign : public TPersistent {
public:
    THorzAlign Horz() const { return FHorz; }
    void SetHorz(THorzAlign Value) { FHorz = Value; }
    TVertAlign Vert() const { return FVert; }
    void SetVert(TVertAlign Value) { FVert = Value; }

    void Assign(TPersistent* Source) override;

    // Two bytes, `Horz` first: written in `pstSave`, read in `pstLoad`; the other modes leave the
    // stream alone, so copies do not carry the alignment. A value outside its range raises
    // `EReadError`.
    void Persist(TStream* Stream, TPstMode PstMode);

private:
    THorzAlign FHorz = haLeft;
    TVertAlign FVert = vaTop;
};

class TCustomGenerator : public TPersistent {
public:
    TCustomGenerator();
    ~TCustomGenerator() override;

    TRuntimeOptions RtOptions() const { return FRTOptions; }
    void SetRtOptions(TRuntimeOptions Value) { FRTOptions = Value; }
    std::uint16_t Instance() const { return FInstance; }
    std::int32_t ZOrder() const { return FzOrder; }
    void SetZOrder(std::int32_t Value) { FzOrder = Value; }
    std::uint16_t Counter() const { return FCounter; }
    void SetCounter(std::uint16_t Value) { FCounter = Value; }
    TBrush& Brush() { return *FBrush; }
    void SetBrush(TBrush* Value) { FBrush->Assign(Value); }
    TPen& Pen() { return *FPen; }
    void SetPen(TPen* Value) { FPen->Assign(Value); }
    TFont& Font() { return *FFont; }
    // Replaces faces that cannot be scaled, in `Value` itself ("MS Sans Serif" and "System" become
    // "Arial", "MS Serif" and "Courier" "Times New Roman"), beeps, and copies the font.
    void SetFont(TFont* Value);
    TShapetype Shape() const { return FShape; }
    virtual void SetShape(TShapetype Value) { FShape = Value; }
    TGeneratorOptions Options() const { return FOptions; }
    virtual void SetOptions(TGeneratorOptions Value) { FOptions = Value; }
    TPicture& Picture() { return *FPicture; }
    // Copies the picture; without `goStretchPicture` the size follows it. The shape becomes a
    // rectangle.
    void SetPicture(TPersistent* Value);
    std::int32_t Layer() const { return FLayer; }
    void SetLayer(std::int32_t Value) { FLayer = Value; }
    std::int32_t HotspotX() const { return FHotspotX; }
    void SetHotspotX(std::int32_t Value) { FHotspotX = Value; }
    std::int32_t HotspotY() const { return FHotspotY; }
    void SetHotspotY(std::int32_t Value) { FHotspotY = Value; }
    std::int32_t SlaveX() const { return FSlaveX; }
    void SetSlaveX(std::int32_t Value) { FSlaveX = Value; }
    std::int32_t SlaveY() const { return FSlaveY; }
    void SetSlaveY(std::int32_t Value) { FSlaveY = Value; }
    std::int32_t Width() const { return FWidth; }
    void SetWidth(std::int32_t Value) { FWidth = Value; }
    std::int32_t Height() const { return FHeight; }
    void SetHeight(std::int32_t Value) { FHeight = Value; }
    std::int32_t CurrFontHeight() const { return FCurrFontHeight; }
    void SetCurrFontHeight(std::int32_t Value) { FCurrFontHeight = Value; }
    HFONT FontHandle() const { return FFontHandle; }

    // Keeps the smallest font asked for as the one shared handle and takes ownership of `NewFont`:
    // a font that does not replace the present one is deleted.
    void SetFontHandle(HFONT NewFont, std::int32_t NewFontHeight);
    // Whether the generator's font scales continuously; measured once, then answered from the cache.
    bool FontIsScalable();
    // Whether `aFont` scales: the width of a sample text at its height and at double the height
    // differ. "System" (any case) never scales.
    static bool FontIsScalable(TFont& aFont);
    // The cache of `FontIsScalable`: 0 not yet known, 1 scalable, -1 not scalable.
    std::int32_t FontIsScalableCache() const { return FFontIsScalable; }

    // Kept by the objects of the tool as they are made and freed.
    void IncInstance() { ++FInstance; }
    void DecInstance() { --FInstance; }

    // The designed font height, set when the tool has been loaded.
    std::int32_t FontBackup = 0;

protected:
    std::uint16_t FInstance = 0;
    std::uint16_t FCounter = 0;
    std::unique_ptr<TPen> FPen;
    std::unique_ptr<TBrush> FBrush;
    std::unique_ptr<TFont> FFont;
    TShapetype FShape = stRectangle;
    TGeneratorOptions FOptions;
    TRuntimeOptions FRTOptions;
    std::unique_ptr<TPicture> FPicture;
    std::int32_t FzOrder = 0;
    std::int32_t FLayer = 0;
    std::int32_t FHotspotX = 0;
    std::int32_t FHotspotY = 0;
    std::int32_t FSlaveX = 0;
    std::int32_t FSlaveY = 0;
    std::int32_t FCurrFontHeight = 0;
    HFONT FFontHandle = nullptr; // owned
    std::int32_t FFontIsScalable = 0;
    std::int32_t FWidth = 0;
    std::int32_t FHeight = 0;

    friend class TvlCreator;
};

// The generator of plain tools.
class TGenerator : public TCustomGenerator {};

// The generator of point tools: slaves 10 units off, objects 20 by 20.
class TPtGenerator : public TCustomGenerator {
public:
    TPtGenerator();
};

// The generator of text tools: adds the alignment, the word-break width and the frame space.
class TCustomTxtGenerator : public TCustomGenerator {
public:
    TCustomTxtGenerator();

    TTextAlign& TextAlign() { return *FTextAlign; }
    void SetTextAlign(TTextAlign* Value) { FTextAlign->Assign(Value); }
    std::int32_t WordBreak() const { return FWordBreak; }
    // A positive width ends rotation: `goRotation` leaves the options.
    void SetWordBreak(std::int32_t Value);
    // Stores the options; with `goRotation` among them the word-break width becomes 0.
    void SetOptions(TGeneratorOptions Value) override;
    // The same, by its own name.
    void SetTxtOptions(TGeneratorOptions Value) { SetOptions(Value); }
    std::int16_t FrameDX() const { return FFrameDX; }
    void SetFrameDX(std::int16_t Value) { FFrameDX = Value; }
    std::int16_t FrameDY() const { return FFrameDY; }
    void SetFrameDY(std::int16_t Value) { FFrameDY = Value; }

protected:
    std::unique_ptr<TTextAlign> FTextAlign;
    std::int32_t FWordBreak = 0;
    std::int16_t FFrameDX = 0;
    std::int16_t FFrameDY = 0;
};

// The generator of text tools with its defaults: ellipse frames, one unit of frame space.
class TTxtGenerator : public TCustomTxtGenerator {
public:
    TTxtGenerator();
};

} // namespace vl
