#include <random>
#include <string>

#include "statistics.h"

namespace tqtest {
namespace {

/// Which pels of an 11 x 7 image a polygon visits, asked pel by pel through a single lit one.
std::string Picture(const Polygon& polygon) {
    HostArray vertices = VerticesOf(polygon);
    Image image(11, 7);
    std::string picture;
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            image(col, row) = 1;
            picture += tqGetMaxPelValueInPoly(image, vertices.Address()) == 1 ? '#' : '.';
            image(col, row) = 0;
        }
        picture += '\n';
    }
    return picture;
}

struct Drawing {
    const char* name;
    Polygon polygon;
    const char* picture;
};

const std::vector<Drawing> kDrawings = {
    {"square: both horizontal edges belong to it",
     {{2, 1}, {6, 1}, {6, 4}, {2, 4}},
     "...........\n..#####....\n..#####....\n..#####....\n..#####....\n...........\n...........\n"},
    {"step: a vertex where the side goes on",
     {{1, 0}, {4, 3}, {1, 6}, {9, 6}, {9, 0}},
     ".#########.\n..########.\n...#######.\n....######.\n...#######.\n..########.\n.#########.\n"},
    {"bow tie: edges that cross",
     {{0, 0}, {10, 6}, {10, 0}, {0, 6}},
     "#.........#\n###.....###\n####...####\n###########\n####...####\n###.....###\n#.........#\n"},
    {"one sloping line",
     {{1, 1}, {5, 5}},
     "...........\n.#.........\n..#........\n...#.......\n"
     "....#......\n.....#.....\n...........\n"},
};

TEST(Polygon, Drawings) {
    for (const Drawing& it : kDrawings)
        EXPECT_EQ(Picture(it.polygon), it.picture) << it.name;
}

Polygon RandomPolygon(std::mt19937& engine, std::size_t count, std::int32_t low, std::uint32_t span) {
    Polygon polygon;
    for (std::size_t i = 0; i < count; ++i) {
        const auto col = low + static_cast<std::int32_t>(engine() % span);
        const auto row = low + static_cast<std::int32_t>(engine() % span);
        polygon.push_back({col, row});
    }
    return polygon;
}

std::string Describe(const Polygon& polygon) {
    std::string text;
    for (const Position& at : polygon)
        text += "(" + std::to_string(at.col) + ", " + std::to_string(at.row) + ") ";
    return text;
}

/// Many vertices on few rows: shared vertices, horizontal edges, retraced lines, coincident crossings; every
/// seventh polygon has its vertices at the ends of their range.
TEST(Polygon, CrowdedAndHugePolygonsVisitThePelsOfTheWalk) {
    const std::vector<std::int32_t> ends = {kLowest, kLowest + 1, -100000, -1,           0,       5,
                                            9,       12,          100000,  kHighest - 1, kHighest};
    const Image image = MakeImage(12, 10, [](auto col, auto row) { return 1 + col * 131 + row * 2503; });
    std::mt19937 engine(21);
    for (int i = 0; i < 21000; ++i) {
        Polygon polygon = RandomPolygon(engine, 1 + engine() % 9, -2, static_cast<std::uint32_t>(3 + i % 13));
        for (Position& at : polygon) {
            if (i % 7 != 0) break;
            at.col = ends[engine() % ends.size()];
            at.row = ends[engine() % ends.size()];
        }
        HostArray vertices = VerticesOf(polygon);
        const Visited visited = PolygonReference(image, polygon);
        std::int32_t count = -9;
        const double total = tqGetTotalPelValueInPoly(image, &count, vertices.Address(), 0);
        ASSERT_EQ(count, static_cast<std::int32_t>(visited.size())) << Describe(polygon);
        ASSERT_EQ(total, SumOf(image, visited)) << Describe(polygon);
    }
}

TEST(Polygon, StatisticsOfEveryPolygon) {
    std::mt19937 engine(22);
    for (const Image& image : StatisticsImages()) {
        for (int i = 0; i < 25; ++i) {
            const Polygon polygon = RandomPolygon(engine, 1 + engine() % 7, -20, i % 2 == 0 ? 60 : 300);
            SCOPED_TRACE(Describe(polygon));
            HostArray vertices = VerticesOf(polygon);
            const Visited visited = PolygonReference(image, polygon);
            ExpectStatistics(OfPolygon(image, vertices.Address()), ValuesAt(image, visited));
            EXPECT_EQ(tqGetPelBlockAvgPoly(image, vertices.Address()), MeanOf(image, visited));
        }
    }
}

/// The codes -3 to -6 have no test: they told which coordinate failed when it was read again, and vertices
/// are read once.
TEST(Polygon, ArraysThatAreNoVertexArraysAreRefused) {
    const Image image = RandomImage(17, 13, 25, 1);
    HostArray arrays[] = {
        HostArray(VT_I2, {{2}, {4}}), HostArray(VT_R8, {{2}, {4}}),      HostArray(VT_I4, {{2, 1}, {4, 1}}),
        HostArray(VT_I4, {{8}}),      HostArray(VT_I4, {{2}, {4}, {1}}), HostArray(VT_I4, {{1}, {4}}),
    };
    for (HostArray& array : arrays) {
        ExpectCode(OfPolygon(image, array.Address()), -2);
        EXPECT_EQ(tqGetPelBlockAvgPoly(image, array.Address()), -2.0);
        EXPECT_EQ(array.Locks(), 0u) << "the host gets its array back unlocked";
    }
    SAFEARRAY* none = nullptr;
    ExpectCode(OfPolygon(image, &none), -2);
    ExpectCode(OfPolygon(image, nullptr), -2);
    HostArray vertices = VerticesOf({{3, 3}});
    vertices->rgsabound[0].cElements = 0;
    ExpectStatistics(OfPolygon(image, vertices.Address()), {});
    EXPECT_EQ(tqGetPelBlockAvgPoly(image, vertices.Address()), 0.0);
}

}  // namespace
}  // namespace tqtest
