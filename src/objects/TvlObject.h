// The root of everything that can stand in a drawing.
//
// An object is tiny: it refers to the tool that made it (borrowed for life), and holds a position, a
// 16-bit number and a 16-bit flag set. Pen, brush, font, picture, shape, size and hot spot are read
// through the tool from its generator, so the objects of one tool share one attribute set.
//
// A slave hangs on a master: its position is a 16-bit offset from the master's position (or from the
// reference point that the tool's `OnCalcRefPoint` gives), so chains of slaves resolve to any depth.
// While a slave read from a stream is not yet connected (`isConnect`), its position names the master
// by class number and number, and no position accessor may be used.
//
// One routine, `Persist`, serves saving, loading, copying, pasting and connecting, so that the forms
// can't drift apart; the `Register...` helpers are the pieces every class builds it from.
//
// Invariants: with neither `isSlave` nor `isP1Slave`, `Pos.x`, `Pos.y` is the absolute logical
// position. With one of them and `isConnect` clear, `Pos.ConObj` is the master and `Pos.y` holds the
// offset. With `isConnect` set, `Pos.x` holds the master's class number and number.
#pragma once

#include "geometry/Reclist.h"
#include "geometry/Vltypes.h"
#include "platform/core/Classes.h"
#include "platform/core/Sets.h"
#include "platform/gdi/Gdi.h"
#include "surface/BoxLinks.h"

#include <QString>

#include <bit>
#include <cstdint>
#include <functional>
#include <memory>
#include <type_traits>

namespace vl {

class TvlObject;
class TvlCreator;
class TvlDataMod;
class TObjectCreator;
class TObjectStore;
class TCustomGenerator;
class TCustomDrawBox;
class TStream;
class TFont;
class TCanvas;
class TPen;
class TBrush;
class TPicture;
class TGraphic;
class TScaleSetting;

// The flags of an object, bit 0 first; bits 14 and 15 have no meaning and are kept as they are.
enum class TIndividualStateFlag : std::uint8_t {
    isVisible,     // to be shown
    isMarked,      // the selection mark is on
    isDeleted,     // to be removed at the next `DeleteObjects` of its layer
    isCantMove,    // follows a moved master, so does not move itself in this move
    isSlave,       // the whole object hangs on `Pos.ConObj`
    isP1Slave,     // the first end of a line hangs on `Pos.ConObj`
    isP2Slave,     // the second end of a line hangs on its second position's master
    isConnect,     // a link is still a class number and number, to be resolved
    isNoHorzLimit, // not counted in the layer's horizontal limits
    isNoVertLimit, // not counted in the layer's vertical limits
    isSelected,    // member of the data module's mark list
    isSizing,      // sizing handles are on
    isCorrect,     // rotated text: the font handle is right for the scale
    isUserMark     // the host's own flag; saved with the object, never read by the library
};
using enum TIndividualStateFlag;
using TIndividualState = TFlagSet<TIndividualStateFlag, std::uint16_t, 0xFFFF>;

constexpr TIndividualState operator|(TIndividualStateFlag a, TIndividualStateFlag b) {
    return TIndividualState(a) | TIndividualState(b);
}

// The flags that a saved record keeps: all but `isMarked`, `isDeleted`, `isSelected`, `isSizing`.
inline constexpr std::uint16_t SavedStateMask = 0xF3F9;

enum class TInvolve : std::uint8_t { invMove, invDelete, invCopy };
using enum TInvolve;
enum class TSelectMode : std::uint8_t { smSelect, smUnselect };
using enum TSelectMode;
enum class TRgnMode : std::uint8_t { rmDev, rmLog };
using enum TRgnMode;
enum class TSizeMode : std::uint8_t { smShape, smCheck };
using enum TSizeMode;
enum class TSizingHandle : std::uint8_t {
    szNone,
    szVLine1,
    szVLine2,
    szHLine1,
    szHLine2,
    szX1Y1,
    szX2Y2,
    szX1Y2,
    szX2Y1,
    szRotate
};
using enum TSizingHandle;

// The handle under the mouse, shared by all objects; only one can be active at a time.
inline TSizingHandle SizingHandle = szNone;

// A link to another object. In a stream it is 4 bytes: the linked object's class number and its
// number, both 0 for no link. In memory a connected link holds the object beside them.
struct TContype {
    std::int16_t ConType = 0; // class number of the linked object
    std::uint16_t ConID = 0;  // number of the linked object within its class
    TvlObject* ConObj = nullptr;

