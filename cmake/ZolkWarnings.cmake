# Our own sources build warning-free; JUCE's modules keep their own flags.
set(ZOLK_WARNING_FLAGS -Wall -Wextra -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 reports false dangling pointers inside JUCE's listener lists at -O3.
  list(APPEND ZOLK_WARNING_FLAGS -Wno-dangling-pointer)
endif()

function(zolk_strict_warnings)
  foreach(src IN LISTS ARGN)
    set_property(SOURCE "${src}" APPEND PROPERTY COMPILE_OPTIONS ${ZOLK_WARNING_FLAGS})
  endforeach()
endfunction()
