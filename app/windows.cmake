add_executable(kelvora main.cpp)
target_link_libraries(kelvora PRIVATE kelvora_client kelvora_win32)
set_target_properties(kelvora PROPERTIES WIN32_EXECUTABLE ON)

# Icon, version and manifest, in the file's resources.
enable_language(RC)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(resources ${CMAKE_SOURCE_DIR}/platform/win32)
set(icon ${CMAKE_CURRENT_BINARY_DIR}/kelvora.ico)
foreach(side 16 32 48 64 128 256)
  list(APPEND pictures ${CMAKE_SOURCE_DIR}/assets/icon-${side}.png)
endforeach()
add_custom_command(OUTPUT ${icon} DEPENDS ${resources}/icon.py ${pictures} VERBATIM
  COMMAND ${Python3_EXECUTABLE} -B ${resources}/icon.py ${icon} ${pictures})
set(manifest ${resources}/kelvora.manifest)
configure_file(${resources}/kelvora.rc.in ${CMAKE_CURRENT_BINARY_DIR}/kelvora.rc @ONLY)
target_sources(kelvora PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/kelvora.rc)
set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/kelvora.rc PROPERTIES OBJECT_DEPENDS "${icon};${manifest}")
