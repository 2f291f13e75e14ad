# The Debian package: `cpack -G DEB` in the build folder makes
# zolk-compressor_<version>_<architecture>.deb from the install rules, with the prefix
# /usr, so that the plug-ins land in /usr/lib/vst3 and /usr/lib/lv2, where hosts scan.
# Its dependencies are those of the binaries, found by dpkg-shlibdeps.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zolk-compressor)
set(CPACK_PACKAGE_VERSION "${ZOLK_VERSION}")
set(CPACK_PACKAGE_VENDOR "Halvane")
set(CPACK_PACKAGE_CONTACT "Halvane <support@halvane.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Look-ahead compressor with wow, flutter and lo-fi (VST3, LV2, standalone)")
set(CPACK_PACKAGE_DESCRIPTION "Zolk Compressor is an audio effect plug-in: a look-ahead compressor whose
law is a set of fitted curves, with an external sidechain, followed by a
turntable-style wow and flutter stage and a lo-fi section (hum, hiss, crunch,
soft clipping, early-digital degrading, an analog frequency response), with an
oversampled HQ mode.

This package holds the VST3 and LV2 plug-ins, the standalone application
zolk-compressor, the command-line renderer zolk-render, the factory presets
and the manual.")

# Absolute destinations (the factory presets in /opt) go into the package too.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_PACKAGE_NAME zolk-compressor)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${ZOLK_PRODUCT_URL}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE gzip)

include(CPack)
