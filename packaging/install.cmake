# What is installed, with or without a package.

set(dataDirectory ${CMAKE_INSTALL_DATADIR}/hubn-manager)
set(ownFolderDirectory ${CMAKE_INSTALL_LIBEXECDIR}/hubn-manager)

install(TARGETS hubn-manager hubn-tool hubn-unit-simulator RUNTIME)
install(FILES DefaultSetting_EN.cfg DESTINATION ${dataDirectory})

# The desktop: entry, icons, what software centres show, the type of configuration files.
file(RELATIVE_PATH DATA_FROM_LIBEXEC
    ${CMAKE_INSTALL_PREFIX}/${ownFolderDirectory} ${CMAKE_INSTALL_PREFIX}/${dataDirectory})
file(RELATIVE_PATH PROGRAM_FROM_LIBEXEC
    ${CMAKE_INSTALL_PREFIX}/${ownFolderDirectory} ${CMAKE_INSTALL_FULL_BINDIR}/hubn-manager)
set(RELEASE_DATE 2026-11-22)
foreach(file in-own-folder hubn-manager.desktop hubn-manager.metainfo.xml)
    configure_file(${file}.in ${CMAKE_CURRENT_BINARY_DIR}/${file} @ONLY)
endforeach()
install(PROGRAMS ${CMAKE_CURRENT_BINARY_DIR}/in-own-folder DESTINATION ${ownFolderDirectory})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/hubn-manager.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/hubn-manager.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES hubn-manager.mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME hubn-manager.xml)
foreach(size 16 24 32 48 64 128 256)
    install(FILES icons/hubn-manager-${size}.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps RENAME hubn-manager.png)
endforeach()
install(FILES ${CMAKE_SOURCE_DIR}/src/resources/svg/hubn-manager.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)

# The shell, and what is switched on by whoever wants it.
install(FILES hubn-tool.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME hubn-tool)
install(FILES 70-hubn-no-modemmanager.rules DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
