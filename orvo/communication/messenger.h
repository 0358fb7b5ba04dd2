#ifndef ORVO_COMMUNICATION_MESSENGER_H
#define ORVO_COMMUNICATION_MESSENGER_H

#include <orvo/communication/configuration.h>
#include <orvo/core/export.h>
#include <orvo/humanoid/base/constructable.h>
#include <orvo/net/comm_unit.h>

#include <chrono>
#include <string>

namespace orvo::communication {

/// The component through which agents, behaviors, skills and effectors talk
/// to the simulation server, registered as "messenger". It finds
/// "configuration" and "communit" during link and connects during init;
/// afterwards it sends text messages and keeps the last one received.
class ORVO_API Messenger : public Constructable {
public:
    Messenger();
    ~Messenger() override;

    /// A missing collaborator raises a LinkException located here. A name
    /// registered with another class leaves that pointer null.
    void link(Class_Map& classes) override;
    /// Connects with the configuration's host, port and run value; a failed
    /// connection leaves the framework running unconnected, an unknown host
    /// raises net::HostNotFound. Raises a LogicException when link found no
    /// usable collaborators.
    void init() override;
    /// "messenger".
    std::string get_name() const override;

    /// Sends `text` as one frame; an empty (or null) text sends nothing.
    void send_message(const char* text);
    /// Replaces the kept message with the next one received, "" when none is
    /// waiting; true when it is not empty. Never blocks.
    bool recieve_message();
    /// Loses nothing, unlike recieve_message (use one or the other): replaces
    /// the kept message with the next whole frame's payload, waiting at most
    /// `wait` for it, or with "" when none came (timed_out) or the server has
    /// gone (closed). A frame over the reader's limit closes the connection
    /// and raises net::FrameTooLarge. Without a CommUnit: closed.
    net::Received receive(std::chrono::milliseconds wait);
    /// The kept message.
    std::string get_message() const;

private:
    std::string message;
    Configuration* configuration = nullptr;
    net::CommUnit* communit = nullptr;
};

} // namespace orvo::communication

extern "C" ORVO_API orvo::Constructable* create_messenger();

#endif
