#ifndef ORVO_KNOWLEDGEBASE_EXTRACTORS_EXTRACTOR_H
#define ORVO_KNOWLEDGEBASE_EXTRACTORS_EXTRACTOR_H

#include <orvo/humanoid/base/constructable.h>

namespace orvo::knowledgebase::extractors {

/// A reader of the knowledge base that plug-ins fetch by name.
class ORVO_API Extractor : public Constructable {
public:
    ~Extractor() override;
};

} // namespace orvo::knowledgebase::extractors

#endif
