# Icon, version and manifest for programs of Windows.
enable_language(RC)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(kelvora_resources ${CMAKE_SOURCE_DIR}/platform/win32)
set(icon ${CMAKE_BINARY_DIR}/kelvora.ico)
foreach(side 16 32 48 64 128 256)
  list(APPEND pictures ${CMAKE_SOURCE_DIR}/assets/icon-${side}.png)
endforeach()
add_custom_command(OUTPUT ${icon} DEPENDS ${kelvora_resources}/icon.py ${pictures} VERBATIM
  COMMAND ${Python3_EXECUTABLE} -B ${kelvora_resources}/icon.py ${icon} ${pictures})
add_custom_target(kelvora_icon DEPENDS ${icon})

# kelvora_windows_program(TARGET DESCRIPTION): gives a program its resources. The description is for its properties.
function(kelvora_windows_program target description)
  set(manifest ${CMAKE_CURRENT_BINARY_DIR}/kelvora.manifest)
  configure_file(${kelvora_resources}/kelvora.manifest.in ${manifest} @ONLY)
  get_target_property(file ${target} OUTPUT_NAME)
  if(NOT file)
    set(file ${target})
  endif()
  set(icon ${CMAKE_BINARY_DIR}/kelvora.ico)
  set(resources ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  configure_file(${kelvora_resources}/kelvora.rc.in ${resources} @ONLY)
  target_sources(${target} PRIVATE ${resources})
  set_source_files_properties(${resources} PROPERTIES OBJECT_DEPENDS "${icon};${manifest}")
  add_dependencies(${target} kelvora_icon)
endfunction()
