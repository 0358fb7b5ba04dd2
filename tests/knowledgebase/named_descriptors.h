#ifndef ORVO_TESTS_KNOWLEDGEBASE_NAMED_DESCRIPTORS_H
#define ORVO_TESTS_KNOWLEDGEBASE_NAMED_DESCRIPTORS_H

#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/descriptors/descriptor_effector.h>
#include <orvo/knowledgebase/descriptors/descriptor_skill.h>
#include <orvo/knowledgebase/extractors/extractor_action.h>
#include <orvo/knowledgebase/injectors/injector_action.h>
#include <orvo/knowledgebase/injectors/injector_effector.h>
#include <orvo/knowledgebase/injectors/injector_skill.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <string>

namespace orvo_test {

namespace kb = orvo::knowledgebase;
namespace desc = orvo::knowledgebase::descriptors;

/// The simplest concrete skill or effector a plug-in could write: it prints its id.
template <class Base> struct Named : Base {
    using Base::Base;
    std::ostream& print(std::ostream& out) const override { return out << this->id; }
};
using NamedSkill = Named<desc::Descriptor_Skill>;
using NamedEffector = Named<desc::Descriptor_Effector>;

inline boost::shared_ptr<desc::Descriptor_Skill> skill(const std::string& id) {
    return boost::make_shared<NamedSkill>(id);
}

inline boost::shared_ptr<desc::Descriptor_Effector>
effector(const std::string& id, const std::string& message = "", bool excluded = false) {
    return boost::make_shared<NamedEffector>(id, message, excluded);
}

/// A log with its three injectors and the extractor, linked as the Architect
/// would link them.
struct LinkedLog {
    kb::ActionLog log;
    kb::injectors::Injector_Action inject_action;
    kb::injectors::Injector_Skill inject_skill;
    kb::injectors::Injector_Effector inject_effector;
    kb::extractors::Extractor_Action extract;
    orvo::Class_Map classes{{"actionlog", &log}};

    LinkedLog() {
        inject_action.link(classes);
        inject_skill.link(classes);
        inject_effector.link(classes);
        extract.link(classes);
    }

    void add_skill(const std::string& id) {
        auto described = skill(id);
        inject_skill(described);
    }
    void add_effector(const std::string& id, const std::string& message = "") {
        auto described = effector(id, message);
        inject_effector(described);
    }
};

} // namespace orvo_test

#endif
