# One folder, one target. A folder's headers are reached as "<folder>/X.h" and only by targets that link it: each
# target exposes a directory that holds nothing but a link to its own folder, so a wrong include does not build.

include(GNUInstallDirs)
find_package(Threads REQUIRED)

add_library(kdv_options INTERFACE)
target_compile_features(kdv_options INTERFACE cxx_std_17)
target_compile_options(kdv_options INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -Woverloaded-virtual -Wformat=2 -Werror
    -fvisibility=hidden -fvisibility-inlines-hidden -fstack-protector-strong)
target_link_libraries(kdv_options INTERFACE Threads::Threads)

set(KDV_SANITIZE "" CACHE STRING "sanitizers to build with: address,undefined or thread")
if(KDV_SANITIZE)
    add_compile_options(-fsanitize=${KDV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${KDV_SANITIZE})
    if(KDV_SANITIZE STREQUAL "thread")
        # The thread sanitizer loses its way (false races, impossible mappings) when a new thread gets the stack of a
        # finished one that used thread-local variables of a library loaded at run time; static ones are no trouble.
        add_compile_options(-ftls-model=initial-exec)
    endif()
endif()

if(KDV_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link) # the fuzzer must see the ways that it takes through the libraries
endif()

# Makes "<name>/..." of the current folder visible to whoever links the target.
function(_kdv_expose target name scope)
    set(view "${CMAKE_BINARY_DIR}/include/${target}")
    file(MAKE_DIRECTORY "${view}")
    file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}" "${view}/${name}" SYMBOLIC)
    target_include_directories(${target} ${scope} "${view}")
endfunction()

# kdv_headers(target NAME name [LINKS ...]): a folder of headers only.
function(kdv_headers target)
    cmake_parse_arguments(arg "" "NAME" "LINKS" ${ARGN})
    add_library(${target} INTERFACE)
    _kdv_expose(${target} ${arg_NAME} INTERFACE)
    target_link_libraries(${target} INTERFACE ${arg_LINKS})
endfunction()

# kdv_library(target NAME name SOURCES ... [SHARED OUTPUT name] [LINKS ...] [PRIVATE_LINKS ...])
# Without SHARED it is a static library of position-independent code.
function(kdv_library target)
    cmake_parse_arguments(arg "SHARED" "NAME;OUTPUT" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
    if(arg_SHARED)
        add_library(${target} SHARED ${arg_SOURCES})
        # nodelete: a thread that is on its way out never runs in unmapped code.
        target_link_options(${target} PRIVATE -Wl,-z,nodelete -Wl,-z,relro -Wl,-z,now)
        if(NOT KDV_SANITIZE)
            target_link_options(${target} PRIVATE -Wl,-z,defs)
        endif()
        set_target_properties(${target} PROPERTIES OUTPUT_NAME ${arg_OUTPUT})
        install(TARGETS ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    else()
        add_library(${target} STATIC ${arg_SOURCES})
    endif()
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    _kdv_expose(${target} ${arg_NAME} PUBLIC)
    target_link_libraries(${target} PUBLIC ${arg_LINKS} PRIVATE kdv_options ${arg_PRIVATE_LINKS})
endfunction()

# kdv_program(target SOURCES ... [LINKS ...]): a program in bin/.
function(kdv_program target)
    cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
    add_executable(${target} ${arg_SOURCES})
    target_link_libraries(${target} PRIVATE kdv_options ${arg_LINKS})
    install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()

# kdv_add_test(name SOURCES ... [LINKS ...] [LABELS ...] [ENVIRONMENT ...] [DEPENDS targets ...]): a GoogleTest program,
# one ctest entry a program. DEPENDS names targets that it loads or starts at run time.
function(kdv_add_test name)
    cmake_parse_arguments(arg "" "TIMEOUT" "SOURCES;LINKS;LABELS;ENVIRONMENT;DEPENDS" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE kdv_options ${arg_LINKS} GTest::gmock GTest::gtest_main)
    target_compile_definitions(${name} PRIVATE
        KDV_SOURCE_DIR="${CMAKE_SOURCE_DIR}" KDV_BUILD_DIR="${CMAKE_BINARY_DIR}")
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
    if(arg_DEPENDS)
        add_dependencies(${name} ${arg_DEPENDS})
    endif()
    add_test(NAME ${name} COMMAND ${name})
    _kdv_test_properties(${name} "${arg_LABELS}" "${arg_ENVIRONMENT}" "${arg_TIMEOUT}")
endfunction()

# kdv_add_script_test(name COMMAND ... [LABELS ...] [ENVIRONMENT ...]): a test that is a script.
function(kdv_add_script_test name)
    cmake_parse_arguments(arg "" "TIMEOUT" "COMMAND;LABELS;ENVIRONMENT" ${ARGN})
    add_test(NAME ${name} COMMAND ${arg_COMMAND})
    _kdv_test_properties(${name} "${arg_LABELS}" "${arg_ENVIRONMENT}" "${arg_TIMEOUT}")
endfunction()

# kdv_add_fuzz(name SOURCE file CORPUS folders ... [LINKS ...]): everywhere a test <name>_corpus_test that plays the
# corpus and fixed damages of it; where KDV_FUZZ is on also the libFuzzer program <name>_fuzz with a short run as a test.
# Longer runs: build/fuzz/tests/<name>_fuzz -max_total_time=600 NEW-FOLDER CORPUS
function(kdv_add_fuzz name)
    cmake_parse_arguments(arg "" "SOURCE" "CORPUS;LINKS" ${ARGN})
    kdv_add_test(${name}_corpus_test
        SOURCES ${arg_SOURCE} "${CMAKE_SOURCE_DIR}/tests/fuzz/CorpusReplay.cpp"
        LINKS ${arg_LINKS}
        LABELS fuzz)
    list(JOIN arg_CORPUS ":" folders)
    target_compile_definitions(${name}_corpus_test PRIVATE KDV_CORPUS="${folders}")
    if(KDV_FUZZ)
        add_executable(${name}_fuzz ${arg_SOURCE})
        target_link_options(${name}_fuzz PRIVATE -fsanitize=fuzzer)
        target_link_libraries(${name}_fuzz PRIVATE kdv_options ${arg_LINKS})
        set_target_properties(${name}_fuzz PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
        add_test(NAME ${name}_fuzz COMMAND ${name}_fuzz -runs=20000 -seed=1 -max_len=4096 -timeout=20 ${arg_CORPUS})
        set_tests_properties(${name}_fuzz PROPERTIES LABELS fuzz TIMEOUT 300)
    endif()
endfunction()

function(_kdv_test_properties name labels environment timeout)
    if(NOT timeout)
        set(timeout 900) # generous: the thread sanitizer on a busy machine needs a dozen times as long
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${timeout} LABELS "${labels}"
        ENVIRONMENT "ASAN_OPTIONS=detect_stack_use_after_return=1;UBSAN_OPTIONS=print_stacktrace=1;TSAN_OPTIONS=halt_on_error=1 suppressions=${CMAKE_SOURCE_DIR}/tests/tsan.supp;${environment}")
endfunction()
