#include <orvo/knowledgebase/descriptors/descriptor_effector.h>

#include <sstream>

namespace orvo::knowledgebase::descriptors {

Descriptor_Effector::Descriptor_Effector(const std::string& id, const std::string& message,
                                         const bool& exclude_from_chain)
    : id(id), message(message), exclude_from_chain(exclude_from_chain) {}

Descriptor_Effector::~Descriptor_Effector() = default;

std::string Descriptor_Effector::to_eval() const {
    std::ostringstream text;
    text << "(effector (id " << id << "))";
    return text.str();
}

const std::string& Descriptor_Effector::get_message() const {
    return message;
}

const std::string& Descriptor_Effector::get_id() const {
    return id;
}

bool Descriptor_Effector::is_excluded_from_chain() const {
    return exclude_from_chain;
}

} // namespace orvo::knowledgebase::descriptors
