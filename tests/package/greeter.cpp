// A team's agent plug-in: one component, exported through its factory.
#include <orvo/orvo.h>

#include <iostream>

class Greeter : public orvo::Agent {
public:
    void link(orvo::Class_Map& classes) override {
        // Collaborators are found by their registered names; a missing one
        // makes get_class throw, which stops the assembly.
        proxy = orvo::get_class<orvo::Constructable_Proxy>(*this, "constructable_proxy", classes);
    }
    void init() override { std::cout << "greeter: ready\n"; }
    void run() override {
        std::cout << "greeter: hello, " << proxy->get_classes()->size() << " components here\n";
    }
    void finalize() override { std::cout << "greeter: bye\n"; }

private:
    orvo::Constructable_Proxy* proxy = nullptr;
};

// Exports create_agent: "agent" in classes.cfg creates a Greeter.
ORVO_COMPONENT_FACTORY(agent, Greeter)