    // True when the stored pair names no object.
    bool IsZero() const { return ConType == 0 && ConID == 0; }
    // The 4 bytes of the stream form, as one little-endian 32-bit value.
    std::uint32_t Raw() const {
        return static_cast<std::uint16_t>(ConType) | (static_cast<std::uint32_t>(ConID) << 16);
    }
    void SetRaw(std::uint32_t Value) {
        ConType = static_cast<std::int16_t>(Value & 0xFFFF);
        ConID = static_cast<std::uint16_t>(Value >> 16);
    }
};

// The position of an object, 8 bytes in a stream, seen in three ways:
// - free object: `x`, `y`, the absolute logical position;
// - connected slave: `ConObj`, the master, and the offset `RelX`, `RelY` (16 bits each) in `y`;
// - unconnected slave: `ConType`, `ConID` in `x`, and the offset (`RelPos`) in `y`.
// The master reference sits beside the 8 bytes; `x` keeps the master's class number and number.
struct TPos {
    std::int32_t x = 0;
    std::int32_t y = 0;
    TvlObject* ConObj = nullptr;

    TPoint PosLog() const { return {x, y}; }

    std::int16_t ConType() const { return static_cast<std::int16_t>(static_cast<std::uint32_t>(x) & 0xFFFF); }
    std::uint16_t ConID() const { return static_cast<std::uint16_t>(static_cast<std::uint32_t>(x) >> 16); }
    void SetConType(std::int16_t Value) {
        x = static_cast<std::int32_t>((static_cast<std::uint32_t>(x) & 0xFFFF0000u) |
                                      static_cast<std::uint16_t>(Value));
    }
    void SetConID(std::uint16_t Value) {
        x = static_cast<std::int32_t>((static_cast<std::uint32_t>(x) & 0x0000FFFFu) |
                                      (static_cast<std::uint32_t>(Value) << 16));
    }
    // The first half as a link: the stored pair and the master beside it.
    TContype Contype() const { return {ConType(), ConID(), ConObj}; }
    void SetContype(const TContype& Value) {
        SetConType(Value.ConType);
        SetConID(Value.ConID);
        ConObj = Value.ConObj;
    }

    std::int16_t RelX() const { return static_cast<std::int16_t>(static_cast<std::uint32_t>(y) & 0xFFFF); }
    std::int16_t RelY() const { return static_cast<std::int16_t>(static_cast<std::uint32_t>(y) >> 16); }
    // Stores the low 16 bits of `Value`: an offset beyond the 16-bit range wraps.
    void SetRelX(std::int32_t Value) {
        y = static_cast<std::int32_t>((static_cast<std::uint32_t>(y) & 0xFFFF0000u) |
                                      (static_cast<std::uint32_t>(Value) & 0xFFFFu));
    }
    void SetRelY(std::int32_t Value) {
        y = static_cast<std::int32_t>((static_cast<std::uint32_t>(y) & 0x0000FFFFu) |
                                      (static_cast<std::uint32_t>(Value) << 16));
    }
    std::int32_t RelPos() const { return y; }
    void SetRelPos(std::int32_t Value) { y = Value; }
};

// An old and a new object number of a paste, by class number.
struct TPasteIDRec {
    std::int16_t ClassNr = 0;
    std::uint16_t OldID = 0;
    std::uint16_t NewID = 0;
};
inline constexpr std::uint16_t PasteIDRecSize = 6;

// The numbers of a paste, old against new: the paste operation creates the list before reading and
// frees it after connecting. Null outside a paste.
inline std::unique_ptr<TRecordList> PasteIDList;
// Appends a record to `PasteIDList` (which must exist).
void AddPasteID(const TPasteIDRec& Rec);
// The record at `Index` of `PasteIDList`.
TPasteIDRec PasteIDAt(std::int32_t Index);

// The class of an object as a value: makes an object of that class for a tool.
using TCapClass = std::function<TvlObject*(TvlCreator* ATool)>;
// The factory of class `T`.
template <class T>
TvlObject* NewObjectOf(TvlCreator* ATool) {
    return new T(ATool);
}

// Walks over objects take a callback and a parameter block passed through untouched.
using TAllObjectsProc = std::function<void(TvlObject* AnyObject, void* Params)>;
using TFirstObjectFunc = std::function<bool(TvlObject* FndObject, void* Params)>;

// The reader of the framed metafile form of a picture (code 3): given the bytes of the frame, it
// answers the graphic. While none is installed, the frame is skipped and the picture left empty.
using TMetafileReader = std::function<std::unique_ptr<TGraphic>(TStream& Frame)>;
inline TMetafileReader MetafileReader;

class TvlObject : public TBoxObject {
public:
    // Stores the tool and counts the object among its generator's living objects. State and
    // position start zeroed. The caller numbers the object (`Count`), makes it visible and adds it
    // to the data module.
    explicit TvlObject(TObjectCreator* ATool = nullptr);
    // Takes the object out of its generator's count, if the generator still exists.
    ~TvlObject() override;

