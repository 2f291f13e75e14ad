# The plug-in target. Its shared-code static library holds all product code and
# JUCE's modules, so that tests, the renderer and the benchmarks link it and JUCE
# compiles once.

juce_add_plugin(ZolkCompressor
  PRODUCT_NAME "Zolk Compressor"
  COMPANY_NAME "Halvane"
  COMPANY_WEBSITE "${ZOLK_MAKER_URL}"
  BUNDLE_ID "com.halvane.zolkcompressor"
  PLUGIN_MANUFACTURER_CODE Hlvn
  PLUGIN_CODE T002
  DESCRIPTION "Look-ahead compressor with wow, flutter and lo-fi"
  VERSION "${PROJECT_VERSION}"
  FORMATS VST3 LV2 Standalone
  LV2URI "${ZOLK_LV2_URI}"
  IS_SYNTH FALSE
  NEEDS_MIDI_INPUT FALSE
  NEEDS_MIDI_OUTPUT FALSE
  IS_MIDI_EFFECT FALSE
  EDITOR_WANTS_KEYBOARD_FOCUS TRUE
  VST3_CATEGORIES Fx Dynamics
  COPY_PLUGIN_AFTER_BUILD FALSE)

set(ZOLK_ARTEFACTS "${CMAKE_CURRENT_BINARY_DIR}/ZolkCompressor_artefacts/${CMAKE_BUILD_TYPE}")

# Product code: every .cpp of the product folders, except the per-instruction-set
# translation units, which toolkit/ builds itself with their own flags.
set(ZOLK_SOURCE_DIRS toolkit meters dsp state presets core editor)
set(ZOLK_SOURCES)
foreach(dir IN LISTS ZOLK_SOURCE_DIRS)
  file(GLOB_RECURSE dir_sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.cpp")
  list(FILTER dir_sources EXCLUDE REGEX "/isa/")
  list(APPEND ZOLK_SOURCES ${dir_sources})
endforeach()
target_sources(ZolkCompressor PRIVATE ${ZOLK_SOURCES})
zolk_strict_warnings(${ZOLK_SOURCES})

target_include_directories(ZolkCompressor PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")

target_compile_definitions(ZolkCompressor
  PUBLIC
    JUCE_WEB_BROWSER=0
    JUCE_USE_CURL=0
    JUCE_USE_FLAC=0
    JUCE_USE_OGGVORBIS=0
    JUCE_DISPLAY_SPLASH_SCREEN=0
    JUCE_VST3_CAN_REPLACE_VST2=0
    JUCE_MODAL_LOOPS_PERMITTED=1
    JucePlugin_LV2URI="${ZOLK_LV2_URI}"
    ZOLK_MAKER_URL="${ZOLK_MAKER_URL}")

# The menu's addresses and version line go to the one file that uses them, so that a
# new stamp rebuilds that file and nothing else. Without a manuals address, "Read
# About" opens the installed manual.
set(zolk_stamp "${ZOLK_BUILD_STAMP}")
if(zolk_stamp STREQUAL "")
  execute_process(COMMAND git rev-parse --short HEAD
    WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}"
    OUTPUT_VARIABLE zolk_stamp OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(zolk_stamp STREQUAL "")
    set(zolk_stamp "dev")
  endif()
endif()
set_property(SOURCE "${CMAKE_CURRENT_SOURCE_DIR}/editor/TRQProductLinks.cpp" APPEND PROPERTY COMPILE_DEFINITIONS
  "ZOLK_MANUALS_URL=\"${ZOLK_MANUALS_URL}\""
  "ZOLK_PRODUCT_URL=\"${ZOLK_PRODUCT_URL}\""
  "ZOLK_BUILD_STAMP=\"${zolk_stamp}\""
  "ZOLK_INSTALL_PREFIX=\"${CMAKE_INSTALL_PREFIX}\"")

include(ZolkResources)

target_link_libraries(ZolkCompressor
  PRIVATE
    ZolkResources
    juce::juce_audio_utils
    juce::juce_opengl
  PUBLIC
    zolk_toolkit_isa
    nlohmann_json::nlohmann_json
    juce::juce_recommended_config_flags)

# The plug-in modules keep the static libraries they carry (FFTW among them) to
# themselves, so that a host with its own copies never mixes them up. Executables
# don't need this, and sanitizer runtimes must stay visible there.
foreach(format VST3 LV2)
  target_link_options(ZolkCompressor_${format} PRIVATE -Wl,--exclude-libs,ALL)
endforeach()

# Consumers of the static library (tests, renderer, benchmarks) see JUCE's headers
# with the plug-in's own configuration, without compiling the modules again.
add_library(zolk_product INTERFACE)
target_link_libraries(zolk_product INTERFACE ZolkCompressor)
target_include_directories(zolk_product SYSTEM INTERFACE
  "$<TARGET_PROPERTY:ZolkCompressor,INCLUDE_DIRECTORIES>")
target_compile_definitions(zolk_product INTERFACE
  "$<TARGET_PROPERTY:ZolkCompressor,COMPILE_DEFINITIONS>")

