#include "team_configuration.h"

#include <fstream>

namespace demo {

void TeamConfiguration::init() {
    std::ifstream in(file);
    if (in) {
        read_settings(in, file, settings);
    }
    server_host = settings.host;
    server_port = settings.port;
    run_value = settings.drawing_port;
}

} // namespace demo
