#ifndef ORVO_FIELD_VIEW_PAGE_THREAD_H
#define ORVO_FIELD_VIEW_PAGE_THREAD_H

#include "field_svg.h"
#include "live_page.h"

#include <boost/asio/io_context.hpp>

#include <mutex>
#include <optional>
#include <thread>

namespace field_view {

/// A live page served from a thread of its own, for a program whose main loop
/// is not an io_context: it hands over a picture whenever it likes, the page
/// shows the latest at most LivePage::max_rate times a second.
class PageThread {
public:
    /// Listens on 127.0.0.1:`port` (0: any free one); throws boost::system::system_error.
    explicit PageThread(unsigned short port);
    /// Closes the page's connections (a second at most for the browsers to
    /// acknowledge) and ends the thread.
    ~PageThread();
    PageThread(const PageThread&) = delete;
    PageThread& operator=(const PageThread&) = delete;

    unsigned short port() const { return page->port(); }
    void show(FieldPicture picture);

private:
    boost::asio::io_context io;
    std::mutex mutex;
    FieldPicture latest;
    std::optional<LivePage> page;
    std::thread runner;
};

} // namespace field_view

#endif