    // --- The virtual protocol, in slot order ------------------------------------------------------
    virtual void SetMaster(TvlObject* Value);
    virtual double GetX_World();
    virtual double GetY_World();
    virtual QString GetText();
    virtual void SetText(const QString& Value);
    virtual TFont* GetFont();
    virtual void SetFont(TFont* Value);
    virtual std::int32_t GetFontHeightBk();
    virtual void SetPicture(TPicture* Value);
    virtual TPicture* GetPicture();
    virtual std::int32_t GetX();
    virtual std::int32_t GetY();
    virtual std::int32_t GetMaxX();
    virtual std::int32_t GetMinX();
    virtual std::int32_t GetMaxY();
    virtual std::int32_t GetMinY();
    virtual TLimRec GetLimits();
    virtual std::int32_t GetHeight();
    virtual std::int32_t GetWidth();
    virtual void SetWidth(std::int32_t Value);
    virtual bool SizingHandles(TPoint Pt, TSizeMode Mode);
    virtual void AssignPos(TvlObject* MirrorObj);
    virtual HRGN CreateShapeRgn(TRgnMode Mode);
    // (The virtual constructor is the class's factory, `TCapClass`.)
    virtual std::int32_t Involved(TInvolve Code);
    virtual void CanDelete();
    virtual void Persist(TStream* Stream, TPstMode PstMode);
    virtual bool Found(const TLimRec& CurLims);
    virtual bool CheckShape(const TLimRec& CurLims);
    virtual void StartMove();
    void MovePos(TPoint DeltaPos) override;
    virtual void EndMove();
    virtual void Rotate(TPoint Origin, double Delta);
    void Invalidate() override;
    void AdjustToScale() override;
    virtual void AdjustToFontHeight();
    virtual void Shape();
    virtual void Print();
    virtual void Draw();
    void Show() override;
    virtual void Hide();
    virtual void ShapeMark();
    virtual void Drawmark();
    virtual void SelectComplete(TSelectMode Mode);
    virtual void Select(TSelectMode Mode);
    virtual void Mark();
    virtual void DrawShadow();
    virtual void HideShadow();
    void ObjectMessage(TObjMessage& aMessage) override;

    // --- What the draw box asks of every object ---------------------------------------------------
    // `isVisible` is set and the generator doesn't hold `roHidden`.
    bool Visible() const override;
    // Quick test of the area at `Koord` (a `TPoint`, `TRect` or `TLimRec` as `Code` says) against
    // `GetMaxLimits`; all comparisons inclusive.
    bool CheckFrame(const void* Koord, TCheckFrame Code) override;
    // The generator holds `roNosy`: the object hears of every paint and every printing.
    bool Nosy() const override;

    // --- Identity and links ----------------------------------------------------------------------
    // The tool that made the object.
    TvlCreator* Tool() const;
    // The draw box of that tool; null where a link of the chain is missing.
    TCustomDrawBox* DrawForm() const;
    std::uint16_t ID() const { return ObjID; }
    // The tool's generator; null without a tool.
    TCustomGenerator* Generator() const;
    // `Tool.FDrawForm.FDataModule`; null where a link of that chain is missing.
    TObjectStore* GetDataModule() const;
    // The tool's ID as a signed 16-bit number.
    std::int16_t ClassNr() const;
    // Numbers a new object from the data module's counter that the generator names.
    void Count();
    // The object of the data module that the link names.
    TvlObject* FindObject(const TContype& Link) const;
    // The master: `Pos.ConObj` with `isSlave` or `isP1Slave`, else the object itself.
    TvlObject* GetMaster() const;
    TvlObject* Master() const { return GetMaster(); }

    void SaveToStream(TStream& Stream) { Persist(&Stream, TPstMode::pstSave); }
    void LoadFromStream(TStream& Stream) { Persist(&Stream, TPstMode::pstLoad); }
    // Resolves the object's links; `DataMod` is not used.
    void Connect(TvlDataMod* DataMod);

