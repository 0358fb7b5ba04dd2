// The cell of one player among 21 others on a 30 x 20 field: Polygon::update
// against the same cell clipped out of the field with Boost.Geometry.
#include <orvo/math/polygon.h>

#include <benchmark/benchmark.h>
#include <support/voronoi_cell.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

using orvo::math::Polygon;
using orvo::math::Vector2d;

namespace bg = boost::geometry;

namespace {

using orvo_test::Point;
using orvo_test::Region;

const Vector2d own(-3.0f, 1.5f);

// Ten team mates and eleven opponents in a mid-game spread.
const std::vector<Vector2d> others{
    {-14.0f, 0.0f}, {-10.0f, -5.0f}, {-10.5f, 0.5f}, {-9.5f, 5.5f}, {-6.0f, -7.0f}, {-5.5f, -1.5f},
    {-6.5f, 6.0f},  {0.5f, -4.0f},   {1.0f, 3.5f},   {4.0f, 0.0f},  {14.0f, 0.5f},  {10.0f, 4.5f},
    {9.5f, -4.0f},  {7.0f, -8.0f},   {6.0f, 7.5f},   {2.0f, -1.0f}, {-1.0f, 7.0f},  {-1.5f, -8.5f},
    {3.5f, 5.0f},   {-8.0f, 2.5f},   {-2.5f, -4.5f}};

Polygon::Corner_List field_corners() {
    const Vector2d nodes[] = {{-15, 10}, {15, 10}, {15, -10}, {-15, -10}};
    Polygon::Corner_List corners;
    for (int i = 0; i < 4; ++i) {
        const Vector2d& next = nodes[(i + 1) % 4];
        corners.emplace_back(nodes[i], Vector2d(next.x - nodes[i].x, next.y - nodes[i].y));
    }
    return corners;
}

// The cell, its area and its centroid, given the same reach as the polygon
// uses, so that both skip the same far players.
struct Boost_Cell {
    Region cell;
    double area = 0.0;
    Point centroid;
};

Boost_Cell boost_cell(double reach) {
    Boost_Cell result;
    result.cell = orvo_test::voronoi_cell(own, others, reach);
    result.area = bg::area(result.cell);
    bg::centroid(result.cell, result.centroid);
    return result;
}

// A polygon whose first update has set the radius, as in a running agent.
Polygon prepared() {
    Polygon polygon(field_corners());
    polygon.update(others, own);
    return polygon;
}

// From the second reset-and-update on, the polygon considers only the
// players within twice its cell's radius; Boost.Geometry gets the same reach.
double steady_reach() {
    Polygon polygon = prepared();
    polygon.reset();
    polygon.update(others, own);
    return 2.0 * polygon.get_radius();
}

void BM_Polygon_Update(benchmark::State& state) {
    Polygon polygon = prepared();
    for (auto _ : state) {
        polygon.reset();
        benchmark::DoNotOptimize(polygon.update(others, own));
    }
    state.counters["area"] = polygon.get_area();
}
BENCHMARK(BM_Polygon_Update);

void BM_Boost_Geometry_Clip(benchmark::State& state) {
    const double reach = steady_reach();
    Boost_Cell result;
    for (auto _ : state) {
        result = boost_cell(reach);
        benchmark::DoNotOptimize(result);
    }
    state.counters["area"] = result.area;
}
BENCHMARK(BM_Boost_Geometry_Clip);

// Both must compute the same cell, or the comparison means nothing.
bool same_cell() {
    Polygon polygon = prepared();
    polygon.reset();
    polygon.update(others, own);
    const double reach = steady_reach();
    const Boost_Cell reference = boost_cell(reach);
    int near = 0;
    for (const Vector2d& q : others) {
        near += std::hypot(double(q.x) - own.x, double(q.y) - own.y) < reach ? 1 : 0;
    }
    std::printf("%d of %zu players within reach %.3f\n", near, others.size(), reach);
    std::printf("cell: polygon area %.6f centroid (%.6f, %.6f), %zu corners; "
                "Boost.Geometry area %.6f centroid (%.6f, %.6f)\n",
                polygon.get_area(), polygon.get_centroid().x, polygon.get_centroid().y,
                polygon.get_corners().size(), reference.area, reference.centroid.x(),
                reference.centroid.y());
    return std::abs(polygon.get_area() - reference.area) < 1e-4 &&
           std::abs(polygon.get_centroid().x - reference.centroid.x()) < 1e-5 &&
           std::abs(polygon.get_centroid().y - reference.centroid.y()) < 1e-5;
}

} // namespace

int main(int argc, char** argv) {
    if (!same_cell()) {
        std::fprintf(stderr, "the two cells differ\n");
        return EXIT_FAILURE;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}
