# Installs the built library into a scratch prefix, then configures, builds and
# runs a small application against it with find_package(QorTools).
file(REMOVE_RECURSE ${WORK})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix
  RESULT_VARIABLE rc OUTPUT_QUIET)
if(rc)
  message(FATAL_ERROR "install failed")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE}/tests/install/consumer -B ${WORK}/build -G Ninja
  -DCMAKE_PREFIX_PATH=${WORK}/prefix RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "configure of the consumer failed")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/build RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "build of the consumer failed")
endif()
execute_process(COMMAND ${WORK}/build/consumer RESULT_VARIABLE rc OUTPUT_VARIABLE out)
message("${out}")
if(rc)
  message(FATAL_ERROR "the consumer failed")
endif()
