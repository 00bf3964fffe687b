# Warnings for the project's own code, treated as errors. Third-party headers are included as
# system headers and stay out of this.
add_library(vorn_project_warnings INTERFACE)
target_compile_options(vorn_project_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Werror
  -Wshadow -Wnon-virtual-dtor -Wcast-align -Woverloaded-virtual
  -Wformat=2 -Wno-format-nonliteral -Wimplicit-fallthrough)
