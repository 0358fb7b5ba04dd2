#include "line_grid.h"

#include <orvo/world/field.h>

#include <algorithm>
#include <cmath>

namespace orvo::world {

LineGrid::LineGrid() : cells_(static_cast<std::size_t>(nx) * ny) {
    for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i)
            cells_[static_cast<std::size_t>(j) * nx + i] =
                static_cast<float>(field::nearest_line(x0 + i * step, y0 + j * step).distance);
}

double LineGrid::distance(double x, double y) const {
    const double gx = (x - x0) / step;
    const double gy = (y - y0) / step;
    const double cx = std::clamp(gx, 0.0, nx - 1.0001);
    const double cy = std::clamp(gy, 0.0, ny - 1.0001);
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

const LineGrid& line_grid() {
    static const LineGrid grid;
    return grid;
}

} // namespace orvo::world
