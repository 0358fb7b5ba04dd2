#ifndef ORVO_EFFECTORS_EFFECTOR_SAY_H
#define ORVO_EFFECTORS_EFFECTOR_SAY_H

#include <orvo/effectors/effector.h>
#include <orvo/knowledgebase/descriptors/descriptor_effector.h>

#include <ostream>
#include <string>
#include <string_view>

namespace orvo::effectors {

/// Speaks to every robot within earshot, registered as "effector_say": sends
/// "(say TEXT)". The server drops a text it does not carry without a word (see
/// communication::say_fault: at most 20 characters, printable ASCII but the
/// space, parentheses and quotes), so this effector refuses such a text
/// itself and tells why instead of sending it. Team-mates hear it in the
/// next perception's "(hear ...)"; a listener hears one team-mate every
/// second cycle, so a team takes turns (docs/talk.md).
class ORVO_API Effector_Say : public Effector {
public:
    Effector_Say();
    ~Effector_Say() override;
    /// Throws LogicException when "messenger" or "injector_effector" is of
    /// another class, which the link left as null.
    void init() override;
    /// "effector_say".
    std::string get_name() const override;

    /// Sends "(say TEXT)" and reports it to the effector injector, which
    /// needs a current action; true then. A text the server would drop sends
    /// and reports nothing and returns false; refusal() says why.
    bool operator()(std::string_view text);

    /// The last message sent.
    const std::string& get_command() const { return command; }
    /// Why the last text was refused; "" after one that was sent.
    const std::string& refusal() const { return refused; }

private:
    std::string command;
    std::string refused;
};

/// What the action log keeps of one said text: the message sent.
class ORVO_API Say_Command : public knowledgebase::descriptors::Descriptor_Effector {
public:
    Say_Command(const std::string& id, const std::string& command);
    ~Say_Command() override;
    /// "<id>: <message>".
    std::ostream& print(std::ostream& out) const override;
};

} // namespace orvo::effectors

extern "C" ORVO_API orvo::Constructable* create_effector_say();

#endif
