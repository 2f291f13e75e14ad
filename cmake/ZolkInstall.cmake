# Where `cmake --install` puts things, laid out as Linux hosts and desktops look for
# them under the prefix (/usr/local by default, /usr in the Debian package):
#   lib/vst3/Zolk Compressor.vst3, lib/lv2/Zolk Compressor.lv2,
#   bin/zolk-compressor (the Standalone), bin/zolk-render,
#   share/applications and share/icons for the Standalone's desktop entry,
#   share/doc/zolk-compressor for the manual (Markdown, figures, and HTML when the
#   build could make it),
# and the factory presets at /opt/Halvane/0002, JUCE's common application data
# folder on Linux, where the plug-in reads them whatever the prefix.

set(ZOLK_DOC_DIR "share/doc/zolk-compressor")

install(DIRECTORY "${ZOLK_ARTEFACTS}/VST3/Zolk Compressor.vst3" DESTINATION lib/vst3 USE_SOURCE_PERMISSIONS)
install(DIRECTORY "${ZOLK_ARTEFACTS}/LV2/Zolk Compressor.lv2" DESTINATION lib/lv2 USE_SOURCE_PERMISSIONS)
install(PROGRAMS "${ZOLK_ARTEFACTS}/Standalone/Zolk Compressor" DESTINATION bin RENAME zolk-compressor)
install(TARGETS zolk-render RUNTIME DESTINATION bin)

install(FILES "${PROJECT_SOURCE_DIR}/packaging/zolk-compressor.desktop" DESTINATION share/applications)
install(FILES "${PROJECT_SOURCE_DIR}/packaging/zolk-compressor.svg" DESTINATION share/icons/hicolor/scalable/apps)

install(FILES "${PROJECT_SOURCE_DIR}/docs/manual.md" DESTINATION "${ZOLK_DOC_DIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/manual" DESTINATION "${ZOLK_DOC_DIR}")

# The HTML copy of the manual, made with Debian's python3-markdown. A machine
# without it still builds and installs everything else.
# Debian's interpreter first: the one that sees Debian's Python packages.
find_program(ZOLK_PYTHON3 python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_program(ZOLK_PYTHON3 python3)
set(ZOLK_MANUAL_HTML "")
if(ZOLK_PYTHON3)
  execute_process(COMMAND "${ZOLK_PYTHON3}" -c "import markdown"
    RESULT_VARIABLE zolk_no_markdown OUTPUT_QUIET ERROR_QUIET)
  if(zolk_no_markdown EQUAL 0)
    set(ZOLK_MANUAL_HTML "${PROJECT_BINARY_DIR}/docs/manual.html")
  endif()
endif()
if(ZOLK_MANUAL_HTML)
  add_custom_command(OUTPUT "${ZOLK_MANUAL_HTML}"
    COMMAND "${ZOLK_PYTHON3}" "${PROJECT_SOURCE_DIR}/tools/manual-html.py"
      "${PROJECT_SOURCE_DIR}/docs/manual.md" "${ZOLK_MANUAL_HTML}"
    DEPENDS "${PROJECT_SOURCE_DIR}/docs/manual.md" "${PROJECT_SOURCE_DIR}/tools/manual-html.py"
    COMMENT "Making the HTML manual")
  add_custom_target(zolk_manual_html ALL DEPENDS "${ZOLK_MANUAL_HTML}")
  install(FILES "${ZOLK_MANUAL_HTML}" DESTINATION "${ZOLK_DOC_DIR}")
else()
  message(STATUS "python3-markdown not found: the HTML manual is left out of the install")
endif()

install(FILES "${PROJECT_SOURCE_DIR}/presets/factory/TQPresets.json" DESTINATION "/opt/Halvane/0002")
