# Test programs.

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
