// The stream protocol of the object base: `Persist` of the base record and the `Register...` helpers
// from which every class builds its own `Persist`.
#include "objects/TvlObject.h"

#include "geometry/FileHeader.h"
#include "geometry/Vlprocs.h"
#include "objects/ObjectLinks.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Streams.h"
#include "platform/graphics/Graphics.h"
#include "platform/graphics/Images.h"

#include <limits>

namespace vl {

namespace {

bool Writes(TPstMode m) {
    return m == TPstMode::pstSave || m == TPstMode::pstCopy;
}
bool Reads(TPstMode m) {
    return m == TPstMode::pstLoad || m == TPstMode::pstPaste;
}

// The tool chain generation from which strings are UTF-16.
constexpr std::int32_t WideStringsSince = 0x9000000;

// Reads a byte that must name a value of an enumeration of `Count` values.
template <class E>
E ReadEnumByte(TStream& Stream, unsigned Count, const char* What) {
    const std::uint8_t v = Stream.ReadUInt8();
    if (v >= Count)
        throw EReadError(QStringLiteral("Invalid %1 in stream: %2").arg(QLatin1String(What)).arg(v));
    return static_cast<E>(v);
}

void WriteFiller(TStream& Stream, int Count) {
    for (int i = 0; i < Count; ++i) Stream.WriteUInt8(0);
}

void SkipBytes(TStream& Stream, std::int64_t Count) {
    if (Stream.Remaining() < Count) throw EReadError(QStringLiteral("Stream read error"));
    Stream.SetPosition(Stream.Position() + Count);
}

} // namespace

// --- The base record ------------------------------------------------------------------------------

void TvlObject::Persist(TStream* Stream, TPstMode PstMode) {
    switch (PstMode) {
    case TPstMode::pstSave:
    case TPstMode::pstCopy: {
        Stream->WriteInt16(ClassNr());
        Stream->WriteUInt16(ObjID);
        Stream->WriteUInt16(static_cast<std::uint16_t>(State.Bits() & SavedStateMask));
        if (IsAnySlave()) {
            // The master is named by class number and number; a master that is not (yet) there
            // leaves the pair as it was read.
            TPos named = Pos;
            if (Pos.ConObj) {
                named.SetConType(Pos.ConObj->ClassNr());
                named.SetConID(Pos.ConObj->ObjID);
            }
            Stream->WriteInt32(named.x);
            Stream->WriteInt32(named.y);
        } else {
            Stream->WriteInt32(Pos.x);
            Stream->WriteInt32(Pos.y);
        }
        break;
    }
    case TPstMode::pstLoad: {
        if (vlFileVersionSince(0x2090)) {
            ObjID = Stream->ReadUInt16();
        } else {
            // Old files keep the number in 4 bytes; only the low word counts.
            ObjID = static_cast<std::uint16_t>(Stream->ReadUInt32() & 0xFFFF);
        }
        State = TIndividualState::FromBits(Stream->ReadUInt16());
        Pos.x = Stream->ReadInt32();
        Pos.y = Stream->ReadInt32();
        Pos.ConObj = nullptr;
        if (vlFileVersionBefore(0x2000)) Stream->SetPosition(Stream->Position() + 4);
        if (IsAnySlave()) State.Include(isConnect);
        break;
    }
    case TPstMode::pstPaste: {
        const std::uint16_t oldID = Stream->ReadUInt16();
        if (PasteIDList) AddPasteID({ClassNr(), oldID, ObjID});
        State = TIndividualState::FromBits(Stream->ReadUInt16());
        Pos.x = Stream->ReadInt32();
        Pos.y = Stream->ReadInt32();
        Pos.ConObj = nullptr;
        if (IsAnySlave()) State.Include(isConnect);
        break;
    }
    case TPstMode::pstConnect:
    case TPstMode::pstConnectCopy:
        if (IsAnySlave()) {
            TContype link = Pos.Contype();
            RegisterLink(Stream, link, PstMode);
            Pos.SetContype(link);
        }
        break;
    }
}

// --- Stream helpers -------------------------------------------------------------------------------

void TvlObject::RegisterData(TStream* Stream, void* Buffer, std::int32_t Size, TPstMode PstMode) {
    if (Writes(PstMode))
        Stream->WriteBuffer(Buffer, Size);
    else if (Reads(PstMode))
        Stream->ReadBuffer(Buffer, Size);
}

void TvlObject::RegisterPChar(TStream* Stream, std::unique_ptr<char16_t[]>& Buffer, TPstMode PstMode) {
    if (Writes(PstMode)) {
        if (!Buffer) {
            Stream->WriteInt32(0);
            return;
        }
        std::int32_t length = 0;
        while (Buffer[static_cast<std::size_t>(length)] != 0) ++length;
        Stream->WriteInt32(length);
        for (std::int32_t i = 0; i <= length; ++i) Stream->WriteUInt16(Buffer[static_cast<std::size_t>(i)]);
    } else if (Reads(PstMode)) {
        const std::int32_t length = Stream->ReadInt32();
        if (length < 1) return;
        const bool ansi = bdsFileVersionBefore(WideStringsSince);
        // The text must be in the stream before it is allocated.
        const std::int64_t needed = (static_cast<std::int64_t>(length) + 1) * (ansi ? 1 : 2);
        if (Stream->Remaining() < needed) throw EReadError(QStringLiteral("Stream read error"));
        auto text = std::make_unique<char16_t[]>(static_cast<std::size_t>(length) + 1);
        if (ansi) {
            StreamReadAnsiString(*Stream, text.get(), length);
        } else {
            for (std::int32_t i = 0; i <= length; ++i)
                text[static_cast<std::size_t>(i)] = Stream->ReadUInt16();
            text[static_cast<std::size_t>(length)] = 0;
        }
        Buffer = std::move(text);
    }
}

void TvlObject::RegisterString(TStream* Stream, QString& S, TPstMode PstMode) {
    switch (PstMode) {
    case TPstMode::pstSave:
    case TPstMode::pstCopy: SaveString(*Stream, S); break;
    case TPstMode::pstLoad:
        S = bdsFileVersionBefore(WideStringsSince) ? LoadStringAnsi(*Stream) : LoadString_w(*Stream);
        break;
    case TPstMode::pstPaste: S = LoadString_w(*Stream); break;
    default: break;
    }
}

void TvlObject::RegisterObject(TStream* Stream, TvlObject* AnyObject, TPstMode PstMode) {
    if (Reads(PstMode)) Stream->ReadInt16();
    AnyObject->Persist(Stream, PstMode);
}

void TvlObject::RegisterLink(TStream* Stream, TContype& Link, TPstMode PstMode) {
    switch (PstMode) {
    case TPstMode::pstSave:
    case TPstMode::pstCopy:
        if (Link.ConObj) {
            Stream->WriteInt16(Link.ConObj->ClassNr());
            Stream->WriteUInt16(Link.ConObj->ObjID);
        } else {
            Stream->WriteUInt32(0);
        }
        break;
    case TPstMode::pstLoad:
    case TPstMode::pstPaste:
        Link.SetRaw(Stream->ReadUInt32());
        Link.ConObj = nullptr;
        if (!Link.IsZero()) State.Include(isConnect);
        break;
    case TPstMode::pstConnect:
        if (!Link.IsZero()) {
            Link.ConObj = FindObject(Link);
            State.Exclude(isConnect);
        }
        break;
    case TPstMode::pstConnectCopy: {
        // A link whose object was not pasted with it, or that can't be found, deletes the object.
        bool connected = false;
        try {
            if (PasteIDList && !Link.IsZero()) {
                for (std::int32_t i = 0; i < PasteIDList->Count(); ++i) {
                    const TPasteIDRec rec = PasteIDAt(i);
                    if (rec.ClassNr == Link.ConType && rec.OldID == Link.ConID) {
                        Link.ConID = rec.NewID;
                        Link.ConObj = FindObject(Link);
                        State.Exclude(isConnect);
                        connected = Link.ConObj != nullptr;
                        break;
                    }
                }
            }
        } catch (...) {
            connected = false;
        }
        if (!connected) State.Include(isDeleted);
        break;
    }
    }
}

void TvlObject::RegisterFont(TStream* Stream, TFont& Font, TPstMode PstMode) {
    if (Writes(PstMode)) {
        Stream->WriteInt32(Font.Color());
        Stream->WriteInt32(Font.Height());
        Stream->WriteUInt8(static_cast<std::uint8_t>(Font.Pitch()));
        Stream->WriteUInt8(static_cast<std::uint8_t>(Font.Style().Bits()));
        Stream->WriteUInt8(Font.Charset());
        WriteFiller(*Stream, 5);
        SaveString(*Stream, Font.Name());
    } else if (Reads(PstMode)) {
        if (Stream->Remaining() < 16) throw EReadError(QStringLiteral("Stream read error"));
        const TColor color = Stream->ReadInt32();
        const std::int32_t height = Stream->ReadInt32();
        const auto pitch = ReadEnumByte<TFontPitch>(*Stream, 3, "font pitch");
        const TFontStyles style = TFontStyles::FromBits(Stream->ReadUInt8());
        const TFontCharset charset = Stream->ReadUInt8();
        SkipBytes(*Stream, 5);
        const QString name =
            bdsFileVersionBefore(WideStringsSince) ? LoadStringAnsi(*Stream) : LoadString_w(*Stream);
        Font.SetName(name);
        Font.SetCharset(charset);
        Font.SetColor(color);
        Font.SetHeight(height);
        Font.SetPitch(pitch);
        Font.SetStyle(style);
    }
}

void TvlObject::RegisterPen(TStream* Stream, TPen& Pen, TPstMode PstMode) {
    if (Writes(PstMode)) {
        Stream->WriteInt32(Pen.Color());
        Stream->WriteUInt8(static_cast<std::uint8_t>(Pen.Mode()));
        Stream->WriteUInt8(static_cast<std::uint8_t>(Pen.Style()));
        WriteFiller(*Stream, 2);
        Stream->WriteInt32(Pen.Width());
    } else if (Reads(PstMode)) {
        if (Stream->Remaining() < 12) throw EReadError(QStringLiteral("Stream read error"));
        const TColor color = Stream->ReadInt32();
        const auto mode = ReadEnumByte<TPenMode>(*Stream, 16, "pen mode");
        const auto style = ReadEnumByte<TPenStyle>(*Stream, 7, "pen style");
        SkipBytes(*Stream, 2);
        const std::int32_t width = Stream->ReadInt32();
        Pen.SetColor(color);
        Pen.SetMode(mode);
        Pen.SetStyle(style);
        Pen.SetWidth(width);
    }
}

void TvlObject::RegisterBrush(TStream* Stream, TBrush& Brush, TPstMode PstMode) {
    if (Writes(PstMode)) {
        Stream->WriteInt32(Brush.Color());
        Stream->WriteUInt8(static_cast<std::uint8_t>(Brush.Style()));
        WriteFiller(*Stream, 3);
    } else if (Reads(PstMode)) {
        if (Stream->Remaining() < 8) throw EReadError(QStringLiteral("Stream read error"));
        const TColor color = Stream->ReadInt32();
        const auto style = ReadEnumByte<TBrushStyle>(*Stream, 8, "brush style");
        SkipBytes(*Stream, 3);
        Brush.SetColor(color);
        Brush.SetStyle(style);
    }
}

namespace {
constexpr std::uint16_t picBitmap = 1;
constexpr std::uint16_t picIcon = 2;
constexpr std::uint16_t picMetafile = 3;

bool IsMetafile(const TGraphic& G) {
    return G.ClassName() == QLatin1String("TMetafile");
}
} // namespace

void TvlObject::RegisterPicture(TStream* Stream, TPicture& Picture, TPstMode PstMode) {
    if (Writes(PstMode)) {
        TGraphic* graphic = Picture.Graphic();
        if (graphic && IsMetafile(*graphic)) {
            Stream->WriteUInt16(picMetafile);
            const std::int64_t countPos = Stream->Position();
            Stream->WriteInt32(0);
            graphic->SaveToStream(*Stream);
            const std::int64_t end = Stream->Position();
            const std::int64_t size = end - countPos - 4;
            if (size > std::numeric_limits<std::int32_t>::max())
                throw EWriteError(QStringLiteral("Metafile too large"));
            Stream->SetPosition(countPos);
            Stream->WriteInt32(static_cast<std::int32_t>(size));
            Stream->SetPosition(end);
        } else if (graphic && dynamic_cast<TIcon*>(graphic)) {
            Stream->WriteUInt16(picIcon);
            graphic->SaveToStream(*Stream);
        } else {
            Stream->WriteUInt16(picBitmap);
            if (graphic) {
                graphic->SaveToStream(*Stream);
            } else {
                TBitmap empty;
                empty.SaveToStream(*Stream);
            }
        }
    } else if (Reads(PstMode)) {
        const std::uint16_t code = Stream->ReadUInt16();
        switch (code) {
        case picBitmap: {
            TBitmap bitmap;
            bitmap.LoadFromStream(*Stream);
            Picture.SetGraphic(&bitmap);
            break;
        }
        case picIcon: {
            TIcon icon;
            icon.LoadFromStream(*Stream);
            Picture.SetGraphic(&icon);
            break;
        }
        case picMetafile: {
            // The frame keeps a metafile reader that reads too far from eating the next record.
            const std::int32_t size = Stream->ReadInt32();
            if (size < 0 || Stream->Remaining() < size) throw EReadError(QStringLiteral("Stream read error"));
            TMemoryStream frame;
            if (size > 0) frame.CopyFrom(*Stream, size);
            frame.SetPosition(0);
            if (MetafileReader) {
                std::unique_ptr<TGraphic> graphic = MetafileReader(frame);
                Picture.SetGraphic(graphic.get());
            } else {
                Picture.SetGraphic(nullptr);
            }
            break;
        }
        default: throw EReadError(QStringLiteral("Invalid picture code in stream: %1").arg(code));
        }
    }
}

} // namespace vl
