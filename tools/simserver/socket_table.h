#ifndef ORVO_TOOLS_SIMSERVER_SOCKET_TABLE_H
#define ORVO_TOOLS_SIMSERVER_SOCKET_TABLE_H

#include <vector>

#include <sys/types.h>

namespace orvo::sim {

/// One established TCP connection of a process, by its two ports.
struct Link {
    int local_port = 0;
    int remote_port = 0;
};

/// The established TCP connections (IPv4 and IPv6) of process `pid`, read
/// from the kernel's tables: no connection is made to find them, which a
/// server would take for a robot. Empty when the process has none or is gone.
std::vector<Link> established_links(pid_t pid);

/// Whether process `pid` holds an established connection to `port`, and,
/// with `server_pid` > 0, whether that process holds the other end (it has
/// accepted the connection).
bool linked(pid_t pid, int port, pid_t server_pid = 0);

} // namespace orvo::sim

#endif
