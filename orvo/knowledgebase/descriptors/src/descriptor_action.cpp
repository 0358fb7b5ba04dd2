#include <orvo/core/exception.h>
#include <orvo/knowledgebase/descriptors/descriptor_action.h>

#include <sstream>

namespace orvo::knowledgebase::descriptors {

namespace {

constexpr const char* source_file = "knowledgebase/descriptors/src/descriptor_action.cpp";
constexpr int line_missing_effector = 167;
constexpr int line_missing_skill = 192;

// Only DataUnavailableException may leave the lookups; a failure while
// building it ends the process instead.
DataUnavailableException unavailable(const char* function, int line, const char* message) noexcept {
    return DataUnavailableException(gen_ffl_string(source_file, function, line), message);
}

} // namespace

Descriptor_Action::Descriptor_Action(const std::string& initiator) : initiator(initiator) {}

Descriptor_Action::~Descriptor_Action() {
    effectors.clear();
    skill_chain.clear();
}

bool Descriptor_Action::has_skill(const std::string& id) const {
    for (const auto& skill : skill_chain) {
        if (skill->get_id() == id) {
            return true;
        }
    }
    return false;
}

bool Descriptor_Action::has_effector(const std::string& id) const {
    return effectors.find(id) != effectors.end();
}

void Descriptor_Action::add_skill(boost::shared_ptr<Descriptor_Skill> skill) {
    skill_chain.push_back(std::move(skill));
}

void Descriptor_Action::add_effector(boost::shared_ptr<Descriptor_Effector> effector) {
    const std::string& id = effector->get_id();
    effectors.try_emplace(id, std::move(effector));
}

Descriptor_Action::Skill_Position Descriptor_Action::get_skill(const std::string& id) const {
    if (!has_skill(id)) {
        throw unavailable("get_skill", line_missing_skill,
                          "Tried to retrieve skill for current action that has not "
                          "been used in skill chain yet!");
    }
    std::uint8_t position = 0;
    for (const auto& skill : skill_chain) {
        if (skill->get_id() == id) {
            return Skill_Position(position, skill);
        }
        ++position;
    }
    return Skill_Position(); // not reached: has_skill found the id
}

const boost::shared_ptr<Descriptor_Effector>&
Descriptor_Action::get_effector(const std::string& id) const {
    if (!has_effector(id)) {
        throw unavailable("get_effector", line_missing_effector,
                          "Tried to retrieve effector for current action that has not "
                          "been invoked yet!");
    }
    return effectors.find(id)->second;
}

std::string Descriptor_Action::get_effector_chain() const {
    std::string chain;
    for (const auto& entry : effectors) {
        const Descriptor_Effector& effector = *entry.second;
        if (!effector.is_excluded_from_chain()) {
            chain += effector.get_message();
        }
    }
    return chain;
}

std::ostream& Descriptor_Action::print(std::ostream& out) const {
    out << "[Descriptor_Action] Behavior(" << initiator << ")" << std::endl;
    for (const auto& skill : skill_chain) {
        out << "\t-> Skill (";
        skill->print(out);
        // The skill line closes one parenthesis more than it opens; readers of
        // these dumps rely on the exact text.
        out << ")"
            << ")\n";
    }
    for (const auto& entry : effectors) {
        out << "\t-> Effector (";
        entry.second->print(out);
        out << ")" << std::endl;
    }
    return out;
}

std::string Descriptor_Action::to_eval() const {
    std::ostringstream text;
    text << "(action (initiator " << initiator << ")(skill_chain";
    for (const auto& skill : skill_chain) {
        text << " " << skill->to_eval();
    }
    text << ")(effectors";
    for (const auto& entry : effectors) {
        text << " " << entry.second->to_eval();
    }
    text << "))";
    return text.str();
}

const std::string& Descriptor_Action::get_initiator() const {
    return initiator;
}

const Descriptor_Action::Skill_Chain& Descriptor_Action::get_skill_chain() const {
    return skill_chain;
}

const Descriptor_Action::Effector_Map& Descriptor_Action::get_effectors() const {
    return effectors;
}

} // namespace orvo::knowledgebase::descriptors
