#include "socket_table.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace orvo::sim {
namespace {

constexpr int tcp_established = 0x01;

// The socket inodes a process holds, from the links of /proc/PID/fd
// ("socket:[12345]").
std::vector<unsigned long> socket_inodes(pid_t pid) {
    std::vector<unsigned long> inodes;
    std::error_code error;
    const std::filesystem::path fds = "/proc/" + std::to_string(pid) + "/fd";
    for (const auto& entry : std::filesystem::directory_iterator(fds, error)) {
        const std::string target = std::filesystem::read_symlink(entry.path(), error).string();
        if (!error && target.rfind("socket:[", 0) == 0) {
            inodes.push_back(std::stoul(target.substr(8)));
        }
    }
    return inodes;
}

int port_of(const std::string& address) {
    const auto colon = address.rfind(':');
    return colon == std::string::npos ? 0 : std::stoi(address.substr(colon + 1), nullptr, 16);
}

void read_table(const char* table, const std::vector<unsigned long>& inodes,
                std::vector<Link>& out) {
    std::ifstream in(table);
    std::string line;
    std::getline(in, line); // column titles
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string slot, local, remote, state, queues, timer, retransmits, uid, timeout;
        unsigned long inode = 0;
        fields >> slot >> local >> remote >> state >> queues >> timer >> retransmits >> uid >>
            timeout >> inode;
        if (fields && std::stoi(state, nullptr, 16) == tcp_established &&
            std::find(inodes.begin(), inodes.end(), inode) != inodes.end()) {
            out.push_back({port_of(local), port_of(remote)});
        }
    }
}

} // namespace

std::vector<Link> established_links(pid_t pid) {
    const std::vector<unsigned long> inodes = socket_inodes(pid);
    std::vector<Link> links;
    if (!inodes.empty()) {
        read_table("/proc/net/tcp", inodes, links);
        read_table("/proc/net/tcp6", inodes, links);
    }
    return links;
}

bool linked(pid_t pid, int port, pid_t server_pid) {
    for (const Link& own : established_links(pid)) {
        if (own.remote_port != port) {
            continue;
        }
        if (server_pid <= 0) {
            return true;
        }
        for (const Link& other : established_links(server_pid)) {
            if (other.local_port == port && other.remote_port == own.local_port) {
                return true;
            }
        }
    }
    return false;
}

} // namespace orvo::sim
