#ifndef ORVO_CORE_CONSTRUCTABLE_PROXY_H
#define ORVO_CORE_CONSTRUCTABLE_PROXY_H

#include <orvo/humanoid/base/constructable.h>

namespace orvo {

/// A component that does nothing but remember the class map it was linked
/// with, so that code outside the framework can reach the components.
class ORVO_API Constructable_Proxy : public Constructable {
public:
    void link(Class_Map& classes) override;
    std::string get_name() const override;

    /// The map it was linked with; null until link().
    Class_Map* get_classes() const { return classes; }

private:
    Class_Map* classes = nullptr;
};

} // namespace orvo

extern "C" ORVO_API orvo::Constructable* create_constructable_proxy();

#endif
