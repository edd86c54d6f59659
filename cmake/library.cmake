# The library with the callable interface: build/libtpu.so (.dylib) and build/libtpu.a.

# All that it exports.
set(TPU_EXPORTS
    TPU_Initialize TPU_ExecuteCommand TPU_GetMessage TPU_Cleanup
    TPU$INITIALIZE TPU$EXECUTE_COMMAND TPU$CLEANUP)

# Its sessions have no terminal, so neither curses nor the program's start belong to it.
set(LIBRARY_SOURCES ${TPU_SOURCES})
list(FILTER LIBRARY_SOURCES EXCLUDE REGEX "src/app/curses/")
list(FILTER LIBRARY_SOURCES EXCLUDE REGEX
     "src/app/(main|options|signals|source_file|startup|test_mode)\\.cc$")

# Objects for both kinds of library and for the program. They are position-independent
# for the shared one; with hidden names that costs nothing.
add_library(libtpu_objects OBJECT ${LIBRARY_SOURCES})
target_link_libraries(libtpu_objects PRIVATE tpu_flags Threads::Threads)
target_precompile_headers(libtpu_objects PRIVATE ${TPU_COMMON_HEADERS})
set_target_properties(libtpu_objects PROPERTIES
                      POSITION_INDEPENDENT_CODE ON
                      CXX_VISIBILITY_PRESET hidden
                      VISIBILITY_INLINES_HIDDEN ON)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # It would join the two words of a Value into one load (see value/value.h).
  target_compile_options(libtpu_objects PRIVATE -fno-tree-slp-vectorize)
endif()

add_library(libtpu SHARED $<TARGET_OBJECTS:libtpu_objects>)
add_library(libtpu_static STATIC $<TARGET_OBJECTS:libtpu_objects>)
foreach(library libtpu libtpu_static)
  set_target_properties(${library} PROPERTIES OUTPUT_NAME tpu)
  target_include_directories(${library} INTERFACE
                             $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                             $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${library} PRIVATE Threads::Threads)
endforeach()
set_target_properties(libtpu PROPERTIES
                      VERSION ${PROJECT_VERSION}
                      SOVERSION ${PROJECT_VERSION_MAJOR}
                      EXPORT_NAME tpu
                      MACOSX_RPATH ON)
set_target_properties(libtpu_static PROPERTIES EXPORT_NAME tpu_static)
if(TPU_SANITIZE)
  target_link_options(libtpu PRIVATE -fsanitize=address,undefined)
endif()

# The linker keeps everything else to itself, what the C++ library's headers bring too.
set(EXPORT_LIST ${PROJECT_BINARY_DIR}/libtpu.exports)
if(APPLE)
  list(TRANSFORM TPU_EXPORTS PREPEND "_" OUTPUT_VARIABLE names)
  list(JOIN names "\n" names)
  file(CONFIGURE OUTPUT ${EXPORT_LIST} CONTENT "${names}\n" @ONLY)
  target_link_options(libtpu PRIVATE "LINKER:-exported_symbols_list,${EXPORT_LIST}")
else()
  list(JOIN TPU_EXPORTS "; " names)
  file(CONFIGURE OUTPUT ${EXPORT_LIST} CONTENT "{ global: ${names}; local: *; };\n" @ONLY)
  target_link_options(libtpu PRIVATE "LINKER:--version-script=${EXPORT_LIST}")
endif()
set_property(TARGET libtpu APPEND PROPERTY LINK_DEPENDS ${EXPORT_LIST})
