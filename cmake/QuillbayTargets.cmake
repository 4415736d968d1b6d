# Flags every project target gets; third-party headers come in as SYSTEM.
add_library(quillbay_flags INTERFACE)
target_compile_options(quillbay_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual)
target_compile_definitions(quillbay_flags INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_DISABLE_DEPRECATED_BEFORE=0x060400
    QT_FORCE_ASSERTS
    _GLIBCXX_ASSERTIONS)

# quillbay_add_library(<name> SOURCES ... [LIBS ...])
# One static library per source folder; headers are included as "<folder>/<Type>.h".
function(quillbay_add_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC quillbay_flags ${ARG_LIBS})
endfunction()

# quillbay_add_test(<name> SOURCES ... LIBS ... LABEL <label> [WIDGETS])
# A GoogleTest binary whose cases CTest discovers at test time. WIDGETS gives it a
# QApplication; otherwise a QGuiApplication (QImage, clipboard) on the offscreen platform.
function(quillbay_add_test name)
    cmake_parse_arguments(ARG "WIDGETS" "LABEL" "SOURCES;LIBS" ${ARGN})
    if(ARG_WIDGETS AND NOT QUILLBAY_WIDGETS)
        return()
    endif()
    add_executable(${name} ${ARG_SOURCES})
    if(ARG_WIDGETS)
        target_link_libraries(${name} PRIVATE quillbay_testmain_widgets)
    else()
        target_link_libraries(${name} PRIVATE quillbay_testmain)
    endif()
    target_link_libraries(${name} PRIVATE ${ARG_LIBS})
    gtest_discover_tests(${name}
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES
            ENVIRONMENT "QT_QPA_PLATFORM=offscreen"
            LABELS "${ARG_LABEL}"
            TIMEOUT 120)
endfunction()
