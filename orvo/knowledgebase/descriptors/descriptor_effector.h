#ifndef ORVO_KNOWLEDGEBASE_DESCRIPTORS_DESCRIPTOR_EFFECTOR_H
#define ORVO_KNOWLEDGEBASE_DESCRIPTORS_DESCRIPTOR_EFFECTOR_H

#include <orvo/knowledgebase/descriptors/descriptor.h>

#include <string>

namespace orvo::knowledgebase::descriptors {

/// One invocation of an effector on behalf of the current action. An action
/// keys its effectors by id; the message is what the effector contributes to
/// the action's effector chain. Plug-ins derive the concrete descriptor.
class ORVO_API Descriptor_Effector : public Descriptor {
public:
    Descriptor_Effector(const std::string& id, const std::string& message,
                        const bool& exclude_from_chain);
    ~Descriptor_Effector() override = 0;

    /// "(effector (id <id>))"; message and flag never show in it.
    std::string to_eval() const override;
    virtual const std::string& get_message() const;

    const std::string& get_id() const;
    /// When true, the action's effector chain leaves this message out.
    bool is_excluded_from_chain() const;

protected:
    std::string id;
    std::string message;
    bool exclude_from_chain;
};

} // namespace orvo::knowledgebase::descriptors

#endif
