# Packages of what `cmake --install` installs: a .deb on Debian, an archive elsewhere.
set(CPACK_PACKAGE_NAME tpu)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "full-screen text editor programmed in TPU")
set(CPACK_PACKAGE_CONTACT "The developers of tpu <tpu@localhost>" CACHE STRING
    "Who is to be asked about the package")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
if(APPLE)
  set(CPACK_GENERATOR TGZ)
else()
  set(CPACK_GENERATOR DEB)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION editors)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "xclip | wl-clipboard | xsel")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Edits files of any size on the whole screen of a terminal. Keys, commands and
macros are programmed in TPU, a small language for processing text, which also
runs without a terminal and inside other programs.")
include(CPack)