    // --- Position ---------------------------------------------------------------------------------
    std::int32_t X_Log() { return GetX(); }
    std::int32_t Y_Log() { return GetY(); }
    TPoint GetPos() { return Point(GetX(), GetY()); }
    TPoint Pos_Log() { return GetPos(); }
    double X_World() { return GetX_World(); }
    double Y_World() { return GetY_World(); }
    // Writers. An end that hangs on a master (`isP1Slave`) can't be placed; a slave stores its
    // offset in 16 bits, so a slave farther than 32767 units from its master wraps.
    void SetX(std::int32_t Value);
    void SetY(std::int32_t Value);
    // Without `OnCalcRefPoint`: a slave's offsets from its master's position.
    void SetPos(TPoint Pt);
    void SetX_World(double Value);
    void SetY_World(double Value);
    void SetX_Log(std::int32_t Value) { SetX(Value); }
    void SetY_Log(std::int32_t Value) { SetY(Value); }
    void SetPos_Log(TPoint Pt) { SetPos(Pt); }
    // The raw position record.
    const TPos& PosRec() const { return Pos; }

    // --- Attributes read through the tool ---------------------------------------------------------
    QString Text() { return GetText(); }
    TFont* Font() { return GetFont(); }
    std::int32_t FontHeightBk() { return GetFontHeightBk(); }
    TPicture* Picture() { return GetPicture(); }
    // The divisor of a rounded corner: the tool's `Tag` if above 0, else `RoundRectX3`.
    std::int32_t GetDRoundRect() const;
    std::int32_t DRoundRect() const { return GetDRoundRect(); }
    TPoint GetHotSpot() const;
    TPoint HotSpot() const { return GetHotSpot(); }

    // --- Bounds -----------------------------------------------------------------------------------
    std::int32_t Height() { return GetHeight(); }
    std::int32_t Width() { return GetWidth(); }
    std::int32_t MaxX() { return GetMaxX(); }
    std::int32_t MinX() { return GetMinX(); }
    std::int32_t MaxY() { return GetMaxY(); }
    std::int32_t MinY() { return GetMinY(); }
    TLimRec Limits() { return GetLimits(); }
    // The absolute width and height of `Limits`.
    TSize GetExtent();
    TSize Extent() { return GetExtent(); }
    // The local rectangle runs from 0 to the size, flipped as the scale's axes are flipped.
    std::int32_t GetLeft();
    std::int32_t GetRight();
    std::int32_t GetTop();
    std::int32_t GetBottom();
    std::int32_t Left() { return GetLeft(); }
    std::int32_t Right() { return GetRight(); }
    std::int32_t Top() { return GetTop(); }
    std::int32_t Bottom() { return GetBottom(); }
    TRect GetRect_Lcl();
    TRect BoundsRect_Lcl() { return GetRect_Lcl(); }
    // The local rectangle moved to (`MinX`, `MinY`).
    TRect GetRect();
    TRect BoundsRect() { return GetRect(); }
    // The rectangle the object can touch on the screen: `Limits` widened by the shadow (with
    // `goShadows`), the sizing handles (with `isSizing`) and three pen widths.
    TLimRec GetMaxLimits();

    // --- Flags ------------------------------------------------------------------------------------
    bool GetVisible() const { return Visible(); }
    // Changes only the flag.
    void SetVisible(bool Value);
    bool GetSelected() const { return State.Contains(isSelected); }
    bool Selected() const { return GetSelected(); }
    void SetSelected(bool Value) { Select(Value ? smSelect : smUnselect); }
    bool GetSizing() const { return State.Contains(isSizing); }
    bool Sizing() const { return GetSizing(); }
    void SetSizing(bool Value);
    // Leaves the mark list: clears `isSelected`, and a drawn mark is taken away.
    void RemoveSelectFlag();
    // Repaints the object's `GetMaxLimits` at once through the draw box.
    void Update();

    // --- Stream helpers ---------------------------------------------------------------------------
    // Each does nothing in the modes that it doesn't name. `Stream` is null in the connect modes.
    //
    // `pstSave`, `pstCopy`: write `Size` bytes as they stand in memory; `pstLoad`, `pstPaste`: read
    // them.
    static void RegisterData(TStream* Stream, void* Buffer, std::int32_t Size, TPstMode PstMode);
    // The same for one number (or enumeration), written little-endian in its own width.
    template <class T>
    requires(std::is_arithmetic_v<T> ||
             std::is_enum_v<T>) static void RegisterValue(TStream* Stream, T& Value, TPstMode PstMode);
    // A terminated 16-bit string that the object owns: length in characters, then the text with its
    // terminator; a null string is a 4-byte 0. Reading a length below 1 leaves `Buffer` as it was.
    static void RegisterPChar(TStream* Stream, std::unique_ptr<char16_t[]>& Buffer, TPstMode PstMode);
    static void RegisterString(TStream* Stream, QString& S, TPstMode PstMode);
    // For reading, first drops the 2-byte class number that the object's own `Persist` wrote.
    static void RegisterObject(TStream* Stream, TvlObject* AnyObject, TPstMode PstMode);
    // A reference to another object as 4 bytes; connecting resolves it through the data module.
    void RegisterLink(TStream* Stream, TContype& Link, TPstMode PstMode);
    static void RegisterFont(TStream* Stream, TFont& Font, TPstMode PstMode);
    static void RegisterPen(TStream* Stream, TPen& Pen, TPstMode PstMode);
    static void RegisterBrush(TStream* Stream, TBrush& Brush, TPstMode PstMode);
    // A 16-bit type code, then the graphic: 1 a bitmap (or any other class), 2 an icon, 3 a
    // metafile framed by its byte count.
    static void RegisterPicture(TStream* Stream, TPicture& Picture, TPstMode PstMode);

