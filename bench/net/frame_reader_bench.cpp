// The lossless receive path against a plain recv() loop that parses frames by
// hand, for 2.7 KB perceptions arriving one per read and two per read (as a
// real server writes two perceptions back to back about one read in eight).
//
// The frames travel over a local SOCK_SEQPACKET pair, where every piece sent
// is exactly one read, so both readers see the same reads. Each iteration
// queues a batch of pieces with the clock stopped, then reads every frame of
// the batch: what is timed is the receiving alone.
#include <orvo/net/frame_reader.h>
#include <orvo/protocol/framing.h>

#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

constexpr int pieces_per_batch = 16;

std::string perception_frame() {
    std::string payload = "(time (now 104.56))(GS (t 0.00) (pm BeforeKickOff))";
    while (payload.size() < 2700) {
        payload += "(HJ (n raj1) (ax -0.12))";
    }
    payload.resize(2700);
    return orvo::protocol::frame(payload);
}

class Batch {
public:
    explicit Batch(int frames_per_read) : frames(pieces_per_batch * frames_per_read) {
        if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, fds) != 0) {
            fds[0] = fds[1] = -1;
        }
        const std::string frame = perception_frame();
        for (int i = 0; i < frames_per_read; ++i) {
            piece += frame;
        }
    }
    ~Batch() {
        close(fds[0]);
        close(fds[1]);
    }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    bool ok() const { return fds[0] >= 0; }
    int fd() const { return fds[0]; }
    bool queue() const {
        for (int i = 0; i < pieces_per_batch; ++i) {
            if (send(fds[1], piece.data(), piece.size(), 0) != static_cast<ssize_t>(piece.size())) {
                return false;
            }
        }
        return true;
    }

    const int frames;

private:
    int fds[2] = {-1, -1};
    std::string piece;
};

void BM_FrameReader(benchmark::State& state) {
    Batch batch(static_cast<int>(state.range(0)));
    orvo::net::FrameReader reader;
    std::string payload;
    for (auto _ : state) {
        state.PauseTiming();
        const bool queued = batch.queue();
        state.ResumeTiming();
        if (!queued) {
            state.SkipWithError("could not queue the batch");
            break;
        }
        for (int i = 0; i < batch.frames; ++i) {
            if (reader.read(batch.fd(), payload, std::chrono::milliseconds(0)) !=
                orvo::net::Received::message) {
                state.SkipWithError("frame missing");
                break;
            }
            benchmark::DoNotOptimize(payload.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * batch.frames);
}

/// What a careful programmer writes without the library: one buffer, one
/// recv() per pass, every whole frame parsed out, the rest moved to the front.
void BM_HandLoop(benchmark::State& state) {
    Batch batch(static_cast<int>(state.range(0)));
    static char buffer[65536];
    std::size_t end = 0;
    std::string payload;
    for (auto _ : state) {
        state.PauseTiming();
        const bool queued = batch.queue();
        state.ResumeTiming();
        if (!queued) {
            state.SkipWithError("could not queue the batch");
            break;
        }
        for (int got = 0; got < batch.frames;) {
            const ssize_t n = recv(batch.fd(), buffer + end, sizeof buffer - end, 0);
            if (n <= 0) {
                state.SkipWithError("frame missing");
                break;
            }
            end += static_cast<std::size_t>(n);
            std::size_t at = 0;
            while (end - at >= 4) {
                const std::uint32_t length = orvo::protocol::read_length(buffer + at);
                if (end - at - 4 < length) {
                    break;
                }
                payload.assign(buffer + at + 4, length);
                benchmark::DoNotOptimize(payload.data());
                at += 4 + length;
                ++got;
            }
            std::memmove(buffer, buffer + at, end - at);
            end -= at;
        }
    }
    state.SetItemsProcessed(state.iterations() * batch.frames);
}

} // namespace

BENCHMARK(BM_FrameReader)->ArgName("frames_per_read")->Arg(1)->Arg(2);
BENCHMARK(BM_HandLoop)->ArgName("frames_per_read")->Arg(1)->Arg(2);
BENCHMARK_MAIN();
