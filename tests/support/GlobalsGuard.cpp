#include "support/GlobalsGuard.h"

#include "geometry/FileHeader.h"
#include "geometry/Vltypes.h"
#include "objects/PointObj.h"
#include "objects/TvlObject.h"
#include "platform/gdi/Gdi.h"
#include "platform/graphics/Cursors.h"
#include "platform/services/Infobox.h"
#include "platform/services/Services.h"
#include "store/DataModBase.h"
#include "surface/BoxLinks.h"
#include "surface/ScaleSetting.h"
#include "tools/CreatorBase.h"
#include "tools/Creators.h"

#include <QGuiApplication>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cxxabi.h>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <typeinfo>

namespace vl::test {

namespace {

std::string Hex(std::uintptr_t Value) {
    std::ostringstream s;
    s << "0x" << std::hex << Value;
    return s.str();
}

std::string Address(const void* P) {
    return P ? Hex(std::bit_cast<std::uintptr_t>(P)) : std::string("null");
}

std::string Demangled(const std::type_info& Type) {
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(Type.name(), nullptr, nullptr, &status), &std::free);
    return status == 0 && name ? std::string(name.get()) : std::string(Type.name());
}

// "empty", or "assigned <target type>"; a plain function as target adds its address, since two
// functions of one signature have the same target type.
template <class R, class... A>
std::string HookState(const std::function<R(A...)>& Hook) {
    if (!Hook) return "empty";
    std::string s = "assigned " + Demangled(Hook.target_type());
    if (auto* function = Hook.template target<R (*)(A...)>())
        s += " at " + Hex(std::bit_cast<std::uintptr_t>(*function));
    return s;
}

std::string HeaderState(const TvlFileHeader& H) {
    std::ostringstream s;
    s << "{Vellorum " << H.Vellorum << ", Padding " << H.Padding << ", AppID " << H.AppID << ", AppVersion 0x"
      << std::hex << H.AppVersion << ", Delphi 0x" << H.Delphi << "}";
    return s.str();
}

std::string PointState(TPoint P) {
    return "(" + std::to_string(P.x) + ", " + std::to_string(P.y) + ")";
}

std::string ClipState(const std::optional<TRect>& Clip) {
    if (!Clip) return "none";
    return "{" + std::to_string(Clip->Left) + ", " + std::to_string(Clip->Top) + ", " +
           std::to_string(Clip->Right) + ", " + std::to_string(Clip->Bottom) + "}";
}

// The numbers of the cursors a program may register in the screen's table.
constexpr int MaxRegisteredCursor = 64;

// The registered cursors, but for the library's own: the first box or creator that loads enters them
// for the life of the program, so they are there from then on by design.
std::string RegisteredCursors() {
    std::string s;
    for (int i = 1; i <= MaxRegisteredCursor; ++i)
        if (i != CursorRotate && i != CursorSmallCross && Screen.HasCursor(i))
            s += (s.empty() ? "" : " ") + std::to_string(i);
    return s.empty() ? std::string("none") : s;
}

} // namespace

