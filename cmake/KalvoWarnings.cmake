# Compile options of everything we write; none of them reaches the users of the installed library.
function(kalvo_compile_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                                           -ffp-contract=off)
  if(KALVO_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
