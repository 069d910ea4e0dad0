// The base record of an object in every mode, old file versions, connecting after a load and after a
// paste, and the byte forms of the stream helpers.
#include "ObjectBaseSupport.h"

#include "platform/core/Scoped.h"
#include "platform/graphics/Dib.h"
#include "platform/graphics/Graphics.h"
#include "platform/graphics/Images.h"

#include <QImage>

namespace vl::test {
namespace {

class PersistTest : public ObjectFixture {
protected:
    // The shared fixture's tear-down puts `FileHeader` in the current form while its box still marks
    // the host's identity as loading (`ThisAppID` -1), which would leave AppID 0xFFFFFFFF in the
    // header; this puts back the header the test found, after the tear-down.
    TScopedValue<TvlFileHeader> KeepFileHeader{FileHeader, FileHeader};
};

// Writes the record of `Obj` and answers the bytes.
QByteArray SavedBytes(TvlObject& Obj, TPstMode Mode = TPstMode::pstSave) {
    TMemoryStream s;
    Obj.Persist(&s, Mode);
    return s.Bytes();
}

TEST_F(PersistTest, FreeObjectRecordIsFourteenBytesWithStateMasked) {
    TTestObject obj(ToolA); // class number -5
    obj.SetID(7);
    obj.State = TIndividualState::FromBits(0xFFCF); // every flag but the two slave flags
    obj.SetPos(Point(0x12345678, -2));
    EXPECT_EQ(SavedBytes(obj), HexBytes("FBFF 0700 C9F3 78563412 FEFFFFFF"));
    EXPECT_EQ(SavedBytes(obj, TPstMode::pstCopy), HexBytes("FBFF 0700 C9F3 78563412 FEFFFFFF"));
}

TEST_F(PersistTest, SlaveRecordNamesItsMasterAndKeepsTheOffset) {
    TTestObject master(ToolB); // class number -6
    master.SetID(9);
    master.SetPos(Point(100, 100));
    TTestObject slave(ToolA);
    slave.SetID(3);
    slave.SetMaster(&master);
    slave.SetPos(Point(98, 103));
    slave.State.Include(isVisible);
    slave.State.Include(isSelected);
    EXPECT_EQ(SavedBytes(slave), HexBytes("FBFF 0300 1100 FAFF 0900 FEFF 0300"));
}

TEST_F(PersistTest, SavedObjectComesBackWithoutTransientFlags) {
    TTestObject obj(ToolA);
    obj.SetID(12);
    obj.SetPos(Point(-40, 50));
    obj.State = isVisible | isMarked;
    obj.State.Include(isDeleted);
    obj.State.Include(isSelected);
    obj.State.Include(isSizing);
    obj.State.Include(isUserMark);
    obj.State.Include(isNoHorzLimit);
    TMemoryStream s;
    obj.SaveToStream(s);
    s.SetPosition(0);
    EXPECT_EQ(s.ReadInt16(), -5);
    TTestObject back(ToolA);
    back.LoadFromStream(s);
    EXPECT_EQ(s.Position(), 14);
    EXPECT_EQ(back.ID(), 12);
    EXPECT_EQ(back.Pos_Log(), Point(-40, 50));
    EXPECT_FALSE(back.State.Contains(isMarked));
    EXPECT_FALSE(back.State.Contains(isDeleted));
    EXPECT_FALSE(back.State.Contains(isSelected));
    EXPECT_FALSE(back.State.Contains(isSizing));
    EXPECT_TRUE(back.State.Contains(isUserMark));
    EXPECT_TRUE(back.State.Contains(isVisible));
    EXPECT_TRUE(back.State.Contains(isNoHorzLimit));
    EXPECT_FALSE(back.State.Contains(isConnect));
}

TEST_F(PersistTest, UserMarkIsKeptWhenClearToo) {
    TTestObject obj(ToolA);
    obj.State = TIndividualState(isVisible);
    TMemoryStream s;
    obj.SaveToStream(s);
    s.SetPosition(2);
    TTestObject back(ToolA);
    back.LoadFromStream(s);
    EXPECT_FALSE(back.State.Contains(isUserMark));
}

TEST_F(PersistTest, LoadedSlaveWaitsForConnect) {
    auto s = HexStream("0300 1100 FAFF 0900 FEFF 0300");
    TTestObject slave(ToolA);
    slave.LoadFromStream(*s);
    EXPECT_TRUE(slave.State.Contains(isSlave));
    EXPECT_TRUE(slave.State.Contains(isConnect));
    EXPECT_EQ(slave.PosRec().ConType(), -6);
    EXPECT_EQ(slave.PosRec().ConID(), 9);
    EXPECT_EQ(slave.PosRec().RelX(), -2);
    EXPECT_EQ(slave.PosRec().RelY(), 3);
    EXPECT_EQ(slave.PosRec().ConObj, nullptr);
}

TEST_F(PersistTest, RecordOlderThan2090HasAFourByteNumber) {
    FileHeader.Vellorum = static_cast<std::int16_t>(-0x2080);
    auto s = HexStream("0700 AABB 0100 0A000000 14000000 EEEE");
    TTestObject obj(ToolA);
    obj.LoadFromStream(*s);
    EXPECT_EQ(s->Position(), 14); // two bytes more than the current form
    EXPECT_EQ(obj.ID(), 7);
    EXPECT_EQ(obj.State.Bits(), 1);
    EXPECT_EQ(obj.Pos_Log(), Point(10, 20));
    EXPECT_EQ(s->ReadUInt16(), 0xEEEE);
}

TEST_F(PersistTest, RecordOf2090HasATwoByteNumber) {
    FileHeader.Vellorum = static_cast<std::int16_t>(-0x2090);
    auto s = HexStream("0700 0100 0A000000 14000000");
    TTestObject obj(ToolA);
    obj.LoadFromStream(*s);
    EXPECT_EQ(s->Position(), 12);
    EXPECT_EQ(obj.ID(), 7);
}

TEST_F(PersistTest, RecordOlderThan2000SkipsFourBytesBehindThePosition) {
    FileHeader.Vellorum = static_cast<std::int16_t>(-0x1200);
    auto s = HexStream("0700 0000 0100 0A000000 14000000 11223344 EEEE");
    TTestObject obj(ToolA);
    obj.LoadFromStream(*s);
    EXPECT_EQ(s->Position(), 18);
    EXPECT_EQ(obj.ID(), 7);
    EXPECT_EQ(obj.Pos_Log(), Point(10, 20));
    EXPECT_EQ(s->ReadUInt16(), 0xEEEE);
}

TEST_F(PersistTest, HeaderFieldZeroCountsAsOlderThanEveryVersion) {
    FileHeader = TvlFileHeader{};
    EXPECT_TRUE(vlFileVersionBefore(0x2000));
    EXPECT_FALSE(vlFileVersionSince(0x2000));
    EXPECT_TRUE(bdsFileVersionBefore(0x9000000));
    SetFileHeader();
    EXPECT_TRUE(vlFileVersionSince(0x4642));
    EXPECT_TRUE(vlFileVersionBefore(0x4643));
    EXPECT_FALSE(bdsFileVersionBefore(0x9000000));
}

TEST_F(PersistTest, FileHeaderBytes) {
    const std::int32_t appID = ThisAppID;
    ThisAppID = 0;
    SetFileHeader();
    ThisAppID = appID;
    TMemoryStream s;
    WriteFileHeader(s, FileHeader);
    EXPECT_EQ(s.Bytes(), HexBytes("BEB90000 00000000 00000001 0000001A"));
    s.SetPosition(0);
    EXPECT_EQ(ReadFileHeader(s), FileHeader);
    TMemoryStream shortStream(HexBytes("BEB9"));
    EXPECT_THROW(ReadFileHeader(shortStream), EReadError);
}

// Reads records as the layer loop does: class number, the tool's object, its `Persist`.
void LoadBody(TStandInStore& Store, TStream& S, std::initializer_list<TvlCreator*> Tools) {
    while (S.Remaining() > 0) {
        const std::int16_t classNr = S.ReadInt16();
        TvlCreator* tool = nullptr;
        for (TvlCreator* t : Tools)
            if (t->GetID() == classNr) tool = t;
        ASSERT_NE(tool, nullptr);
        std::unique_ptr<TvlObject> obj(tool->CreateObject());
        obj->LoadFromStream(S);
        Store.Hold(std::move(obj));
    }
}

TEST_F(PersistTest, SlaveSavedBeforeItsMasterConnects) {
    auto* master = AddNumbered(*Store, ToolB, 9);
    master->SetPos(Point(500, 600));
    auto* slave = AddNumbered(*Store, ToolA, 3);
    slave->SetMaster(master);
    slave->SetPos(Point(510, 590));

    TMemoryStream body;
    slave->SaveToStream(body); // the slave comes first
    master->SaveToStream(body);
    Store->Objects.clear();

    body.SetPosition(0);
    LoadBody(*Store, body, {ToolA, ToolB});
    ASSERT_EQ(Store->Objects.size(), 2u);
    TvlObject* newSlave = Store->Objects[0].get();
    TvlObject* newMaster = Store->Objects[1].get();
    EXPECT_TRUE(newSlave->State.Contains(isConnect));
    for (const auto& o : Store->Objects)
        if (o->State.Contains(isConnect)) o->Connect(Store);
    EXPECT_FALSE(newSlave->State.Contains(isConnect));
    EXPECT_EQ(newSlave->Master(), newMaster);
    EXPECT_EQ(newSlave->Pos_Log(), Point(510, 590));
    newMaster->SetPos(Point(0, 0));
    EXPECT_EQ(newSlave->Pos_Log(), Point(10, -10));
}

TEST_F(PersistTest, ConnectLeavesAFreeObjectAlone) {
    auto* obj = AddNumbered(*Store, ToolA, 1);
    obj->SetPos(Point(3, 4));
    obj->Connect(Store);
    EXPECT_EQ(Store->Finds, 0);
    EXPECT_EQ(obj->Pos_Log(), Point(3, 4));
}

// Pastes records of `S` as the draw box does: each object is numbered anew before its `Persist`.
std::vector<TvlObject*> PasteBody(TStandInStore& Store, TStream& S,
                                  std::initializer_list<TvlCreator*> Tools) {
    std::vector<TvlObject*> made;
    while (S.Remaining() > 0) {
        const std::int16_t classNr = S.ReadInt16();
        TvlCreator* tool = nullptr;
        for (TvlCreator* t : Tools)
            if (t->GetID() == classNr) tool = t;
        if (!tool) throw EAbort();
        std::unique_ptr<TvlObject> obj(tool->CreateObject());
        obj->Count();
        obj->Persist(&S, TPstMode::pstPaste);
        made.push_back(Store.Hold(std::move(obj)));
    }
    return made;
}

TEST_F(PersistTest, PastedSlaveWithoutItsMasterIsDeleted) {
    auto* master = AddNumbered(*Store, ToolB, 9);
    auto* slave = AddNumbered(*Store, ToolA, 3);
    slave->SetMaster(master);
    TMemoryStream clip;
    slave->Persist(&clip, TPstMode::pstCopy);

    PasteIDList = std::make_unique<TRecordList>(PasteIDRecSize);
    clip.SetPosition(0);
    const auto made = PasteBody(*Store, clip, {ToolA, ToolB});
    ASSERT_EQ(made.size(), 1u);
    EXPECT_TRUE(made[0]->State.Contains(isConnect));
    made[0]->Persist(nullptr, TPstMode::pstConnectCopy);
    EXPECT_TRUE(made[0]->State.Contains(isDeleted));
}

TEST_F(PersistTest, PastedSlaveFindsItsPastedMasterUnderItsNewNumber) {
    Store->CounterValues[0] = 20;
    auto* master = AddNumbered(*Store, ToolB, 9);
    master->SetPos(Point(100, 100));
    auto* slave = AddNumbered(*Store, ToolA, 3);
    slave->SetMaster(master);
    slave->SetPos(Point(104, 95));
    TMemoryStream clip;
    slave->Persist(&clip, TPstMode::pstCopy);
    master->Persist(&clip, TPstMode::pstCopy);

    PasteIDList = std::make_unique<TRecordList>(PasteIDRecSize);
    clip.SetPosition(0);
    const auto made = PasteBody(*Store, clip, {ToolA, ToolB});
    ASSERT_EQ(made.size(), 2u);
    ASSERT_EQ(PasteIDList->Count(), 2);
    const TPasteIDRec first = PasteIDAt(0);
    EXPECT_EQ(first.ClassNr, -5);
    EXPECT_EQ(first.OldID, 3);
    EXPECT_EQ(first.NewID, 21);
    const TPasteIDRec second = PasteIDAt(1);
    EXPECT_EQ(second.ClassNr, -6);
    EXPECT_EQ(second.OldID, 9);
    EXPECT_EQ(second.NewID, 22);
    EXPECT_EQ(made[1]->ID(), 22);

    for (TvlObject* o : made) o->Persist(nullptr, TPstMode::pstConnectCopy);
    EXPECT_FALSE(made[0]->State.Contains(isDeleted));
    EXPECT_FALSE(made[0]->State.Contains(isConnect));
    EXPECT_EQ(made[0]->Master(), made[1]);
    EXPECT_EQ(made[0]->Pos_Log(), Point(104, 95));
}

TEST_F(PersistTest, ConnectCopyWithoutListDeletesTheSlave) {
    auto s = HexStream("0300 1100 FAFF 0900 0000 0000");
    TTestObject slave(ToolA);
    slave.Persist(s.get(), TPstMode::pstPaste);
    slave.Persist(nullptr, TPstMode::pstConnectCopy);
    EXPECT_TRUE(slave.State.Contains(isDeleted));
}

// --- Stream helpers ---------------------------------------------------------------------------

TEST_F(PersistTest, RegisterPCharOfNilWritesFourBytes) {
    std::unique_ptr<char16_t[]> text;
    TMemoryStream s;
    TvlObject::RegisterPChar(&s, text, TPstMode::pstSave);
    EXPECT_EQ(s.Bytes(), HexBytes("00000000"));
}

TEST_F(PersistTest, RegisterPCharOfEmptyStringWritesSixBytes) {
    auto text = std::make_unique<char16_t[]>(1);
    TMemoryStream s;
    TvlObject::RegisterPChar(&s, text, TPstMode::pstCopy);
    EXPECT_EQ(s.Bytes(), HexBytes("00000000 0000"));
}

TEST_F(PersistTest, RegisterPCharWritesTextWithTerminator) {
    auto text = std::make_unique<char16_t[]>(4);
    text[0] = u'a';
    text[1] = u'\u00E9';
    text[2] = u'c';
    TMemoryStream s;
    TvlObject::RegisterPChar(&s, text, TPstMode::pstSave);
    EXPECT_EQ(s.Bytes(), HexBytes("03000000 6100 E900 6300 0000"));
    s.SetPosition(0);
    std::unique_ptr<char16_t[]> back;
    TvlObject::RegisterPChar(&s, back, TPstMode::pstLoad);
    ASSERT_TRUE(back);
    EXPECT_EQ(QString::fromUtf16(back.get()), QStringLiteral("a\u00E9c"));
    EXPECT_EQ(s.Remaining(), 0);
}

TEST_F(PersistTest, RegisterPCharReadOfZeroLengthKeepsTheBufferAndReadsOnlyTheLength) {
    auto text = std::make_unique<char16_t[]>(2);
    text[0] = u'x';
    char16_t* before = text.get();
    auto s = HexStream("00000000 0000");
    TvlObject::RegisterPChar(s.get(), text, TPstMode::pstPaste);
    EXPECT_EQ(text.get(), before);
    EXPECT_EQ(s->Position(), 4);
}

TEST_F(PersistTest, RegisterPCharReadsSingleByteTextOfOldToolChains) {
    FileHeader.Delphi = 0x08000000;
    auto s = HexStream("03000000 61E963 00 FF");
    std::unique_ptr<char16_t[]> back;
    TvlObject::RegisterPChar(s.get(), back, TPstMode::pstLoad);
    ASSERT_TRUE(back);
    EXPECT_EQ(QString::fromUtf16(back.get()), QStringLiteral("a\u00E9c"));
    EXPECT_EQ(s->Position(), 8);
}

TEST_F(PersistTest, RegisterPCharRefusesALengthBeyondTheStream) {
    auto s = HexStream("FFFFFF7F 6100");
    std::unique_ptr<char16_t[]> back;
    EXPECT_THROW(TvlObject::RegisterPChar(s.get(), back, TPstMode::pstLoad), EReadError);
    EXPECT_FALSE(back);
}

TEST_F(PersistTest, RegisterStringReadsByModeAndVersion) {
    QString text = QStringLiteral("ab");
    TMemoryStream s;
    TvlObject::RegisterString(&s, text, TPstMode::pstSave);
    EXPECT_EQ(s.Bytes(), HexBytes("02000000 6100 6200"));

    FileHeader.Delphi = 0x08000000;
    auto ansi = HexStream("02000000 6162");
    QString loaded;
    TvlObject::RegisterString(ansi.get(), loaded, TPstMode::pstLoad);
    EXPECT_EQ(loaded, QStringLiteral("ab"));

    // Pasting always reads the wide form, whatever the header says.
    s.SetPosition(0);
    QString pasted;
    TvlObject::RegisterString(&s, pasted, TPstMode::pstPaste);
    EXPECT_EQ(pasted, QStringLiteral("ab"));
    EXPECT_EQ(s.Remaining(), 0);

    QString untouched = QStringLiteral("keep");
    TvlObject::RegisterString(nullptr, untouched, TPstMode::pstConnect);
    EXPECT_EQ(untouched, QStringLiteral("keep"));
}

TEST_F(PersistTest, RegisterDataWritesAndReadsBytesByMode) {
    std::uint8_t out[3] = {1, 2, 3};
    TMemoryStream s;
    TvlObject::RegisterData(&s, out, 3, TPstMode::pstSave);
    TvlObject::RegisterData(&s, out, 3, TPstMode::pstConnectCopy);
    EXPECT_EQ(s.Bytes(), HexBytes("010203"));
    s.SetPosition(0);
    std::uint8_t in[3] = {};
    TvlObject::RegisterData(&s, in, 3, TPstMode::pstLoad);
    EXPECT_EQ(in[2], 3);
    std::int32_t v = -2;
    TMemoryStream t;
    TvlObject::RegisterValue(&t, v, TPstMode::pstCopy);
    EXPECT_EQ(t.Bytes(), HexBytes("FEFFFFFF"));
    t.SetPosition(0);
    std::int32_t w = 0;
    TvlObject::RegisterValue(&t, w, TPstMode::pstPaste);
    EXPECT_EQ(w, -2);
}

TEST_F(PersistTest, RegisterLinkOfNilWritesFourZeroBytes) {
    TTestObject obj(ToolA);
    TContype link;
    TMemoryStream s;
    obj.RegisterLink(&s, link, TPstMode::pstSave);
    EXPECT_EQ(s.Bytes(), HexBytes("00000000"));
    s.SetPosition(0);
    obj.RegisterLink(&s, link, TPstMode::pstLoad);
    EXPECT_TRUE(link.IsZero());
    EXPECT_EQ(link.ConObj, nullptr);
    EXPECT_FALSE(obj.State.Contains(isConnect));
}

TEST_F(PersistTest, RegisterLinkNamesTheObjectAndConnectsToIt) {
    auto* target = AddNumbered(*Store, ToolB, 0x0102);
    TTestObject obj(ToolA);
    TContype link;
    link.ConObj = target;
    TMemoryStream s;
    obj.RegisterLink(&s, link, TPstMode::pstCopy);
    EXPECT_EQ(s.Bytes(), HexBytes("FAFF 0201"));
    s.SetPosition(0);
    TContype back;
    obj.RegisterLink(&s, back, TPstMode::pstLoad);
    EXPECT_EQ(back.ConType, -6);
    EXPECT_EQ(back.ConID, 0x0102);
    EXPECT_TRUE(obj.State.Contains(isConnect));
    obj.RegisterLink(nullptr, back, TPstMode::pstConnect);
    EXPECT_EQ(back.ConObj, target);
    EXPECT_FALSE(obj.State.Contains(isConnect));
}

TEST_F(PersistTest, RegisterLinkConnectCopyOfZeroLinkDeletes) {
    PasteIDList = std::make_unique<TRecordList>(PasteIDRecSize);
    TTestObject obj(ToolA);
    TContype link;
    obj.RegisterLink(nullptr, link, TPstMode::pstConnectCopy);
    EXPECT_TRUE(obj.State.Contains(isDeleted));
}

TEST_F(PersistTest, RegisterObjectDropsTheClassNumberOnReading) {
    TTestObject inner(ToolB);
    inner.SetID(4);
    inner.SetPos(Point(1, 2));
    TMemoryStream s;
    TvlObject::RegisterObject(&s, &inner, TPstMode::pstSave);
    EXPECT_EQ(s.Bytes(), HexBytes("FAFF 0400 0000 01000000 02000000"));
    s.SetPosition(0);
    TTestObject back(ToolB);
    TvlObject::RegisterObject(&s, &back, TPstMode::pstLoad);
    EXPECT_EQ(back.ID(), 4);
    EXPECT_EQ(back.Pos_Log(), Point(1, 2));
    EXPECT_EQ(s.Remaining(), 0);
}

TEST_F(PersistTest, FontRecordIsSixteenBytesThenTheName) {
    TFont font;
    font.SetColor(0x00112233);
    font.SetHeight(-13);
    font.SetPitch(fpVariable);
    font.SetStyle(fsBold | fsItalic);
    font.SetCharset(0);
    font.SetName(QStringLiteral("Arial"));
    TMemoryStream s;
    TvlObject::RegisterFont(&s, font, TPstMode::pstSave);
    EXPECT_EQ(s.Bytes(), HexBytes("33221100 F3FFFFFF 01 03 00 0000000000 05000000 4100720069006100 6C00"));

    s.SetPosition(0);
    TFont back;
    TvlObject::RegisterFont(&s, back, TPstMode::pstLoad);
    EXPECT_EQ(back.Color(), 0x00112233);
    EXPECT_EQ(back.Height(), -13);
    EXPECT_EQ(back.Pitch(), fpVariable);
    EXPECT_EQ(back.Style(), fsBold | fsItalic);
    EXPECT_EQ(back.Charset(), 0);
    EXPECT_EQ(back.Name(), QStringLiteral("Arial"));
}

TEST_F(PersistTest, FontNameOfAnOldToolChainIsSingleByteAlsoWhenPasting) {
    FileHeader.Delphi = 0x08000000;
    auto s = HexStream("FF000000 F6FFFFFF 02 04 01 FFFFFFFFFF 04000000 54696D65");
    TFont back;
    TvlObject::RegisterFont(s.get(), back, TPstMode::pstPaste);
    EXPECT_EQ(back.Name(), QStringLiteral("Time"));
    EXPECT_EQ(back.Pitch(), fpFixed);
    EXPECT_EQ(back.Style(), TFontStyles(fsUnderline));
    EXPECT_EQ(back.Charset(), 1);
    EXPECT_EQ(back.Color(), 0xFF);
    EXPECT_EQ(s->Remaining(), 0);
}

TEST_F(PersistTest, PenRecordIsTwelveBytes) {
    TPen pen;
    pen.SetColor(0x0000FF);
    pen.SetMode(pmXor);
    pen.SetStyle(psDash);
    pen.SetWidth(3);
    TMemoryStream s;
    TvlObject::RegisterPen(&s, pen, TPstMode::pstSave);
    EXPECT_EQ(s.Bytes(), HexBytes("FF000000 0E 01 0000 03000000"));
    s.SetPosition(0);
    TPen back;
    TvlObject::RegisterPen(&s, back, TPstMode::pstLoad);
    EXPECT_EQ(back.Color(), 0x0000FF);
    EXPECT_EQ(back.Mode(), pmXor);
    EXPECT_EQ(back.Style(), psDash);
    EXPECT_EQ(back.Width(), 3);
}

TEST_F(PersistTest, BrushRecordIsEightBytes) {
    TBrush brush;
    brush.SetColor(0x00FF00);
    brush.SetStyle(bsCross);
    TMemoryStream s;
    TvlObject::RegisterBrush(&s, brush, TPstMode::pstCopy);
    EXPECT_EQ(s.Bytes(), HexBytes("00FF0000 06 000000"));
    s.SetPosition(0);
    TBrush back;
    TvlObject::RegisterBrush(&s, back, TPstMode::pstPaste);
    EXPECT_EQ(back.Color(), 0x00FF00);
    EXPECT_EQ(back.Style(), bsCross);
}

TEST_F(PersistTest, HelpersIgnoreFillerBytesAndRefuseBadValues) {
    auto good = HexStream("00FF0000 06 ABCDEF");
    TBrush brush;
    TvlObject::RegisterBrush(good.get(), brush, TPstMode::pstLoad);
    EXPECT_EQ(brush.Style(), bsCross);
    auto bad = HexStream("00FF0000 63 000000");
    EXPECT_THROW(TvlObject::RegisterBrush(bad.get(), brush, TPstMode::pstLoad), EReadError);
    auto cut = HexStream("FF000000 0E01");
    TPen pen;
    EXPECT_THROW(TvlObject::RegisterPen(cut.get(), pen, TPstMode::pstLoad), EReadError);
}

TEST_F(PersistTest, BitmapPictureIsCodeOneInItsOwnFormat) {
    TBitmap bmp(3, 2);
    TPicture pic;
    pic.SetGraphic(&bmp);
    TMemoryStream s;
    TvlObject::RegisterPicture(&s, pic, TPstMode::pstSave);
    const QByteArray bytes = s.Bytes();
    ASSERT_GT(bytes.size(), 4);
    EXPECT_EQ(bytes.left(4), HexBytes("0100 424D")); // code 1, then "BM"
    s.WriteUInt16(0xABCD);
    s.SetPosition(0);
    TPicture back;
    TvlObject::RegisterPicture(&s, back, TPstMode::pstLoad);
    auto* b = dynamic_cast<TBitmap*>(back.Graphic());
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->Width(), 3);
    EXPECT_EQ(b->Height(), 2);
    EXPECT_EQ(s.ReadUInt16(), 0xABCD);
}

TEST_F(PersistTest, IconPictureIsCodeTwo) {
    QImage img(4, 4, QImage::Format_ARGB32);
    img.fill(qRgba(10, 20, 30, 255));
    TIcon icon;
    icon.SetImage(img);
    TPicture pic;
    pic.SetGraphic(&icon);
    TMemoryStream s;
    TvlObject::RegisterPicture(&s, pic, TPstMode::pstCopy);
    EXPECT_EQ(s.Bytes().left(2), HexBytes("0200"));
    s.WriteUInt16(0xABCD);
    s.SetPosition(0);
    TPicture back;
    TvlObject::RegisterPicture(&s, back, TPstMode::pstPaste);
    auto* i = dynamic_cast<TIcon*>(back.Graphic());
    ASSERT_NE(i, nullptr);
    EXPECT_EQ(i->Width(), 4);
    EXPECT_EQ(s.ReadUInt16(), 0xABCD);
}

TEST_F(PersistTest, JpegPictureIsSavedUnderCodeOneAndReadAsABitmap) {
    TBitmap bmp(8, 8);
    TJPEGImage jpeg;
    jpeg.Assign(&bmp);
    TPicture pic;
    pic.SetGraphic(&jpeg);
    TMemoryStream s;
    TvlObject::RegisterPicture(&s, pic, TPstMode::pstSave);
    const QByteArray bytes = s.Bytes();
    EXPECT_EQ(bytes.left(4), HexBytes("0100 FFD8")); // code 1, then the JPEG's own start marker
    EXPECT_EQ(bytes.mid(2), jpeg.Data());
    s.WriteUInt16(0xABCD);
    s.SetPosition(0);
    TPicture back;
    // Code 1 is read as a bitmap: the JPEG comes back as a bitmap of its pixels, not as a JPEG.
    TvlObject::RegisterPicture(&s, back, TPstMode::pstLoad);
    auto* b = dynamic_cast<TBitmap*>(back.Graphic());
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->Width(), 8);
    EXPECT_EQ(b->Height(), 8);
    EXPECT_EQ(s.ReadUInt16(), 0xABCD);
}

