# Every symbol of the model that the module takes from the program must be
# exported by the program, or loading the module fails at run time. Where the
# program holds the C++ runtime, the module takes that from it too: every
# runtime symbol it needs must be exported by the program (the loader binds a
# versioned reference to the program's unversioned copy), or it would come from
# the shared runtime that the toolkit brings.
# -DMODULE=<module> -DPROGRAM=<executable> [-DRUNTIME_IN_PROGRAM=ON]
execute_process(COMMAND nm -D --undefined-only ${MODULE} OUTPUT_VARIABLE needed RESULT_VARIABLE rc1)
execute_process(COMMAND nm -D --defined-only ${PROGRAM} OUTPUT_VARIABLE offered RESULT_VARIABLE rc2)
if(NOT rc1 EQUAL 0 OR NOT rc2 EQUAL 0)
  message(FATAL_ERROR "nm failed on ${MODULE} or ${PROGRAM}")
endif()
string(REGEX MATCHALL "[^\n]+" needed_lines "${needed}")
set(missing "")
set(count 0)
foreach(line ${needed_lines})
  string(REGEX REPLACE "^ *U +" "" symbol "${line}")
  # The model's and the foundation's symbols; libraries' carry versions.
  set(wanted OFF)
  if(symbol MATCHES "korv|^_KErr|^_KTrace|Translate")
    set(wanted ON)
  elseif(RUNTIME_IN_PROGRAM AND symbol MATCHES "@(GLIBCXX|CXXABI)_")
    string(REGEX REPLACE "@.*" "" symbol "${symbol}")
    set(wanted ON)
  endif()
  if(wanted)
    math(EXPR count "${count} + 1")
    string(FIND "${offered}" " ${symbol}\n" at)
    if(at EQUAL -1)
      list(APPEND missing ${symbol})
    endif()
  endif()
endforeach()
if(missing)
  string(REPLACE ";" "\n  " missing "${missing}")
  message(FATAL_ERROR "${PROGRAM} does not export what the module needs:\n  ${missing}")
endif()
message(STATUS "all ${count} symbols the module takes from the program are there")
