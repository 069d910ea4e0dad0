#include "support/PdfRender.h"

#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace vl::test {

QImage RenderPdf(const QString& Pdf, int PageWidth, int PageHeight) {
    const QString tool = QStandardPaths::findExecutable(QStringLiteral("pdftoppm"));
    EXPECT_FALSE(tool.isEmpty()) << "pdftoppm (poppler-utils) renders the PDF back to pixels";
    if (tool.isEmpty()) return {};
    constexpr int Oversample = 3;
    const QString prefix = Pdf + QStringLiteral(".page");
    QProcess process;
    process.start(tool, {QStringLiteral("-r"), QString::number(72 * Oversample), QStringLiteral("-aa"),
                         QStringLiteral("no"), QStringLiteral("-aaVector"), QStringLiteral("no"),
                         QStringLiteral("-png"), QStringLiteral("-singlefile"), Pdf, prefix});
    EXPECT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    const QImage rendered = QImage(prefix + QStringLiteral(".png")).convertToFormat(QImage::Format_RGB32);
    if (rendered.width() != PageWidth * Oversample || rendered.height() != PageHeight * Oversample)
        return rendered;
    QImage page(PageWidth, PageHeight, QImage::Format_RGB32);
    for (int y = 0; y < PageHeight; ++y)
        for (int x = 0; x < PageWidth; ++x)
            page.setPixel(x, y,
                          rendered.pixel(Oversample * x + Oversample / 2, Oversample * y + Oversample / 2));
    return page;
}

} // namespace vl::test