// A graphic of the metafile class, as far as the picture helper needs one: its bytes as they stand.
class TMetafile : public TGraphic {
public:
    bool Empty() const override { return Data.isEmpty(); }
    int Width() const override { return 0; }
    int Height() const override { return 0; }
    void SetWidth(int) override {}
    void SetHeight(int) override {}
    void Draw(TCanvas&, const TRect&) override {}
    void LoadFromStream(TStream& Stream) override {
        Data.resize(static_cast<qsizetype>(Stream.Remaining()));
        Stream.ReadBuffer(Data.data(), Data.size());
    }
    void SaveToStream(TStream& Stream) override { Stream.WriteBuffer(Data.constData(), Data.size()); }
    std::unique_ptr<TGraphic> NewOfSameClass() const override { return std::make_unique<TMetafile>(); }
    void Assign(TPersistent* Source) override {
        if (auto* m = dynamic_cast<TMetafile*>(Source))
            Data = m->Data;
        else
            TGraphic::Assign(Source);
    }
    QByteArray Data;
};

TEST_F(PersistTest, MetafilePictureIsFramedByItsByteCount) {
    TMetafile meta;
    meta.Data = HexBytes("0102030405");
    TPicture pic;
    pic.SetGraphic(&meta);
    TMemoryStream s;
    s.WriteUInt8(0x77); // the frame's count is patched where it stands, not at the start
    TvlObject::RegisterPicture(&s, pic, TPstMode::pstSave);
    EXPECT_EQ(s.Bytes(), HexBytes("77 0300 05000000 0102030405"));
    EXPECT_EQ(s.Position(), s.Size());
}

