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
if(WIN32)
  # The system's headers: wide characters, Windows 10, no macros min and max.
  target_compile_definitions(kelvora_options INTERFACE
    UNICODE _UNICODE _WIN32_WINNT=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX)
endif()
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
