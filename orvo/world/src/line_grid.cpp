#include "line_grid.h"

#include <orvo/world/field.h>

namespace orvo::world {

LineGrid::LineGrid() : cells_(static_cast<std::size_t>(nx) * ny) {
    for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i)
            cells_[static_cast<std::size_t>(j) * nx + i] =
                static_cast<float>(field::nearest_line(x0 + i * step, y0 + j * step).distance);
}

const LineGrid& line_grid() {
    static const LineGrid grid;
    return grid;
}

} // namespace orvo::world
