#ifndef ORVO_KNOWLEDGEBASE_KNOWLEDGEBASE_MODULE_H
#define ORVO_KNOWLEDGEBASE_KNOWLEDGEBASE_MODULE_H

#include <orvo/humanoid/base/constructable.h>

#include <ostream>
#include <string>

namespace orvo::knowledgebase {

/// A component of the knowledge base that can render what it holds.
class ORVO_API KnowledgeBase_Module : public Constructable {
public:
    ~KnowledgeBase_Module() override;
    /// The module's content as an s-expression; "" by default.
    virtual std::string to_eval() const;
    /// A console dump of the module; nothing by default.
    virtual std::ostream& print(std::ostream& os);
};

} // namespace orvo::knowledgebase

#endif
