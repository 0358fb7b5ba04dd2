#ifndef ORVO_KNOWLEDGEBASE_MAPPERS_MAPPER_H
#define ORVO_KNOWLEDGEBASE_MAPPERS_MAPPER_H

#include <orvo/humanoid/base/constructable.h>

namespace orvo::knowledgebase::mappers {

/// Maps what the injectors recorded onto something else. Concrete mappers
/// live in plug-ins; an injector calls them through invoke_mappers().
class ORVO_API Mapper : public Constructable {
public:
    ~Mapper() override = 0;
    /// One mapping step.
    virtual void operator()() = 0;
};

} // namespace orvo::knowledgebase::mappers

#endif
