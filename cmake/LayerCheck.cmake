# Fails when a source file includes a folder above its own layer. Run with
#   cmake -DSOURCE_DIR=<checkout> -P cmake/LayerCheck.cmake
# Each folder of src/ is a layer, lowest first; a file may include its own
# layer and those below it. Folders on one line are peers that do not include
# each other.
set(layers
    "platform"
    "model"
    "notes"
    "storage"
    "views"
    "exchange"
    "integration;reminders;tools"
    "rows"
    "noteeditor"
    "shell"
    "cli;app")

set(rank 0)
foreach(line IN LISTS layers)
    foreach(folder ${line})
        set(rank_${folder} ${rank})
    endforeach()
    math(EXPR rank "${rank} + 1")
endforeach()

file(GLOB_RECURSE sources RELATIVE "${SOURCE_DIR}/src" "${SOURCE_DIR}/src/*.h" "${SOURCE_DIR}/src/*.cpp")
set(breaches "")
foreach(source IN LISTS sources)
    string(REGEX MATCH "^[^/]+" own "${source}")
    if(NOT DEFINED rank_${own})
        list(APPEND breaches "src/${source}: folder '${own}' has no place in the layer order")
        continue()
    endif()
    file(STRINGS "${SOURCE_DIR}/src/${source}" includes REGEX "^#include \"[^/\"]+/")
    foreach(include IN LISTS includes)
        string(REGEX REPLACE "^#include \"([^/\"]+)/.*" "\\1" folder "${include}")
        if(NOT DEFINED rank_${folder})
            list(APPEND breaches "src/${source}: includes unknown folder '${folder}'")
        elseif(rank_${folder} GREATER rank_${own}
               OR (rank_${folder} EQUAL rank_${own} AND NOT folder STREQUAL own))
            list(APPEND breaches "src/${source}: ${own} may not include ${folder} (${include})")
        endif()
    endforeach()
endforeach()

if(breaches)
    list(JOIN breaches "\n  " text)
    message(FATAL_ERROR "Includes that go up the layer order:\n  ${text}")
endif()
