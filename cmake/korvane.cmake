# How every target of this project is compiled and linked.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

add_library(korvane_options INTERFACE)
target_include_directories(korvane_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(korvane_options INTERFACE -Wall -Wextra -Wconversion -Wsign-conversion -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 sees overlapping copies inside std::string where there are none (GCC bug 105651).
  target_compile_options(korvane_options INTERFACE -Wno-restrict)
endif()
# The tables of the file formats are binary32 arithmetic step by step: no fused multiply-add may change a last bit.
target_compile_options(korvane_options INTERFACE -ffp-contract=off)
if(KORVANE_SANITIZE)
  target_compile_options(korvane_options INTERFACE -fsanitize=${KORVANE_SANITIZE} -fno-sanitize-recover=all
                                                   -fno-omit-frame-pointer)
  target_link_options(korvane_options INTERFACE -fsanitize=${KORVANE_SANITIZE})
endif()
if(KORVANE_FUZZ)
  target_compile_options(korvane_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(KORVANE_COVERAGE)
  # Counters of functions that one file alone knows are found by the file's name, and sources that are compiled as one all
  # have the same: the target's takes its place.
  target_compile_options(korvane_options INTERFACE -fprofile-instr-generate -fcoverage-mapping
                                                   "SHELL:-Xclang -main-file-name -Xclang $<TARGET_PROPERTY:NAME>")
  target_link_options(korvane_options INTERFACE -fprofile-instr-generate)
endif()
if(WIN32)
  target_compile_definitions(korvane_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
  target_compile_options(korvane_options INTERFACE -fstack-protector-strong)
  # No time stamp: built again, the program is the same to the last byte.
  target_link_options(korvane_options INTERFACE -static -fstack-protector-strong -Wl,--dynamicbase,--nxcompat,--high-entropy-va,--no-insert-timestamp)
endif()

# korvane_library(NAME SOURCE...): one floor's library.
function(korvane_library name)
  add_library(${name} STATIC ${ARGN})
  target_link_libraries(${name} PUBLIC korvane_options)
endfunction()

# korvane_glue(TARGET): a target that hands work down and computes little itself. Under sanitizers it is neither optimised
# nor watched by the fuzzers: compiling it takes a quarter of the time, and its tests hardly longer.
function(korvane_glue target)
  if(KORVANE_SANITIZE)
    target_compile_options(${target} PRIVATE -O0)
  endif()
  if(KORVANE_FUZZ)
    target_compile_options(${target} PRIVATE -fno-sanitize=fuzzer-no-link)
  endif()
endfunction()

# korvane_test(NAME SOURCE...): a GoogleTest program. Each of its tests is a ctest entry natively; under Wine, where a
# process costs much more than a test, the program is one entry. Natively without sanitizers it is built by name only.
# The tests themselves are not optimised: compiling them would take twice as long as running them does.
function(korvane_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE korvane_options GTest::gtest_main)
  target_compile_options(${name} PRIVATE -O0)
  korvane_glue(${name})
  if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${name} PRIVATE -Wno-subobject-linkage) # a fixture of one source looks like a header's
  endif()
  if(NOT WIN32 AND NOT KORVANE_SANITIZE)
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL TRUE)
  endif()
  if(WIN32)
    add_test(NAME ${name} COMMAND ${name})
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60)
  endif()
endfunction()

# korvane_program_resources(TARGET RC PROGRAM DESCRIPTION): an object library of the program's manifest, which lies beside
# the .rc file with ".manifest.in" behind its name, its version and what else RC holds. A library of its own, for the
# resource compiler does not know the C++ options.
function(korvane_program_resources target rc program description)
  get_filename_component(name ${rc} NAME_WE)
  configure_file(${name}.manifest.in ${CMAKE_CURRENT_BINARY_DIR}/${name}.manifest @ONLY)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${name}.version.rc @ONLY)
  add_library(${target} OBJECT ${rc})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_CURRENT_BINARY_DIR})
  set_source_files_properties(${rc} PROPERTIES OBJECT_DEPENDS
    "${CMAKE_CURRENT_BINARY_DIR}/${name}.manifest;${CMAKE_CURRENT_BINARY_DIR}/${name}.version.rc")
endfunction()
