# The include check: a library's sources may include headers of its own folder and of the
# libraries it links, nothing else of the project. It keeps the layers a stack (services,
# record-source interface, Jet dialect and table files, engines, controls) that no edit
# can quietly turn into a cycle.
#
# Two halves:
#   include(cmake/CheckLayers.cmake) + plx_write_layer_map(<file>)
#       at configure time, after every library is defined: writes one line per library
#       made by plx_add_library, "<folder>|<folders of the libraries it reaches, comma-separated>", taken
#       from the real link graph.
#   cmake -DLAYER_MAP=<file> -DSOURCE_DIR=<project> -P cmake/CheckLayers.cmake
#       reads the map and every source and header of each folder (a folder's tests/,
#       fuzz/ and tools/ are programs, not the library, and are skipped), and fails with
#       one line per include that reaches past what the library links.

# Collects into `out` the plx layer targets that `target` reaches through its link
# libraries, following the layer targets only.
function(_plx_reached_layers target out)
    set(seen)
    set(queue ${target})
    while(queue)
        list(POP_FRONT queue current)
        foreach(prop LINK_LIBRARIES INTERFACE_LINK_LIBRARIES)
            get_target_property(deps ${current} ${prop})
            if(NOT deps)
                continue()
            endif()
            foreach(dep IN LISTS deps)
                if(NOT TARGET ${dep})
                    continue()
                endif()
                get_target_property(aliased ${dep} ALIASED_TARGET)
                if(aliased)
                    set(dep ${aliased})
                endif()
                if(NOT dep IN_LIST seen)
                    list(APPEND seen ${dep})
                    list(APPEND queue ${dep})
                endif()
            endforeach()
        endforeach()
    endwhile()
    set(${out} ${seen} PARENT_SCOPE)
endfunction()

function(plx_write_layer_map file)
    get_property(targets GLOBAL PROPERTY PLX_LAYER_TARGETS)
    set(lines)
    foreach(target IN LISTS targets)
        get_target_property(dir ${target} PLX_LAYER_DIR)
        _plx_reached_layers(${target} reached)
        set(allowed)
        foreach(dep IN LISTS reached)
            get_target_property(type ${dep} TYPE)
            if(type STREQUAL "INTERFACE_LIBRARY")
                continue() # plx::backends and the like only bundle other layers
            endif()
            get_target_property(dep_dir ${dep} PLX_LAYER_DIR)
            if(dep_dir)
                list(APPEND allowed ${dep_dir})
            endif()
        endforeach()
        list(REMOVE_DUPLICATES allowed)
        list(JOIN allowed "," allowed)
        list(APPEND lines "${dir}|${allowed}")
    endforeach()
    list(JOIN lines "\n" text)
    file(WRITE ${file} "${text}\n")
endfunction()

if(NOT CMAKE_SCRIPT_MODE_FILE)
    return()
endif()

# ---- script mode: the check itself ----------------------------------------------------
cmake_minimum_required(VERSION 3.25)

file(STRINGS "${LAYER_MAP}" map_lines)
set(layer_dirs)
foreach(line IN LISTS map_lines)
    string(FIND "${line}" "|" bar)
    string(SUBSTRING "${line}" 0 ${bar} dir)
    math(EXPR rest "${bar} + 1")
    string(SUBSTRING "${line}" ${rest} -1 allowed)
    string(REPLACE "," ";" allowed "${allowed}")
    list(APPEND layer_dirs "${dir}")
    string(MAKE_C_IDENTIFIER "${dir}" key)
    set(allowed_${key} "${allowed}")
endforeach()

# The layer folder that owns a project-relative path: the longest folder that is a prefix
# of it; empty when none is.
function(_plx_owner path out)
    set(best "")
    string(LENGTH "" best_len)
    foreach(dir IN LISTS layer_dirs)
        string(LENGTH "${dir}" len)
        string(FIND "${path}" "${dir}/" pos)
        if(pos EQUAL 0 AND len GREATER best_len)
            set(best "${dir}")
            set(best_len ${len})
        endif()
    endforeach()
    set(${out} "${best}" PARENT_SCOPE)
endfunction()

set(failures)
foreach(dir IN LISTS layer_dirs)
    string(MAKE_C_IDENTIFIER "${dir}" key)
    set(allowed ${allowed_${key}})
    file(GLOB_RECURSE files RELATIVE "${SOURCE_DIR}"
         "${SOURCE_DIR}/${dir}/*.h" "${SOURCE_DIR}/${dir}/*.cpp")
    foreach(file IN LISTS files)
        _plx_owner("${file}" owner)
        if(NOT owner STREQUAL dir)
            continue() # a deeper library's folder: checked as that library
        endif()
        string(LENGTH "${dir}/" skip)
        string(SUBSTRING "${file}" ${skip} -1 inside)
        if(inside MATCHES "(^|/)(tests|fuzz|tools)/")
            continue()
        endif()
        file(STRINGS "${SOURCE_DIR}/${file}" includes REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
        foreach(include IN LISTS includes)
            string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*\"([^\"]+)\".*" "\\1" header "${include}")
            if(NOT EXISTS "${SOURCE_DIR}/${header}")
                continue() # generated, or relative to the including file's folder
            endif()
            _plx_owner("${header}" header_owner)
            if(header_owner STREQUAL dir OR header_owner IN_LIST allowed)
                continue()
            endif()
            if(header_owner STREQUAL "")
                set(header_owner "no library")
            endif()
            list(APPEND failures
                 "${file} includes \"${header}\" of ${header_owner}, which ${dir} does not link")
        endforeach()
    endforeach()
endforeach()

if(failures)
    list(JOIN failures "\n  " text)
    message(FATAL_ERROR "include check failed:\n  ${text}")
endif()
list(LENGTH layer_dirs count)
message(STATUS "include check: the ${count} libraries include only what they link")
