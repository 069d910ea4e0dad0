#include "geometry/Vlrotation.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Streams.h"

#include <gtest/gtest.h>

#include <array>

using namespace vl;

TEST(PointList, HoldsEightByteRecords) {
    TPointList list;
    EXPECT_EQ(list.RecSize(), 8);
    EXPECT_EQ(list.MaxCapacity(), 0x7FFFFFFF / 8);
    EXPECT_EQ(list.Count(), 0);
}

TEST(PointList, AddFirstLastAndPoints) {
    TPointList list;
    EXPECT_EQ(list.Add(Point(1, 2)), 0);
    EXPECT_EQ(list.Add(Point(-3, 4)), 1);
    EXPECT_EQ(list.Add(Point(5, -6)), 2);
    EXPECT_EQ(list.First(), Point(1, 2));
    EXPECT_EQ(list.Last(), Point(5, -6));
    EXPECT_EQ(list.GetPoints(1), Point(-3, 4));
    list.SetPoints(1, Point(30, 40));
    EXPECT_EQ(list.GetPoints(1), Point(30, 40));
}

TEST(PointList, CoordinateAccessors) {
    TPointList list;
    list.Add(Point(1, 2));
    list.SetPointX(0, -100);
    EXPECT_EQ(list.GetPointX(0), -100);
    EXPECT_EQ(list.GetPointY(0), 2);
    list.SetPointY(0, 0x7FFFFFFF);
    EXPECT_EQ(list.GetPoints(0), Point(-100, 0x7FFFFFFF));
}

TEST(PointList, AccessOutsideTheListRaises) {
    TPointList list;
    EXPECT_THROW(list.First(), EListError);
    EXPECT_THROW(list.Last(), EListError);
    list.Add(Point(1, 1));
    EXPECT_THROW(list.GetPoints(1), EListError);
    EXPECT_THROW(list.SetPointX(-1, 0), EListError);
    EXPECT_THROW(list.GetPointY(1), EListError);
}

TEST(PointList, InsertFollowsTheRecordListRule) {
    TPointList list;
    list.Add(Point(1, 1));
    list.Add(Point(2, 2));
    list.Add(Point(3, 3));
    list.Insert(0, Point(0, 0));
    EXPECT_EQ(list.First(), Point(0, 0));
    EXPECT_EQ(list.Count(), 4);
    EXPECT_THROW(list.Insert(4, Point(9, 9)), EListError);
    EXPECT_THROW(list.Insert(3, Point(9, 9)), EListError);
    EXPECT_EQ(list.Count(), 4);
}

TEST(PointList, PointsAreAPlainArray) {
    TPointList list;
    list.Add(Point(7, 8));
    list.Add(Point(-9, 10));
    const TPoint* pts = list.Points();
    EXPECT_EQ(pts[0], Point(7, 8));
    EXPECT_EQ(pts[1], Point(-9, 10));
}

TEST(PointList, IndexOfFindsAnEqualPoint) {
    TPointList list;
    list.Add(Point(65538, 196612));
    list.Add(Point(65539, 196612));
    EXPECT_EQ(list.IndexOf(Point(65539, 196612)), 1);
    EXPECT_EQ(list.IndexOf(Point(65538, 196613)), -1);
}

TEST(PointList, IndexOfStopsAtTheFirstNulCharacter) {
    // x = 1 is the characters 0x0001, 0x0000: the comparison ends at the second, whatever y is.
    TPointList list;
    list.Add(Point(5, 5));
    list.Add(Point(1, 7));
    EXPECT_EQ(list.IndexOf(Point(1, 123)), 1);
    // x = 0 ends the comparison at once.
    TPointList zero;
    zero.Add(Point(3, 3));
    zero.Add(Point(0, 9));
    EXPECT_EQ(zero.IndexOf(Point(0, 42)), 1);
    EXPECT_EQ(zero.IndexOf(Point(4, 3)), -1);
}

TEST(PointList, IndexOfOfAPointWithoutANulCharacterRunsIntoTheNextRecord) {
    // (65538, 196612) is the characters 0x0002, 0x0001, 0x0004, 0x0003: none is NUL, so the
    // compare takes all 8 of the record's characters and goes on into the next record, against
    // zeros on the sought side. The point is found only where the record after it starts with a
    // NUL character.
    const TPoint p = Point(65538, 196612);
    TPointList list;
    list.Add(p);
    list.Add(Point(65539, 7)); // starts with 0x0003
    EXPECT_EQ(list.IndexOf(p), -1);
    TPointList followedByNul;
    followedByNul.Add(p);
    followedByNul.Add(Point(65536, 7)); // starts with 0x0000
    EXPECT_EQ(followedByNul.IndexOf(p), 0);
}

TEST(PointList, IndexOfOfTheLastPointOfAFullBlockReadsZerosBeyondIt) {
    // Four points fill the block. The last one's compare runs beyond the block's end, where the
    // bytes compare as zero, so it ends at a NUL there; the others run into their successors.
    const std::array<TPoint, 4> points{Point(65537, 65537), Point(131074, 131074), Point(196611, 196611),
                                       Point(262148, 262148)};
    TPointList list;
    for (const TPoint& p : points) list.Add(p);
    ASSERT_EQ(list.Count(), list.Capacity());
    EXPECT_EQ(list.IndexOf(points[3]), 3);
    EXPECT_EQ(list.IndexOf(points[2]), -1);
    EXPECT_EQ(list.IndexOf(points[0]), -1);
}

TEST(PointList, StreamFormIsLittleEndianXThenY) {
    TPointList list;
    list.Add(Point(1, -2));
    TMemoryStream stream;
    list.Persist(stream, TPstMode::pstSave);
    EXPECT_EQ(stream.Bytes(), QByteArray::fromHex("0800"
                                                  "01000000"
                                                  "04000000"
                                                  "01000000"
                                                  "feffffff"));
}

TEST(PointList, RoundTripThroughAStream) {
    TPointList list;
    for (int i = 0; i < 20; ++i) list.Add(Point(i * 1000 - 7, -i * 31));
    TMemoryStream stream;
    list.Persist(stream, TPstMode::pstSave);
    stream.SetPosition(0);
    TPointList copy(stream);
    ASSERT_EQ(copy.Count(), 20);
    for (int i = 0; i < 20; ++i) EXPECT_EQ(copy.GetPoints(i), list.GetPoints(i));
}

TEST(PointList, RecordsOfAnotherSizeCannotBeReadAsPoints) {
    TMemoryStream stream(QByteArray::fromHex("0400"
                                             "01000000"
                                             "01000000"
                                             "01020304"));
    EXPECT_THROW(TPointList{stream}, EReadError);
    stream.SetPosition(0);
    TPointList list;
    list.Add(Point(1, 1));
    EXPECT_THROW(list.Persist(stream, TPstMode::pstLoad), EReadError);
    EXPECT_EQ(list.RecSize(), 8);
    EXPECT_EQ(list.Count(), 0);
    list.Add(Point(2, 3));
    EXPECT_EQ(list.First(), Point(2, 3));
}
