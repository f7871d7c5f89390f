# The include check. It keeps the layers a stack (services, record-source interface, Jet
# dialect and table files, engines, controls) that no edit can quietly turn into a cycle,
# and gives each of the three kinds of header one meaning:
#   public     listed in the library's PUBLIC_HEADERS and installed: any program may use it;
#   internal   under the library's internal/ folder, not installed: shared with the project's
#              other libraries (and its benchmarks and tests), never with a program;
#   private    ending in _p.h: the library's own, and its own tests'.
# The rules, each failure one line:
#   - a library's sources include headers of its own folder and of the libraries it links,
#     nothing else of the project;
#   - no file outside a library's folder includes one of its _p.h headers;
#   - an internal header includes no _p.h header;
#   - the programs (apps/, samples/) include only public headers of the libraries (their
#     tests/ may use internal ones, as every test does);
#   - every header of a library is one of the three kinds.
#
# Besides, plx_require_headless(<targets>) stops the configure step when one of them reaches
# Qt Gui or Widgets through its link graph (the record sources and plxsql).
#
# Two halves:
#   include(cmake/CheckLayers.cmake) + plx_write_layer_map(<file>)
#       at configure time, after every library is defined: writes one line per library
#       made by plx_add_library, "<folder>|<folders of the libraries it reaches>|<its public
#       headers>" (lists comma-separated), taken from the real link graph and header sets.
#   cmake -DLAYER_MAP=<file> -DSOURCE_DIR=<project> -P cmake/CheckLayers.cmake
#       reads the map and every source and header of the libraries' folders (a folder's
#       tests/, fuzz/ and tools/ are programs, not the library: only the private-header rule
#       applies to them) and of apps/, samples/, benchmarks/ and tests/.

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
        get_target_property(header_set ${target} HEADER_SET)
        if(NOT header_set)
            set(header_set) # a library without public headers
        endif()
        set(public)
        foreach(header IN LISTS header_set)
            file(RELATIVE_PATH header ${PROJECT_SOURCE_DIR} ${header})
            list(APPEND public ${header})
        endforeach()
        list(JOIN public "," public)
        list(APPEND lines "${dir}|${allowed}|${public}")
    endforeach()
    list(JOIN lines "\n" text)
    file(WRITE ${file} "${text}\n")
endfunction()

# Configure-time: fails when one of `targets` reaches Qt Gui or Qt Widgets through its link
# graph. The record sources and the command-line programs on them run where there is no
# display, so a link to the GUI libraries creeping in from below is an error, not a warning.
function(plx_require_headless)
    foreach(target IN LISTS ARGN)
        _plx_reached_layers(${target} reached)
        foreach(dep IN LISTS reached)
            if(dep MATCHES "^Qt6?::(Gui|Widgets)$")
                message(FATAL_ERROR "${target} must link Qt Core only, but reaches ${dep} "
                                    "through its link libraries")
            endif()
        endforeach()
    endforeach()
endfunction()

# Every library under services/recordsource/ (the layer map's record-source folders).
function(plx_record_source_targets out)
    get_property(targets GLOBAL PROPERTY PLX_LAYER_TARGETS)
    set(found)
    foreach(target IN LISTS targets)
        get_target_property(dir ${target} PLX_LAYER_DIR)
        if(dir MATCHES "^services/recordsource(/|$)")
            list(APPEND found ${target})
        endif()
    endforeach()
    set(${out} ${found} PARENT_SCOPE)
endfunction()

if(NOT CMAKE_SCRIPT_MODE_FILE)
    return()
endif()

# ---- script mode: the check itself ----------------------------------------------------
cmake_minimum_required(VERSION 3.25)

file(STRINGS "${LAYER_MAP}" map_lines)
set(layer_dirs)
set(public_headers)
foreach(line IN LISTS map_lines)
    string(REPLACE "|" ";" fields "${line}")
    list(LENGTH fields count)
    list(GET fields 0 dir)
    set(allowed)
    if(count GREATER 1)
        list(GET fields 1 allowed)
        string(REPLACE "," ";" allowed "${allowed}")
    endif()
    if(count GREATER 2)
        list(GET fields 2 public)
        string(REPLACE "," ";" public "${public}")
        list(APPEND public_headers ${public})
    endif()
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

# The project headers a file includes by their project-relative path.
function(_plx_includes file out)
    file(STRINGS "${SOURCE_DIR}/${file}" lines REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
    set(headers)
    foreach(line IN LISTS lines)
        string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*\"([^\"]+)\".*" "\\1" header "${line}")
        if(EXISTS "${SOURCE_DIR}/${header}") # not generated, nor relative to the file
            list(APPEND headers "${header}")
        endif()
    endforeach()
    set(${out} ${headers} PARENT_SCOPE)
endfunction()

# True in `out` when a path inside a library's folder is a program (tests, fuzzers, tools).
function(_plx_is_program inside out)
    if(inside MATCHES "(^|/)(tests|fuzz|tools)/")
        set(${out} TRUE PARENT_SCOPE)
    else()
        set(${out} FALSE PARENT_SCOPE)
    endif()
endfunction()

set(failures)

# The libraries: what they link, and the kinds of their headers.
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
        _plx_is_program("${inside}" program)
        if(program)
            continue()
        endif()
        if(file MATCHES "\\.h$" AND NOT file MATCHES "_p\\.h$" AND NOT inside MATCHES "^internal/"
           AND NOT file IN_LIST public_headers)
            list(APPEND failures
                 "${file} is neither a public header of ${dir}, nor under internal/, nor _p.h")
        endif()
        _plx_includes("${file}" headers)
        foreach(header IN LISTS headers)
            _plx_owner("${header}" header_owner)
            if(inside MATCHES "^internal/" AND header MATCHES "_p\\.h$")
                list(APPEND failures
                     "${file} is an internal header but includes the private \"${header}\"")
            endif()
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

# Every file of the tree, programs included: no other library's private headers, and the
# programs only public ones.
set(patterns)
foreach(top IN LISTS layer_dirs ITEMS apps samples benchmarks tests)
    list(APPEND patterns "${SOURCE_DIR}/${top}/*.h" "${SOURCE_DIR}/${top}/*.cpp")
endforeach()
file(GLOB_RECURSE files RELATIVE "${SOURCE_DIR}" ${patterns})
list(REMOVE_DUPLICATES files)
foreach(file IN LISTS files)
    _plx_owner("${file}" owner)
    _plx_includes("${file}" headers)
    foreach(header IN LISTS headers)
        _plx_owner("${header}" header_owner)
        if(header_owner STREQUAL "" OR header_owner STREQUAL owner)
            continue()
        endif()
        if(header MATCHES "_p\\.h$")
            list(APPEND failures
                 "${file} includes \"${header}\", a private header of ${header_owner}")
        elseif(file MATCHES "^(apps|samples)/" AND NOT file MATCHES "/tests/"
               AND NOT header IN_LIST public_headers)
            list(APPEND failures
                 "${file} includes \"${header}\", which is not a public header of ${header_owner}")
        endif()
    endforeach()
endforeach()

if(failures)
    list(JOIN failures "\n  " text)
    message(FATAL_ERROR "include check failed:\n  ${text}")
endif()
list(LENGTH layer_dirs count)
message(STATUS "include check: the ${count} libraries include only what they link, and "
               "private and internal headers stay where they belong")
