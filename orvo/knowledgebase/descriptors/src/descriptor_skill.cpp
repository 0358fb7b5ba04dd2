#include <orvo/knowledgebase/descriptors/descriptor_skill.h>

#include <sstream>

namespace orvo::knowledgebase::descriptors {

Descriptor_Skill::Descriptor_Skill(const std::string& id) : id(id) {}

Descriptor_Skill::~Descriptor_Skill() = default;

std::string Descriptor_Skill::to_eval() const {
    std::ostringstream text;
    text << "(skill (id " << id << "))";
    return text.str();
}

const std::string& Descriptor_Skill::get_id() const {
    return id;
}

} // namespace orvo::knowledgebase::descriptors
