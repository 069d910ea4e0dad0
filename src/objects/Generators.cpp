// Generators: defaults, the font rules and the shared scaled font handle.

#include "objects/Generators.h"

#include "platform/core/Exceptions.h"
#include "platform/services/Services.h"
#include "surface/ScaleSetting.h"

#include <cstdlib>
#include <string_view>

namespace vl {

// ---------------------------------------------------------------------------------------------
// TTextAlign
// ---------------------------------------------------------------------------------------------

void TTextAlign::Assign(TPersistent* Source) {
    if (auto* other = dynamic_cast<TTextAlign*>(Source)) {
        FHorz = other->FHorz;
        FVert = other->FVert;
        return;
    }
    TPersistent::Assign(Source);
}

void TTextAlign::Persist(TStream* Stream, TPstMode PstMode) {
    switch (PstMode) {
    case TPstMode::pstSave:
        Stream->WriteUInt8(static_cast<std::uint8_t>(FHorz));
        Stream->WriteUInt8(static_cast<std::uint8_t>(FVert));
        break;
    case TPstMode::pstLoad: {
        const std::uint8_t horz = Stream->ReadUInt8();
        const std::uint8_t vert = Stream->ReadUInt8();
        if (horz > static_cast<std::uint8_t>(haRight) || vert > static_cast<std::uint8_t>(vaBottom))
            throw EReadError(QStringLiteral("Invalid text alignment"));
        FHorz = static_cast<THorzAlign>(horz);
        FVert = static_cast<TVertAlign>(vert);
        break;
    }
    default: break;
    }
}

// ---------------------------------------------------------------------------------------------
// TCustomGenerator
// ---------------------------------------------------------------------------------------------

TCustomGenerator::TCustomGenerator()
    : FPen(std::make_unique<TPen>()), FBrush(std::make_unique<TBrush>()), FFont(std::make_unique<TFont>()),
      FPicture(std::make_unique<TPicture>()) {
    // The layer of a fresh generator is 0; the rule is kept for generators made with a layer.
    if (FLayer > NeedLayers) NeedLayers = FLayer;
}

TCustomGenerator::~TCustomGenerator() {
    // The tool gives the font handle back in `ReleaseResources`; one still held here is freed so
    // that nothing leaks when a tool goes between paints.
    if (FFontHandle) DeleteObject(FFontHandle);
}

void TCustomGenerator::SetFont(TFont* Value) {
    if (Value) {
        const QString& name = Value->Name();
        if (name == QStringLiteral("MS Sans Serif") || name == QStringLiteral("System"))
            Value->SetName(QStringLiteral("Arial"));
        if (Value->Name() == QStringLiteral("MS Serif") || Value->Name() == QStringLiteral("Courier"))
            Value->SetName(QStringLiteral("Times New Roman"));
    }
    MessageBeep(1);
    FFont->Assign(Value);
}

void TCustomGenerator::SetPicture(TPersistent* Value) {
    FPicture->Assign(Value);
    if (!FOptions.Contains(goStretchPicture)) {
        FWidth = FPicture->Width();
        FHeight = FPicture->Height();
    }
    SetShape(stRectangle);
}

void TCustomGenerator::SetFontHandle(HFONT NewFont, std::int32_t NewFontHeight) {
    if (!FFontHandle) {
        FFontHandle = NewFont;
        FCurrFontHeight = NewFontHeight;
        return;
    }
    if (std::abs(FCurrFontHeight) > std::abs(NewFontHeight)) {
        // The old font may be selected into the canvas: a stock font takes its place first.
        if (ActScaleSet && ActScaleSet->Canvas() && ActScaleSet->Canvas()->HandleAllocated())
            SelectObject(ActScaleSet->Canvas()->HandleAllocated(), GetStockObject(ANSI_VAR_FONT));
        DeleteObject(FFontHandle);
        FFontHandle = NewFont;
        FCurrFontHeight = NewFontHeight;
        return;
    }
    if (NewFont != FFontHandle) DeleteObject(NewFont);
}

bool TCustomGenerator::FontIsScalable() {
    if (FFontIsScalable == 1 || FFontIsScalable == -1) return FFontIsScalable == 1;
    FFontIsScalable = FontIsScalable(*FFont) ? 1 : -1;
    return FFontIsScalable == 1;
}

namespace {

// The logical font of a framework font as the scaling test builds it.
LOGFONTW TestLogFont(TFont& aFont, std::int32_t Height) {
    LOGFONTW lf;
    lf.lfHeight = Height;
    lf.lfWeight = aFont.Style().Contains(fsBold) ? FW_BOLD : FW_NORMAL;
    lf.lfItalic = aFont.Style().Contains(fsItalic) ? 1 : 0;
    lf.lfUnderline = aFont.Style().Contains(fsUnderline) ? 1 : 0;
    lf.lfStrikeOut = aFont.Style().Contains(fsStrikeOut) ? 1 : 0;
    lf.lfCharSet = DEFAULT_CHARSET;
    const std::u16string_view name(reinterpret_cast<const char16_t*>(aFont.Name().utf16()),
                                   static_cast<std::size_t>(aFont.Name().size()));
    const std::size_t n = std::min<std::size_t>(name.size(), LF_FACESIZE - 1);
    for (std::size_t i = 0; i < n; ++i) lf.lfFaceName[i] = name[i];
    switch (aFont.Pitch()) {
    case fpVariable: lf.lfPitchAndFamily = VARIABLE_PITCH; break;
    case fpFixed: lf.lfPitchAndFamily = FIXED_PITCH; break;
    case fpDefault: lf.lfPitchAndFamily = DEFAULT_PITCH; break;
    }
    return lf;
}

constexpr std::u16string_view SampleText = u"anyTest";

} // namespace

bool TCustomGenerator::FontIsScalable(TFont& aFont) {
    if (aFont.Name().compare(QStringLiteral("System"), Qt::CaseInsensitive) == 0) return false;
    const LOGFONTW first = TestLogFont(aFont, aFont.Height());
    const LOGFONTW second = TestLogFont(aFont, aFont.Height() * 2);

    HDC dc = nullptr;
    if (ActScaleSet && ActScaleSet->Canvas()) dc = ActScaleSet->Canvas()->HandleAllocated();
    if (!dc) {
        // Without a canvas in force the font service measures directly, in device pixels.
        const TSize a = FontService().TextExtent(first, SampleText);
        const TSize b = FontService().TextExtent(second, SampleText);
        return a.cx != b.cx;
    }

    const int length = static_cast<int>(SampleText.size());
    HFONT font1 = CreateFontIndirectW(&first);
    HGDIOBJ oldFont = SelectObject(dc, font1);
    TSize size1;
    GetTextExtentPoint32W(dc, SampleText.data(), length, &size1);
    HFONT font2 = CreateFontIndirectW(&second);
    SelectObject(dc, font2);
    DeleteObject(font1);
    TSize size2;
    GetTextExtentPoint32W(dc, SampleText.data(), length, &size2);
    SelectObject(dc, oldFont);
    DeleteObject(font2);
    return size1.cx != size2.cx;
}

// ---------------------------------------------------------------------------------------------
// Descendants
// ---------------------------------------------------------------------------------------------

TPtGenerator::TPtGenerator() {
    FSlaveX = 10;
    FSlaveY = 10;
    FWidth = 20;
    FHeight = 20;
}

TCustomTxtGenerator::TCustomTxtGenerator() : FTextAlign(std::make_unique<TTextAlign>()) {}

void TCustomTxtGenerator::SetWordBreak(std::int32_t Value) {
    if (Value > 0) FOptions.Exclude(goRotation);
    FWordBreak = Value;
}

void TCustomTxtGenerator::SetOptions(TGeneratorOptions Value) {
    TCustomGenerator::SetOptions(Value);
    if (FOptions.Contains(goRotation)) FWordBreak = 0;
}

TTxtGenerator::TTxtGenerator() {
    FShape = stEllipse;
    FFrameDX = 1;
    FFrameDY = 1;
}

} // namespace vl
