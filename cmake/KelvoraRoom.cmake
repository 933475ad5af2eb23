# Settings shared by all targets: warnings, sanitizers, the source root as include path.
add_library(kelvora_options INTERFACE)
target_include_directories(kelvora_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(kelvora_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor
  -Woverloaded-virtual -Wformat=2 -Wcast-qual -Wextra-semi
  $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond;-Wduplicated-branches;-Wlogical-op>
  $<$<BOOL:${KELVORA_WERROR}>:-Werror>
  # g++ 12 sees overlapping copies in any optimised `"text" + std::string`.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<NOT:$<CONFIG:Debug>>>:-Wno-restrict>
  # Fused multiply-adds would make pictures and positions differ between machines.
  -ffp-contract=off
  # In a unity build, locals of one source shadow declarations of another.
  $<$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>:-Wno-shadow>)
if(KELVORA_SANITIZE)
  target_compile_options(kelvora_options INTERFACE
    -fsanitize=${KELVORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # The check of virtual calls opens a pipe to probe an object's memory. It reports an error if that fails, as in tests
    # that use up all descriptors.
    -fno-sanitize=vptr
    # To g++ 12, instrumented code in library headers looks uninitialised. The plain builds keep the warning.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(kelvora_options INTERFACE -fsanitize=${KELVORA_SANITIZE})
endif()
if(KELVORA_SANITIZE STREQUAL "thread")
  # For Asio's fences, which the thread sanitizer doesn't see. They only order work on one thread.
  target_compile_options(kelvora_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-tsan>)
endif()

# generated/sourceFolder.h: the folder of the project's files, for tests and benchmarks.
configure_file(${CMAKE_SOURCE_DIR}/cmake/sourceFolder.h.in ${CMAKE_BINARY_DIR}/generated/sourceFolder.h @ONLY)
# generated/version.h: the version that tests expect.
configure_file(${CMAKE_SOURCE_DIR}/cmake/version.h.in ${CMAKE_BINARY_DIR}/generated/version.h @ONLY)
target_include_directories(kelvora_options INTERFACE ${CMAKE_BINARY_DIR})

option(KELVORA_FUZZ "Build the fuzz targets, guided by coverage and with the sanitizers (clang only)" OFF)
if(KELVORA_FUZZ)
  target_compile_options(kelvora_options INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kelvora_options INTERFACE -fsanitize=address,undefined)
endif()
option(KELVORA_FUZZ_COVERAGE "Count the lines that fuzz targets reach" OFF)
if(KELVORA_FUZZ_COVERAGE)
  target_compile_options(kelvora_options INTERFACE -fprofile-instr-generate -fcoverage-mapping)
  target_link_options(kelvora_options INTERFACE -fprofile-instr-generate)
endif()

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

# kelvora_run_in_node(TARGET): makes the browser build's program run in Node, with access to this machine's files.
function(kelvora_run_in_node target)
  # Each object is already optimised. Optimising again in the linker takes half a minute per program.
  target_link_options(${target} PRIVATE -sNODERAWFS=1 -sEXIT_RUNTIME=1 -sALLOW_MEMORY_GROWTH=1 -O1)
endfunction()

set(KELVORA_TEST_SHARDS "" CACHE STRING
    "Run each test program in this many parts, which saves thousands of starts; empty to run each test by itself")

# kelvora_tests(ROOM [libraries ...]): one test program from the .cpp files of this folder. A folder of long tests sets
# KELVORA_TEST_COST, and they start first. One whose tests start a program or load a module sets
# KELVORA_TEST_PROGRAM.
function(kelvora_tests name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(kelvora_${name}_tests ${sources})
  target_link_libraries(kelvora_${name}_tests PRIVATE kelvora_options ${ARGN} GTest::gtest_main)
  # The tested code is built according to the preset. The tests' own lines run once each and are built as fast as
  # possible.
  target_compile_options(kelvora_${name}_tests PRIVATE -O0)
  if(KELVORA_SANITIZE)
    target_compile_definitions(kelvora_${name}_tests PRIVATE KELVORA_SANITIZED)
  endif()
  if(KELVORA_SANITIZE MATCHES undefined)
    # Pointer checks take a third of the compile time, and the address sanitizer finds most of the same errors.
    target_compile_options(kelvora_${name}_tests PRIVATE -fno-sanitize=null,alignment,object-size)
  endif()
  set_target_properties(kelvora_${name}_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  if(EMSCRIPTEN)
    kelvora_run_in_node(kelvora_${name}_tests)
  endif()
  if(CMAKE_CROSSCOMPILING)
    # The emulator takes longer to start than most tests to run.
    add_test(NAME ${name} COMMAND kelvora_${name}_tests)
    set_tests_properties(${name} PROPERTIES TIMEOUT 900 LABELS ${name} FIXTURES_REQUIRED "${KELVORA_TEST_FIXTURE}")
  elseif(KELVORA_TEST_SHARDS)
    foreach(shard RANGE 1 ${KELVORA_TEST_SHARDS})
      math(EXPR index "${shard} - 1")
      add_test(NAME ${name}.${shard} COMMAND kelvora_${name}_tests)
      set_tests_properties(${name}.${shard} PROPERTIES TIMEOUT 900 LABELS ${name} COST "${KELVORA_TEST_COST}"
        REQUIRED_FILES "${KELVORA_TEST_PROGRAM}"
        ENVIRONMENT "GTEST_TOTAL_SHARDS=${KELVORA_TEST_SHARDS};GTEST_SHARD_INDEX=${index}")
    endforeach()
  else()
    gtest_discover_tests(kelvora_${name}_tests DISCOVERY_TIMEOUT 120 PROPERTIES TIMEOUT 900 LABELS ${name})
  endif()
endfunction()

# kelvora_record_surfaces(TARGET): lets the program record its drawing calls (bench/surfaceRecorder.h). The linker
# inserts the recorder between the painters and the surface.
function(kelvora_record_surfaces target)
  target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/bench/surfaceRecorder.cpp)
  target_link_options(${target} PRIVATE
    -Wl,--wrap=_ZN7kelvora7Surface3ClsEv
    -Wl,--wrap=_ZN7kelvora7Surface4LineEffff
    -Wl,--wrap=_ZN7kelvora7Surface6CircleEfffNS_6ColourE
    -Wl,--wrap=_ZN7kelvora7Surface12PaintPictureERKNS_7PictureEffffffNS_15RasterOperationE
    -Wl,--wrap=_ZN7kelvora7Surface11PaintSpriteERKNS_10SpriteCopyES3_ffff
    -Wl,--wrap=_ZN7kelvora7Surface5PrintESt17basic_string_viewIcSt11char_traitsIcEE)
endfunction()
