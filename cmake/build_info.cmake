# The branch and hash are looked up in every build, but the unit is rewritten only when they changed.
set(build_info_unit ${CMAKE_BINARY_DIR}/generated/build_info.cpp)
add_custom_target(
  build_info_refresh
  BYPRODUCTS ${build_info_unit}
  COMMAND ${CMAKE_COMMAND} -D SOURCE=${CMAKE_SOURCE_DIR} -D VERSION=${PROJECT_VERSION} -D OUTPUT=${build_info_unit}
          -P ${CMAKE_SOURCE_DIR}/cmake/write_build_info.cmake)
add_library(tavek_build_info STATIC ${build_info_unit})
target_include_directories(tavek_build_info PUBLIC ${CMAKE_SOURCE_DIR}/src)
add_dependencies(tavek_build_info build_info_refresh)
