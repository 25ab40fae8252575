# One folder is one library that names what it links. The module's libraries (everything under
# src/ except the workbench in src/cad and the Qt folders) may link only the seam and each other:
# a module library that names a workbench or Qt library fails the configure step. That is the
# layering check.

set(VELTARN_WORKBENCH_PREFIX "veltarn_cad_")

function(veltarn_library name)
  cmake_parse_arguments(ARG "MODULE;WORKBENCH;QT" "" "DEPENDS;SYSTEM" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  if(ARG_MODULE)
    foreach(dep IN LISTS ARG_DEPENDS ARG_SYSTEM)
      if(dep MATCHES "^${VELTARN_WORKBENCH_PREFIX}" OR dep MATCHES "^Qt")
        message(FATAL_ERROR "layering: module library ${name} may not link ${dep}")
      endif()
    endforeach()
  endif()
  if(sources)
    add_library(${name} STATIC ${sources} ${headers})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ARG_DEPENDS} ${ARG_SYSTEM})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} INTERFACE ${ARG_DEPENDS} ${ARG_SYSTEM})
  endif()
endfunction()

# A GoogleTest executable whose cases are registered with CTest one by one.
function(veltarn_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} veltarn_test_tools GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE
    VELTARN_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    VELTARN_BINARY_DIR="${PROJECT_BINARY_DIR}")
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
endfunction()
