# What `cmake --install` puts where, by the standard layout of the system.
include(CMakePackageConfigHelpers)

set(TPU_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/tpu)

install(TARGETS tpu RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS libtpu libtpu_static EXPORT tpu-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/tpu.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)

# For find_package(tpu): the targets tpu::tpu and tpu::tpu_static.
install(EXPORT tpu-targets NAMESPACE tpu:: DESTINATION ${TPU_CMAKE_DIR})
configure_package_config_file(cmake/tpu-config.cmake.in tpu-config.cmake
                              INSTALL_DESTINATION ${TPU_CMAKE_DIR}
                              NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(tpu-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tpu-config.cmake ${PROJECT_BINARY_DIR}/tpu-config-version.cmake
        DESTINATION ${TPU_CMAKE_DIR})

# For pkg-config. Hosts that link the static library need the C++ library too.
set(TPU_CXX_LIBRARY $<IF:$<PLATFORM_ID:Darwin>,-lc++,-lstdc++>)
set(PC_DIR ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH TPU_PC_INCLUDEDIR ${PC_DIR} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(cmake/tpu.pc.in tpu.pc.in @ONLY)
file(GENERATE OUTPUT tpu.pc INPUT ${PROJECT_BINARY_DIR}/tpu.pc.in)
install(FILES ${PROJECT_BINARY_DIR}/tpu.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Manual pages, papers and completions.
foreach(page ${TPU_MAN_PAGES})
  get_filename_component(section ${page} LAST_EXT)
  string(SUBSTRING ${section} 1 -1 section)
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endforeach()
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
set(TPU_ZSH_DIR share/zsh/site-functions CACHE STRING "Where zsh looks for completions")
install(FILES completions/tpu.bash DESTINATION share/bash-completion/completions RENAME tpu)
install(FILES completions/_tpu DESTINATION ${TPU_ZSH_DIR})
install(FILES completions/tpu.fish DESTINATION share/fish/vendor_completions.d)
