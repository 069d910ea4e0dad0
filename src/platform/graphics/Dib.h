// Device-independent bitmaps: the BMP file format and the DIB images inside icon files.
//
// The graphic classes keep their pixels in a `QImage` and read and write the real file formats
// through these routines. A reader never trusts a size from the data before it has checked it against
// the bytes that are there, and never reads past the end of its own image: a bitmap inside a drawing
// file is followed by the rest of the drawing.
#pragma once

#include "platform/core/Exceptions.h"

#include <QImage>

#include <cstdint>
#include <vector>

namespace vl {

class TStream;

// Corrupt or unsupported image data.
class EInvalidGraphic : public Exception {
    using Exception::Exception;
};

// Bits per pixel of a bitmap as it is written to a file. `pfDevice` is the depth of a true-colour
// screen and is written with 32 bits per pixel; `pfCustom` (a 16-bit layout other than 5-5-5 or
// 5-6-5) is written with 24.
enum class TPixelFormat : std::uint8_t {
    pfDevice,
    pf1bit,
    pf4bit,
    pf8bit,
    pf15bit,
    pf16bit,
    pf24bit,
    pf32bit,
    pfCustom
};

// A decoded bitmap: RGB32 pixels (ARGB32 where the source carries alpha and the caller asked for it),
// the pixel format of the source and, for formats of 8 bits or less, its colour table.
struct TDib {
    QImage Image;
    TPixelFormat PixelFormat = TPixelFormat::pfDevice;
    std::vector<QRgb> Palette;
};

namespace dib {

inline constexpr std::uint16_t BitmapFileType = 0x4D42; // "BM"
inline constexpr int FileHeaderSize = 14;
inline constexpr int InfoHeaderSize = 40;

// The bits per pixel that a pixel format is written with.
int BitCountOf(TPixelFormat Format);

// The colour table that a bitmap of `Format` gets when it has none: black and white, the sixteen
// standard colours, or for 8 bits the colours of `Image` if there are 256 or fewer, else a colour cube.
std::vector<QRgb> DefaultPalette(TPixelFormat Format, const QImage& Image);

// Index of `Colour` in `Palette`: the exact entry if there is one, else the nearest.
int NearestIndex(const std::vector<QRgb>& Palette, QRgb Colour);

// Writes a complete BMP file: file header, BITMAPINFOHEADER, colour masks or table, bottom-up rows
// padded to four bytes. `Palette` is used for 1, 4 and 8 bits per pixel.
void WriteBmpFile(TStream& Stream, const QImage& Image, TPixelFormat Format,
                  const std::vector<QRgb>& Palette);

// Reads one BMP file from the stream's position and leaves the position just behind it. Raises
// `EInvalidGraphic` for data that is not a bitmap or is cut short; the position is then back where it
// was.
TDib ReadBmpFile(TStream& Stream);

// Decodes a DIB that starts with its info header: `Size` bytes at `Data`. With `IconMask` the height
// in the header counts the colour rows and the AND mask, and the mask follows the colour rows; the
// result is ARGB32 with the mask (or the 32-bit alpha) as alpha.
TDib DecodeDib(const std::uint8_t* Data, std::size_t Size, bool IconMask);

// Encodes an ARGB32 image as the DIB of an icon entry: BITMAPINFOHEADER with doubled height, 32-bit
// bottom-up colour rows with alpha, and the AND mask (set where alpha is below 128).
QByteArray EncodeIconDib(const QImage& Image);

} // namespace dib
} // namespace vl
