# Installs the built library into a scratch prefix, then configures, builds and
# runs the consumer project against it with find_package(orvo CONFIG).
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGV}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${ORVO_BUILD_DIR} --prefix ${prefix})
run(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE_DIR} -B ${WORK_DIR}/build -G Ninja
    -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)

# The host assembles a framework from the out-of-tree plug-in and a component
# of the library itself.
set(run_dir ${WORK_DIR}/run)
file(WRITE ${run_dir}/config/libraries.cfg "# plug-ins, as lib<value>.<tag>.so\ngreeter\n")
file(WRITE ${run_dir}/config/classes.cfg "agent\nconstructable_proxy\n")
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${WORK_DIR}/build ${WORK_DIR}/build/consumer
  WORKING_DIRECTORY ${run_dir}
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
set(expected "greeter: ready\ngreeter: hello, 2 components here\ngreeter: bye\n")
if(NOT result EQUAL 0 OR NOT output STREQUAL expected)
  message(FATAL_ERROR "host run failed (${result}):\n${output}${errors}")
endif()
# pkg-config sees the same library.
set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
execute_process(COMMAND pkg-config --libs --cflags orvo RESULT_VARIABLE result OUTPUT_VARIABLE flags)
if(NOT result EQUAL 0 OR NOT flags MATCHES "-lorvo")
  message(FATAL_ERROR "pkg-config does not know orvo: ${flags}")
endif()
