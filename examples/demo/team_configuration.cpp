#include "team_configuration.h"

#include <orvo/core/exception.h>
#include <orvo/net/addr.h>
#include <orvo/net/errors.h>

#include <fstream>

namespace demo {

namespace {
constexpr const char* source_file = "demo/team_configuration.cpp";
} // namespace

void TeamConfiguration::init() {
    std::ifstream in(file);
    if (in) {
        read_settings(in, file, settings);
    }
    // The messenger resolves the host when it connects, but its failure says
    // only "Unknown host"; here the user learns which name and where it is set.
    try {
        orvo::net::Addr(static_cast<unsigned short>(settings.port), settings.host);
    } catch (const orvo::net::HostNotFound& failure) {
        throw orvo::Exception(orvo::gen_ffl_string(source_file, "init", __LINE__),
                              "cannot resolve the server host '" + settings.host +
                                  "' (setting 'host' of " + file + "): " + failure.what(),
                              "Exception");
    }
    server_host = settings.host;
    server_port = settings.port;
    run_value = settings.drawing_port;
}

} // namespace demo
