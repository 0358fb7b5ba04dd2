#include <orvo/skills/skill.h>

namespace orvo::skills {

namespace {

constexpr const char* source_file = "skills/src/skill.cpp";
constexpr int line_link = 39;

} // namespace

Skill::~Skill() = default;

void Skill::link(Class_Map& classes) {
    try {
        skill_injector =
            get_class<knowledgebase::injectors::Injector_Skill>(*this, "injector_skill", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", line_link), missing);
    }
}

knowledgebase::injectors::Injector_Skill* Skill::get_skill_injector() const {
    return skill_injector;
}

} // namespace orvo::skills
