# What makes a fault of memory end the process instead of leading elsewhere.
#
# The flags belong to the targets, so that a packager's own flags stand beside them.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)

# An option of the compiler is taken where it has it: another processor has other ones. One compiler
# only warns of those, so that a warning counts as a refusal.
set(hardenedCompile "")
set(CMAKE_REQUIRED_FLAGS -Werror)
foreach(option -fstack-protector-strong -fcf-protection -mbranch-protection=standard)
  string(MAKE_C_IDENTIFIER "IBIS_LOAD_TAKES${option}" isKnown)
  check_cxx_compiler_flag(${option} ${isKnown})
  if(${isKnown})
    list(APPEND hardenedCompile ${option})
  endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)

# Checked calls need optimised code, and a sanitizer checks them itself. A level that is among the
# flags already stays.
if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
  set(isOptimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  list(APPEND hardenedCompile $<${isOptimised}:-U_FORTIFY_SOURCE> $<${isOptimised}:-D_FORTIFY_SOURCE=2>)
endif()

# All symbols are bound at the start, and what holds their addresses is read-only from then on.
set(hardenedLink "")
foreach(word relro now noexecstack)
  set(option LINKER:-z,${word})
  check_linker_flag(CXX ${option} IBIS_LOAD_LINKER_HAS_${word})
  if(IBIS_LOAD_LINKER_HAS_${word})
    list(APPEND hardenedLink ${option})
  endif()
endforeach()

# Hardens targets that were made before.
function(harden)
  foreach(target IN LISTS ARGN)
    target_compile_options(${target} PRIVATE ${hardenedCompile})
    target_link_options(${target} PRIVATE ${hardenedLink})
  endforeach()
endfunction()
