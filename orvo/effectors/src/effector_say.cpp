#include <orvo/communication/say_codec.h>
#include <orvo/effectors/effector_say.h>

#include <boost/make_shared.hpp>

namespace orvo::effectors {

Effector_Say::Effector_Say() {
    command.reserve(communication::say_max_length + 8);
}

Effector_Say::~Effector_Say() = default;

void Effector_Say::init() {
    require_links();
}

std::string Effector_Say::get_name() const {
    return "effector_say";
}

bool Effector_Say::operator()(std::string_view text) {
    refused = communication::say_fault(text);
    if (!refused.empty()) {
        return false;
    }
    command.assign("(say ");
    command.append(text);
    command += ')';
    messenger->send_message(command.c_str());
    boost::shared_ptr<knowledgebase::descriptors::Descriptor_Effector> record =
        boost::make_shared<Say_Command>(get_name(), command);
    (*effector_injector)(record);
    return true;
}

Say_Command::Say_Command(const std::string& id, const std::string& command)
    : Descriptor_Effector(id, command, false) {}

Say_Command::~Say_Command() = default;

std::ostream& Say_Command::print(std::ostream& out) const {
    return out << id << ": " << message;
}

} // namespace orvo::effectors

ORVO_COMPONENT_FACTORY(effector_say, orvo::effectors::Effector_Say)
