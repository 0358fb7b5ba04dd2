#ifndef ORVO_DEMO_SETTINGS_H
#define ORVO_DEMO_SETTINGS_H

#include <istream>
#include <string>

namespace demo {

/// The demo team's settings, from "config/server.cfg" of the run directory.
struct Settings {
    std::string host = "localhost"; ///< the simulation server
    unsigned int port = 3100;
    /// The third server value; the demo also sends its debug drawings to this
    /// UDP port of the server's host (or of drawing_host).
    unsigned int drawing_port = 15096;
    std::string team = "orvo";
    unsigned int unum = 0; ///< 0 lets the server choose the player number
    unsigned int type = 0; ///< robot type, 0 to 4; a team must mix them
    unsigned int cycles =
        0;                  ///< server cycles to play from the kick-off; 0: until the server closes
    unsigned int wait = 10; ///< seconds to wait for a server message before giving up
    /// Where the debug drawings go when not to the server's host, e.g. to a
    /// viewer on the agents' own machine; empty: the server's host.
    std::string drawing_host;
    /// Directory of ready.motion, wave.motion and head_scan.motion; empty:
    /// the motions that come with the library.
    std::string motions;
    /// 1: once kicked off, the team plays soccer (walks, heads for the ball,
    /// keeps a formation), which only a server with physics can show; 0: it
    /// holds the places it spread out to.
    bool play = false;
    /// A lock file shared with whoever starts the agents of a server in sync
    /// mode (see SyncGate); empty: none.
    std::string sync_lock;
};

/// Reads "key value" lines into `settings`; "#" starts a comment, blank lines
/// are skipped and absent keys keep their defaults. An unknown key, a missing
/// or malformed value raises an orvo::Exception whose message names `file`
/// and the line: "config/server.cfg:3: port: '31x0' is not a port (1-65535)".
void read_settings(std::istream& in, const std::string& file, Settings& settings);

} // namespace demo

#endif
