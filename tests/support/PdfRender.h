// PDF output rendered back to pixels, for tests that compare printed pages with the raster device.
#pragma once

#include <QImage>
#include <QString>

namespace vl::test {

// The first page of the PDF file `Pdf`, `PageWidth` by `PageHeight` points, as page pixels at 72 per
// inch, rendered by poppler's pdftoppm without anti-aliasing. Poppler fills the device pixel at an
// image's right and bottom edge too (at any resolution; the page content places a picture exactly on
// its rectangle), so the page is rendered at three times its resolution and each page pixel is read
// at its centre, away from its edges. A missing renderer or a failed run fails the calling test and
// answers a null image; a page of another size is answered as rendered.
QImage RenderPdf(const QString& Pdf, int PageWidth, int PageHeight);

} // namespace vl::test
