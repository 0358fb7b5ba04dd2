#ifndef ORVO_TESTS_EXAMPLES_CHILD_PROCESS_H
#define ORVO_TESTS_EXAMPLES_CHILD_PROCESS_H

#include <support/text.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvo_test {

/// A program started in a working directory with its standard output and
/// error in files. Every wait is bounded; a child still running when the
/// object goes away is killed and reaped, so a failing test leaves nothing.
class ChildProcess {
public:
    ChildProcess(const std::vector<std::string>& argv, const std::string& directory,
                 const std::string& output_path, const std::string& error_path,
                 const std::vector<std::string>& environment = {})
        : output(output_path), error(error_path) {
        std::vector<char*> args;
        for (const auto& arg : argv) {
            args.push_back(const_cast<char*>(arg.c_str()));
        }
        args.push_back(nullptr);
        // Built before the fork: the child of a threaded test may only make
        // async-signal-safe calls, which setting the environment is not.
        const std::vector<std::string> variables = merged_environment(environment);
        std::vector<char*> envp;
        for (const auto& variable : variables) {
            envp.push_back(const_cast<char*>(variable.c_str()));
        }
        envp.push_back(nullptr);
        pid = fork();
        if (pid < 0) {
            throw std::runtime_error("fork failed");
        }
        if (pid == 0) {
            const int out = ::open(output_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            const int err = ::open(error_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            if (out < 0 || err < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0 ||
                chdir(directory.c_str()) != 0) {
                _exit(126);
            }
            execve(args[0], args.data(), envp.data());
            _exit(127);
        }
    }
    ~ChildProcess() { wait_for(std::chrono::milliseconds(0)); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The exit status, or -1 (after killing the child) when it is still
    /// running after `timeout`; a child killed by a signal gives 128 + signal.
    int wait_for(std::chrono::milliseconds timeout) {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        while (!reaped && pid > 0) {
            int status = 0;
            if (waitpid(pid, &status, WNOHANG) == pid) {
                status_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
                reaped = true;
            } else if (std::chrono::steady_clock::now() >= deadline) {
                kill(pid, SIGKILL);
                waitpid(pid, &status, 0);
                reaped = true;
            } else {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        }
        return status_code;
    }

    /// Sends `number` to the child while it runs.
    void signal(int number) const {
        if (!reaped && pid > 0) {
            kill(pid, number);
        }
    }

    std::string output_text() const { return read(output); }
    std::string error_text() const { return read(error); }

    static std::string read(const std::string& path) { return read_text(path); }

private:
    /// This process's environment with `changes` ("NAME=VALUE") replacing or adding entries.
    static std::vector<std::string> merged_environment(const std::vector<std::string>& changes) {
        std::vector<std::string> merged;
        for (char** entry = environ; *entry != nullptr; ++entry) {
            const std::string variable = *entry;
            const std::string name = variable.substr(0, variable.find('=') + 1);
            if (std::none_of(changes.begin(), changes.end(),
                             [&](const std::string& c) { return c.rfind(name, 0) == 0; })) {
                merged.push_back(variable);
            }
        }
        merged.insert(merged.end(), changes.begin(), changes.end());
        return merged;
    }

    pid_t pid = -1;
    bool reaped = false;
    int status_code = -1;
    std::string output, error;
};

/// Waits (bounded) until `path` exists and is not empty; false on time-out.
inline bool wait_for_file(const std::string& path, std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (std::chrono::steady_clock::now() < deadline) {
        if (!ChildProcess::read(path).empty()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

} // namespace orvo_test

#endif
