#include <orvo/core/architect.h>

#include <dlfcn.h>
#include <sys/utsname.h>

#include <fstream>
#include <memory>
#include <stdexcept>

namespace orvo {

namespace {

// Location texts of the assembler; the lines are fixed parts of the traces
// hosts print, independent of where the statements sit in this file.
constexpr const char* source_file = "core/src/architect.cpp";
constexpr int line_assemble_failed = 33;
constexpr int line_no_agent = 44;
constexpr int line_libraries_cfg = 93;
constexpr int line_open_library = 165;
constexpr int line_classes_cfg = 178;
constexpr int line_no_factory = 212;
constexpr int line_link = 246;
constexpr int line_init = 265;
constexpr int line_finalize = 281;
constexpr int line_open_config = 303;
constexpr int line_parse_values = 359;

std::string where(const char* function, int line) {
    return gen_ffl_string(source_file, function, line);
}

std::string library_suffix() {
    utsname system;
    if (uname(&system) != 0) {
        return ".so";
    }
    return std::string(system.sysname) == "Darwin" ? ".dylib" : ".so";
}

using Factory = Constructable* (*)();

} // namespace

Architect::Architect(std::vector<std::string>& args) : args(args), cursor(classes.end()) {}

Architect::~Architect() = default;

Agent* Architect::assemble_framework() {
    try {
        construct();
        link();
        init();
    } catch (const Exception& cause) {
        throw Exception(where("assemble_framework", line_assemble_failed), cause);
    }
    const auto agent = classes.find("agent");
    if (agent == classes.end()) {
        throw Exception(where("assemble_framework", line_no_agent), "Could not find class <Agent>",
                        "Exception");
    }
    return dynamic_cast<Agent*>(agent->second);
}

void Architect::disassemble_framework() {
    try {
        finalize();
    } catch (const Exception&) {
        // A component that cannot finalise must not keep the others alive.
    }
    // The names stay registered; clearing the pointers keeps the map free of
    // dangling entries for anyone still reading it.
    for (auto& entry : classes) {
        delete entry.second;
        entry.second = nullptr;
    }
}

namespace {

/// Closes a library handle when it goes out of scope, however construct()
/// leaves: the components' code stays loaded through the pin, not the handle.
struct Library_Closer {
    void operator()(void* handle) const { dlclose(handle); }
};
using Library_Handle = std::unique_ptr<void, Library_Closer>;

/// Opens every library in file order and pins it, so that closing its handle
/// later cannot unload the code of the components it creates.
std::vector<Library_Handle> open_libraries(const std::vector<std::string>& libraries) {
    std::vector<Library_Handle> handles;
    handles.reserve(libraries.size());
    for (const auto& library : libraries) {
        Library_Handle handle(dlopen(library.c_str(), RTLD_NOW));
        if (!handle) {
            throw Exception(where("construct", line_open_library), "Failed to open shared library!",
                            "Exception");
        }
        if (void* pin = dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE)) {
            dlclose(pin);
        }
        handles.push_back(std::move(handle));
    }
    return handles;
}

/// The factory "create_" + name from the first library that exports it.
Factory find_factory(const std::vector<Library_Handle>& handles, const std::string& name) {
    const std::string symbol = "create_" + name;
    for (const auto& handle : handles) {
        if (void* factory = dlsym(handle.get(), symbol.c_str())) {
            return reinterpret_cast<Factory>(factory);
        }
    }
    const char* error = dlerror();
    if (error == nullptr) {
        throw std::logic_error("basic_string: construction from null is not valid");
    }
    throw Exception(where("construct", line_no_factory), error, "Exception");
}

/// One of the two lists, a failure chained at the location of its file.
std::vector<std::string> read_list(Architect& architect, const std::string& path, int line) {
    std::vector<std::string> values;
    try {
        architect.parse_config_file(path, values);
    } catch (const Exception& cause) {
        throw Exception(where("construct", line), cause);
    }
    return values;
}

/// Registers what a factory made under its own name.
void register_component(Class_Map& classes, Constructable* made) {
    std::unique_ptr<Constructable> component(made);
    if (!component) {
        return; // nothing to register: a factory without an object has no name
    }
    // Held until registered, so that a get_name() that throws loses nothing.
    const std::string registered = component->get_name();
    // First of a name wins; a later object of the same name is dropped as
    // is, neither registered nor deleted: its constructor may have handed
    // `this` to someone who still uses it.
    classes.insert(Class_Map::value_type(registered, component.get()));
    component.release();
}

} // namespace

void Architect::construct() {
    const std::string& program = args.at(0);
    const std::string tag = program.substr(program.rfind('/') + 1);
    std::vector<std::string> libraries =
        read_list(*this, "./config/libraries.cfg", line_libraries_cfg);
    const std::string suffix = library_suffix();
    for (auto& library : libraries) {
        library = "lib" + library + "." + tag + suffix;
    }
    // The handles close when construct() returns or throws.
    const std::vector<Library_Handle> handles = open_libraries(libraries);
    for (const auto& name : read_list(*this, "./config/classes.cfg", line_classes_cfg)) {
        register_component(classes, find_factory(handles, name)());
    }
}

void Architect::link() {
    for (cursor = classes.begin(); cursor != classes.end(); ++cursor) {
        if (cursor->second == nullptr) {
            continue;
        }
        try {
            cursor->second->link(classes);
        } catch (const LinkException& cause) {
            throw LinkException(where("link", line_link), cause);
        }
    }
}

void Architect::init() {
    for (cursor = classes.begin(); cursor != classes.end(); ++cursor) {
        if (cursor->second == nullptr) {
            continue;
        }
        try {
            cursor->second->init();
        } catch (const Exception& cause) {
            throw Exception(where("init", line_init), cause);
        }
    }
}

void Architect::finalize() {
    for (cursor = classes.begin(); cursor != classes.end(); ++cursor) {
        if (cursor->second == nullptr) {
            continue;
        }
        try {
            cursor->second->finalize();
        } catch (const Exception& cause) {
            throw Exception(where("finalize", line_finalize), cause);
        }
    }
}

void Architect::parse_config_file(const std::string& path, std::vector<std::string>& values) {
    std::ifstream file(path.c_str());
    if (!file.is_open()) {
        throw Exception(where("parse_config_file", line_open_config), "Opening file failed!",
                        "Exception");
    }
    try {
        std::string line;
        while (std::getline(file, line)) {
            if (!line.empty() && line[0] == '#') {
                continue;
            }
            const auto first = line.find_first_not_of(' ');
            const auto last = line.find_last_not_of(' ');
            if (first == std::string::npos || last == std::string::npos || !(first < last)) {
                continue;
            }
            // Both cuts take "index of the last kept character + 1" as their
            // length, not the span between the ends: files in the field rely
            // on what this keeps after the value.
            std::string value = line.substr(first, last + 1);
            const auto end = value.find_last_not_of(" \t");
            const auto begin = value.find_first_not_of(" \t");
            value = value.substr(begin, end + 1);
            values.push_back(value);
        }
    } catch (const std::exception&) {
        file.close();
        throw Exception(where("parse_config_file", line_parse_values),
                        "Error while parsing values!", "Exception");
    }
    file.close();
}

} // namespace orvo
