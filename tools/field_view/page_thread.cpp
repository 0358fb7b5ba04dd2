#include "page_thread.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/executor_work_guard.hpp>

#include <chrono>

namespace field_view {

PageThread::PageThread(unsigned short port) {
    page.emplace(io, port, [this] {
        const std::lock_guard<std::mutex> lock(mutex);
        return field_svg(latest);
    });
    runner = std::thread([this] {
        const auto work = boost::asio::make_work_guard(io);
        io.run();
    });
}

PageThread::~PageThread() {
    boost::asio::dispatch(io, [this] {
        page->stop();
        io.stop();
    });
    runner.join();
    // The closing handshakes, on this thread now, for a bounded time.
    io.restart();
    io.run_for(std::chrono::seconds(1));
}

void PageThread::show(FieldPicture picture) {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        latest = std::move(picture);
    }
    page->changed();
}

} // namespace field_view
