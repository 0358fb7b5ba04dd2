// A host program: everything it runs comes from the plug-ins that
// ./config/libraries.cfg names, built for the tag that is this program's name.
#include <orvo/orvo.h>

#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    std::vector<std::string> args(argv, argv + argc);
    orvo::Architect architect(args);
    try {
        orvo::Agent* agent = architect.assemble_framework();
        if (agent == nullptr) {
            std::cerr << "the component registered as agent is no orvo::Agent\n";
            architect.disassemble_framework();
            return 1;
        }
        agent->run();
    } catch (const orvo::Exception& e) {
        e.print(std::cerr) << '\n';
        architect.disassemble_framework();
        return 1;
    } catch (const std::exception& e) {
        std::cerr << e.what() << '\n';
        architect.disassemble_framework();
        return 1;
    }
    architect.disassemble_framework();
    return 0;
}
