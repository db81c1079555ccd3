# Options of all targets, and one function for each kind of target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_INCLUDE_CURRENT_DIR OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_library(meshpad_options INTERFACE)
target_include_directories(meshpad_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(meshpad_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
target_compile_definitions(meshpad_options INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_STRICT_ITERATORS)
if(MESHPAD_SANITIZERS)
    add_compile_options(-fsanitize=${MESHPAD_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${MESHPAD_SANITIZERS})
endif()
if(MESHPAD_BUILD_FUZZERS)
    add_compile_options(-fsanitize=fuzzer-no-link) # libFuzzer needs coverage of the code under test
endif()

# meshpad_library(<target> SOURCES <file>... [LINK <target>...]): a static library.
function(meshpad_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_library(${target} STATIC ${arg_SOURCES})
    target_link_libraries(${target} PUBLIC meshpad_options ${arg_LINK})
endfunction()

# meshpad_executable(<target> SOURCES <file>... [LINK <target>...]): a program.
function(meshpad_executable target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_executable(${target} ${arg_SOURCES})
    target_link_libraries(${target} PRIVATE meshpad_options ${arg_LINK})
    set_target_properties(${target} PROPERTIES WIN32_EXECUTABLE ON)
endfunction()

# meshpad_test(<name> SOURCES <file>... [LINK <target>...] [INTERFACE] [DISPLAY] [TIMEOUT <s>]
#              [DEPENDS <target>...] [ENVIRONMENT <name=value>...]):
# a Qt Test program that CTest runs in a network namespace of its own, never on the machine's network.
# INTERFACE gives that namespace a virtual interface with broadcast, DISPLAY an X server.
function(meshpad_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "INTERFACE;DISPLAY" "TIMEOUT"
                          "SOURCES;LINK;DEPENDS;ENVIRONMENT")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE meshpad_options ${arg_LINK} Qt6::Test)
    if(TARGET meshpad_test_support)
        target_link_libraries(${name} PRIVATE meshpad_test_support)
    endif()
    if(arg_DEPENDS)
        add_dependencies(${name} ${arg_DEPENDS})
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300) # generous, for a busy machine
    endif()
    if(CMAKE_CROSSCOMPILING)
        return() # scripts/test-windows runs the programs
    endif()
    set(wrapper ${CMAKE_SOURCE_DIR}/scripts/in-namespace)
    if(arg_INTERFACE)
        list(APPEND wrapper --interface)
    endif()
    if(arg_DISPLAY)
        list(APPEND wrapper --display)
    endif()
    add_test(NAME ${name} COMMAND ${wrapper} -- $<TARGET_FILE:${name}>)
    if(arg_DISPLAY)
        list(APPEND arg_ENVIRONMENT QT_QPA_PLATFORM=xcb LIBGL_ALWAYS_SOFTWARE=1)
    else()
        list(APPEND arg_ENVIRONMENT QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software)
    endif()
    set(runtime_suppressions ${CMAKE_SOURCE_DIR}/tests/support)
    list(APPEND arg_ENVIRONMENT
        LC_ALL=C.UTF-8
        QT_LOGGING_RULES=
        LSAN_OPTIONS=suppressions=${runtime_suppressions}/lsan.supp:print_suppressions=0
        TSAN_OPTIONS=suppressions=${runtime_suppressions}/tsan.supp:halt_on_error=1:die_after_fork=0
        UBSAN_OPTIONS=print_stacktrace=1)
    if(MESHPAD_SANITIZERS MATCHES thread)
        list(APPEND arg_ENVIRONMENT QT_NO_GLIB=1) # GLib is not instrumented
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} ENVIRONMENT "${arg_ENVIRONMENT}")
endfunction()

# meshpad_benchmark(<name> SOURCES <file>... [LINK <target>...]): a Google Benchmark program.
function(meshpad_benchmark name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    find_package(benchmark REQUIRED)
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE meshpad_options ${arg_LINK} benchmark::benchmark)
endfunction()

# meshpad_fuzzer(<name> SOURCES <file>... [LINK <target>...] SEEDS <folder>): a libFuzzer program.
function(meshpad_fuzzer name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "SEEDS" "SOURCES;LINK")
    add_executable(${name} ${arg_SOURCES})
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_libraries(${name} PRIVATE meshpad_options ${arg_LINK})
    set_target_properties(${name} PROPERTIES MESHPAD_SEEDS ${arg_SEEDS})
endfunction()

# Adds the folders that exist, so that a partial checkout builds, too.
function(meshpad_add_folders)
    foreach(folder IN LISTS ARGN)
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CMakeLists.txt)
            add_subdirectory(${folder})
        endif()
    endforeach()
endfunction()
