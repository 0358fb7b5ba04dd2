# orvo_add_module(<name> SOURCES <source>...
#                 [DEPENDS <module>...] [PRIVATE_DEPENDS <module>...]
#                 [LIBRARIES <target>...] [PRIVATE_LIBRARIES <target>...])
#
# One part of liborvo.so: an object library orvo_<name> (alias orvo::<name>)
# built from orvo/<name>/, whose objects end up in the one shared library.
# DEPENDS names the modules whose headers this module's own headers include;
# PRIVATE_DEPENDS those only its sources include. Every header of the library
# sits under one include root, so the compiler cannot tell a wrong include
# from a right one: the declared graph is written to orvo_modules.json and the
# layout.includes test compares every #include <orvo/...> with it.
# LIBRARIES are outside targets the module's headers expose (they are passed
# on to users of orvo::orvo); PRIVATE_LIBRARIES stay inside the library.
function(orvo_add_module name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" ""
                        "SOURCES;DEPENDS;PRIVATE_DEPENDS;LIBRARIES;PRIVATE_LIBRARIES")
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "orvo_add_module(${name}): unknown arguments ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT ARG_SOURCES)
    message(FATAL_ERROR "orvo_add_module(${name}): SOURCES are required")
  endif()
  foreach(dep IN LISTS ARG_DEPENDS ARG_PRIVATE_DEPENDS)
    if(NOT TARGET orvo_${dep})
      message(FATAL_ERROR "orvo_add_module(${name}): module '${dep}' is not defined yet; "
                          "add the modules it builds on first")
    endif()
  endforeach()

  set(target orvo_${name})
  add_library(${target} OBJECT ${ARG_SOURCES})
  add_library(orvo::${name} ALIAS ${target})
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  list(TRANSFORM ARG_DEPENDS PREPEND orvo_ OUTPUT_VARIABLE public_targets)
  list(TRANSFORM ARG_PRIVATE_DEPENDS PREPEND orvo_ OUTPUT_VARIABLE private_targets)
  target_link_libraries(${target}
    PUBLIC orvo_module_base ${public_targets} ${ARG_LIBRARIES}
    PRIVATE ${private_targets} ${ARG_PRIVATE_LIBRARIES})
  # The shared library takes the objects; what the headers expose goes on to
  # its users.
  target_sources(orvo PRIVATE $<TARGET_OBJECTS:${target}>)
  if(ARG_LIBRARIES)
    target_link_libraries(orvo PUBLIC ${ARG_LIBRARIES})
  endif()
  if(ARG_PRIVATE_LIBRARIES)
    target_link_libraries(orvo PRIVATE ${ARG_PRIVATE_LIBRARIES})
  endif()

  set_property(GLOBAL APPEND PROPERTY ORVO_MODULES ${name})
  set_property(GLOBAL PROPERTY ORVO_MODULE_${name}_PUBLIC ${ARG_DEPENDS})
  set_property(GLOBAL PROPERTY ORVO_MODULE_${name}_PRIVATE ${ARG_PRIVATE_DEPENDS})
  file(RELATIVE_PATH dir ${PROJECT_SOURCE_DIR}/orvo ${CMAKE_CURRENT_SOURCE_DIR})
  set_property(GLOBAL PROPERTY ORVO_MODULE_${name}_DIR ${dir})
endfunction()

# Extra directories under orvo/ whose files belong to a module although they
# do not sit under its own directory (a header path other code relies on).
function(orvo_module_owns name dir)
  set_property(GLOBAL APPEND PROPERTY ORVO_MODULE_${name}_EXTRA_DIRS ${dir})
endfunction()

# Writes the declared graph for the layout check: for each module its
# directories and its public and private dependencies.
function(orvo_write_module_graph file)
  get_property(modules GLOBAL PROPERTY ORVO_MODULES)
  set(json "{}")
  foreach(name IN LISTS modules)
    get_property(dir GLOBAL PROPERTY ORVO_MODULE_${name}_DIR)
    get_property(extra GLOBAL PROPERTY ORVO_MODULE_${name}_EXTRA_DIRS)
    get_property(public GLOBAL PROPERTY ORVO_MODULE_${name}_PUBLIC)
    get_property(private GLOBAL PROPERTY ORVO_MODULE_${name}_PRIVATE)
    set(entry "{\"dirs\": [], \"public\": [], \"private\": []}")
    foreach(field IN ITEMS dir extra public private)
      set(key ${field})
      if(field STREQUAL "dir" OR field STREQUAL "extra")
        set(key dirs)
      endif()
      foreach(value IN LISTS ${field})
        string(JSON count LENGTH "${entry}" ${key})
        string(JSON entry SET "${entry}" ${key} ${count} "\"${value}\"")
      endforeach()
    endforeach()
    string(JSON json SET "${json}" ${name} "${entry}")
  endforeach()
  file(GENERATE OUTPUT ${file} CONTENT "${json}\n")
endfunction()
