#include <orvo/knowledgebase/mappers/mapper.h>

namespace orvo::knowledgebase::mappers {

Mapper::~Mapper() = default;

} // namespace orvo::knowledgebase::mappers
