// The stream form of a layer: bytes written, read back, old forms, progress and failures.
#include "store/Layer.h"

#include "StoreTestSupport.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Scoped.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vl::test {
namespace {

class LayerStreamTest : public StoreFixture {
protected:
    // The shared fixture's tear-down puts `FileHeader` in the current form while its box still marks
    // the host's identity as loading (`ThisAppID` -1), which would leave AppID 0xFFFFFFFF in the
    // header; this puts back the header the test found, after the tear-down.
    TScopedValue<TvlFileHeader> KeepFileHeader{FileHeader, FileHeader};
    // The layer "Ab" with ToolA's object 1 at (10, 20) and ToolB's object 2 at (-1, 2).
    void FillSample(TvlLayer& Layer) {
        Layer.SetName(QStringLiteral("Ab"));
        Layer.Add(ToolA->Make(1, 10, 20));
        Layer.Add(ToolB->Make(2, -1, 2));
    }
    static QByteArray Saved(TvlLayer& Layer) {
        TMemoryStream stream;
        Layer.SaveToStream(stream);
        return stream.Bytes();
    }
    int Living() const {
        return ToolA->Generator()->Instance() + ToolB->Generator()->Instance() +
               ToolC->Generator()->Instance();
    }
};

const char* const SampleHex = "02000000 4100 6200 0000"
                              "FBFF 0100 0100 0A000000 14000000"
                              "FAFF 0200 0100 FFFFFFFF 02000000"
                              "0180";

TEST_F(LayerStreamTest, SavedLayerIsNameObjectsAndEndMark) {
    TvlLayer layer;
    FillSample(layer);
    EXPECT_EQ(Saved(layer), HexBytes(SampleHex));
}

TEST_F(LayerStreamTest, SavedLayerWithoutNameHasFourZeroBytesThenTheObjects) {
    TvlLayer layer;
    layer.Add(ToolA->Make(3, 1, 2));
    EXPECT_EQ(Saved(layer), HexBytes("00000000 FBFF 0300 0100 01000000 02000000 0180"));
}

TEST_F(LayerStreamTest, EmptyLayerIsFourZeroBytesAndTheEndMark) {
    TvlLayer layer;
    EXPECT_EQ(Saved(layer), HexBytes("00000000 0180"));
}

TEST_F(LayerStreamTest, NameIsWrittenInUtf16WithItsTerminator) {
    TvlLayer layer(QString::fromUtf16(u"\u00e4\u20ac"));
    EXPECT_EQ(Saved(layer), HexBytes("02000000 E400 AC20 0000 0180"));
}

TEST_F(LayerStreamTest, ObjectsOfDontSaveToolsAreLeftOut) {
    TvlLayer layer;
    FillSample(layer);
    ToolA->Generator()->SetRtOptions(TRuntimeOptions{roDontSave});
    EXPECT_EQ(Saved(layer), HexBytes("02000000 4100 6200 0000"
                                     "FAFF 0200 0100 FFFFFFFF 02000000"
                                     "0180"));
}

TEST_F(LayerStreamTest, LoadReadsWhatSaveWroteByteForByte) {
    TvlLayer layer;
    FillSample(layer);
    const QByteArray bytes = Saved(layer);
    auto stream = StreamOf(bytes);
    TvlLayer loaded;
    loaded.LoadFromStream(*stream, Form.get());
    EXPECT_EQ(stream->Position(), stream->Size());
    ASSERT_EQ(loaded.Count(), 2);
    EXPECT_EQ(loaded.GetName(), QStringLiteral("Ab"));
    EXPECT_EQ(loaded[0]->Tool(), ToolA);
    EXPECT_EQ(loaded[0]->ID(), 1);
    EXPECT_EQ(loaded[0]->PosRec().x, 10);
    EXPECT_EQ(loaded[0]->PosRec().y, 20);
    EXPECT_TRUE(loaded[0]->State.Contains(isVisible));
    EXPECT_EQ(loaded[1]->Tool(), ToolB);
    EXPECT_EQ(loaded[1]->ID(), 2);
    EXPECT_EQ(Saved(loaded), bytes);
}

TEST_F(LayerStreamTest, LoadKeepsFileOrderWithoutZOrderOrLimits) {
    ToolA->Generator()->SetZOrder(1);
    ToolB->Generator()->SetZOrder(9);
    auto stream = StreamOf(HexBytes("00000000"
                                    "FBFF 0100 0100 0A000000 14000000"
                                    "FAFF 0200 0100 1E000000 28000000"
                                    "0180"));
    TvlLayer layer;
    layer.LoadFromStream(*stream, Form.get());
    ASSERT_EQ(layer.Count(), 2);
    EXPECT_EQ(layer[0]->Tool(), ToolA);
    EXPECT_EQ(layer[1]->Tool(), ToolB);
    EXPECT_EQ(layer.Limits(), EmptyLimRec);
    layer.RecalcLimits();
    EXPECT_NE(layer.Limits(), EmptyLimRec);
}

TEST_F(LayerStreamTest, LoadAppendsBehindObjectsAlreadyThere) {
    TvlLayer layer;
    layer.Add(ToolC->Make(5));
    auto stream = StreamOf(HexBytes("00000000 FBFF 0100 0100 00000000 00000000 0180"));
    layer.LoadFromStream(*stream, Form.get());
    ASSERT_EQ(layer.Count(), 2);
    EXPECT_EQ(layer[0]->Tool(), ToolC);
    EXPECT_EQ(layer[1]->Tool(), ToolA);
}

TEST_F(LayerStreamTest, LoadKeepsANameTheLayerAlreadyHas) {
    TvlLayer layer(QStringLiteral("Mine"));
    auto stream = StreamOf(HexBytes("02000000 4100 6200 0000 0180"));
    layer.LoadFromStream(*stream, Form.get());
    EXPECT_EQ(layer.GetName(), QStringLiteral("Mine"));
}

TEST_F(LayerStreamTest, LoadOfEmptyLayerReadsNameAndEndMark) {
    TvlLayer layer;
    auto stream = StreamOf(HexBytes("01000000 5A00 0000 0180"));
    layer.LoadFromStream(*stream, Form.get());
    EXPECT_EQ(layer.Count(), 0);
    EXPECT_EQ(layer.GetName(), QStringLiteral("Z"));
    EXPECT_EQ(stream->Position(), stream->Size());
}

TEST_F(LayerStreamTest, StreamEndingBetweenObjectsRaisesAbortAndChangesNothing) {
    TvlLayer layer(QString(), 0);
    layer.Add(ToolC->Make(5));
    const int living = Living();
    auto stream = StreamOf(HexBytes("02000000 4100 6200 0000"
                                    "FBFF 0100 0100 0A000000 14000000"));
    EXPECT_THROW(layer.LoadFromStream(*stream, Form.get()), EAbort);
    EXPECT_EQ(layer.Count(), 1);
    EXPECT_EQ(layer[0]->Tool(), ToolC);
    EXPECT_TRUE(layer.GetName().isEmpty());
    EXPECT_EQ(Living(), living);
}

TEST_F(LayerStreamTest, StreamEndingAfterOneByteOfAClassNumberRaisesAbort) {
    TvlLayer layer;
    auto stream = StreamOf(HexBytes("00000000 FBFF 0100 0100 0A000000 14000000 01"));
    EXPECT_THROW(layer.LoadFromStream(*stream, Form.get()), EAbort);
    EXPECT_EQ(layer.Count(), 0);
}

TEST_F(LayerStreamTest, StreamEndingInsideAnObjectRaisesAndLeavesNothingHalfBuilt) {
    TvlLayer layer;
    const int living = Living();
    auto stream = StreamOf(HexBytes("00000000"
                                    "FBFF 0100 0100 0A000000 14000000"
                                    "FAFF 0200 0100 FFFF"));
    EXPECT_THROW(layer.LoadFromStream(*stream, Form.get()), Exception);
    EXPECT_EQ(layer.Count(), 0);
    EXPECT_EQ(Living(), living);
}

TEST_F(LayerStreamTest, StreamEndingAfterAClassNumberRaisesAbort) {
    TvlLayer layer;
    const int living = Living();
    auto stream = StreamOf(HexBytes("00000000 FBFF"));
    EXPECT_THROW(layer.LoadFromStream(*stream, Form.get()), EAbort);
    EXPECT_EQ(Living(), living);
}

TEST_F(LayerStreamTest, UnknownClassNumberRaisesAbortAndFreesWhatWasRead) {
    TvlLayer layer;
    const int living = Living();
    auto stream = StreamOf(HexBytes("00000000"
                                    "FBFF 0100 0100 0A000000 14000000"
                                    "F0FF 0200 0100 FFFFFFFF 02000000"
                                    "0180"));
    EXPECT_THROW(layer.LoadFromStream(*stream, Form.get()), EAbort);
    EXPECT_EQ(layer.Count(), 0);
    EXPECT_EQ(Living(), living);
}

TEST_F(LayerStreamTest, ClassNumberIsAComponentIndexWhenNotNegative) {
    // The data module is component 1 of the form: no creator.
    auto bad = StreamOf(HexBytes("00000000 0100 0100 0100 00000000 00000000 0180"));
    TvlLayer layer;
    EXPECT_THROW(layer.LoadFromStream(*bad, Form.get()), EAbort);
    // ToolA is component 2.
    auto good = StreamOf(HexBytes("00000000 0200 0100 0100 00000000 00000000 0180"));
    layer.LoadFromStream(*good, Form.get());
    ASSERT_EQ(layer.Count(), 1);
    EXPECT_EQ(layer[0]->Tool(), ToolA);
}

TEST_F(LayerStreamTest, NameLongerThanTheStreamRaisesAbortWithoutAllocating) {
    for (const char* hex : {"FFFFFF7F 4100", "03000000 4100 4200 4300", "01000000"}) {
        SCOPED_TRACE(hex);
        TvlLayer layer;
        auto stream = StreamOf(HexBytes(hex));
        EXPECT_THROW(layer.LoadFromStream(*stream, Form.get()), EAbort);
        EXPECT_TRUE(layer.GetName().isEmpty());
    }
}

TEST_F(LayerStreamTest, EveryCutOfALayerStreamRaisesAndLeavesTheLayerAsItWas) {
    TvlLayer sample;
    FillSample(sample);
    const QByteArray bytes = Saved(sample);
    TvlLayer layer(QString(), 0);
    layer.Add(ToolC->Make(5));
    const int living = Living();
    for (qsizetype cut = 0; cut < bytes.size(); ++cut) {
        SCOPED_TRACE(cut);
        auto stream = StreamOf(bytes.left(cut));
        EXPECT_THROW(layer.LoadFromStream(*stream, Form.get()), Exception);
        ASSERT_EQ(layer.Count(), 1);
        EXPECT_EQ(layer[0]->Tool(), ToolC);
        EXPECT_TRUE(layer.GetName().isEmpty());
        EXPECT_EQ(Living(), living);
    }
}

TEST_F(LayerStreamTest, StreamTooShortForTheNameLengthRaisesAbort) {
    TvlLayer layer;
    auto stream = StreamOf(HexBytes("0100"));
    EXPECT_THROW(layer.LoadFromStream(*stream, Form.get()), EAbort);
}

TEST_F(LayerStreamTest, NegativeNameLengthMeansNoName) {
    TvlLayer layer;
    auto stream = StreamOf(HexBytes("FEFFFFFF 0180"));
    layer.LoadFromStream(*stream, Form.get());
    EXPECT_TRUE(layer.GetName().isEmpty());
    EXPECT_EQ(stream->Position(), stream->Size());
}

TEST_F(LayerStreamTest, OldFileHasFourByteClassNumbersAndSingleByteName) {
    FileHeader.Vellorum = -0x2050;
    FileHeader.Delphi = 0x08000000;
    auto stream = StreamOf(HexBytes("02000000 58 E4 00"
                                    "FBFF 1234 07000000 0100 0A000000 14000000"
                                    "0180 0000"));
    TvlLayer layer;
    layer.LoadFromStream(*stream, Form.get());
    EXPECT_EQ(stream->Position(), stream->Size());
    EXPECT_EQ(layer.GetName(), QString::fromUtf16(u"X\u00e4"));
    ASSERT_EQ(layer.Count(), 1);
    EXPECT_EQ(layer[0]->Tool(), ToolA);
    EXPECT_EQ(layer[0]->ID(), 7);
    EXPECT_EQ(layer[0]->PosRec().x, 10);
}

TEST_F(LayerStreamTest, FileBefore2004HasNoNameField) {
    FileHeader.Vellorum = -0x2003;
    FileHeader.Delphi = 0;
    auto stream = StreamOf(HexBytes("FBFF 0000 07000000 0100 0A000000 14000000"
                                    "0180 0000"));
    TvlLayer layer;
    layer.LoadFromStream(*stream, Form.get());
    EXPECT_EQ(stream->Position(), stream->Size());
    ASSERT_EQ(layer.Count(), 1);
    EXPECT_EQ(layer[0]->ID(), 7);
}

TEST_F(LayerStreamTest, Utf16NameFromToolChain09000000On) {
    FileHeader.Delphi = 0x09000000;
    auto stream = StreamOf(HexBytes("01000000 AC20 0000 0180"));
    TvlLayer layer;
    layer.LoadFromStream(*stream, Form.get());
    EXPECT_EQ(layer.GetName(), QString::fromUtf16(u"\u20ac"));
}

// --- progress ----------------------------------------------------------------------------------------

TEST_F(LayerStreamTest, SaveReportsNameCountAndEveryObject) {
    TvlLayer layer;
    FillSample(layer);
    ToolA->Generator()->SetRtOptions(TRuntimeOptions{roDontSave});
    RecordInfo();
    Saved(layer);
    EXPECT_EQ(InfoLog, (std::vector<std::string>{"msg 220 'Ab'", "msg 210 2", "count 1", "count 2"}));
}

TEST_F(LayerStreamTest, SavePacksBeforeCountingTheObjects) {
    TvlLayer layer;
    FillSample(layer);
    layer.Add(ToolC->Make(3));
    TvlObject* first = layer[0];
    layer.SetItems(0, nullptr);
    delete first;
    RecordInfo();
    const QByteArray bytes = Saved(layer);
    EXPECT_EQ(layer.Count(), 2);
    EXPECT_EQ(InfoLog, (std::vector<std::string>{"msg 220 'Ab'", "msg 210 2", "count 1", "count 2"}));
    EXPECT_EQ(bytes.size(), 4 + 6 + 2 * 14 + 2);
}

TEST_F(LayerStreamTest, UserBreakStillWritesTheEndMark) {
    TvlLayer layer;
    FillSample(layer);
    RecordInfo();
    Userbreak = true;
    EXPECT_EQ(Saved(layer), HexBytes("02000000 4100 6200 0000 0180"));
    EXPECT_EQ(InfoLog, (std::vector<std::string>{"msg 220 'Ab'", "msg 210 2"}));
    EXPECT_TRUE(Userbreak);
}

TEST_F(LayerStreamTest, UserBreakDuringSaveEndsTheLayerAfterTheCurrentObject) {
    TvlLayer layer;
    FillSample(layer);
    struct TBreakingBox : TRecordingInfobox {
        using TRecordingInfobox::TRecordingInfobox;
        void Count(std::int32_t Value) override {
            TRecordingInfobox::Count(Value);
            Userbreak = true;
        }
    };
    InfoboxFactory = [this](TInfoLabel*, TProgressBar*) { return new TBreakingBox(InfoLog); };
    InfoOpen(nullptr, nullptr);
    EXPECT_EQ(Saved(layer), HexBytes("02000000 4100 6200 0000"
                                     "FBFF 0100 0100 0A000000 14000000"
                                     "0180"));
}

TEST_F(LayerStreamTest, LoadReportsTheStreamPositionAfterEachObject) {
    TvlLayer layer;
    FillSample(layer);
    auto stream = StreamOf(Saved(layer));
    RecordInfo();
    TvlLayer loaded;
    loaded.LoadFromStream(*stream, Form.get());
    EXPECT_EQ(InfoLog, (std::vector<std::string>{"count 24", "count 38"}));
}

TEST_F(LayerStreamTest, SavingWithNoInfoBoxOpenWorks) {
    TvlLayer layer;
    FillSample(layer);
    ASSERT_EQ(Infobox, nullptr);
    EXPECT_EQ(Saved(layer), HexBytes(SampleHex));
}

} // namespace
} // namespace vl::test
