# Sanitizer builds apply to everything in the tree, stand-ins included, so that a race or a
# leak is found wherever it lives.

# Fuzzing needs clang's libFuzzer, and the fuzzers run under ASan+UBSan unless told otherwise.
# The whole tree gets the coverage instrumentation, so the fuzzer is guided by the service's
# own branches, not only by those of the fuzz target.
if(VORN_BUILD_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "VORN_BUILD_FUZZ needs clang: configure with -DCMAKE_CXX_COMPILER=clang++")
  endif()
  if(VORN_SANITIZE STREQUAL "")
    set(VORN_SANITIZE "address")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(VORN_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
elseif(VORN_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(NOT VORN_SANITIZE STREQUAL "")
  message(FATAL_ERROR "VORN_SANITIZE must be empty, 'address' or 'thread'")
endif()

# GCC's flow analysis sees the sanitizers' instrumentation and then reports libstdc++'s own
# <regex> and <functional> internals as maybe uninitialised; that warning means nothing there.
if(NOT VORN_SANITIZE STREQUAL "" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(vorn_project_warnings INTERFACE -Wno-maybe-uninitialized)
endif()
