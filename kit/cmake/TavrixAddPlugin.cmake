# How a plugin is built, whether it comes with the program or from someone else. Beside it stand
# TavrixResources.cmake and, in TAVRIX_KIT_SOURCES, what is compiled into plugins with resources.
# Needs the targets Tavrix::plugin and Tavrix::device.

# Where plugins are installed, below the prefix: "cmake --install BUILD --prefix ~/.local" puts them
# where the program looks for a user's own.
if(NOT DEFINED TAVRIX_PLUGIN_FOLDER)
  set(TAVRIX_PLUGIN_FOLDER share/tavrix/PLUGINS)
endif()

# What a plugin of each kind may export, beside GetPluginInfo and SetLanguage.
set(TAVRIX_EXPORTS_INPUT GetImageInfo GetImage GetImageFast Configure)
set(TAVRIX_EXPORTS_OUTPUT PutImage Configure)
set(TAVRIX_EXPORTS_PRINT Print Configure)
set(TAVRIX_EXPORTS_EFFECT Effect Configure)
set(TAVRIX_EXPORTS_ADJUST AdjustImage Configure)
set(TAVRIX_EXPORTS_SCALE ScaleImage Configure)
set(TAVRIX_EXPORTS_SUBTRACT SubtractImage)

# tavrix_add_plugin(NAME KIND kind SOURCES file... [RESOURCES file.rc [FILES file...]]
#                   [LIBRARIES target...])
# The target NAME: a plugin NAME.dll of a kind (INPUT, OUTPUT, PRINT, EFFECT, ADJUST, SCALE,
# SUBTRACT) from C or C++ sources. The kind's functions are all that it exports, even where it is
# linked with a library that would export more. RESOURCES are compiled into it and found under
# TavrixThisModule() of <tavrix/module.h>; FILES are those that the script names by ICON, BITMAP or
# binary lines. With RESOURCES it is linked with Tavrix::device; a plugin without them that calls the
# device lists that among its LIBRARIES. Installing it puts it into TAVRIX_PLUGIN_FOLDER/kind.
function(tavrix_add_plugin name)
  cmake_parse_arguments(ARG "" "KIND;RESOURCES" "SOURCES;FILES;LIBRARIES" ${ARGN})
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "tavrix_add_plugin(${name}): what is ${ARG_UNPARSED_ARGUMENTS}?")
  endif()
  if(NOT DEFINED TAVRIX_EXPORTS_${ARG_KIND})
    message(FATAL_ERROR "tavrix_add_plugin(${name}): no plugin kind \"${ARG_KIND}\"")
  endif()
  if(NOT ARG_SOURCES)
    message(FATAL_ERROR "tavrix_add_plugin(${name}): no SOURCES")
  endif()
  if(ARG_FILES AND NOT ARG_RESOURCES)
    message(FATAL_ERROR "tavrix_add_plugin(${name}): FILES without RESOURCES")
  endif()

  add_library(${name} MODULE ${ARG_SOURCES})
  if(ARG_RESOURCES)
    tavrix_resources(${name} SCRIPT ${ARG_RESOURCES} SYMBOL TavrixPluginResources
                     INCLUDES ${TAVRIX_KIT_INCLUDES} FILES ${ARG_FILES})
    set(registering ${TAVRIX_KIT_SOURCES}/PluginResources.c)
    target_sources(${name} PRIVATE ${registering})
    get_property(languages GLOBAL PROPERTY ENABLED_LANGUAGES)
    if(NOT C IN_LIST languages)
      set_source_files_properties(${registering} PROPERTIES LANGUAGE CXX)
    endif()
    target_link_libraries(${name} PRIVATE Tavrix::device)
  endif()
  target_link_libraries(${name} PRIVATE Tavrix::plugin ${ARG_LIBRARIES})

  # A library with a unique symbol is never unmapped. Only one compiler makes them, from C++.
  target_compile_options(${name} PRIVATE -ffunction-sections -fdata-sections
                         $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-gnu-unique>)
  set(exports ${CMAKE_CURRENT_BINARY_DIR}/${name}.exports)
  list(JOIN TAVRIX_EXPORTS_${ARG_KIND} "; " functions)
  file(CONFIGURE OUTPUT ${exports} CONTENT
       "{ global: GetPluginInfo; SetLanguage; ${functions}; local: *; };\n")
  # The libraries that nothing is used of are left out, the run time's own among them.
  target_link_options(${name} PRIVATE -Wl,--as-needed -Wl,--no-undefined -Wl,--gc-sections -Wl,-z,now
                      -Wl,--version-script=${exports})
  # No run path: what a plugin needs of the program is loaded when the program loads it.
  set_target_properties(${name} PROPERTIES
    PREFIX "" SUFFIX ".dll" LINK_DEPENDS ${exports} POSITION_INDEPENDENT_CODE ON
    C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    SKIP_BUILD_RPATH ON INSTALL_RPATH "")
  install(TARGETS ${name} LIBRARY DESTINATION ${TAVRIX_PLUGIN_FOLDER}/${ARG_KIND})
endfunction()
