#ifndef ORVO_DEMO_SYNC_GATE_H
#define ORVO_DEMO_SYNC_GATE_H

#include <string>

namespace demo {

/// A server in sync mode can stall for good when a robot connects while the
/// others' "(syn)"s are moving it through a cycle. Agents that share a lock
/// file send their "(syn)" under a shared lock of it; whoever starts the next
/// agent holds it exclusively until that agent has connected, so it connects
/// to a server at rest. Without a file the gate does nothing.
class SyncGate {
public:
    SyncGate() = default;
    ~SyncGate();
    SyncGate(const SyncGate&) = delete;
    SyncGate& operator=(const SyncGate&) = delete;

    /// Opens `path` (created if missing); "" leaves the gate open. Throws
    /// std::runtime_error naming the file when it cannot be opened.
    void open(const std::string& path);

    /// Holds the shared lock for its lifetime.
    class Pass {
    public:
        explicit Pass(const SyncGate& gate);
        ~Pass();
        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;

    private:
        int fd_;
    };

private:
    int fd_ = -1;
};

} // namespace demo

#endif
