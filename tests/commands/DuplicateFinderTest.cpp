// The grouping of duplicates on its own: the grid must find every pair the plain comparison finds,
// polylines compare drawn either way, and the choice of what goes never loses records.
#include <gtest/gtest.h>

#include <random>

#include "commands/DuplicateFinder.h"

namespace veltarn {
namespace {

using host::EntityShape;
using host::Point3d;

EntityShape lineShape(Point3d from, Point3d to) { return {{from, to}, {}, {}, 0, true}; }

TEST(DuplicateFinder, GridFindsTheGroupsOfTheComparisonOfEveryPair) {
    // Ends scattered around the sides of the grid's cells (16 tolerances wide), where a pair is
    // split between two cells, each coordinate within about a tolerance of the others.
    constexpr double kTolerance = 0.1;
    std::mt19937 random(7);
    std::uniform_int_distribution<int> side(0, 4);
    std::uniform_real_distribution<double> jitter(-0.7 * kTolerance, 0.7 * kTolerance);
    auto coordinate = [&] { return side(random) * 16 * kTolerance + jitter(random); };
    DuplicateFinder finder(kTolerance);
    for (int i = 0; i < 3000; ++i) {
        const Point3d from{coordinate(), coordinate(), coordinate()};
        Point3d to{from.x + 1 + jitter(random), from.y + jitter(random), from.z};
        if (i % 2)
            finder.add(1, L"Roads", lineShape(to, from));
        else
            finder.add(1, i % 3 ? L"Roads" : L"ROADS", lineShape(from, to));
    }

    std::vector<std::size_t> group(finder.size());
    for (std::size_t i = 0; i < finder.size(); ++i)
        group[i] = i;
    for (std::size_t i = 0; i < finder.size(); ++i)
        for (std::size_t j = i + 1; j < finder.size(); ++j)
            if (finder.same(i, j)) {
                const std::size_t from = group[j], to = group[i];
                if (from == to) continue;
                for (std::size_t& g : group)
                    if (g == from) g = to;
            }
    std::vector<std::vector<std::size_t>> expected;
    std::vector<std::size_t> slot(finder.size(), static_cast<std::size_t>(-1));
    for (std::size_t i = 0; i < finder.size(); ++i) {
        if (std::count(group.begin(), group.end(), group[i]) < 2) continue;
        if (slot[group[i]] == static_cast<std::size_t>(-1)) {
            slot[group[i]] = expected.size();
            expected.emplace_back();
        }
        expected[slot[group[i]]].push_back(i);
    }
    ASSERT_GT(expected.size(), 10u);  // the scatter must make pairs across the sides to test
    EXPECT_EQ(finder.groups(), expected);
}

TEST(DuplicateFinder, PolylinesMatchReversedWithBulgesNegatedAndWidthsSwappedButOnlyWhenOpen) {
    const EntityShape forward{
        {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}}, {{0.5, 1, 2}, {0, 0, 0}, {0, 0, 0}}, {0.25}, 9, true};
    EntityShape back{{{10, 10, 0}, {10, 0, 0}, {0, 0, 0}}, {{0, 0, 0}, {-0.5, 2, 1}, {0, 0, 0}}, {0.25}, 9, true};
    EntityShape unnegated = back;
    unnegated.segments[1].bulge = 0.5;
    EntityShape closedBack = back;
    closedBack.reversible = false;
    EntityShape otherText = forward;
    otherText.exactHash = 10;
    EntityShape otherValue = forward;
    otherValue.values[0] = 0.2501;

    DuplicateFinder finder(1e-6);
    for (const EntityShape* shape :
         std::vector<const EntityShape*>{&forward, &back, &unnegated, &closedBack, &otherText, &otherValue})
        finder.add(4, L"0", *shape);
    finder.add(5, L"0", forward);  // another type
    finder.add(4, L"1", forward);  // another layer
    EXPECT_TRUE(finder.same(0, 1));
    for (std::size_t other = 2; other < finder.size(); ++other)
        EXPECT_FALSE(finder.same(0, other)) << other;
    EXPECT_EQ(finder.groups(), (std::vector<std::vector<std::size_t>>{{0, 1}}));
}

TEST(DuplicateFinder, TheBestRankedStaysAndRecordsGoOnlyWithTheirEqualsWhileChainsAreJudgedAgain) {
    // Ends 0.8 tolerances apart in a chain: the first and the third are not the same.
    DuplicateFinder finder(1e-6);
    for (double x : {0.0, 0.8e-6, 1.6e-6, 2.4e-6})
        finder.add(1, L"0", lineShape({x, 0, 0}, {x + 10, 0, 0}));
    ASSERT_EQ(finder.groups(), (std::vector<std::vector<std::size_t>>{{0, 1, 2, 3}}));
    const std::vector<std::size_t> group{0, 1, 2, 3};

    // Without data the first stays, its neighbour goes; the third stays, and the fourth goes with it.
    EXPECT_EQ(erasedOfGroup(finder, group, {{0, -1, 0}, {0, -1, 1}, {0, -1, 2}, {0, -1, 3}}),
              (std::vector<std::size_t>{1, 3}));
    // A classified second stays and takes both neighbours without data; the fourth is left.
    EXPECT_EQ(erasedOfGroup(finder, group, {{0, -1, 0}, {2, 5, 1}, {0, -1, 2}, {0, -1, 3}}),
              (std::vector<std::size_t>{0, 2}));
    // Records that disagree stay, however they rank; equal records go with the one that stays.
    EXPECT_EQ(erasedOfGroup(finder, {0, 1}, {{1, 3, 0}, {2, 4, 1}}), std::vector<std::size_t>{});
    EXPECT_EQ(erasedOfGroup(finder, {0, 1}, {{2, 4, 1}, {2, 4, 0}}), std::vector<std::size_t>{0});
}

}  // namespace
}  // namespace veltarn
