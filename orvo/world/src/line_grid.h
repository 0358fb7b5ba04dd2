#ifndef ORVO_WORLD_SRC_LINE_GRID_H
#define ORVO_WORLD_SRC_LINE_GRID_H

#include <cmath>
#include <cstddef>
#include <vector>

namespace orvo::world {

/// The distance to the nearest painted line, sampled once on a grid over the
/// field and its surroundings, so that weighing hundreds of guesses against
/// dozens of line points costs a lookup each instead of a search of every line.
class LineGrid {
public:
    LineGrid();
    /// Metres, interpolated between the grid's corners; beyond the grid the
    /// value at its edge plus the distance to it.
    double distance(double x, double y) const {
        const double gx = (x - x0) / step;
        const double gy = (y - y0) / step;
        const double cx = gx < 0 ? 0 : (gx > nx - 1.0001 ? nx - 1.0001 : gx);
        const double cy = gy < 0 ? 0 : (gy > ny - 1.0001 ? ny - 1.0001 : gy);
        const double outside = (gx == cx && gy == cy) ? 0.0 : std::hypot(gx - cx, gy - cy) * step;
        const int i = static_cast<int>(cx);
        const int j = static_cast<int>(cy);
        const double fx = cx - i;
        const double fy = cy - j;
        const float* row = &cells_[static_cast<std::size_t>(j) * nx + i];
        const double bottom = row[0] + fx * (row[1] - row[0]);
        const double top = row[nx] + fx * (row[nx + 1] - row[nx]);
        return bottom + fy * (top - bottom) + outside;
    }

private:
    static constexpr double step = 0.1;
    static constexpr double x0 = -17.0;
    static constexpr double y0 = -12.0;
    static constexpr int nx = 341;
    static constexpr int ny = 241;
    std::vector<float> cells_;
};

/// The one grid all estimators share.
const LineGrid& line_grid();

} // namespace orvo::world

#endif
