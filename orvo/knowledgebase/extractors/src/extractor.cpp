#include <orvo/knowledgebase/extractors/extractor.h>

namespace orvo::knowledgebase::extractors {

Extractor::~Extractor() = default;

} // namespace orvo::knowledgebase::extractors
