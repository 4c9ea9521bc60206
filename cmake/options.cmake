# Every target of the project links dorvane_options: warnings, which the presets make errors, and
# includes that start at the root.
get_filename_component(root ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)
add_library(dorvane_options INTERFACE)
target_include_directories(dorvane_options INTERFACE ${root})
target_compile_options(dorvane_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
  target_compile_definitions(dorvane_options INTERFACE _GLIBCXX_ASSERTIONS)
endif()
if(DORVANE_SANITIZE)
  # The sanitizers' own code makes GCC 12 see uninitialised variants where there are none.
  target_compile_options(dorvane_options INTERFACE -Wno-maybe-uninitialized
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -O1)
  target_link_options(dorvane_options INTERFACE -fsanitize=address,undefined)
endif()
if(DORVANE_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "The fuzzers need clang with its runtime: apt-get install clang")
  endif()
  target_compile_options(dorvane_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined
    -fno-sanitize-recover=all -fno-omit-frame-pointer -O1)
  target_link_options(dorvane_options INTERFACE -fsanitize=address,undefined)
endif()

# dorvane_library(NAME SOURCES... [LIBS ...]): a static library of one room of the house.
function(dorvane_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_link_libraries(${name} PUBLIC dorvane_options ${arg_LIBS})
endfunction()

# dorvane_test(NAME SOURCES ... LIBS ... [WHOLE] [MYSQL] [TIMEOUT seconds]): a GoogleTest program.
# WHOLE runs it as one ctest entry; tests that start servers share them that way.
# MYSQL labels it as one whose outcome depends on a MySQL server, for scripts/test-mysql.
function(dorvane_test name)
  cmake_parse_arguments(arg "WHOLE;MYSQL" "TIMEOUT" "SOURCES;LIBS" ${ARGN})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 300)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE dorvane_options ${arg_LIBS} GTest::gmock GTest::gtest_main)
  if(arg_WHOLE)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT})
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT ${arg_TIMEOUT})
  endif()
  if(arg_MYSQL)
    set_tests_properties(${name} PROPERTIES LABELS mysql)
  endif()
endfunction()