TGlobalsSnapshot SnapshotGlobals() {
    TGlobalsSnapshot s;
    auto add = [&s](const char* Name, std::string State) { s.push_back({Name, std::move(State)}); };
    auto number = [&add](const char* Name, auto Value) { add(Name, std::to_string(Value)); };

    // The state of a running operation.
    add("ActScaleSet", Address(ActScaleSet));
    add("FileHeader", HeaderState(FileHeader));
    number("SizingHandle", static_cast<int>(SizingHandle));
    add("PasteIDList", Address(PasteIDList.get()));
    add("Infobox", Address(Infobox));
    add("Userbreak", Userbreak ? "true" : "false");

    // Hooks and factories that hosts and modules install.
    add("LoadRemedy", HookState(LoadRemedy));
    add("ReleaseMapper", HookState(ReleaseMapper));
    add("MapClassNr", HookState(MapClassNr));
    add("UndoManagerFactory", HookState(UndoManagerFactory));
    add("DataModuleFactory", HookState(DataModuleFactory));
    add("InfoboxFactory", HookState(InfoboxFactory));
    add("DefaultObjectClass", HookState(DefaultObjectClass));
    add("MetafileReader", HookState(MetafileReader));
    add("RotatedMetafileDrawer", HookState(RotatedMetafileDrawer));
    add("IsMetafileGraphic", HookState(IsMetafileGraphic));
    add("RotatedPicClass", HookState(RotatedPicClass));

    // The settings.
    number("MaxCoord", MaxCoord);
    number("Lin_prec", Lin_prec);
    number("FrameRgn_W", FrameRgn_W);
    number("clShadowPen", clShadowPen);
    number("clShadowText", clShadowText);
    number("RoundRectX3", RoundRectX3);
    number("AutoScrollTime", AutoScrollTime);
    number("FrameSpace", FrameSpace);
    add("ZeroPoint", PointState(ZeroPoint));
    number("Rot_OutlineDiv", Rot_OutlineDiv);
    number("ThisVersion", ThisVersion);
    number("ThisAppID", ThisAppID);
    number("ThisAppVersion", ThisAppVersion);
    number("NeedLayers", NeedLayers);

    // The services in force (a test installs its doubles for its own life only) and the screen.
    add("MessageService", Address(&TMessageService::Current()));
    add("FileDialogService", Address(&TFileDialogService::Current()));
    add("ClockService", Address(&TClockService::Current()));
    add("EventPump", Address(&TEventPump::Current()));
    add("CursorService", Address(&TCursorService::Current()));
    add("CursorService.ClipRect", ClipState(TCursorService::Current().ClipRect()));
    add("ErrorService", Address(&TErrorService::Current()));
    add("FontService", Address(&FontService()));
    number("Screen.PixelsPerInch", Screen.PixelsPerInch());
    number("Screen.Cursor", Screen.Cursor());
    add("Screen.Cursors (registered)", RegisteredCursors());
    // Qt's record of the mouse buttons held: a test that presses a button and never releases it makes
    // the next test's clicks arrive with that button still down.
    number("QGuiApplication::mouseButtons", QGuiApplication::mouseButtons().toInt());
    return s;
}

std::vector<std::string> ChangedGlobals(const TGlobalsSnapshot& Before, const TGlobalsSnapshot& After) {
    std::vector<std::string> changed;
    auto find = [](const TGlobalsSnapshot& In, const std::string& Name) -> const TGlobalState* {
        for (const TGlobalState& g : In)
            if (g.Name == Name) return &g;
        return nullptr;
    };
    for (const TGlobalState& was : Before) {
        const TGlobalState* now = find(After, was.Name);
        if (!now)
            changed.push_back(was.Name + ": was " + was.State + ", now missing");
        else if (now->State != was.State)
            changed.push_back(was.Name + ": was " + was.State + ", now " + now->State);
    }
    for (const TGlobalState& now : After)
        if (!find(Before, now.Name)) changed.push_back(now.Name + ": was missing, now " + now.State);
    return changed;
}

void TGlobalsGuard::OnTestStart(const ::testing::TestInfo&) {
    FBefore = SnapshotGlobals();
}

// The failure goes to the test that is ending: gtest still counts results against it until every
// listener's `OnTestEnd` has run.
void TGlobalsGuard::OnTestEnd(const ::testing::TestInfo& Test) {
    const std::vector<std::string> changed = ChangedGlobals(FBefore, SnapshotGlobals());
    if (changed.empty()) return;
    std::string message = "The test left " + std::to_string(changed.size()) + " global(s) changed:";
    for (const std::string& line : changed) message += "\n  " + line;
    ADD_FAILURE_AT(Test.file(), Test.line()) << message;
}

} // namespace vl::test
