# Checks on the tree itself rather than on the code's behaviour; they run with
# the tests (ctest -L layout).
find_package(Python3 REQUIRED COMPONENTS Interpreter)

add_test(NAME layout.includes
  COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/scripts/check-includes.py
    ${PROJECT_BINARY_DIR}/orvo_modules.json ${PROJECT_SOURCE_DIR})
set_tests_properties(layout.includes PROPERTIES LABELS layout TIMEOUT 60)

# No C++ file past 400 lines, no function past 60.
add_test(NAME layout.size
  COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/scripts/check-size.py ${PROJECT_SOURCE_DIR})
set_tests_properties(layout.size PROPERTIES LABELS layout TIMEOUT 60)