TEST_F(PersistTest, MetafileFrameIsSkippedWithoutAReader) {
    auto s = HexStream("0300 05000000 0102030405 ABCD");
    TPicture pic;
    TvlObject::RegisterPicture(s.get(), pic, TPstMode::pstLoad);
    EXPECT_EQ(pic.Graphic(), nullptr);
    EXPECT_EQ(s->ReadUInt16(), 0xCDAB);
}

TEST_F(PersistTest, MetafileReaderSeesOnlyTheFrame) {
    QByteArray seen;
    MetafileReader = [&seen](TStream& Frame) {
        auto m = std::make_unique<TMetafile>();
        m->LoadFromStream(Frame); // reads all it is given
        seen = m->Data;
        return std::unique_ptr<TGraphic>(std::move(m));
    };
    auto s = HexStream("0300 03000000 AABBCC 1122");
    TPicture pic;
    TvlObject::RegisterPicture(s.get(), pic, TPstMode::pstPaste);
    MetafileReader = nullptr;
    EXPECT_EQ(seen, HexBytes("AABBCC"));
    ASSERT_NE(dynamic_cast<TMetafile*>(pic.Graphic()), nullptr);
    EXPECT_EQ(s->ReadUInt16(), 0x2211);
}

TEST_F(PersistTest, MetafileFrameLongerThanTheStreamIsAReadError) {
    auto s = HexStream("0300 10000000 AABB");
    TPicture pic;
    EXPECT_THROW(TvlObject::RegisterPicture(s.get(), pic, TPstMode::pstLoad), EReadError);
}

TEST_F(PersistTest, UnknownPictureCodeIsAReadError) {
    auto s = HexStream("0900 00000000");
    TPicture pic;
    EXPECT_THROW(TvlObject::RegisterPicture(s.get(), pic, TPstMode::pstLoad), EReadError);
}

} // namespace
} // namespace vl::test
