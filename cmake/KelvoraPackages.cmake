# The Debian packages. tools/package.sh builds them in their own folder, configured for /usr.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelvora)
set(CPACK_PACKAGE_VENDOR "The Kelvora developers")
set(CPACK_PACKAGE_CONTACT "The Kelvora developers <kelvora@kelvora.example>")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_SET_DESTDIR ON)  # for what goes to /etc
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL ${components})
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_KELVORA_PACKAGE_NAME kelvora)
set(CPACK_DEBIAN_KELVORA_PACKAGE_DEPENDS "fonts-comic-neue, fonts-liberation")
set(CPACK_DEBIAN_KELVORA_PACKAGE_SUGGESTS kelvora-server)
set(CPACK_DEBIAN_KELVORA_DESCRIPTION "arena game: capture the others in loops of your tail
You steer a ball with the mouse through a square world, and your ball trails a
short-lived tail. Enclose an opponent in a loop of your tail to capture them.
Credits buy shields, turbo, charged and extra long tails, a laser and an
electromagnetic pulse. Players can chat over the game view.

This package has the game itself. It needs a server to connect to. The package
kelvora-server has one, with bots.")

set(CPACK_DEBIAN_KELVORA-SERVER_PACKAGE_NAME kelvora-server)
set(CPACK_DEBIAN_KELVORA-SERVER_DESCRIPTION "server with bots for the arena game Kelvora
Runs an arena for up to six players of the game Kelvora. Up to five bots of
three skills join them. The server can publish itself in lists of games.
Players use the game itself, or a browser: the server delivers a page to play
in.

A systemd template unit runs any number of arenas, each with its own
configuration file.")
set(CPACK_DEBIAN_KELVORA-SERVER_PACKAGE_CONTROL_EXTRA
  "${CMAKE_SOURCE_DIR}/packaging/server/conffiles"
  "${CMAKE_SOURCE_DIR}/packaging/server/postinst"
  "${CMAKE_SOURCE_DIR}/packaging/server/prerm"
  "${CMAKE_SOURCE_DIR}/packaging/server/postrm")

include(CPack)
