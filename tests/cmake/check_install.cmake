# Installs the build tree into a scratch prefix and checks that the executable, its data and the
# launcher link arrive together.
file(REMOVE_RECURSE "${PREFIX}")
execute_process(COMMAND ${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${PREFIX}" RESULT_VARIABLE rc OUTPUT_QUIET)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "cmake --install failed: ${rc}")
endif()
foreach(f lib/tarvelix/tarvelix lib/tarvelix/language/eng.lng bin/tarvelix)
    if(NOT EXISTS "${PREFIX}/${f}")
        message(FATAL_ERROR "missing after install: ${f}")
    endif()
endforeach()
