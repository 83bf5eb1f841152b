# Helpers that turn a layer folder into its targets, so adding a file never means editing a list:
#   <layer>/**/*.cpp          -> static library norvane_<layer>
#   <layer>/**/testing/*.cpp  -> static library norvane_<layer>_testing (fakes other tests reuse)
#   <layer>/**/*_test.cpp     -> one GoogleTest executable <layer>_tests, labelled <layer>
#   <layer>/**/fuzz/*_fuzz.cpp -> one libFuzzer executable each (NORVANE_FUZZ builds only)
# Folders listed in EXCLUDE_DIRS hold targets of their own (a shared module, a tool) and are skipped.

set(NORVANE_FUZZ_SECONDS 30 CACHE STRING "Time each fuzz target runs under ctest")

function(norvane_collect out dir)
  file(GLOB_RECURSE files CONFIGURE_DEPENDS ${dir}/*.cpp ${dir}/*.h)
  set(${out} ${files} PARENT_SCOPE)
endfunction()

function(norvane_layer name)
  cmake_parse_arguments(ARG "" "" "DEPS;LIBS;TEST_LIBS;EXCLUDE_DIRS" ${ARGN})
  norvane_collect(all ${CMAKE_CURRENT_SOURCE_DIR})
  set(lib_sources "")
  set(testing_sources "")
  set(test_sources "")
  set(fuzz_sources "")
  foreach(f IN LISTS all)
    file(RELATIVE_PATH rel ${CMAKE_CURRENT_SOURCE_DIR} ${f})
    set(skip FALSE)
    foreach(ex IN LISTS ARG_EXCLUDE_DIRS)
      if(rel MATCHES "^${ex}/")
        set(skip TRUE)
      endif()
    endforeach()
    if(skip)
      continue()
    endif()
    if(rel MATCHES "(^|/)fuzz/")
      if(rel MATCHES "_fuzz\\.cpp$")
        list(APPEND fuzz_sources ${f})
      endif()
    elseif(rel MATCHES "_test\\.cpp$")
      list(APPEND test_sources ${f})
    elseif(rel MATCHES "(^|/)testing/")
      list(APPEND testing_sources ${f})
    else()
      list(APPEND lib_sources ${f})
    endif()
  endforeach()

  add_library(norvane_${name} STATIC ${lib_sources})
  target_link_libraries(norvane_${name} PUBLIC norvane_options ${ARG_DEPS} ${ARG_LIBS})

  # Test helpers of every layer below are available to this layer's tests.
  set(testing_libs "")
  foreach(dep IN LISTS ARG_DEPS)
    get_property(chain GLOBAL PROPERTY ${dep}_testing_chain)
    list(APPEND testing_libs ${chain})
  endforeach()
  if(testing_sources)
    add_library(norvane_${name}_testing STATIC ${testing_sources})
    target_link_libraries(norvane_${name}_testing PUBLIC norvane_${name} ${testing_libs} GTest::gtest)
    set(testing_libs norvane_${name}_testing ${testing_libs})
  endif()
  set_property(GLOBAL PROPERTY norvane_${name}_testing_chain ${testing_libs})

  if(test_sources)
    add_executable(${name}_tests ${test_sources})
    target_link_libraries(${name}_tests PRIVATE norvane_${name} ${testing_libs} ${ARG_TEST_LIBS}
                          GTest::gmock GTest::gtest_main)
    gtest_discover_tests(${name}_tests DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                         PROPERTIES LABELS ${name})
  endif()

  if(NORVANE_FUZZ)
    foreach(f IN LISTS fuzz_sources)
      get_filename_component(fuzz_name ${f} NAME_WE)
      get_filename_component(fuzz_dir ${f} DIRECTORY)
      add_executable(${fuzz_name} ${f})
      target_link_libraries(${fuzz_name} PRIVATE norvane_${name} ${testing_libs})
      target_link_options(${fuzz_name} PRIVATE -fsanitize=fuzzer)
      # The seed corpus stays read-only in the tree; new inputs go to the build folder.
      set(work ${CMAKE_CURRENT_BINARY_DIR}/${fuzz_name}_work)
      add_test(NAME ${fuzz_name}
               COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=1
                       $<TARGET_FILE:${fuzz_name}> -max_total_time=${NORVANE_FUZZ_SECONDS}
                       -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
                       ${work} ${fuzz_dir}/${fuzz_name}_corpus)
      set_tests_properties(${fuzz_name} PROPERTIES LABELS fuzz
                           TIMEOUT 600 FIXTURES_REQUIRED ${fuzz_name}_dir)
      add_test(NAME ${fuzz_name}_workdir COMMAND ${CMAKE_COMMAND} -E make_directory ${work})
      set_tests_properties(${fuzz_name}_workdir PROPERTIES LABELS fuzz FIXTURES_SETUP ${fuzz_name}_dir)
    endforeach()
  endif()
endfunction()
