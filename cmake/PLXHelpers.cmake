# Helpers that keep each folder's CMakeLists.txt short.
#
# plx_add_library(<name> [PUBLIC_HEADERS h...] [SOURCES s...] [DEPS d...] [PRIVATE_DEPS d...]
#                 [KEEP_SYMBOL sym] [NO_INSTALL] [EXPORT_SET set])
#   Builds static library plx_<name> with alias plx::<name>. Public headers are installed
#   under include/plx/<folder>/ so that "#include "services/ini.h"" works in the tree and
#   after installation alike; every other header of the folder is private and ends in _p.h.
#   KEEP_SYMBOL makes every program that links the library keep the object defining `sym`
#   (an engine's self-registration, which nothing calls). NO_INSTALL keeps a build-only
#   library (table generators for tools and benchmarks) out of the package. EXPORT_SET
#   installs it into another export set than PLXControlsTargets (the test kit, whose
#   GoogleTest dependency a host without it must not need).
#   The folder holding CMakeLists.txt is the library's layer for the include check
#   (cmake/CheckLayers.cmake): its sources may include headers of the libraries it links.
function(plx_add_library name)
    cmake_parse_arguments(A "NO_INSTALL" "KEEP_SYMBOL;EXPORT_SET" "PUBLIC_HEADERS;SOURCES;DEPS;PRIVATE_DEPS" ${ARGN})
    if(NOT A_EXPORT_SET)
        set(A_EXPORT_SET PLXControlsTargets)
    endif()
    set(target plx_${name})
    add_library(${target} STATIC ${A_SOURCES})
    add_library(plx::${name} ALIAS ${target})
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${name} POSITION_INDEPENDENT_CODE ON)
    if(A_PUBLIC_HEADERS)
        target_sources(${target} PUBLIC FILE_SET HEADERS
            BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${A_PUBLIC_HEADERS})
    endif()
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/plx>)
    target_link_libraries(${target} PUBLIC ${A_DEPS} PRIVATE $<BUILD_INTERFACE:plx_options> ${A_PRIVATE_DEPS})
    if(A_KEEP_SYMBOL)
        target_link_options(${target} INTERFACE
            $<$<CXX_COMPILER_ID:MSVC>:LINKER:/INCLUDE:${A_KEEP_SYMBOL}>
            $<$<NOT:$<CXX_COMPILER_ID:MSVC>>:LINKER:--undefined=${A_KEEP_SYMBOL}>)
    endif()
    file(RELATIVE_PATH layer_dir ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    set_property(GLOBAL APPEND PROPERTY PLX_LAYER_TARGETS ${target})
    set_target_properties(${target} PROPERTIES PLX_LAYER_DIR "${layer_dir}")
    if(PLX_INSTALL AND NOT A_NO_INSTALL)
        install(TARGETS ${target} EXPORT ${A_EXPORT_SET}
                FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/plx)
    endif()
endfunction()

# A library that has no compiled sources yet: it still gives hosts a stable target name.
function(plx_add_interface_library name)
    cmake_parse_arguments(A "" "" "DEPS" ${ARGN})
    add_library(plx_${name} INTERFACE)
    add_library(plx::${name} ALIAS plx_${name})
    set_target_properties(plx_${name} PROPERTIES EXPORT_NAME ${name})
    target_link_libraries(plx_${name} INTERFACE ${A_DEPS})
    if(PLX_INSTALL)
        install(TARGETS plx_${name} EXPORT PLXControlsTargets)
    endif()
endfunction()

# plx_add_test(<name> SOURCES s... [DEPS d...] [LABEL l])
#   A GoogleTest executable linked with the shared test support (QApplication main,
#   scripted prompter, temporary folders); one CTest entry per test.
function(plx_add_test name)
    if(NOT PLX_BUILD_TESTS)
        return()
    endif()
    cmake_parse_arguments(A "" "LABEL;TIMEOUT" "SOURCES;DEPS" ${ARGN})
    if(NOT A_TIMEOUT)
        set(A_TIMEOUT 300)
    endif()
    add_executable(${name} ${A_SOURCES})
    target_link_libraries(${name} PRIVATE ${A_DEPS} plx_test_support $<BUILD_INTERFACE:plx_options>)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
        PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen"
                   ENVIRONMENT_MODIFICATION "PLX_SOURCE_DIR=set:${PROJECT_SOURCE_DIR}"
                   LABELS "${A_LABEL}" TIMEOUT ${A_TIMEOUT})
endfunction()

# plx_add_benchmark(<file.cpp> [DEPS d...]): one Google Benchmark program per workload.
function(plx_add_benchmark file)
    cmake_parse_arguments(A "" "" "DEPS" ${ARGN})
    get_filename_component(name ${file} NAME_WE)
    add_executable(${name} ${file})
    target_link_libraries(${name} PRIVATE ${A_DEPS} benchmark::benchmark $<BUILD_INTERFACE:plx_options>)
endfunction()
