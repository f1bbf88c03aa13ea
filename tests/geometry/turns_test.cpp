#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

#include "images.h"
#include "maps.h"
#include "samples.h"
#include "tqimage/keystone.h"
#include "tqimage/orientation.h"

namespace {

using namespace tqtest;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

/// What a turn does: columns and rows change places first, then those of the result are reversed.
struct Turn {
    const char* name;
    std::function<std::int32_t(TqImage**)> image;
    std::function<std::int32_t(TqDistortionMap**)> map;
    bool exchanges, reversesCols, reversesRows;

    /// The old place of what comes to lie on (col, row), where these are the last of the result.
    std::pair<int, int> From(int col, int row, int lastCol, int lastRow) const {
        if (reversesCols) col = lastCol - col;
        if (reversesRows) row = lastRow - row;
        return exchanges ? std::pair{row, col} : std::pair{col, row};
    }
    template <class Value>
    void Exchange(Value& a, Value& b) const {
        if (exchanges) std::swap(a, b);
    }
};

Turn Mirrored(const char* name, std::int32_t mirror, std::int32_t mode, bool exchanges, bool reversesCols,
              bool reversesRows) {
    return {name,
            [=](TqImage** i) { return tqMirrorTransposeImage(i, mirror, mode); },
            [=](TqDistortionMap** m) { return tqMirrorTransposeKeystone(m, mirror, mode); },
            exchanges,
            reversesCols,
            reversesRows};
}

Turn Turned(const char* name, std::int32_t mode, bool exchanges, bool reversesCols, bool reversesRows) {
    Turn turn = Mirrored(name, 0, mode, exchanges, reversesCols, reversesRows);
    turn.image = [=](TqImage** i) { return tqTransposeImage(i, mode); };
    turn.map = [=](TqDistortionMap** m) { return tqTransposeKeystone(m, mode); };
    return turn;
}

const std::vector<Turn>& Turns() {
    static const std::vector<Turn> turns{
        Turned("left", 1, true, false, true),
        Turned("right", 2, true, true, false),
        Turned("flip", 3, false, false, true),
        {"mirror", tqMirrorImage, tqMirrorKeystone, false, true, false},
        Mirrored("mirror, no turn", -1, 0, false, true, false),
        Mirrored("right, no mirror", 0, 2, true, true, false),
        Mirrored("main diagonal", 1, 1, true, false, false),
        Mirrored("other diagonal", 7, 2, true, true, true),
        Mirrored("half", 1, 3, false, true, true),
    };
    return turns;
}

TEST(Turns, EveryPelAndEveryHeaderFieldFollow) {
    for (const auto& [oldCols, oldRows] : {std::pair{1, 1}, {1, 9}, {9, 1}, {3, 2}, {67, 133}, {200, 70}}) {
        for (const Turn& turn : Turns()) {
            SCOPED_TRACE(testing::Message() << turn.name << ", " << oldCols << " x " << oldRows);
            const Image before = Noise(oldCols, oldRows);
            int cols = oldCols, rows = oldRows;
            turn.Exchange(cols, rows);
            Image image = before;
            ASSERT_EQ(turn.image(image.Address()), 0);
            EXPECT_TRUE(SamePels(MakeImage(cols, rows,
                                           [&](int col, int row) {
                                               const auto [c, r] = turn.From(col, row, cols - 1, rows - 1);
                                               return before(c, r);
                                           }),
                                 image));
            TqImageHeader header = before.Header();
            turn.Exchange(header.PelCols, header.PelRows);
            turn.Exchange(header.PelsPerMeterX, header.PelsPerMeterY);
            turn.Exchange(header.BinCols, header.BinRows);
            turn.Exchange(header.CenterCol, header.CenterRow);
            if (turn.reversesCols) header.CenterCol = static_cast<float>(cols - 1) - header.CenterCol;
            if (turn.reversesRows) header.CenterRow = static_cast<float>(rows - 1) - header.CenterRow;
            EXPECT_TRUE(SameHeader(header, image.Header()));
        }
    }
}

TEST(Turns, MapsFollowTheirImages) {
    // Places with fractions and, in the middle row, what survives every turn: marks without a source, and a
    // place beyond the rows.
    const auto entry = [](int col, int row) -> std::pair<float, float> {
        if (row == 1 && col == 0) return {-1.0f, 2.0f};
        if (row == 1 && col == 1) return {2.0f, -1.0f};
        if (row == 1 && col == 2) return {4.5f, 2.5f};
        return {0.75f * static_cast<float>(col), static_cast<float>((2 * col + row) % 3)};
    };
    for (const Turn& turn : Turns()) {
        SCOPED_TRACE(turn.name);
        Map map(5, 3);
        map.Fill(entry);
        map.Head().CenterCol = 1.5f;
        map.Head().CenterRow = 0.25f;
        ASSERT_EQ(turn.map(map.Address()), 0);
        int lastCol = 4, lastRow = 2;
        turn.Exchange(lastCol, lastRow);
        ASSERT_EQ(map.Head().Cols, lastCol + 1);
        ASSERT_EQ(map.Head().Rows, lastRow + 1);
        const auto expectTurned = [&](std::pair<float, float> place, float col, float row) {
            turn.Exchange(place.first, place.second);
            const auto reverse = [](float at, int last) {
                const auto most = static_cast<float>(last);
                return at >= 0.0f && at <= most ? most - at : at;
            };
            EXPECT_EQ(col, turn.reversesCols ? reverse(place.first, lastCol) : place.first);
            EXPECT_EQ(row, turn.reversesRows ? reverse(place.second, lastRow) : place.second);
        };
        expectTurned({1.5f, 0.25f}, map.Head().CenterCol, map.Head().CenterRow);
        for (int row = 0; row <= lastRow; ++row) {
            for (int col = 0; col <= lastCol; ++col) {
                const auto [c, r] = turn.From(col, row, lastCol, lastRow);
                expectTurned(entry(c, r), map.Entry(col, row)[0], map.Entry(col, row)[1]);
            }
        }
    }
    Map empty(7, 0);
    ASSERT_EQ(tqMirrorTransposeKeystone(empty.Address(), 1, 2), 0);
    EXPECT_EQ(empty.Head().Rows, 7);
}

TEST(Turns, UnknownModesBlackenImagesAndLeaveMaps) {
    Map map(5, 3);
    const TqDistortionMap* const block = map;
    for (const std::int32_t mode : {-1, 4, kMin}) {
        for (const std::int32_t mirror : {0, 1}) {
            Image image = Noise(5, 4);
            ASSERT_EQ(tqMirrorTransposeImage(image.Address(), mirror, mode), 0);
            EXPECT_TRUE(SamePels(Image(5, 4), image));
            EXPECT_TRUE(SameHeader(DistinctHeader(5, 4), image.Header()));
            EXPECT_EQ(tqMirrorTransposeKeystone(map.Address(), mirror, mode), 0);
        }
    }
    EXPECT_EQ(static_cast<const TqDistortionMap*>(map), block);
}

TEST(Turns, RefuseWhatIsMissingUnlessThereIsNothingToDo) {
    Image nothing, tooWide(DefaultHeader(8001, 1));
    for (TqImage** image : {static_cast<TqImage**>(nullptr), nothing.Address(), tooWide.Address()}) {
        for (const Turn& turn : Turns())
            EXPECT_EQ(turn.image(image), -1);
        EXPECT_EQ(tqTransposeImage(image, 4), -1);
        EXPECT_EQ(tqTransposeImage(image, 0), 0);
        EXPECT_EQ(tqMirrorTransposeImage(image, 0, 0), 0);
    }
    Map none;
    for (TqDistortionMap** map : {static_cast<TqDistortionMap**>(nullptr), none.Address()}) {
        for (const Turn& turn : Turns())
            EXPECT_EQ(turn.map(map), -2);
        EXPECT_EQ(tqTransposeKeystone(map, 4), 0);
        EXPECT_EQ(tqMirrorTransposeKeystone(map, 0, 0), 0);
    }
}

}  // namespace
