# One static library per layer. Sources are picked up from the layer's folder, so adding a class
# means adding its .h/.cpp pair; CMake re-globs on the next build.
function(atrium_layer name dir)
    cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS
        "${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.cpp"
        "${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.h")
    if(sources MATCHES "\\.cpp")
        add_library(${name} STATIC ${sources})
        target_include_directories(${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
        target_link_libraries(${name} PUBLIC ${ARG_DEPS})
    else()
        # A layer that has no code yet still takes part in the dependency chain.
        add_library(${name} INTERFACE)
        target_include_directories(${name} INTERFACE "${CMAKE_CURRENT_SOURCE_DIR}")
        target_link_libraries(${name} INTERFACE ${ARG_DEPS})
    endif()
endfunction()

# One GoogleTest executable per tested layer; each test runs in its own process under CTest, so
# process-wide singletons start fresh for every test.
function(atrium_tests name dir)
    cmake_parse_arguments(ARG "GUI" "" "DEPS" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.cpp")
    if(NOT sources)
        return()
    endif()
    if(ARG_GUI)
        set(main "${CMAKE_CURRENT_SOURCE_DIR}/support/mains/GuiTestMain.cpp")
    else()
        set(main "${CMAKE_CURRENT_SOURCE_DIR}/support/mains/CoreTestMain.cpp")
    endif()
    add_executable(${name} ${sources} ${main})
    target_link_libraries(${name} PRIVATE ${ARG_DEPS} atrium_testsupport GTest::gtest GTest::gmock)
    gtest_discover_tests(${name}
        DISCOVERY_TIMEOUT 60
        PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" LABELS ${dir} TIMEOUT 120)
endfunction()
