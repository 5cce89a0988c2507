# The Debian package, which ./package makes.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME hubn-manager)
set(CPACK_PACKAGE_CONTACT "HUBN-NX-Q developers <hubn-nx-q@example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS # whatever the umask
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt5sql5-sqlite") # a plugin, which no program is linked with
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core, xdg-user-dirs")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "configuration manager of HUBN-NX-Q fire alarm units
The service engineer's program for the HUBN-NX-Q, the head unit of a radio
fire and security alarm. It finds the unit's radio coordinator on the serial
ports of the PC, reads and writes the configuration of outputs and scripts,
reads the log of events, sets the unit's clock and loads firmware.
.
With it come hubn-tool, which does the same from the command line, and
hubn-unit-simulator, a unit that isn't there to learn and test with.")

include(CPack)
