# The C++ runtime linked into the program. A silent run then neither maps nor
# relocates the shared libstdc++, the largest part of what its start costs.
#
# The program exports what it holds of the runtime (it exports everything for
# the window module). When a dialog loads the module and with it the toolkit,
# the shared runtime comes along, but the loader binds every runtime symbol the
# program defines to the program's copy: the module's, the toolkit's and the
# shared runtime's own references alike. So the module and the program use one
# runtime; ui_qt_module_symbols checks that the program holds all the module
# needs, and a window test reads the loader's bindings. Sanitizer builds keep
# the shared runtime that their interceptors expect.
include_guard(GLOBAL)

option(KORV_STATIC_RUNTIME "Link the C++ runtime into rigcfg" ON)
if(KORV_STATIC_RUNTIME AND NOT WIN32 AND NOT KORV_SANITIZE
   AND CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  set(KORV_RUNTIME_IN_PROGRAM ON CACHE INTERNAL "rigcfg holds the C++ runtime")
else()
  set(KORV_RUNTIME_IN_PROGRAM OFF CACHE INTERNAL "rigcfg holds the C++ runtime")
endif()

function(korv_program_runtime target)
  if(KORV_RUNTIME_IN_PROGRAM)
    target_link_options(${target} PRIVATE -static-libstdc++)
  endif()
endfunction()
