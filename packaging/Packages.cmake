# SPDX-License-Identifier: MIT
# Debian packages by CPack: zorvane-client, zorvane-demo, zorvane-server, and the debug symbols of each.
# scripts/package builds them with Debian's flags and looks through what came out.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zorvane-client)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "The Zorvane Client authors <authors@zorvane.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL client demo server)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)

set(CPACK_DEBIAN_CLIENT_PACKAGE_NAME zorvane-client)
set(CPACK_DEBIAN_CLIENT_PACKAGE_SECTION video)
# Certificates are always checked.
set(CPACK_DEBIAN_CLIENT_PACKAGE_DEPENDS ca-certificates)
# Sound, and the pages and folders that it opens.
set(CPACK_DEBIAN_CLIENT_PACKAGE_RECOMMENDS "libsdl2-2.0-0, xdg-utils")
set(CPACK_DEBIAN_CLIENT_PACKAGE_SUGGESTS "zorvane-demo, zorvane-server")
set(CPACK_DEBIAN_CLIENT_DESCRIPTION "watch the cameras of a video surveillance service
Shows the cameras of a service and of video servers in the local network, live
and in the archive: alone, in a grid that is saved as a layout, or on a wall.
Fragments of the archive and single pictures are saved as files.
.
Each picture is played by a process of its own, so a broken stream never takes
the window down.")

set(CPACK_DEBIAN_DEMO_PACKAGE_NAME zorvane-demo)
set(CPACK_DEBIAN_DEMO_PACKAGE_SECTION video)
set(CPACK_DEBIAN_DEMO_PACKAGE_RECOMMENDS "zorvane-client")
set(CPACK_DEBIAN_DEMO_DESCRIPTION "video surveillance service with invented cameras
Stands in for the service that Zorvane Client signs in to, and for video
servers in the local network, with drawn cameras, archives and faults that are
switched on by hand. It listens on this machine only.
.
zorvane-try starts it together with the client.")

set(CPACK_DEBIAN_SERVER_PACKAGE_NAME zorvane-server)
set(CPACK_DEBIAN_SERVER_PACKAGE_SECTION video)
set(CPACK_DEBIAN_SERVER_PACKAGE_RECOMMENDS "zorvane-client")
set(CPACK_DEBIAN_SERVER_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_SOURCE_DIR}/prerm")
set(CPACK_DEBIAN_SERVER_DESCRIPTION "video server for the network cameras of one house
Records the network cameras that a file names, keeps as much of them as it
says, and shows them, live and recorded, to Zorvane Client on this machine. No
account and no service elsewhere is needed.
.
zorvane-home starts the client signed in to it.")
include(CPack)
