# `cpack` in a build directory makes orvo_<version>_<arch>.deb and a .tar.gz of
# everything `cmake --install` puts in place: the library, its headers, the
# CMake package, orvo.pc, orvo_host, the stand-in server and the viewer.
set(CPACK_PACKAGE_NAME orvo)
set(CPACK_PACKAGE_VENDOR orvo)
set(CPACK_PACKAGE_CONTACT "orvo developers <orvo@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
# The run-time libraries (C, C++, GSL) come from dpkg-shlibdeps; plug-in
# builds also need the headers that orvo's own headers and its CMake package use.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libboost-dev (>= 1.74), libgsl-dev, libeigen3-dev, pkg-config")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "cmake (>= 3.25), g++")

include(CPack)
