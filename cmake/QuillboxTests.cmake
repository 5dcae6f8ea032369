# One helper registers every Qt Test suite: each tests/<dir>/tst_<unit>.cpp is
# its own executable and CTest test. Suites under tests/rows, tests/noteeditor
# and tests/shell link the desktop library and run on the offscreen platform;
# the suites under tests/cli run the qbx program and form one program,
# tst_qbx. Shared helpers live in tests/support/. Suites under tests/app run the quillbox program with the
# desktop library at hand; suites under tests/packaging install or package
# this build.
function(quillbox_add_test src)
    get_filename_component(name ${src} NAME_WE)
    get_filename_component(dir ${src} DIRECTORY)
    get_filename_component(area ${dir} NAME)
    set(gui FALSE)
    if(area MATCHES "^(rows|noteeditor|shell|app)$")
        if(NOT TARGET quillbox_ui)
            return()
        endif()
        set(gui TRUE)
    endif()
    if(gui)
        add_executable(${name} ${src} ${CMAKE_CURRENT_SOURCE_DIR}/tests/support/scriptedprompts.cpp)
        target_link_libraries(${name} PRIVATE quillbox_ui Qt6::Test)
    elseif(area STREQUAL "cli")
        # The qbx suites are one program: its runner and every suite beside it.
        file(GLOB suites CONFIGURE_DEPENDS ${dir}/*.cpp)
        add_executable(${name} ${suites})
        target_link_libraries(${name} PRIVATE quillbox_core Qt6::Test)
    else()
        add_executable(${name} ${src})
        target_link_libraries(${name} PRIVATE quillbox_core Qt6::Test)
    endif()
    target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/tests)
    target_compile_definitions(${name} PRIVATE QUILLBOX_SOURCE_DIR="${CMAKE_CURRENT_SOURCE_DIR}"
                                               QUILLBOX_BINARY_DIR="${CMAKE_BINARY_DIR}")
    if(area STREQUAL "cli")
        add_dependencies(${name} qbx)
    elseif(area STREQUAL "app")
        add_dependencies(${name} quillbox)
    elseif(area STREQUAL "packaging")
        add_dependencies(${name} qbx)
        set(with_gui 0)
        if(TARGET quillbox)
            add_dependencies(${name} quillbox)
            set(with_gui 1)
        endif()
        target_compile_definitions(${name} PRIVATE QUILLBOX_WITH_GUI=${with_gui}
                                                   QUILLBOX_CMAKE_COMMAND="${CMAKE_COMMAND}"
                                                   QUILLBOX_CPACK_COMMAND="${CMAKE_CPACK_COMMAND}")
    endif()
    add_test(NAME ${area}/${name} COMMAND ${name})
    set_tests_properties(${area}/${name} PROPERTIES
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8"
        TIMEOUT 900)
endfunction()

function(quillbox_add_all_tests)
    file(GLOB_RECURSE tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tests/tst_*.cpp)
    foreach(src ${tests})
        quillbox_add_test(${src})
    endforeach()
endfunction()
