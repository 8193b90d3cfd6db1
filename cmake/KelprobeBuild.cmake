# Compiler settings, and the functions with which folders declare their libraries and tests.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(THREADS_PREFER_PTHREAD_FLAG ON)
include(CheckPIESupported)
check_pie_supported() # programs are linked position-independent, too
# Debian's Qt refers to its own data directly. A program must not have copies of them, which link-time
# optimisation would make for position-independent programs unless it is asked for shared code.
link_libraries(-fPIC)

set(KELPROBE_SANITIZER "" CACHE STRING "Value for -fsanitize=, or empty")
set(KELPROBE_CONFIGURATION "dev" CACHE STRING "Prefix of test names in joint runs")
option(KELPROBE_FUZZERS "Build the libFuzzer targets (clang only)" OFF)
option(KELPROBE_BENCHMARKS "Build the benchmarks and their peers" OFF)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER "${CCACHE}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

find_package(Threads REQUIRED)

if(KELPROBE_SANITIZER)
  add_compile_options(-fsanitize=${KELPROBE_SANITIZER} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KELPROBE_SANITIZER})
  if(NOT KELPROBE_SANITIZER STREQUAL "thread")
    add_compile_options(-fno-sanitize-recover=all)
  endif()
endif()

# Input from devices, files and the environment may be hostile. Sanitizers replace most of these
# options.
if(NOT KELPROBE_SANITIZER)
  add_compile_options(-fstack-protector-strong -fstack-clash-protection -fcf-protection=full)
  # Debian's start-up objects are not marked for indirect branch tracking, so only the shadow stack
  # can be requested. Our own functions begin with endbr64 nevertheless.
  add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack,-z,shstk)
  # Undefined first, because some distributions define it by default. glibc warns if it is set
  # without optimisation.
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
endif()

# Programs for users do not depend on where they were built.
add_compile_options($<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)

# All code, not only the fuzz targets: libFuzzer cannot observe code that is not instrumented.
if(KELPROBE_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

add_library(kelprobe_warnings INTERFACE)
add_library(Kelprobe::warnings ALIAS kelprobe_warnings)
target_compile_options(kelprobe_warnings INTERFACE
  -Werror -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow
  -Wformat=2 -Wcast-qual -Wundef
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual>)

# kelprobe_headers(TARGET SCOPE)
#
# Lets TARGET, and with SCOPE PUBLIC or INTERFACE also the targets that link it, include the headers
# of the current folder by their path from the root, "hid/model/Root.h", and those of no other
# folder: the include directory contains only a link to the folder.
function(kelprobe_headers target scope)
  get_filename_component(root "${CMAKE_CURRENT_FUNCTION_LIST_DIR}" DIRECTORY)
  file(RELATIVE_PATH folder "${root}" "${CMAKE_CURRENT_SOURCE_DIR}")
  set(directory "${CMAKE_BINARY_DIR}/layers/${target}")
  get_filename_component(parent "${directory}/${folder}" DIRECTORY)
  file(MAKE_DIRECTORY "${parent}")
  file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}" "${directory}/${folder}" SYMBOLIC)
  target_include_directories(${target} ${scope} "${directory}")
endfunction()

# kelprobe_library(NAME SOURCES file... [LINK target...] [PRIVATE target...])
#
# A static library kelprobe_NAME, alias Kelprobe::NAME, of the current folder. Only targets that
# link it find its headers. This keeps the layers apart.
function(kelprobe_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;PRIVATE" ${ARGN})
  add_library(kelprobe_${name} STATIC ${ARG_SOURCES})
  add_library(Kelprobe::${name} ALIAS kelprobe_${name})
  kelprobe_headers(kelprobe_${name} PUBLIC)
  target_link_libraries(kelprobe_${name}
    PUBLIC ${ARG_LINK}
    PRIVATE ${ARG_PRIVATE} Kelprobe::warnings)
  # Some packages install headers in the compiler's default directories. Targets that do not link
  # such a package find the headers in `forbidden` first. Including one of those is an error.
  foreach(package HIDAPI LIBUSB)
    if(NOT PkgConfig::${package} IN_LIST ARG_LINK AND NOT PkgConfig::${package} IN_LIST ARG_PRIVATE)
      target_include_directories(kelprobe_${name} BEFORE PRIVATE
        "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/forbidden/${package}")
    endif()
  endforeach()
endfunction()

# kelprobe_test(NAME SOURCES file... LINK target... [ENVIRONMENT var=value...] [SINGLE_THREADED])
#
# A GoogleTest program test-NAME. Each test in it becomes a ctest test "CONFIGURATION.Suite.Case".
# SINGLE_THREADED leaves it out of the configuration with TSan, which would find nothing in it.
function(kelprobe_test name)
  cmake_parse_arguments(ARG "SINGLE_THREADED" "" "SOURCES;LINK;ENVIRONMENT" ${ARGN})
  if(ARG_SINGLE_THREADED AND KELPROBE_SANITIZER STREQUAL "thread")
    return()
  endif()
  add_executable(test-${name} ${ARG_SOURCES})
  kelprobe_headers(test-${name} PRIVATE)
  target_link_libraries(test-${name} PRIVATE ${ARG_LINK} GTest::gtest_main Kelprobe::warnings)
  gtest_discover_tests(test-${name}
    TEST_PREFIX "${KELPROBE_CONFIGURATION}."
    TEST_LIST tests
    DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 60)
  # gtest_discover_tests() cannot pass a list of variables, so ctest sets them with a script.
  set(environment ${KELPROBE_TEST_ENVIRONMENT} ${ARG_ENVIRONMENT})
  set(script "${CMAKE_CURRENT_BINARY_DIR}/test-${name}_environment.cmake")
  file(WRITE "${script}"
    "if(tests)\n  set_tests_properties(\${tests} PROPERTIES ENVIRONMENT \"${environment}\")\nendif()\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${script}")
endfunction()
