# What `cmake --install` puts in place: the program, its desktop entry and icon, and its D-Bus
# service file, all named after the application id that Atrium gives itself
# (QGuiApplication::setDesktopFileName), so that the desktop matches windows, launchers and bus
# activation to them.
include(GNUInstallDirs)

install(TARGETS atrium RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(FILES "${PROJECT_SOURCE_DIR}/data/com.brightmoor.atrium.desktop"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${PROJECT_SOURCE_DIR}/data/icons/hicolor/scalable/apps/com.brightmoor.atrium.svg"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")

# The desktop entry says DBusActivatable=true: the session bus starts Atrium by this file, which
# names the program by its installed path: made at install time, for the prefix given then.
install(CODE "set(atrium_service_in \"${PROJECT_SOURCE_DIR}/data/com.brightmoor.atrium.service.in\")
    set(atrium_bindir \"${CMAKE_INSTALL_BINDIR}\")
    set(atrium_datadir \"${CMAKE_INSTALL_DATADIR}\")")
install(CODE [[
    set(CMAKE_INSTALL_FULL_BINDIR "${CMAKE_INSTALL_PREFIX}/${atrium_bindir}")
    set(service "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${atrium_datadir}/dbus-1/services/com.brightmoor.atrium.service")
    message(STATUS "Installing: ${service}")
    configure_file("${atrium_service_in}" "${service}" @ONLY)
]])

# The desktop's caches learn of the new entry and icon, so that Atrium is offered at once as the
# handler of folders. A staged install (DESTDIR, for a package) leaves that to the package
# manager's triggers; a missing tool or a failing one only says so.
install(CODE [[
    set(share "${CMAKE_INSTALL_PREFIX}/${atrium_datadir}")
    if(DEFINED ENV{DESTDIR} AND NOT "$ENV{DESTDIR}" STREQUAL "")
        message(STATUS "Staged install: the desktop and icon caches are left to the package")
    else()
        # A cache tool that is missing or fails leaves the installed files working all the same.
        function(atrium_refresh_cache program folder what)
            find_program(tool_${program} ${program})
            if(NOT tool_${program})
                message(STATUS "${program} not found; skipped")
                return()
            endif()
            execute_process(COMMAND "${tool_${program}}" ${ARGN} "${folder}" RESULT_VARIABLE result)
            if(NOT result EQUAL 0)
                message(STATUS "${program} failed (${result}); the ${what} still works")
            endif()
        endfunction()
        atrium_refresh_cache(update-desktop-database "${share}/applications" entry -q)
        atrium_refresh_cache(gtk-update-icon-cache "${share}/icons/hicolor" icon -q -t -f)
    endif()
]])
