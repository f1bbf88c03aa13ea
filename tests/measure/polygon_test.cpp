#include <random>
#include <string>

#include "statistics.h"

namespace tqtest {
namespace {

std::string Picture(const Polygon& polygon) {
    const Image image(11, 7);
    std::string picture;
    for (std::int32_t row = 0; row < image.Rows(); ++row)
        picture += "...........\n";
    for (const Position& at : PolygonPels(image, polygon))
        picture.at(static_cast<std::size_t>(12 * at.row + at.col)) = '#';
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
     "...........\n.#.........\n..#........\n...#.......\n....#......\n.....#.....\n...........\n"},
    {"one vertex",
     {{4, 3}},
     "...........\n...........\n...........\n....#......\n...........\n...........\n...........\n"},
    {"one level line",
     {{8, 2}, {3, 2}},
     "...........\n...........\n...######..\n...........\n...........\n...........\n...........\n"},
    {"notch from below",
     {{1, 1}, {9, 1}, {9, 5}, {6, 5}, {6, 3}, {4, 3}, {4, 5}, {1, 5}},
     "...........\n.#########.\n.#########.\n.#########.\n.####.####.\n.####.####.\n...........\n"},
    {"dip from above",
     {{1, 5}, {1, 1}, {5, 3}, {9, 1}, {9, 5}},
     "...........\n.#.......#.\n.###...###.\n.#########.\n.#########.\n.#########.\n...........\n"},
    {"peaks and valleys on one row each",
     {{0, 6}, {2, 0}, {4, 6}, {6, 0}, {8, 6}},
     "..#...#....\n..#...#....\n.###.###...\n.###.###...\n.###.###...\n#########..\n#########..\n"},
    {"an edge that goes back on itself",
     {{1, 1}, {9, 1}, {5, 1}, {5, 5}},
     "...........\n.#########.\n..####.....\n...###.....\n....##.....\n.....#.....\n...........\n"},
    {"the same outline twice: only the crossings are left",
     {{5, 0}, {9, 3}, {5, 6}, {1, 3}, {5, 0}, {9, 3}, {5, 6}, {1, 3}},
     ".....#.....\n....#.#....\n..#.....#..\n.#.......#.\n..#.....#..\n....#.#....\n.....#.....\n"},
    {"a spiral: inside twice is outside",
     {{5, 0}, {10, 3}, {5, 6}, {0, 3}, {5, 1}, {8, 3}, {5, 5}, {2, 3}},
     ".....#.....\n....####...\n..##..###..\n###.....###\n..###..##..\n...#####...\n.....#.....\n"},
    {"larger than the image",
     {{-4, -3}, {4, 3}, {20, 3}, {4, 9}},
     "#..........\n##.........\n####.......\n###########\n.##########\n.##########\n..#########\n"},
    {"the whole range",
     {{kLowest, kLowest}, {kHighest, kLowest}, {kHighest, kHighest}, {kLowest, kHighest}},
     "###########\n###########\n###########\n###########\n###########\n###########\n###########\n"},
    {"a level edge as long as the range",
     {{kLowest, 3}, {kHighest, 3}, {5, kHighest}},
     "...........\n...........\n...........\n###########\n###########\n###########\n###########\n"},
    {"a diagonal as long as the range",
     {{kLowest, kLowest}, {kHighest, kHighest}, {5, kLowest}},
     "###########\n.##########\n..#########\n...########\n....#######\n.....######\n......#####\n"},
    {"a vertex that touches from the right",
     {{3, 0}, {3, 6}, {7, 6}, {3, 3}, {7, 0}},
     "...#####...\n...####....\n...##......\n...#.......\n...##......\n...####....\n...#####...\n"},
    {"zigzag",
     {{0, 0}, {10, 1}, {0, 2}, {10, 3}, {0, 4}, {10, 5}, {0, 6}},
     "#..........\n###########\n#..........\n###########\n#..........\n###########\n#..........\n"},
};

TEST(Polygon, Drawings) {
    for (const Drawing& it : kDrawings)
        EXPECT_EQ(Picture(it.polygon), it.picture) << it.name;
}

TEST(Polygon, StatisticsOfEveryPolygon) {
    std::mt19937 engine(22);
    for (const Image& image : {RandomImageWithHoles(1, 8, 1), RandomImageWithHoles(37, 13, 2)}) {
        for (int i = 0; i < 25; ++i) {
            Polygon polygon(1 + engine() % 7);
            for (Position& at : polygon)
                at = {static_cast<std::int32_t>(engine() % 60) - 10,
                      static_cast<std::int32_t>(engine() % 30) - 8};
            HostArray vertices = VerticesOf(polygon);
            const Visited visited = PolygonPels(image, polygon);
            ExpectStatistics(OfPolygon(image, vertices.Address()), ValuesAt(image, visited));
            EXPECT_EQ(tqGetPelBlockAvgPoly(image, vertices.Address()), MeanOf(image, visited));
        }
    }
}

/// The codes -3 to -6 have no test: they told which coordinate failed when it was read again, and vertices
/// are read once.
TEST(Polygon, ArraysThatAreNoVertexArraysAreRefused) {
    const Image image = RandomImage(17, 13, 25, 1);
    HostArray arrays[] = {HostArray(VT_I2, {{2}, {4}}),       HostArray(VT_R8, {{2}, {4}}),
                          HostArray(VT_I4, {{2, 1}, {4, 1}}), HostArray(VT_I4, {{8}}),
                          HostArray(VT_I4, {{2}, {4}, {1}}),  HostArray(VT_I4, {{1}, {4}})};
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
