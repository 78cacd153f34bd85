// The clip operations that decide which pixels every drawing operation touches.
#include "surface/clip.h"

#include <gtest/gtest.h>

#include "tests/model/core_model.h"
#include "tests/support/cases.h"
#include "tests/support/random.h"

namespace {

using support::Random;

TSurfDesc Sized(int width, int height) {
  TSurfDesc d{};
  d.width = width;
  d.height = height;
  return d;
}

void ExpectRect(const CRectangulo& r, int left, int top, int right, int bottom) {
  EXPECT_EQ(r.left, left);
  EXPECT_EQ(r.top, top);
  EXPECT_EQ(r.right, right);
  EXPECT_EQ(r.bottom, bottom);
}

TEST(PointInSurface, Edges) {
  const TSurfDesc d = Sized(100, 50);
  EXPECT_TRUE(pincel::PointInSurface(d, {0, 0}));
  EXPECT_TRUE(pincel::PointInSurface(d, {99, 49}));
  EXPECT_FALSE(pincel::PointInSurface(d, {100, 0}));
  EXPECT_FALSE(pincel::PointInSurface(d, {0, 50}));
  EXPECT_FALSE(pincel::PointInSurface(d, {0, -1}));
  EXPECT_FALSE(pincel::PointInSurface(d, {-1, 0}));
  EXPECT_FALSE(pincel::PointInSurface(d, {INT32_MIN, INT32_MAX}));
  EXPECT_FALSE(pincel::PointInSurface(Sized(0, 0), {0, 0}));
  EXPECT_FALSE(pincel::PointInSurface(Sized(-3, 5), {0, 0}));
}

TEST(ClipRect, LargerThanSurface) {
  CRectangulo r = {-10, -5, 200, 80};
  EXPECT_TRUE(pincel::ClipRect(Sized(100, 50), r));
  ExpectRect(r, 0, 0, 100, 50);
}

TEST(ClipRect, EmptyResultIsWrittenBack) {
  CRectangulo r = {150, 0, 160, 10};
  EXPECT_FALSE(pincel::ClipRect(Sized(100, 50), r));
  ExpectRect(r, 150, 0, 100, 10);
}

TEST(ClipRect, RightEqualToLeftIsEmpty) {
  CRectangulo r = {20, 10, 20, 30};
  EXPECT_FALSE(pincel::ClipRect(Sized(100, 50), r));
  ExpectRect(r, 20, 10, 20, 30);
  r = {20, 10, 30, 10};
  EXPECT_FALSE(pincel::ClipRect(Sized(100, 50), r));
  ExpectRect(r, 20, 10, 30, 10);
}

TEST(ClipRect, InsideIsKept) {
  CRectangulo r = {99, 49, 100, 50};
  EXPECT_TRUE(pincel::ClipRect(Sized(100, 50), r));
  ExpectRect(r, 99, 49, 100, 50);
}

TEST(ClipRectPoint, PointMovesWithTheTopLeftCorner) {
  CRectangulo r = {-10, -5, 20, 20};
  CPunto p = {3, 4};
  EXPECT_TRUE(pincel::ClipRectPoint(Sized(100, 50), r, p));
  ExpectRect(r, 0, 0, 20, 20);
  EXPECT_EQ(p.x, 13);
  EXPECT_EQ(p.y, 9);
}

TEST(ClipRectPoint, RightAndBottomDoNotMoveThePoint) {
  CRectangulo r = {90, 40, 200, 200};
  CPunto p = {3, 4};
  EXPECT_TRUE(pincel::ClipRectPoint(Sized(100, 50), r, p));
  ExpectRect(r, 90, 40, 100, 50);
  EXPECT_EQ(p.x, 3);
  EXPECT_EQ(p.y, 4);
}

TEST(ClipRectPoint, PointMovesThoughNothingIsVisible) {
  CRectangulo r = {-10, -20, -5, -6};
  CPunto p = {1, 2};
  EXPECT_FALSE(pincel::ClipRectPoint(Sized(100, 50), r, p));
  ExpectRect(r, 0, 0, -5, -6);
  EXPECT_EQ(p.x, 11);
  EXPECT_EQ(p.y, 22);
}

TEST(ClipRectTwoPoints, BothPointsMove) {
  CRectangulo r = {-10, -5, 20, 20};
  CPunto p = {3, 4}, q = {-100, 100};
  EXPECT_TRUE(pincel::ClipRectTwoPoints(Sized(100, 50), r, p, q));
  ExpectRect(r, 0, 0, 20, 20);
  EXPECT_EQ(p.x, 13);
  EXPECT_EQ(p.y, 9);
  EXPECT_EQ(q.x, -90);
  EXPECT_EQ(q.y, 105);
}

// The lowest left edge with the farthest source point that still means something.
TEST(ClipRectPoint, ExtremeCoordinates) {
  CRectangulo r = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
  CPunto p = {INT32_MIN, INT32_MIN + 7};
  EXPECT_TRUE(pincel::ClipRectPoint(Sized(100, 50), r, p));
  ExpectRect(r, 0, 0, 100, 50);
  EXPECT_EQ(p.x, 0);
  EXPECT_EQ(p.y, 7);
}

void CheckAgainstModel(const TSurfDesc& d, const CRectangulo& rect, CPunto first, CPunto second) {
  const model::Clipped expected = model::Clip(d.width, d.height, rect);
  const auto same_rect = [&](const CRectangulo& r) {
    return r.left == expected.box.left && r.top == expected.box.top &&
           r.right == expected.box.right && r.bottom == expected.box.bottom;
  };
  const auto same_point = [&](const CPunto& p, const CPunto& before) {  // modulo 2^32
    return uint32_t(p.x) == uint32_t(before.x + expected.moved_x) &&
           uint32_t(p.y) == uint32_t(before.y + expected.moved_y);
  };
  CRectangulo r = rect;
  EXPECT_EQ(pincel::ClipRect(d, r), expected.visible);
  EXPECT_TRUE(same_rect(r));
  r = rect;
  CPunto p = first;
  EXPECT_EQ(pincel::ClipRectPoint(d, r, p), expected.visible);
  EXPECT_TRUE(same_rect(r));
  EXPECT_TRUE(same_point(p, first));
  r = rect;
  p = first;
  CPunto q = second;
  EXPECT_EQ(pincel::ClipRectTwoPoints(d, r, p, q), expected.visible);
  EXPECT_TRUE(same_rect(r));
  EXPECT_TRUE(same_point(p, first));
  EXPECT_TRUE(same_point(q, second));
}

TEST(Clip, MatchesModelAtEveryCombinationOfEdgeValues) {
  const int32_t values[] = {INT32_MIN, INT32_MIN + 1, -1, 0, 1, 6, 7, 8, INT32_MAX - 1, INT32_MAX};
  for (int32_t left : values) {
    for (int32_t top : values) {
      for (int32_t right : values) {
        for (int32_t bottom : values) {
          CheckAgainstModel(Sized(7, 7), {left, top, right, bottom}, {left, bottom}, {3, -4});
        }
      }
    }
  }
}

TEST(Clip, MatchesModel) {
  support::ForEachCase(5000, [](Random& random, int) {
    const int width = random.Between(-2, 100);
    const int height = random.Between(-2, 100);
    const CRectangulo rect =
        support::RandomRect(random, width > 0 ? width : 1, height > 0 ? height : 1);
    const CPunto first = {int32_t(random.Next()), int32_t(random.Next())};
    const CPunto second = {random.Between(-100, 100), random.Between(-100, 100)};
    CheckAgainstModel(Sized(width, height), rect, first, second);
    const TSurfDesc d = Sized(width, height);
    for (const CPunto& p : {first, second}) {
      EXPECT_EQ(pincel::PointInSurface(d, p),
                !(p.x < 0) && p.x < width && !(p.y < 0) && p.y < height);
    }
  });
}

}  // namespace