    TIndividualState State;

protected:
    // A slave's reference point from the tool's `OnCalcRefPoint`, plus the offset.
    std::int32_t GetXRef();
    std::int32_t GetYRef();
    void SetXRef(std::int32_t Value);
    void SetYRef(std::int32_t Value);
    // The object's silhouette offset by the draw box's shadow, in the shadow's colours.
    void DrawShade();
    // Sizing handles, for the classes that offer them in `SizingHandles`. A handle at `Center` (local
    // coordinates) covers every point within `GetTempFrame` of the scale on each side, edges
    // included; `DrawHandle` fills that square with the canvas's pen and brush, and `OnHandle` tests
    // a point against it, so what is drawn and what is hit can't differ.
    TRect HandleRect(TPoint Center) const;
    void DrawHandle(TPoint Center);
    bool OnHandle(TPoint Pt, TPoint Center) const;
    bool IsAnySlave() const { return State.Contains(isSlave) || State.Contains(isP1Slave); }
    // The scale setting in force; raises when there is none.
    static TScaleSetting& Scale();
    // The canvas of the scale setting in force; raises when there is none.
    static TCanvas& ScaleCanvas();
    // A logical value plus or minus a difference, with the wrap of two's complement as the device has.
    static std::int32_t WrapAdd(std::int32_t a, std::int32_t b) {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
    }
    static std::int32_t WrapSub(std::int32_t a, std::int32_t b) {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
    }
    // `L` moved by (`Dx`, `Dy`), with the same wrap.
    static TLimRec OffsetLimits(TLimRec L, std::int32_t Dx, std::int32_t Dy) {
        return LimRec(WrapAdd(L.Xmin, Dx), WrapAdd(L.Ymin, Dy), WrapAdd(L.Xmax, Dx), WrapAdd(L.Ymax, Dy));
    }

    TObjectCreator* FTool = nullptr; // borrowed: the tool that made the object
    TPos Pos;
    std::uint16_t ObjID = 0;
};

template <class T>
requires(std::is_arithmetic_v<T> ||
         std::is_enum_v<T>) void TvlObject::RegisterValue(TStream* Stream, T& Value, TPstMode PstMode) {
    if (PstMode != TPstMode::pstSave && PstMode != TPstMode::pstCopy && PstMode != TPstMode::pstLoad &&
        PstMode != TPstMode::pstPaste)
        return;
    unsigned char bytes[sizeof(T)];
    if (PstMode == TPstMode::pstSave || PstMode == TPstMode::pstCopy) {
        std::uint64_t raw = 0;
        if constexpr (std::is_floating_point_v<T>) {
            static_assert(sizeof(T) == 4 || sizeof(T) == 8);
            if constexpr (sizeof(T) == 8)
                raw = std::bit_cast<std::uint64_t>(Value);
            else
                raw = std::bit_cast<std::uint32_t>(Value);
        } else {
            raw = static_cast<std::uint64_t>(Value);
        }
        for (std::size_t i = 0; i < sizeof(T); ++i) bytes[i] = static_cast<unsigned char>(raw >> (8 * i));
        RegisterData(Stream, bytes, sizeof(T), PstMode);
    } else {
        RegisterData(Stream, bytes, sizeof(T), PstMode);
        std::uint64_t raw = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i) raw |= static_cast<std::uint64_t>(bytes[i]) << (8 * i);
        if constexpr (std::is_floating_point_v<T>) {
            if constexpr (sizeof(T) == 8)
                Value = std::bit_cast<double>(raw);
            else
                Value = std::bit_cast<float>(static_cast<std::uint32_t>(raw));
        } else if constexpr (std::is_same_v<T, bool>) {
            Value = raw != 0;
        } else {
            Value = static_cast<T>(raw);
        }
    }
}

} // namespace vl
