# Compile options of everything we write; none of them reaches the users of the installed library.
function(kalvo_compile_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                                           -ffp-contract=off)
  if(KALVO_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# What is installed defends itself: bounds of buffers and the stack are checked, tables that calls go through are
# read-only, nothing on a stack can be run, and jumps go where jumps may. .ci/check_hardening reads it back.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fcf-protection KALVO_HAS_CF_PROTECTION)
function(kalvo_harden target)
  target_compile_options(${target} PRIVATE -fstack-protector-strong)
  if(KALVO_HAS_CF_PROTECTION)
    target_compile_options(${target} PRIVATE -fcf-protection)
  endif()
  if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize" AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    target_compile_options(${target} PRIVATE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  endif()
  get_target_property(type ${target} TYPE)
  if(NOT type MATCHES "OBJECT|STATIC")
    target_link_options(${target} PRIVATE LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
  endif()
endfunction()
