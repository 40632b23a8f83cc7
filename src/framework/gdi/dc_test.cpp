#include "framework/gdi/dc.h"

#include <gtest/gtest.h>

namespace {

TEST(CDC, MeasuresWithTheFixedMetric) {
    CDC dc;
    EXPECT_EQ(dc.GetTextExtent("abc", 3), CSize(24, 16));
    EXPECT_EQ(dc.GetTextExtent("abcdef", 2), CSize(16, 16));
    EXPECT_EQ(dc.GetTextExtent("abcd", -1), CSize(32, 16));
    EXPECT_EQ(dc.GetTextExtent(CString("hello")), CSize(40, 16));
    EXPECT_EQ(dc.GetTextExtent(nullptr, 5), CSize(0, 16));
    EXPECT_EQ(dc.GetTextExtent(CString()), CSize(0, 16));
    EXPECT_TRUE(dc.IsKindOf(RUNTIME_CLASS(CObject)));
}

TEST(CRect, EdgesSizesAndHits) {
    CRect rect(10, 20, 30, 60);
    EXPECT_EQ(rect.Width(), 20);
    EXPECT_EQ(rect.Height(), 40);
    EXPECT_EQ(rect.Size(), CSize(20, 40));
    EXPECT_TRUE(rect.PtInRect(CPoint(10, 20)));
    EXPECT_FALSE(rect.PtInRect(CPoint(30, 20)));  // right edge is outside
    rect.OffsetRect(5, -5);
    EXPECT_EQ(rect, CRect(15, 15, 35, 55));
    rect.InflateRect(1, 2);
    EXPECT_EQ(rect, CRect(CPoint(14, 13), CSize(22, 44)));
    EXPECT_TRUE(CRect(5, 5, 5, 9).IsRectEmpty());
}

}  // namespace
