# Our own sources build warning-free; JUCE's modules keep their own flags.
set(ZOLK_WARNING_FLAGS -Wall -Wextra -Wno-dangling-pointer -Werror)

function(zolk_strict_warnings)
  foreach(src IN LISTS ARGN)
    set_property(SOURCE "${src}" APPEND PROPERTY COMPILE_OPTIONS ${ZOLK_WARNING_FLAGS})
  endforeach()
endfunction()
