// The identity of the host program.

#include "surface/AppIdentity.h"

namespace vl {

TvlApplication::TvlApplication() : FTmpAppID(ThisAppID), FTmpAppVersion(ThisAppVersion) {
    ThisAppID = -1;
}

TvlApplication::~TvlApplication() {
    ThisAppID = 0;
    ThisAppVersion = 0x01000000;
}

void TvlApplication::SetAppID(std::int32_t Value) {
    if (ThisAppID < 0)
        FTmpAppID = Value;
    else
        ThisAppID = Value;
}

void TvlApplication::SetAppVersion(std::uint32_t Value) {
    if (Value < 0x10000) {
        Value = ((Value >> 12) & 0xF) << 24 | ((Value >> 8) & 0xF) << 16 | ((Value >> 4) & 0xF) << 8 |
                (Value & 0xF);
    }
    if (ThisAppID < 0)
        FTmpAppVersion = Value;
    else
        ThisAppVersion = Value;
}

void TvlApplication::SetPart(int Shift, T4Bit Value) {
    const std::uint32_t mask = 0xFFu << Shift;
    const std::uint32_t v = (AppVersion() & ~mask) | (static_cast<std::uint32_t>(Value & 127) << Shift);
    if (ThisAppID < 0)
        FTmpAppVersion = v;
    else
        ThisAppVersion = v;
}

void TvlApplication::TakeOverIdentity() {
    ThisAppID = FTmpAppID;
    ThisAppVersion = FTmpAppVersion;
}

} // namespace vl
