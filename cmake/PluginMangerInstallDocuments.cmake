# Has the links in installed documents lead to what is installed. Run when documents are installed, with
#
# documents    the documents, as paths below sourceDir
# sourceDir    the folder of the sources
# docDir, headerDir, dataDir    where documents, headers and data lie below the prefix
#
# A link to sources that are not installed becomes plain text.

# Sets `result` to where a file or folder of the sources lies below the prefix, empty when it is not installed.
function(find_installed path result)
    set(installed "")
    if(path MATCHES "^(README|CHANGELOG|docs|examples)")
        set(installed ${docDir}/${path})
    elseif(path MATCHES "^tests/package/guide(/.*)?$")
        set(installed ${docDir}/examples/guide${CMAKE_MATCH_1})
    elseif(path MATCHES "^src/[^/]+(/[^/]+\\.h)?$")
        set(installed ${headerDir}${CMAKE_MATCH_1})
    elseif(path MATCHES "^schema(/.*)?$")
        set(installed ${dataDir}${CMAKE_MATCH_1})
    endif()
    set(${result} "${installed}" PARENT_SCOPE)
endfunction()

# Sets `result` to what stands for a link in an installed document. Code may look like a link that leads nowhere.
function(rewrite_link document text link result)
    set(${result} "[${text}](${link})" PARENT_SCOPE)
    string(REGEX MATCH "^([^#]*)(#.*)?$" matched "${link}")
    set(target "${CMAKE_MATCH_1}")
    set(anchor "${CMAKE_MATCH_2}")
    get_filename_component(folder ${sourceDir}/${document} DIRECTORY)
    get_filename_component(path "${target}" ABSOLUTE BASE_DIR ${folder})
    if(target STREQUAL "" OR target MATCHES "://" OR NOT EXISTS ${path})
        return()
    endif()
    file(RELATIVE_PATH path ${sourceDir} ${path})
    find_installed("${path}" installed)
    if(installed STREQUAL "")
        set(${result} "${text}" PARENT_SCOPE)
    else()
        get_filename_component(folder /${docDir}/${document} DIRECTORY)
        file(RELATIVE_PATH target ${folder} /${installed})
        set(${result} "[${text}](${target}${anchor})" PARENT_SCOPE)
    endif()
endfunction()

foreach(document IN LISTS documents)
    file(READ ${sourceDir}/${document} rest)
    set(content "")
    while(rest MATCHES "\\[([^]]*)\\]\\(([^) \n]+)\\)")
        string(FIND "${rest}" "${CMAKE_MATCH_0}" begin)
        string(LENGTH "${CMAKE_MATCH_0}" length)
        rewrite_link(${document} "${CMAKE_MATCH_1}" "${CMAKE_MATCH_2}" link)
        string(SUBSTRING "${rest}" 0 ${begin} before)
        math(EXPR begin "${begin} + ${length}")
        string(SUBSTRING "${rest}" ${begin} -1 rest)
        string(APPEND content "${before}${link}")
    endwhile()
    file(WRITE $ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${docDir}/${document} "${content}${rest}")
endforeach()
