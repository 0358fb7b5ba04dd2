#include <orvo/world/param_file.h>

namespace orvo::world {

void ParamFile::check_no_others() const {
    for (const auto& entry : set_.entries()) {
        if (read_.count(entry.first) == 0) {
            throw ParamFileError(set_.origin() + ": unknown entry \"" + entry.first + "\"");
        }
    }
}

} // namespace orvo::world
