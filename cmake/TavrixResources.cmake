# Compiles resource scripts and embeds the result into a target. The program and, through the kit,
# plugins are built with it.
#
# The scripts are UTF-8; windres is given the host's own preprocessor, since its default is a
# compiler that need not be installed. Files that a script names by ICON, BITMAP or binary lines do
# not show in the dependency file and are listed by hand.

# tavrix_resources(TARGET SCRIPT file.rc SYMBOL name [INCLUDES folder...] [FILES file...]): the
# compiled resources become the bytes from `name` to `name_end` in TARGET, visible there alone.
function(tavrix_resources target)
  cmake_parse_arguments(ARG "" "SCRIPT;SYMBOL" "INCLUDES;FILES" ${ARGN})
  find_program(TAVRIX_WINDRES x86_64-w64-mingw32-windres REQUIRED)
  get_property(languages GLOBAL PROPERTY ENABLED_LANGUAGES)
  if(C IN_LIST languages)
    set(preprocessor ${CMAKE_C_COMPILER})
  else()
    set(preprocessor ${CMAKE_CXX_COMPILER})
  endif()
  get_filename_component(script ${ARG_SCRIPT} ABSOLUTE)
  get_filename_component(base ${ARG_SCRIPT} NAME_WE)
  # Two targets of a folder may have scripts of one name.
  set(compiled ${CMAKE_CURRENT_BINARY_DIR}/${target}_${base}.res)
  set(carrier ${CMAKE_CURRENT_BINARY_DIR}/${target}_${base}_res.c)
  set(depfile ${compiled}.d)
  list(TRANSFORM ARG_INCLUDES PREPEND -I)
  add_custom_command(
    OUTPUT ${compiled}
    COMMAND ${TAVRIX_WINDRES} --preprocessor=${preprocessor} --preprocessor-arg=-E
            --preprocessor-arg=-xc --preprocessor-arg=-DRC_INVOKED --preprocessor-arg=-MMD
            --preprocessor-arg=-MF --preprocessor-arg=${depfile} --preprocessor-arg=-MT
            --preprocessor-arg=${compiled} -c 65001 ${ARG_INCLUDES}
            -I${CMAKE_CURRENT_SOURCE_DIR} -I${CMAKE_CURRENT_BINARY_DIR} -O res ${script}
            ${compiled}
    DEPENDS ${script} ${ARG_FILES}
    DEPFILE ${depfile}
    COMMENT "Compiling resources ${base}.rc"
    VERBATIM)
  # A source of either language, so that a project needs no assembler of its own.
  file(CONFIGURE OUTPUT ${carrier} CONTENT "__asm__(
    \".pushsection .rodata\\n\"
    \".balign 16\\n\"
    \".global @ARG_SYMBOL@\\n\"
    \".global @ARG_SYMBOL@_end\\n\"
    \".hidden @ARG_SYMBOL@\\n\"
    \".hidden @ARG_SYMBOL@_end\\n\"
    \"@ARG_SYMBOL@:\\n\"
    \".incbin \\\"@compiled@\\\"\\n\"
    \"@ARG_SYMBOL@_end:\\n\"
    \".byte 0\\n\"
    \".popsection\\n\");
" @ONLY)
  # Not over to the link-time optimiser, which does not look into assembly.
  set_source_files_properties(${carrier} PROPERTIES OBJECT_DEPENDS ${compiled}
                              COMPILE_OPTIONS "-fno-lto")
  if(NOT C IN_LIST languages)
    set_source_files_properties(${carrier} PROPERTIES LANGUAGE CXX)
  endif()
  target_sources(${target} PRIVATE ${carrier})
endfunction()
