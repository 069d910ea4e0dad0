// The 16 bytes of the drawing file's header, field by field.

#include "geometry/FileHeader.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Streams.h"

#include <QString>

namespace vl {

void WriteFileHeader(TStream& Stream, const TvlFileHeader& Header) {
    Stream.WriteInt16(Header.Vellorum);
    Stream.WriteUInt16(Header.Padding);
    Stream.WriteUInt32(Header.AppID);
    Stream.WriteUInt32(Header.AppVersion);
    Stream.WriteInt32(Header.Delphi);
}

TvlFileHeader ReadFileHeader(TStream& Stream) {
    if (Stream.Remaining() < 16) throw EReadError(QStringLiteral("Stream read error"));
    TvlFileHeader h;
    h.Vellorum = Stream.ReadInt16();
    h.Padding = Stream.ReadUInt16();
    h.AppID = Stream.ReadUInt32();
    h.AppVersion = Stream.ReadUInt32();
    h.Delphi = Stream.ReadInt32();
    return h;
}

} // namespace vl
