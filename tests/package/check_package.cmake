# Installs the freshly built project into a scratch prefix, then builds and runs the sample
# host project against it with find_package(PLXControls): proves that the exported package
# is complete (headers, libraries, dependencies) without the source tree.
#
# Variables: BUILD_DIR (the project's build tree), SOURCE_DIR, WORK_DIR (scratch folder).
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
