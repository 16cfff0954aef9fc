# Turns `texture --help` (and `texture render --help`) into a man page, so that the page
# says exactly what the program does.
execute_process(COMMAND ${PROGRAM} --help OUTPUT_VARIABLE main_help COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${PROGRAM} render --help OUTPUT_VARIABLE render_help
                COMMAND_ERROR_IS_FATAL ANY)
set(page ".TH TEXTURE 1 \"\" \"texture ${VERSION}\" \"User Commands\"\n")
string(APPEND page ".SH NAME\ntexture \\- renders procedural-texture graph documents\n")
foreach(section "DESCRIPTION;main_help" "RENDER;render_help")
  list(GET section 0 title)
  list(GET section 1 variable)
  # Roff reads a leading dot or quote as a request and a backslash as an escape.
  string(REPLACE "\\" "\\e" text "${${variable}}")
  string(REGEX REPLACE "(^|\n)([.'])" "\\1\\\\&\\2" text "${text}")
  string(APPEND page ".SH ${title}\n.nf\n${text}.fi\n")
endforeach()
file(WRITE ${OUTPUT} "${page}")
