#ifndef ORVO_KNOWLEDGEBASE_DESCRIPTORS_DESCRIPTOR_SKILL_H
#define ORVO_KNOWLEDGEBASE_DESCRIPTORS_DESCRIPTOR_SKILL_H

#include <orvo/knowledgebase/descriptors/descriptor.h>

#include <string>

namespace orvo::knowledgebase::descriptors {

/// One run of a skill on behalf of the current action. Plug-ins derive the
/// concrete descriptor and give it its print.
class ORVO_API Descriptor_Skill : public Descriptor {
public:
    explicit Descriptor_Skill(const std::string& id);
    ~Descriptor_Skill() override = 0;

    /// "(skill (id <id>))", the id written as it is.
    std::string to_eval() const override;
    const std::string& get_id() const;

protected:
    std::string id;
};

} // namespace orvo::knowledgebase::descriptors

#endif
