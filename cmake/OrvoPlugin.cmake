# orvo_add_plugin(<target> NAME <base> TAG <tag> SOURCES <source>... [LIBRARIES <lib>...])
#
# Builds a plug-in library that an Architect started as ".../<tag>" opens when
# its libraries.cfg lists <base>: the file is lib<base>.<tag>.so (.dylib on
# Darwin). The plug-in links orvo::orvo and is compiled with hidden visibility,
# so only what it marks ORVO_API (its create_<name> factories) is exported.
function(orvo_add_plugin target)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "NAME;TAG" "SOURCES;LIBRARIES")
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "orvo_add_plugin: unknown arguments ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT ARG_TAG)
    message(FATAL_ERROR "orvo_add_plugin(${target}): TAG is required")
  endif()
  if(NOT ARG_SOURCES)
    message(FATAL_ERROR "orvo_add_plugin(${target}): SOURCES are required")
  endif()
  if(NOT ARG_NAME)
    set(ARG_NAME ${target})
  endif()
  if(CMAKE_SYSTEM_NAME STREQUAL "Darwin")
    set(suffix ".dylib")
  else()
    set(suffix ".so")
  endif()
  add_library(${target} MODULE ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE orvo::orvo ${ARG_LIBRARIES})
  set_target_properties(${target} PROPERTIES
    PREFIX "lib"
    OUTPUT_NAME "${ARG_NAME}.${ARG_TAG}"
    SUFFIX "${suffix}"
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()
