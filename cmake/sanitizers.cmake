# Sanitizer builds apply to everything in the tree, stand-ins included, so that a race or a
# leak is found wherever it lives.
if(VORN_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
elseif(VORN_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(NOT VORN_SANITIZE STREQUAL "")
  message(FATAL_ERROR "VORN_SANITIZE must be empty, 'address' or 'thread'")
endif()
