# Libraries of rooms.

# kelvora_room(NAME [rooms and libraries it includes or calls ...]): one static library from the .cpp files of this folder.
function(kelvora_room name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(NOT sources)
    add_library(kelvora_${name} INTERFACE)
    return()
  endif()
  add_library(kelvora_${name} STATIC ${sources})
  target_link_libraries(kelvora_${name} PUBLIC kelvora_options ${ARGN})
endfunction()

# kelvora_leave_out(TARGET SOURCE ...): excludes these sources of its folder from the library.
function(kelvora_leave_out target)
  get_target_property(sources ${target} SOURCES)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  list(REMOVE_ITEM sources ${ARGN})
  set_target_properties(${target} PROPERTIES SOURCES "${sources}")
endfunction()

# kelvora_client(ROOM ...): one static library from the rooms of the game, which call one another.
function(kelvora_client)
  add_library(kelvora_client STATIC)
  # A unity build combines only sources of the same room.
  set_target_properties(kelvora_client PROPERTIES UNITY_BUILD_MODE GROUP)
  foreach(room ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${room}/*.cpp)
    set_source_files_properties(${sources} PROPERTIES UNITY_GROUP ${room})
    target_sources(kelvora_client PRIVATE ${sources})
  endforeach()
  target_link_libraries(kelvora_client PUBLIC kelvora_options kelvora_protocol kelvora_platform kelvora_raster kelvora_base)
endfunction()
