#ifndef ORVO_SKILLS_SKILL_H
#define ORVO_SKILLS_SKILL_H

#include <orvo/humanoid/base/constructable.h>
#include <orvo/knowledgebase/injectors/injector_skill.h>

namespace orvo::skills {

/// Carries out a behavior's decision. A concrete skill reports every run, as a
/// Descriptor_Skill, to the skill injector it finds at link.
class ORVO_API Skill : public Constructable {
public:
    ~Skill() override;
    /// Fetches "injector_skill".
    void link(Class_Map& classes) override;

    /// Null until link(), and after it if "injector_skill" is of another class.
    knowledgebase::injectors::Injector_Skill* get_skill_injector() const;

protected:
    knowledgebase::injectors::Injector_Skill* skill_injector = nullptr;
};

} // namespace orvo::skills

#endif
