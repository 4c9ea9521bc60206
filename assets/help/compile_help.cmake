# Compiles the help project in SOURCES into OUTPUT: cmake -D... -P compile_help.cmake.
# Any error or warning of the compiler ends the build: its exit status alone does not tell.
file(REMOVE_RECURSE ${STAGE})
file(COPY ${SOURCES}/ DESTINATION ${STAGE} FILES_MATCHING
  PATTERN "*.html" PATTERN "*.css" PATTERN "*.hh?")
execute_process(COMMAND ${CHMCMD} help.hhp WORKING_DIRECTORY ${STAGE}
  RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT status EQUAL 0 OR output MATCHES "(Error|Warning):" OR NOT EXISTS ${STAGE}/Help.chm)
  message(FATAL_ERROR "The help can not be compiled:\n${output}")
endif()
execute_process(COMMAND ${COMPLETE_CONTEXTS} ${STAGE}/Help.chm COMMAND_ERROR_IS_FATAL ANY)
get_filename_component(folder ${OUTPUT} DIRECTORY)
file(COPY ${STAGE}/Help.chm DESTINATION ${folder})
