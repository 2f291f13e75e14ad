# The embedded drawing and fonts, made by tools/make-artwork.sh and committed;
# the build only packs them into a binary-data library ("BinaryData.h").
juce_add_binary_data(ZolkResources
  HEADER_NAME BinaryData.h
  NAMESPACE BinaryData
  SOURCES
    "${PROJECT_SOURCE_DIR}/resources/TQDrawing.json.gz"
    "${PROJECT_SOURCE_DIR}/resources/fonts/Hvn-Symbols.ttf"
    "${PROJECT_SOURCE_DIR}/resources/fonts/HvnNumbersCompressed.ttf"
    "${PROJECT_SOURCE_DIR}/resources/fonts/FormaDJRText-Medium.ttf"
    "${PROJECT_SOURCE_DIR}/resources/fonts/FormaDJRText-Italic.ttf")
set_target_properties(ZolkResources PROPERTIES POSITION_INDEPENDENT_CODE ON)
