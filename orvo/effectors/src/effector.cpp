#include <orvo/effectors/effector.h>

namespace orvo::effectors {

namespace {

constexpr const char* source_file = "effectors/src/effector.cpp";
constexpr int line_link = 42;

} // namespace

Effector::~Effector() = default;

void Effector::link(Class_Map& classes) {
    try {
        messenger = get_class<communication::Messenger>(*this, "messenger", classes);
        effector_injector = get_class<knowledgebase::injectors::Injector_Effector>(
            *this, "injector_effector", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", line_link), missing);
    }
}

void Effector::require_links() const {
    if (messenger == nullptr || effector_injector == nullptr) {
        throw LogicException(gen_ffl_string(source_file, "require_links", __LINE__),
                             messenger == nullptr
                                 ? "\"messenger\" is not a Messenger"
                                 : "\"injector_effector\" is not an Injector_Effector");
    }
}

communication::Messenger* Effector::get_messenger() const {
    return messenger;
}

knowledgebase::injectors::Injector_Effector* Effector::get_effector_injector() const {
    return effector_injector;
}

} // namespace orvo::effectors
