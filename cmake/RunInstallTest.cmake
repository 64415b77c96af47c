# Script run by CTest: install, build the consumer, run it, check the pkg-config file is there.
file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "command failed (${rc}): ${ARGN}\n${out}\n${err}")
    endif()
    set(last_output "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${prefix}")
# Every installed header must compile on its own: one translation unit per header.
file(GLOB installed_headers RELATIVE "${prefix}/include" "${prefix}/include/Util/*.h")
set(header_dir "${WORK_DIR}/headers")
foreach(h IN LISTS installed_headers)
    get_filename_component(stem "${h}" NAME_WE)
    file(WRITE "${header_dir}/${stem}.cpp" "#include \"${h}\"\n")
endforeach()

set(cross "")
if(TOOLCHAIN)
    # The toolchain searches only its own roots: the package is named by its folder.
    set(cross "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}" "-DZT_WINDOWS_DEPS=${WINDOWS_DEPS}"
              "-DZtUtilities_DIR=${prefix}/lib/cmake/ZtUtilities")
endif()
run(${CMAKE_COMMAND} -S "${CONSUMER_DIR}" -B "${WORK_DIR}/consumer" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DHEADER_TU_DIR=${header_dir}"
    "-DCMAKE_CXX_FLAGS=${CONSUMER_FLAGS}"
    "-DCMAKE_EXE_LINKER_FLAGS=${CONSUMER_FLAGS}" ${cross})
run(${CMAKE_COMMAND} --build "${WORK_DIR}/consumer")
find_program(consumer NAMES consumer consumer.exe PATHS "${WORK_DIR}/consumer" NO_DEFAULT_PATH
             REQUIRED)
if(EMULATOR)
    # Windows finds the installed DLL and the compiler's runtime DLLs beside the program.
    file(GLOB dlls "${prefix}/bin/*.dll" "${RUNTIME_DIR}/lib*-*.dll")
    file(COPY ${dlls} DESTINATION "${WORK_DIR}/consumer")
endif()
run(${EMULATOR} "${consumer}")
if(NOT last_output MATCHES "Cannot open ledger.dat")
    message(FATAL_ERROR "unexpected consumer output: ${last_output}")
endif()

file(GLOB_RECURSE pc_files "${prefix}/*/ZtUtilities.pc")
if(NOT pc_files)
    message(FATAL_ERROR "no pkg-config file installed")
endif()
message(STATUS "consumer: ${last_output}")
