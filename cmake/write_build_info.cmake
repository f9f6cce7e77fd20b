function(ask_git result)
  execute_process(COMMAND git -C ${SOURCE} ${ARGN} OUTPUT_VARIABLE answer ERROR_QUIET
                  OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE status)
  if(NOT status EQUAL 0 OR answer STREQUAL "")
    set(answer "unknown")
  endif()
  set(${result} ${answer} PARENT_SCOPE)
endfunction()

ask_git(branch rev-parse --abbrev-ref HEAD)
ask_git(hash rev-parse HEAD)
file(CONFIGURE OUTPUT ${OUTPUT} CONTENT [[#include "app/build_info.h"

namespace tavek {
const char* const buildVersion = "@VERSION@";
const char* const buildBranch = "@branch@";
const char* const buildHash = "@hash@";
}  // namespace tavek
]] @ONLY)
