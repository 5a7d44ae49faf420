# The shared library exports its documented interface only: no symbol of the
# library's inner namespaces (detail, platform) may be exported.
execute_process(COMMAND nm -D --defined-only --demangle ${LIBRARY}
  OUTPUT_VARIABLE symbols RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "nm failed on ${LIBRARY}")
endif()
string(REGEX MATCHALL "[^\n]*(::detail::|::platform::)[^\n]*" inner "${symbols}")
if(inner)
  list(LENGTH inner count)
  string(REPLACE ";" "\n" inner "${inner}")
  message(FATAL_ERROR "${count} inner symbols are exported:\n${inner}")
endif()
string(REGEX MATCHALL "\n[0-9a-f]+ [TWVBDR] " exported "${symbols}")
list(LENGTH exported count)
message("${count} symbols exported, none of them inner")
