#ifndef ORVO_KNOWLEDGEBASE_DESCRIPTORS_DESCRIPTOR_ACTION_H
#define ORVO_KNOWLEDGEBASE_DESCRIPTORS_DESCRIPTOR_ACTION_H

#include <orvo/knowledgebase/descriptors/descriptor.h>
#include <orvo/knowledgebase/descriptors/descriptor_effector.h>
#include <orvo/knowledgebase/descriptors/descriptor_skill.h>

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <utility>

namespace orvo::knowledgebase::injectors {
class Injector_Effector;
}

namespace orvo::knowledgebase::descriptors {

/// One action of the agent: the behavior that started it, the skills that ran
/// for it in call order, and the latest effector invocation per effector id.
/// An action only grows while it lives.
class ORVO_API Descriptor_Action : public Descriptor {
public:
    /// Effectors by id, in ascending byte-wise id order.
    using Effector_Map = std::map<const std::string, boost::shared_ptr<Descriptor_Effector>>;
    using Skill_Chain = std::deque<boost::shared_ptr<Descriptor_Skill>>;
    /// Position (0-based, modulo 256) of a skill in the chain and the skill.
    using Skill_Position = std::pair<std::uint8_t, boost::shared_ptr<Descriptor_Skill>>;

    explicit Descriptor_Action(const std::string& initiator);
    /// Releases the effectors before the skills.
    ~Descriptor_Action() override;

    bool has_skill(const std::string& id) const;
    bool has_effector(const std::string& id) const;
    /// Appends, duplicates included; the pointer is stored unexamined.
    void add_skill(boost::shared_ptr<Descriptor_Skill> skill);
    /// Records the effector unless its id is taken: the first one added under
    /// an id stays. (The effector injector replaces instead.)
    void add_effector(boost::shared_ptr<Descriptor_Effector> effector);
    /// The first skill with this id and its position. Raises
    /// DataUnavailableException when no skill of the chain has the id.
    Skill_Position get_skill(const std::string& id) const;
    /// The effector recorded under this id. Raises DataUnavailableException
    /// when there is none.
    const boost::shared_ptr<Descriptor_Effector>& get_effector(const std::string& id) const;
    /// The messages of the effectors not excluded from the chain, joined in id order.
    std::string get_effector_chain() const;

    /// A header line with the initiator, one line per skill and one per effector.
    std::ostream& print(std::ostream& out) const override;
    /// "(action (initiator <name>)(skill_chain <skill>...)(effectors <effector>...))".
    std::string to_eval() const override;

    const std::string& get_initiator() const;
    const Skill_Chain& get_skill_chain() const;
    const Effector_Map& get_effectors() const;

private:
    // Keeps only the latest invocation per id, so it replaces entries itself.
    friend class injectors::Injector_Effector;

    std::string initiator;
    Effector_Map effectors;
    Skill_Chain skill_chain;
};

} // namespace orvo::knowledgebase::descriptors

#endif
