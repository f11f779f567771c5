# cmake -D compile=<command> -D source=<file> -D define=<definition> [-D word=<word>] -P compile.cmake
#
# Compiles the source with the definition. With a word, that must fail with an error that tells of it.
execute_process(COMMAND ${compile} -D${define} ${source}
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT word)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "does not compile:\n${output}")
    endif()
elseif(result EQUAL 0)
    message(FATAL_ERROR "compiles all the same")
elseif(NOT output MATCHES "error:[^\n]*${word}")
    message(FATAL_ERROR "is refused for something else than ${word}:\n${output}")
endif()
