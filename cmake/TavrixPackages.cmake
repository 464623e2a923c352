# The Debian packages: scripts/make-packages makes them with CPack, one of each component.
#
# dpkg-shlibdeps finds what programs and plugins are linked with. What plugins open while they work it
# cannot see: TAVRIX_OPENED_... name the packages of these libraries, and a test holds them against the
# names in the plugins.

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program plugins extra dev)
set(CPACK_PACKAGE_NAME tavrix)
set(CPACK_PACKAGE_VENDOR "The Tavrix authors")
set(CPACK_PACKAGE_CONTACT "Tavrix maintainers <tavrix@example.org>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${TAVRIX_PACKAGE_REVISION})
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/bin)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

set(version ${PROJECT_VERSION}-${TAVRIX_PACKAGE_REVISION})

# Libraries that plugins open by their names: without those of the first list a plugin can do nothing
# and has no other, those of the second are for one format, printer or refinement each.
set(TAVRIX_OPENED_NEEDED libzimg2)
set(TAVRIX_OPENED_WANTED libavif15 libcups2 libgif7 libjxl0.7 liblcms2-2 libtiff6 libwebp7)
set(TAVRIX_OPENED_EXTRA libheif1)
list(JOIN TAVRIX_OPENED_NEEDED ", " needed)
list(JOIN TAVRIX_OPENED_WANTED ", " wanted)
list(JOIN TAVRIX_OPENED_EXTRA ", " extra)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME tavrix)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS
    "tavrix-plugins (= ${version}), fonts-dejavu-core | fonts-freefont-ttf, qt6-wayland")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS
    "tavrix-plugins-extra (= ${version}), fonts-vlgothic | fonts-noto-cjk")
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "\
image viewer and touch-up paint program for small machines
Tavrix shows one picture at a time and touches it up: zoom, crop, resize,
turn, paint, sharpen, blur, correct colors, write text, save in another
format, print. Pictures that do not fit into memory are paged out line by
line. It speaks English and Japanese.

Every format, effect and printer is a plugin, loaded for a single use; the
package tavrix-plugins has them.")

# Linked with the program's own library, which has no versions of its own.
set(CPACK_DEBIAN_PLUGINS_PACKAGE_NAME tavrix-plugins)
set(CPACK_DEBIAN_PLUGINS_PACKAGE_DEPENDS "tavrix (= ${version}), ${needed}")
set(CPACK_DEBIAN_PLUGINS_PACKAGE_RECOMMENDS "${wanted}")
set(CPACK_DEBIAN_PLUGINS_PACKAGE_SUGGESTS "tavrix-plugins-extra (= ${version})")
set(CPACK_DEBIAN_PLUGINS_DESCRIPTION "\
formats, effects and printers for Tavrix
The plugins that come with Tavrix. They read AVIF, BMP, GIF, ICO, JPEG, JPEG
XL, PCX, PNG, PNM, TGA, TIFF and WebP and write most of these, print to PDF
files and to CUPS, and resize, sharpen, blur and correct pictures.

The libraries for formats, printers and colour profiles are opened while
they are needed, and only recommended: without one of them its plugin says
that it cannot work.")

set(CPACK_DEBIAN_EXTRA_PACKAGE_NAME tavrix-plugins-extra)
set(CPACK_DEBIAN_EXTRA_PACKAGE_DEPENDS "tavrix (= ${version}), ${extra}")
# Profiles of these pictures too.
set(CPACK_DEBIAN_EXTRA_PACKAGE_RECOMMENDS "liblcms2-2")
set(CPACK_DEBIAN_EXTRA_PACKAGE_ENHANCES tavrix-plugins)
set(CPACK_DEBIAN_EXTRA_DESCRIPTION "\
HEIF pictures for Tavrix
The plugins of Tavrix whose libraries are copyleft or carry techniques that
are under patents in some countries: the reader for HEIF pictures, in files
ending in heic or heif.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME tavrix-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "tavrix (= ${version})")
set(CPACK_DEBIAN_DEV_PACKAGE_RECOMMENDS "cmake, pkgconf | pkg-config")
set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS "binutils-mingw-w64-x86-64")
set(CPACK_DEBIAN_DEV_DESCRIPTION "\
kit for authors of Tavrix plugins
What plugins for Tavrix are built with: the header of the plugin contract,
the device's interface for plugins with dialogs or files, a CMake package and
pkg-config files, a guide and a complete template of each kind of plugin.

tavrix-plugin-check runs a plugin through the contract and says in words
what it violates. Plugins with dialogs compile their resource scripts with
binutils-mingw-w64-x86-64.")

include(CPack)
