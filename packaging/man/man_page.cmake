# Makes a man page: puts the version, and what PROGRAM prints with --help, into INPUT.
#
#   cmake -D PROGRAM=... -D VERSION=... -D INPUT=....1.in -D OUTPUT=....1 -P man_page.cmake
set(ENV{QT_QPA_PLATFORM} offscreen)
execute_process(COMMAND "${PROGRAM}" --help OUTPUT_VARIABLE HELP COMMAND_ERROR_IS_FATAL ANY)
# What is special to troff: the backslash, the hyphen, and a full stop or quote that begins a line.
string(REPLACE "\\" "\\e" HELP "${HELP}")
string(REPLACE "-" "\\-" HELP "${HELP}")
string(REGEX REPLACE "(^|\n)([.'])" "\\1\\\\&\\2" HELP "${HELP}")
string(STRIP "${HELP}" HELP)
configure_file("${INPUT}" "${OUTPUT}" @ONLY)
