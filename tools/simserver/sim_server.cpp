#include "sim_server.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <csignal>
#include <fcntl.h>
#include <netinet/in.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace orvo::sim {
namespace {

constexpr const char* program = "rcssserver3d";
constexpr int tcp_listen_state = 0x0A;

bool listed_as_listening(const char* table, int port) {
    std::ifstream in(table);
    std::string line;
    std::getline(in, line); // column titles
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string slot, local, remote, state;
        fields >> slot >> local >> remote >> state;
        const auto colon = local.rfind(':');
        if (colon == std::string::npos) {
            continue;
        }
        if (std::stoi(local.substr(colon + 1), nullptr, 16) == port &&
            std::stoi(state, nullptr, 16) == tcp_listen_state) {
            return true;
        }
    }
    return false;
}

std::string make_home() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvo-simserver.XXXXXX");
    if (mkdtemp(pattern.data()) == nullptr) {
        throw SimServerError(std::string("cannot make the server's home: ") + std::strerror(errno));
    }
    return pattern;
}

} // namespace

bool port_listening(int port) {
    return listed_as_listening("/proc/net/tcp", port) ||
           listed_as_listening("/proc/net/tcp6", port);
}

int free_port() {
    for (int attempt = 0; attempt < 100; ++attempt) {
        const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (fd < 0) {
            break;
        }
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        int port = 0;
        if (::bind(fd, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
            ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
            port = ntohs(address.sin_port);
        }
        ::close(fd);
        if (port != 0 && !port_listening(port)) {
            return port;
        }
    }
    throw SimServerError("no free loopback port");
}

bool SimServer::installed() {
    const char* path = std::getenv("PATH");
    std::istringstream dirs(path != nullptr ? path : "/usr/bin:/bin");
    std::string dir;
    while (std::getline(dirs, dir, ':')) {
        if (!dir.empty() && ::access((dir + "/" + program).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

SimServer::SimServer(const SimServerOptions& options)
    : agent_port_(options.agent_port != 0 ? options.agent_port : free_port()),
      monitor_port_(options.monitor_port != 0 ? options.monitor_port : free_port()) {
    if (!installed()) {
        throw SimServerError(std::string("the real simulation server (") + program +
                             ") is not installed");
    }
    while (monitor_port_ == agent_port_) {
        monitor_port_ = free_port();
    }
    home_ = make_home();
    log_path_ = options.log_path.empty() ? home_ + "/server.log" : options.log_path;
    try {
        spawn(options.sync);
        await_ready(options.start_timeout);
    } catch (...) {
        stop();
        throw;
    }
}

SimServer::~SimServer() {
    stop();
}

// The environment and the file actions are built before the process is
// created: nothing but the spawn itself runs in the child.
void SimServer::spawn(bool sync) {
    std::vector<std::string> settings = {"HOME=" + home_,
                                         std::string("SIMSPARK_SYNC=") + (sync ? "1" : "0"),
                                         "SIMSPARK_AGENT_PORT=" + std::to_string(agent_port_),
                                         "SIMSPARK_MONITOR_PORT=" + std::to_string(monitor_port_)};
    std::vector<char*> env;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text(*entry);
        const bool replaced = text.rfind("HOME=", 0) == 0 || text.rfind("SIMSPARK_", 0) == 0;
        if (!replaced) {
            env.push_back(*entry);
        }
    }
    for (auto& setting : settings) {
        env.push_back(setting.data());
    }
    env.push_back(nullptr);
    std::string name = program;
    char* argv[] = {name.data(), nullptr};

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, log_path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    posix_spawn_file_actions_addchdir_np(&actions, home_.c_str());
    const int result = posix_spawnp(&pid_, program, &actions, nullptr, argv, env.data());
    posix_spawn_file_actions_destroy(&actions);
    if (result != 0) {
        pid_ = -1;
        throw SimServerError(std::string("cannot start ") + program + ": " + std::strerror(result));
    }
}

void SimServer::await_ready(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (std::chrono::steady_clock::now() < deadline) {
        if (!running()) {
            throw SimServerError("the server ended during start-up; its output:\n" + log_tail());
        }
        if (port_listening(agent_port_) && port_listening(monitor_port_)) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    throw SimServerError("the server's agent port " + std::to_string(agent_port_) +
                         " and monitor port " + std::to_string(monitor_port_) +
                         " were not both listening in time; its output:\n" + log_tail());
}

bool SimServer::running() {
    if (pid_ <= 0) {
        return false;
    }
    int status = 0;
    if (::waitpid(pid_, &status, WNOHANG) == pid_) {
        pid_ = -1;
        return false;
    }
    return true;
}

void SimServer::stop(std::chrono::milliseconds grace) {
    if (running()) {
        ::kill(pid_, SIGTERM);
        const auto deadline = std::chrono::steady_clock::now() + grace;
        while (running() && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        if (running()) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
            pid_ = -1;
        }
    }
    if (!home_.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(home_, ignored);
        home_.clear();
    }
}

std::string SimServer::log_tail(std::size_t lines) const {
    std::ifstream in(log_path_);
    std::deque<std::string> tail;
    std::string line;
    while (std::getline(in, line)) {
        tail.push_back(line);
        if (tail.size() > lines) {
            tail.pop_front();
        }
    }
    std::string text;
    for (const auto& kept : tail) {
        text += kept + "\n";
    }
    return text;
}

} // namespace orvo::sim
