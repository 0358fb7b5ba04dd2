#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/injectors/injector_skill.h>
#include <orvo/skills/skill.h>

#include "support/failure.h"

#include <gtest/gtest.h>

namespace {

struct Dribble : orvo::skills::Skill {
    std::string get_name() const override { return "dribble"; }
};

TEST(Skill, LinksToTheSkillInjectorByItsExactName) {
    Dribble skill;
    orvo::knowledgebase::ActionLog log;
    orvo::Class_Map classes{{"actionlog", &log}, {"Injector_Skill", &log}};
    EXPECT_EQ(orvo_test::failure<orvo::LinkException>([&] { skill.link(classes); }),
              "LinkException @ skills/src/skill.cpp: In function 'link' (line 39):  | Error while "
              "linking <dribble>\n\t-> class <injector_skill> not found");
    EXPECT_EQ(skill.get_skill_injector(), nullptr);
    orvo::knowledgebase::injectors::Injector_Skill injector;
    classes["injector_skill"] = &injector;
    skill.link(classes);
    EXPECT_EQ(skill.get_skill_injector(), &injector);
}

} // namespace
