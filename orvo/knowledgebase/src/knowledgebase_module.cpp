#include <orvo/knowledgebase/knowledgebase_module.h>

namespace orvo::knowledgebase {

KnowledgeBase_Module::~KnowledgeBase_Module() = default;

std::string KnowledgeBase_Module::to_eval() const {
    return "";
}

std::ostream& KnowledgeBase_Module::print(std::ostream& os) {
    return os;
}

} // namespace orvo::knowledgebase
