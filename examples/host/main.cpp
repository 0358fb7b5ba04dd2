// orvo_host: brings up one agent from plug-ins and runs it. See --help.

#include <orvo/core/agent.h>
#include <orvo/core/architect.h>
#include <orvo/core/exception.h>

#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

std::string tag_of(const std::string& program) {
    const auto slash = program.rfind('/');
    return slash == std::string::npos ? program : program.substr(slash + 1);
}

void print_usage(const std::string& program) {
    const std::string tag = tag_of(program);
    std::cout << "usage: " << program << " [--help]\n\n"
              << "Assembles an agent from plug-ins and runs it until the agent returns.\n\n"
              << "The plug-in tag is this program's own file name, \"" << tag << "\": each\n"
              << "value N of ./config/libraries.cfg opens the library lib"
              << "N." << tag << ".so through\n"
              << "the dynamic loader's search path (LD_LIBRARY_PATH, for instance), and every\n"
              << "value C of ./config/classes.cfg creates a component through create_C. A\n"
              << "symlink to this program under another name runs another plug-in set.\n\n"
              << "Exit status: 0 when the agent's run ends normally; 1 when assembling or\n"
              << "running fails (the reason goes to standard error); 2 for a bad option.\n";
}

void report(const orvo::Exception& failure) {
    failure.print(std::cerr);
    std::cerr << std::endl;
}

// The framework's own message for a missing file does not say which one; the
// most common first mistake, starting outside the run directory, is named here.
void hint_missing_configuration(const std::string& program) {
    for (const char* file : {"./config/libraries.cfg", "./config/classes.cfg"}) {
        if (!std::ifstream(file)) {
            std::cerr << program << ": cannot read " << file
                      << " (start the host in its run directory)\n";
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> args(argv, argv + argc);
    const std::string program = args.empty() ? std::string("orvo_host") : args.front();
    for (std::size_t i = 1; i < args.size(); ++i) {
        if (args[i] == "--help" || args[i] == "-h") {
            print_usage(program);
            return 0;
        }
        std::cerr << program << ": unknown argument '" << args[i] << "' (see --help)\n";
        return 2;
    }

    orvo::Architect architect(args);
    int status = 0;
    try {
        orvo::Agent* agent = architect.assemble_framework();
        if (agent == nullptr) {
            std::cerr << program << ": the component registered as \"agent\" is not an agent\n";
            status = 1;
        } else {
            agent->run();
        }
    } catch (const orvo::Exception& failure) {
        report(failure);
        hint_missing_configuration(program);
        status = 1;
    } catch (const std::exception& failure) {
        std::cerr << program << ": " << failure.what() << '\n';
        status = 1;
    }
    // Whatever was built is taken down again: connections closed, components freed.
    try {
        architect.disassemble_framework();
    } catch (const orvo::Exception& failure) {
        report(failure);
        status = 1;
    } catch (const std::exception& failure) {
        std::cerr << program << ": " << failure.what() << '\n';
        status = 1;
    }
    return status;
}
