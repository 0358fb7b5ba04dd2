#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/injectors/injector_skill.h>
#include <orvo/skills/skill.h>

#include <gtest/gtest.h>

namespace {

using orvo::knowledgebase::ActionLog;
using orvo::knowledgebase::injectors::Injector_Skill;

class Dribble : public orvo::skills::Skill {
public:
    std::string get_name() const override { return "dribble"; }
};

TEST(Skill, HoldsTheSkillInjectorItLinkedTo) {
    Dribble skill;
    EXPECT_EQ(skill.get_skill_injector(), nullptr);
    Injector_Skill injector;
    ActionLog log;
    orvo::Class_Map classes{{"injector_skill", &injector}, {"actionlog", &log}};
    skill.link(classes);
    EXPECT_EQ(skill.get_skill_injector(), &injector);
}

TEST(Skill, ReportsAMissingInjectorFromItsLinkLocation) {
    Dribble skill;
    ActionLog log;
    orvo::Class_Map classes{{"actionlog", &log}, {"Injector_Skill", &log}};
    try {
        skill.link(classes);
        FAIL() << "no exception";
    } catch (const orvo::LinkException& missing) {
        EXPECT_EQ(missing.get_source(), "skills/src/skill.cpp: In function 'link' (line 39): ");
        EXPECT_EQ(missing.get_message(),
                  "Error while linking <dribble>\n\t-> class <injector_skill> not found");
        EXPECT_EQ(missing.get_type(), "LinkException");
    }
}

} // namespace
