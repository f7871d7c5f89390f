# Installs the freshly built project into a scratch prefix, then builds and runs the sample
# host project against it with find_package(PLXControls): proves that the exported package
# is complete (headers, libraries, dependencies, the engines' registration) without the
# source tree. Then checks the installed headers: exactly the public ones (no _p.h, and
# every header without _p.h in a library folder), each compiling on its own.
#
# Variables: BUILD_DIR (the project's build tree), SOURCE_DIR, WORK_DIR (scratch folder).
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")

function(run_step)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "step failed (${rc}): ${ARGN}\n${out}\n${err}")
    endif()
    set(step_output "${out}" PARENT_SCOPE)
endfunction()

run_step(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix")
run_step(${CMAKE_COMMAND} -S "${SOURCE_DIR}/samples/hostapp" -B "${WORK_DIR}/host" -G Ninja
         -DCMAKE_BUILD_TYPE=Release "-DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix")
run_step(${CMAKE_COMMAND} --build "${WORK_DIR}/host")

# A database made by the sqlite3 tool, read through the installed library.
run_step(sqlite3 "${WORK_DIR}/people.db"
         "CREATE TABLE T(ID TEXT, NAME TEXT); INSERT INTO T VALUES('PLE0000001','SMITH'),('PLE0000002','JONES');")
run_step("${WORK_DIR}/host/hostapp" "${WORK_DIR}/people.db" T)
if(NOT step_output MATCHES "^2 records")
    message(FATAL_ERROR "hostapp printed: ${step_output}")
endif()
message(STATUS "installed package works: ${step_output}")

# The host's own test of its form, built from the installed test kit (plx::testing): it
# must have been found, built, and pass on both engines.
if(NOT EXISTS "${WORK_DIR}/host/hostapp_test")
    message(FATAL_ERROR "the installed package offered no test kit: hostapp_test was not built")
endif()
run_step(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen "${WORK_DIR}/host/hostapp_test")
if(NOT step_output MATCHES "PASSED  \\] 2 tests")
    message(FATAL_ERROR "hostapp_test printed: ${step_output}")
endif()
message(STATUS "the host's test built on the installed kit passes")

# The Designer plugin where cmake --install put it (under the prefix, in Qt's relative
# plugin folder): it loads from there and makes every control of a designed form.
if(EXISTS "${BUILD_DIR}/designer/designer_tests")
    file(GLOB_RECURSE designer_plugin "${WORK_DIR}/prefix/*libplxdesigner.so")
    if(NOT designer_plugin MATCHES "/designer/libplxdesigner.so$")
        message(FATAL_ERROR "the Designer plugin was not installed under ${WORK_DIR}/prefix")
    endif()
    run_step(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen
             "PLX_DESIGNER_PLUGIN=${designer_plugin}" "${BUILD_DIR}/designer/designer_tests")
    file(RELATIVE_PATH plugin_place "${WORK_DIR}/prefix" "${designer_plugin}")
    message(STATUS "the installed Designer plugin (${plugin_place}) loads and makes every control")
endif()

# plxform, the project's own program, built the way a host builds: from its sources alone,
# against the installed package. Its folder is copied so that its include root holds no
# library header; every other include must come from the prefix. Then it writes its sample
# tables through the installed engines and runs a script on them.
set(form_root "${WORK_DIR}/plxform-src")
file(COPY "${SOURCE_DIR}/apps/plxform" DESTINATION "${form_root}/apps" PATTERN tests EXCLUDE)
file(GLOB form_sources RELATIVE "${form_root}/apps/plxform" "${form_root}/apps/plxform/*.cpp")
list(JOIN form_sources " " form_list)
file(WRITE "${form_root}/apps/plxform/CMakeLists.txt" "cmake_minimum_required(VERSION 3.25)
project(PLXFormFromPackage LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_AUTOMOC ON)
find_package(PLXControls REQUIRED)
find_package(Qt6 REQUIRED COMPONENTS UiTools) # plxform runs forms laid out in Designer
add_executable(plxform ${form_list})
target_include_directories(plxform PRIVATE \"${form_root}\")
target_compile_definitions(plxform PRIVATE PLX_VERSION=\"package\")
target_link_libraries(plxform PRIVATE plx::plx Qt6::UiTools)
")
run_step(${CMAKE_COMMAND} -S "${form_root}/apps/plxform" -B "${WORK_DIR}/form" -G Ninja
         -DCMAKE_BUILD_TYPE=Release "-DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix")
run_step(${CMAKE_COMMAND} --build "${WORK_DIR}/form")
run_step(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen "PLX_HARROWBY_DIR=${WORK_DIR}/harrowby"
         "${WORK_DIR}/form/plxform" --screenshot "${WORK_DIR}/form.png")
foreach(made "sample/foxpro/FACILITY.DBF" "sample/facility.sqlite")
    file(GLOB_RECURSE found "${WORK_DIR}/harrowby/*/${made}")
    if(NOT found)
        message(FATAL_ERROR "plxform from the package did not write ${made}")
    endif()
endforeach()
file(SIZE "${WORK_DIR}/form.png" png_size)
message(STATUS "plxform builds from the installed package, writes its sample and draws "
               "its form (${png_size} bytes)")

# The public surface: the headers without _p.h, and only those, each one self-contained.
set(library_dirs services services/widgets services/recordsource services/recordsource/jet
    services/recordsource/jetsqlite services/recordsource/sqlite services/recordsource/dbf
    services/recordsource/foxpro
    mervane fields navigator dialogs testing)
set(include_root "${WORK_DIR}/prefix/include/plx")
file(GLOB_RECURSE installed RELATIVE "${include_root}" "${include_root}/*.h")
set(problems)
foreach(header IN LISTS installed)
    if(header MATCHES "_p\\.h$")
        list(APPEND problems "private header installed: ${header}")
    endif()
endforeach()
foreach(dir IN LISTS library_dirs)
    file(GLOB headers RELATIVE "${SOURCE_DIR}" "${SOURCE_DIR}/${dir}/*.h")
    foreach(header IN LISTS headers)
        if(NOT header MATCHES "_p\\.h$" AND NOT header IN_LIST installed)
            list(APPEND problems "public header not installed (or a private one without _p.h): ${header}")
        endif()
    endforeach()
endforeach()
if(problems)
    list(JOIN problems "\n  " text)
    message(FATAL_ERROR "installed headers:\n  ${text}")
endif()

set(probe "${WORK_DIR}/headers")
file(MAKE_DIRECTORY "${probe}")
set(probe_sources)
foreach(header IN LISTS installed)
    string(MAKE_C_IDENTIFIER "${header}" name)
    file(WRITE "${probe}/${name}.cpp" "#include \"${header}\"\n")
    list(APPEND probe_sources "${name}.cpp")
endforeach()
list(JOIN probe_sources " " probe_list)
file(WRITE "${probe}/CMakeLists.txt" "cmake_minimum_required(VERSION 3.25)
project(PLXHeaderProbe LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_AUTOMOC OFF)
find_package(PLXControls REQUIRED COMPONENTS testing)
add_library(probe OBJECT ${probe_list})
target_link_libraries(probe PRIVATE plx::plx plx::testing)
")
run_step(${CMAKE_COMMAND} -S "${probe}" -B "${probe}/build" -G Ninja
         -DCMAKE_BUILD_TYPE=Release "-DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix")
run_step(${CMAKE_COMMAND} --build "${probe}/build")
list(LENGTH installed count)
message(STATUS "the ${count} installed headers are the public ones, and each compiles alone")
