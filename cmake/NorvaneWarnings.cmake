# Warnings for our own code. Third-party headers come in as SYSTEM includes and stay quiet.
#  -Wshadow, -Wnon-virtual-dtor, -Woverloaded-virtual: catch the slips that virtual interfaces invite.
#  -Wcast-align, -Wformat=2, -Wimplicit-fallthrough: catch unsafe casts, formats and switch fall-through.
#  -Wmissing-declarations: every non-static function has a declaration, so a typo never makes a
#   second, unused overload.
set(NORVANE_WARNINGS
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
  -Wformat=2 -Wimplicit-fallthrough -Wmissing-declarations -Wundef -Werror)

# GCC 12 reports overlapping copies inside libstdc++'s own std::string code at -O3 (GCC bug 105329,
# false positives in inlined basic_string::assign/append); the check is useless there.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  list(APPEND NORVANE_WARNINGS -Wno-restrict)
endif()

add_library(norvane_options INTERFACE)
target_compile_options(norvane_options INTERFACE ${NORVANE_WARNINGS})
target_include_directories(norvane_options INTERFACE ${PROJECT_SOURCE_DIR})

if(NORVANE_SANITIZE)
  set(sanitize_flags -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_compile_options(${sanitize_flags})
  add_link_options(${sanitize_flags})
endif()
if(NORVANE_TSAN)
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()
if(NORVANE_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "The fuzz targets need clang")
  endif()
  # Coverage instrumentation for everything; only fuzz executables link libFuzzer's main.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
