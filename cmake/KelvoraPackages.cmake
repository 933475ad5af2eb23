# The Debian packages; tools/package.sh builds them in a folder of their own, configured for /usr.
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
Each player steers a ball with the mouse through a square world and trails a
tail of short life. Who closes a loop of his tail around an opponent captures
him. Credits buy shields, turbo, charged and extra long tails, a laser and an
electromagnetic pulse. Players chat on the picture of the game.

This package has the game itself, which needs a server to connect to: one of
the net, or the one of the package kelvora-server, which brings bots.")

set(CPACK_DEBIAN_KELVORA-SERVER_PACKAGE_NAME kelvora-server)
set(CPACK_DEBIAN_KELVORA-SERVER_DESCRIPTION "server with bots for the arena game Kelvora
Runs an arena for up to six players of the game Kelvora, with up to five bots
of three skills, and publishes it in lists of games on request.

A template unit for systemd starts as many arenas as are wanted, each with a
configuration file of its own.")
set(CPACK_DEBIAN_KELVORA-SERVER_PACKAGE_CONTROL_EXTRA
  "${CMAKE_SOURCE_DIR}/packaging/server/conffiles"
  "${CMAKE_SOURCE_DIR}/packaging/server/postinst"
  "${CMAKE_SOURCE_DIR}/packaging/server/prerm"
  "${CMAKE_SOURCE_DIR}/packaging/server/postrm")

include(CPack)
