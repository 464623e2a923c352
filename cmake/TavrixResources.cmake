# Compiles resource scripts and embeds the result into a target.
#
# The scripts are UTF-8; windres is given the host's own preprocessor, since its default is a
# compiler that need not be installed. Files that a script names by ICON, BITMAP or binary lines do
# not show in the dependency file and are listed by hand.

find_program(TAVRIX_WINDRES x86_64-w64-mingw32-windres REQUIRED)

# tavrix_resources(TARGET SCRIPT file.rc SYMBOL name [FILES file...]): the compiled resources become
# the bytes from `name` to `name_end` in TARGET.
function(tavrix_resources target)
  cmake_parse_arguments(ARG "" "SCRIPT;SYMBOL" "FILES" ${ARGN})
  get_filename_component(script ${ARG_SCRIPT} ABSOLUTE)
  get_filename_component(base ${ARG_SCRIPT} NAME_WE)
  set(compiled ${CMAKE_CURRENT_BINARY_DIR}/${base}.res)
  set(assembly ${CMAKE_CURRENT_BINARY_DIR}/${base}_res.S)
  set(depfile ${CMAKE_CURRENT_BINARY_DIR}/${base}.res.d)
  add_custom_command(
    OUTPUT ${compiled}
    COMMAND ${TAVRIX_WINDRES} --preprocessor=${CMAKE_C_COMPILER} --preprocessor-arg=-E
            --preprocessor-arg=-xc --preprocessor-arg=-DRC_INVOKED --preprocessor-arg=-MMD
            --preprocessor-arg=-MF --preprocessor-arg=${depfile} --preprocessor-arg=-MT
            --preprocessor-arg=${compiled} -c 65001 -I${CMAKE_SOURCE_DIR}
            -I${CMAKE_CURRENT_SOURCE_DIR} -I${CMAKE_CURRENT_BINARY_DIR} -O res ${script}
            ${compiled}
    DEPENDS ${script} ${ARG_FILES}
    DEPFILE ${depfile}
    COMMENT "Compiling resources ${base}.rc"
    VERBATIM)
  file(CONFIGURE OUTPUT ${assembly} CONTENT "    .section .rodata
    .balign 16
    .global @ARG_SYMBOL@
    .global @ARG_SYMBOL@_end
@ARG_SYMBOL@:
    .incbin \"@compiled@\"
@ARG_SYMBOL@_end:
    .byte 0
    .section .note.GNU-stack,\"\",%progbits
" @ONLY)
  set_source_files_properties(${assembly} PROPERTIES OBJECT_DEPENDS ${compiled})
  target_sources(${target} PRIVATE ${assembly})
endfunction()
