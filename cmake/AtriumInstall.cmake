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
        find_program(update_desktop_database update-desktop-database)
        find_program(update_icon_cache gtk-update-icon-cache)
        if(update_desktop_database)
            execute_process(COMMAND "${update_desktop_database}" -q "${share}/applications"
                RESULT_VARIABLE result)
            if(NOT result EQUAL 0)
                message(STATUS "update-desktop-database failed (${result}); the entry still works")
            endif()
        else()
            message(STATUS "update-desktop-database not found; skipped")
        endif()
        if(update_icon_cache)
            execute_process(COMMAND "${update_icon_cache}" -q -t -f "${share}/icons/hicolor"
                RESULT_VARIABLE result)
            if(NOT result EQUAL 0)
                message(STATUS "gtk-update-icon-cache failed (${result}); the icon still works")
            endif()
        else()
            message(STATUS "gtk-update-icon-cache not found; skipped")
        endif()
    endif()
]])
