# What every target of the project shares, and one function per kind of target.

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()
# What is not in memory costs nothing: smaller code over the last percent of speed.
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(KIVO_CCACHE ccache)
if(KIVO_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # base_dir makes two checkouts share their objects.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${KIVO_CCACHE})
endif()

add_library(kivo_options INTERFACE)
target_include_directories(kivo_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(kivo_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
  -Woverloaded-virtual -Wimplicit-fallthrough -Wno-missing-field-initializers "-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=")
target_compile_options(kivo_options INTERFACE $<$<CONFIG:Release>:-ffunction-sections -fdata-sections>)
target_link_options(kivo_options INTERFACE $<$<CONFIG:Release>:LINKER:--gc-sections>)
if(KIVO_WERROR)
  target_compile_options(kivo_options INTERFACE -Werror)
endif()
if(KIVO_SANITIZE)
  target_compile_options(kivo_options INTERFACE -fsanitize=${KIVO_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  target_link_options(kivo_options INTERFACE -fsanitize=${KIVO_SANITIZE})
  # What the sanitizers add hides from g++ 12 that a variant's members are initialized.
  target_compile_options(kivo_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()
if(KIVO_FUZZ)
  target_compile_options(kivo_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# kivo_library(NAME DEPENDS a b …): every .cpp of the calling folder. The libraries named here are the only
# folders it may include, so the link graph is the layering.
function(kivo_library name)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(sources)
    add_library(kivo_${name} STATIC ${sources})
    target_link_libraries(kivo_${name} PUBLIC kivo_options)
    set(scope PUBLIC)
  else()
    add_library(kivo_${name} INTERFACE)
    target_link_libraries(kivo_${name} INTERFACE kivo_options)
    set(scope INTERFACE)
  endif()
  foreach(dependency ${ARG_DEPENDS})
    target_link_libraries(kivo_${name} ${scope} kivo_${dependency})
  endforeach()
endfunction()
