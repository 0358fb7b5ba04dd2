#include <orvo/communication/messenger.h>

namespace orvo::communication {

namespace {

// Location texts of the messenger's reports; the lines are fixed parts of the
// traces hosts print.
constexpr const char* source_file = "communication/src/messenger.cpp";
constexpr int line_link = 63;
constexpr int line_init = 77;

} // namespace

Messenger::Messenger() = default;

Messenger::~Messenger() = default;

void Messenger::link(Class_Map& classes) {
    try {
        configuration = get_class<Configuration>(*this, "configuration", classes);
        communit = get_class<net::CommUnit>(*this, "communit", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", line_link), missing);
    }
}

void Messenger::init() {
    if (configuration == nullptr || communit == nullptr) {
        throw LogicException(gen_ffl_string(source_file, "init", line_init),
                             configuration == nullptr ? "\"configuration\" is not a Configuration"
                                                      : "\"communit\" is not a CommUnit");
    }
    communit->configure_run(std::string(configuration->server_host), configuration->server_port,
                            configuration->run_value);
}

std::string Messenger::get_name() const {
    return "messenger";
}

void Messenger::send_message(const char* text) {
    if (communit == nullptr || text == nullptr) {
        return;
    }
    communit->write_message(std::string(text));
}

bool Messenger::recieve_message() {
    message = communit != nullptr ? communit->get_message() : std::string();
    return !message.empty();
}

net::Received Messenger::receive(std::chrono::milliseconds wait) {
    const net::Received result =
        communit != nullptr ? communit->receive_message(message, wait) : net::Received::closed;
    if (result != net::Received::message) {
        message.clear();
    }
    return result;
}

std::string Messenger::get_message() const {
    return message;
}

} // namespace orvo::communication

ORVO_COMPONENT_FACTORY(messenger, orvo::communication::Messenger)
