#include <orvo/knowledgebase/injectors/injector.h>

namespace orvo::knowledgebase::injectors {

Injector::~Injector() = default;

void Injector::invoke_mappers() {
    for (mappers::Mapper* mapper : mappers) {
        (*mapper)();
    }
}

} // namespace orvo::knowledgebase::injectors
