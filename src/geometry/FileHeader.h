// The header of the drawing file or stream being read or written (`FileHeader`) and the version tests
// that every `Persist` reads.
//
// During a read `FileHeader` describes the file; during a write, the current library. The header is
// process-wide, so reads and writes must not overlap. It starts in the current form, as if
// `SetFileHeader` had run, so that objects streamed before any file was touched use the newest form.
#pragma once

#include "geometry/Vltypes.h"

#include <cstdint>

namespace vl {

class TStream;

// The 16-byte header of a drawing file, in stream order.
struct TvlFileHeader {
    std::int16_t Vellorum = 0;    // the negated library version
    std::uint16_t Padding = 0;    // written as it stands
    std::uint32_t AppID = 0;      // the host application's ID
    std::uint32_t AppVersion = 0; // the host's version: major, minor, release, build from high to low
    std::int32_t Delphi = 0;      // generation code of the writing tool chain, in the top byte
    friend constexpr bool operator==(const TvlFileHeader&, const TvlFileHeader&) = default;
};

// The generation code that the writer puts in `Delphi`.
inline constexpr std::int32_t ThisDelphi = 0x1A000000;

// `FileHeader` as `SetFileHeader` fills it from the globals.
inline TvlFileHeader CurrentFileHeader() {
    TvlFileHeader h;
    h.Vellorum = static_cast<std::int16_t>(-static_cast<std::int32_t>(ThisVersion));
    h.AppID = static_cast<std::uint32_t>(ThisAppID);
    h.AppVersion = ThisAppVersion;
    h.Delphi = ThisDelphi;
    return h;
}

inline TvlFileHeader FileHeader = CurrentFileHeader();

// Fills `FileHeader` from the globals: before every write, and before reading an undo snapshot.
inline void SetFileHeader() {
    FileHeader = CurrentFileHeader();
}

// True when the file is of version `v` or later: the signed `Vellorum` field is at most -v.
inline bool vlFileVersionSince(std::int32_t v) {
    return FileHeader.Vellorum <= -v;
}
// True when the file is older than version `v`. A zero or positive field is older than any version.
inline bool vlFileVersionBefore(std::int32_t v) {
    return FileHeader.Vellorum > -v;
}
// True when the file was written by a tool chain older than `v` (compared with the signed `Delphi`).
inline bool bdsFileVersionBefore(std::int32_t v) {
    return v > FileHeader.Delphi;
}

// The 16 bytes of a header, field by field, little-endian.
void WriteFileHeader(TStream& Stream, const TvlFileHeader& Header);
// Reads 16 bytes; raises `EReadError` when fewer follow.
TvlFileHeader ReadFileHeader(TStream& Stream);

} // namespace vl
