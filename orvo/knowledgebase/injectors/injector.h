#ifndef ORVO_KNOWLEDGEBASE_INJECTORS_INJECTOR_H
#define ORVO_KNOWLEDGEBASE_INJECTORS_INJECTOR_H

#include <orvo/humanoid/base/constructable.h>
#include <orvo/knowledgebase/mappers/mapper.h>

#include <list>

namespace orvo::knowledgebase::injectors {

/// Mappers an injector calls in turn; the injector does not own them.
using Mapper_List = std::list<mappers::Mapper*>;

/// A writer of the action log. Plug-in injectors may register mappers and
/// run them through invoke_mappers(); the library's injectors never do.
class ORVO_API Injector : public Constructable {
public:
    ~Injector() override = 0;
    /// Calls every mapper once, in list order.
    virtual void invoke_mappers();

protected:
    Mapper_List mappers;
};

} // namespace orvo::knowledgebase::injectors

#endif
