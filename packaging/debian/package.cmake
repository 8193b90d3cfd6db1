# The Debian package. ./dev package builds it; what it has is what cmake --install installs.

# The date of the last commit if ./dev package builds it, so that two builds are equal.
string(TIMESTAMP KELPROBE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)

configure_file(debian/changelog.in changelog.Debian @ONLY)
configure_file("${PROJECT_SOURCE_DIR}/CHANGELOG.md" changelog COPYONLY)
foreach(file IN ITEMS changelog changelog.Debian)
  execute_process(COMMAND gzip -9nf "${from}/${file}" COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${from}/${file}.gz" DESTINATION "${doc}")
endforeach()
install(FILES debian/copyright "${PROJECT_SOURCE_DIR}/sim/device/profiles/ORIGINS.md"
  DESTINATION "${doc}")
install(FILES debian/lintian-overrides RENAME kelprobe
  DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelprobe)
set(CPACK_PACKAGE_VENDOR "The Kelprobe developers")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_SOURCE_DIR}/debian/before_packing.cmake")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Kelprobe developers <developers@kelprobe.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "exercise the telephony controls of USB audio devices")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION [[
Kelprobe plays a meeting with a USB speakerphone, headset or conference
camera: it rings, picks up, hangs up and mutes. It sets the LEDs of the
device, reads its buttons, keeps the window and the device in the same state,
and lists every change.
.
kelprobectl shows, explains, records and checks what such a device sends and
expects. kelprobe-sim runs any program with simulated devices, and
kelprobe-panel has their buttons and lamps in windows.]])
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# In addition to the libraries that the programs are linked with: umockdev has a preload library,
# usb.ids the names of usages.
set(loaded umockdev usb.ids
  qml-module-qtquick2 qml-module-qtquick-window2 qml-module-qtquick-layouts
  qml-module-qtquick-controls qml-module-qtquick-controls2)
list(JOIN loaded ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
include(CPack)
