#ifndef ORVO_WORLD_SRC_LINE_GRID_H
#define ORVO_WORLD_SRC_LINE_GRID_H

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
    double distance(double x, double y) const;

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
