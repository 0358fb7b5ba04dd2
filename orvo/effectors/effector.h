#ifndef ORVO_EFFECTORS_EFFECTOR_H
#define ORVO_EFFECTORS_EFFECTOR_H

#include <orvo/communication/messenger.h>
#include <orvo/humanoid/base/constructable.h>
#include <orvo/knowledgebase/injectors/injector_effector.h>

namespace orvo::effectors {

/// Acts on the simulated body. A concrete effector sends its command to the
/// server through the messenger and reports every invocation, as a
/// Descriptor_Effector, to the effector injector; it finds both at link.
class ORVO_API Effector : public Constructable {
public:
    ~Effector() override;
    /// Fetches "messenger", then "injector_effector". When the messenger is
    /// missing, the injector is not looked up.
    void link(Class_Map& classes) override;

    /// Null until link(), and after it if "messenger" is of another class.
    communication::Messenger* get_messenger() const;
    /// Null until link(), and after it if "injector_effector" is of another class.
    knowledgebase::injectors::Injector_Effector* get_effector_injector() const;

protected:
    /// Throws LogicException when "messenger" or "injector_effector" is of
    /// another class: an effector that sends needs both.
    void require_links() const;

    communication::Messenger* messenger = nullptr;
    knowledgebase::injectors::Injector_Effector* effector_injector = nullptr;
};

} // namespace orvo::effectors

#endif
