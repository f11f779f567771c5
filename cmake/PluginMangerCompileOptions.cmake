# How this project compiles its own targets. Nothing of it reaches those who link them.
function(pluginmanger_compile_options target)
    target_compile_definitions(${target} PRIVATE QT_NO_FOREACH QT_DEPRECATED_WARNINGS)
    if(MSVC)
        target_compile_options(${target} PRIVATE
            /W4 /utf-8 /permissive- /Zc:__cplusplus $<$<BOOL:${PLUGINMANGER_WARNINGS_AS_ERRORS}>:/WX>)
    else()
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
            -Wold-style-cast $<$<BOOL:${PLUGINMANGER_WARNINGS_AS_ERRORS}>:-Werror>)
    endif()
    set_target_properties(${target} PROPERTIES
        CXX_STANDARD 17
        CXX_STANDARD_REQUIRED ON
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
endfunction()
