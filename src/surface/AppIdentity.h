// The identity of the host program (`TvlApplication`), published by the draw box as `App`.
//
// It writes the globals `ThisAppID` and `ThisAppVersion`. While it is being set up from the form
// (`ThisAppID` negative) its setters write temporaries, which the first paint of a draw box takes
// over by `TakeOverIdentity`.
#pragma once

#include "geometry/Vltypes.h"
#include "platform/core/Classes.h"

#include <cstdint>

namespace vl {

class TvlApplication : public TPersistent {
public:
    // Keeps the present identity as the temporary and marks the globals as loading (`ThisAppID` -1).
    TvlApplication();
    // Puts the globals back to their initial values.
    ~TvlApplication() override;

    std::int32_t AppID() const { return ThisAppID < 0 ? FTmpAppID : ThisAppID; }
    void SetAppID(std::int32_t Value);
    std::uint32_t AppVersion() const { return ThisAppID < 0 ? FTmpAppVersion : ThisAppVersion; }
    // A value below 0x10000 is the old form of one nibble per part and is expanded to a byte each.
    void SetAppVersion(std::uint32_t Value);
    T4Bit VersionMajor() const { return static_cast<T4Bit>(AppVersion() >> 24); }
    T4Bit VersionMinor() const { return static_cast<T4Bit>(AppVersion() >> 16); }
    T4Bit VersionRelease() const { return static_cast<T4Bit>(AppVersion() >> 8); }
    T4Bit VersionBuild() const { return static_cast<T4Bit>(AppVersion()); }
    void SetVersionMajor(T4Bit Value) { SetPart(24, Value); }
    void SetVersionMinor(T4Bit Value) { SetPart(16, Value); }
    void SetVersionRelease(T4Bit Value) { SetPart(8, Value); }
    void SetVersionBuild(T4Bit Value) { SetPart(0, Value); }

    // Copies the temporaries to the globals (the first paint of a box does it when `ThisAppID` is
    // negative).
    void TakeOverIdentity();

private:
    void SetPart(int Shift, T4Bit Value);
    std::int32_t FTmpAppID = 0;
    std::uint32_t FTmpAppVersion = 0;
};

} // namespace vl
