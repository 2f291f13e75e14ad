# The embedded drawing and fonts, made by tools/make-artwork.sh and committed, and the
# factory presets, which stand in for a factory file that isn't installed; the build
# only packs them into a binary-data library ("BinaryData.h").
set(ZOLK_RESOURCE_FILES
  "${PROJECT_SOURCE_DIR}/resources/TQDrawing.json.gz"
  "${PROJECT_SOURCE_DIR}/resources/fonts/Hvn-Symbols.ttf"
  "${PROJECT_SOURCE_DIR}/resources/fonts/HvnNumbersCompressed.ttf"
  "${PROJECT_SOURCE_DIR}/resources/fonts/FormaDJRText-Medium.ttf"
  "${PROJECT_SOURCE_DIR}/resources/fonts/FormaDJRText-Italic.ttf"
  "${PROJECT_SOURCE_DIR}/presets/factory/TQPresets.json")

juce_add_binary_data(ZolkResources
  HEADER_NAME BinaryData.h
  NAMESPACE BinaryData
  SOURCES ${ZOLK_RESOURCE_FILES})
set_target_properties(ZolkResources PROPERTIES POSITION_INDEPENDENT_CODE ON)

# JUCE's rule depends only on its list of names; repack when a file changes.
add_custom_command(
  OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/juce_binarydata_ZolkResources/JuceLibraryCode/BinaryData1.cpp"
  APPEND DEPENDS ${ZOLK_RESOURCE_FILES})
