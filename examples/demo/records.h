#ifndef ORVO_DEMO_RECORDS_H
#define ORVO_DEMO_RECORDS_H

#include <orvo/knowledgebase/descriptors/descriptor_effector.h>
#include <orvo/knowledgebase/descriptors/descriptor_skill.h>

#include <ostream>
#include <string>

namespace demo {

/// What the action log keeps of one skill call: its name and what it decided.
class SkillRecord : public orvo::knowledgebase::descriptors::Descriptor_Skill {
public:
    SkillRecord(const std::string& id, std::string note)
        : Descriptor_Skill(id), note(std::move(note)) {}
    std::ostream& print(std::ostream& out) const override {
        return out << get_id() << ": " << note;
    }

private:
    std::string note;
};

/// What the action log keeps of one effector call: its name and the command sent.
class EffectorRecord : public orvo::knowledgebase::descriptors::Descriptor_Effector {
public:
    EffectorRecord(const std::string& id, const std::string& command)
        : Descriptor_Effector(id, command, false) {}
    std::ostream& print(std::ostream& out) const override {
        return out << get_id() << ": " << get_message();
    }
};

} // namespace demo

#endif
