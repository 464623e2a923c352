# Where things are installed, below the prefix, and under which name desktops know the program.
# Four components, of which each becomes a package: "program" runs, "plugins" and "extra" are the
# plugins that come with it, "dev" is what plugins are built with.
include(GNUInstallDirs)
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_BINDIR}")
  message(FATAL_ERROR "What is installed can be moved: CMAKE_INSTALL_LIBDIR and _BINDIR are relative.")
endif()

# The name of the desktop entry, the metainfo, the icons and the windows.
set(TAVRIX_APPLICATION_ID org.tavrix.tavrix)

# Program, platform library and plugins lie in one folder, where they find each other. It belongs to
# the processor, as everything in it does.
set(TAVRIX_INSTALL_HOME ${CMAKE_INSTALL_LIBDIR}/tavrix)
set(TAVRIX_PLUGIN_FOLDER ${TAVRIX_INSTALL_HOME}/PLUGINS)

# tavrix_way(FROM TO OUT): the relative path between two folders below the prefix.
function(tavrix_way from to out)
  file(RELATIVE_PATH way "/${from}" "/${to}")
  string(REGEX REPLACE "/$" "" way "${way}")
  set(${out} ${way} PARENT_SCOPE)
endfunction()

# The packages' version is the project's with this behind it.
set(TAVRIX_PACKAGE_REVISION 1 CACHE STRING "Revision of the packages of one version")
