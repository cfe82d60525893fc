# cmake -DPROGRAM=... -DNAME=... -DVERSION=... -DFOLDER=... -P program_texts.cmake: writes FOLDER/NAME.1 and FOLDER/NAME.bash, a
# man page and a bash completion. Both are made from what the program prints for --help, so they can not fall behind it.
cmake_minimum_required(VERSION 3.25)

function(help_of result)
  execute_process(COMMAND ${PROGRAM} ${ARGN} --help OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  string(ASCII 31 semicolon)  # CMake would take it for a list's
  string(REPLACE ";" "${semicolon}" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

# As roff takes it: no escape begins, no minus becomes a hyphen, no line is a request.
function(as_roff result text)
  string(REPLACE "\\" "\\e" text "${text}")
  string(REPLACE "-" "\\-" text "${text}")
  string(REGEX REPLACE "(^|\n)([.'])" "\\1\\\\&\\2" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

function(section result title text)
  as_roff(text "${text}")
  set(${result} ".SH ${title}\n.nf\n${text}\n.fi\n" PARENT_SCOPE)
endfunction()

help_of(help)
set(commands "")
if(help MATCHES "\nSubcommands:\n(.*)")
  string(REGEX MATCHALL "\n  [a-z0-9]+ " commands "\n${CMAKE_MATCH_1}")
  list(TRANSFORM commands STRIP)
endif()

# The first line that says what the program is for: "velmora: simulates ..." or the description above the usage.
if(help MATCHES "^${NAME}: ([^\n]*)")
  set(purpose "${CMAKE_MATCH_1}")
else()
  string(REGEX MATCH "\n([^\n]*[^\n.])\\.?\nUsage:" line "${help}")
  set(purpose "${CMAKE_MATCH_1}")
endif()
as_roff(purpose "${purpose}")
as_roff(roff_name "${NAME}")

string(TOUPPER ${NAME} title)
set(page ".TH ${title} 1 \"\" \"velmora ${VERSION}\" \"User Commands\"\n.SH NAME\n${roff_name} \\- ${purpose}\n")
section(text DESCRIPTION "${help}")
string(APPEND page "${text}")

set(cases "")
foreach(command ${commands})
  help_of(command_help ${command})
  string(TOUPPER ${command} title)
  section(text ${title} "${command_help}")
  string(APPEND page "${text}")
  string(REGEX MATCHALL "--?[a-z][a-z-]*" options "${command_help}")
  list(FILTER options EXCLUDE REGEX "^-[a-z][a-z-]+$")
  list(REMOVE_DUPLICATES options)
  string(REPLACE ";" " " options "${options}")
  string(APPEND cases "        ${command}) words=\"${options}\" ;;\n")
endforeach()
string(APPEND page ".SH SEE ALSO\nThe documents in /usr/share/doc/velmora.\n")
string(ASCII 31 semicolon)
string(REPLACE "${semicolon}" ";" page "${page}")
file(WRITE ${FOLDER}/${NAME}.1 "${page}")

# Without commands the words are the keys: they begin the indented lines of the help.
string(REGEX REPLACE "\nenvironment\n.*" "" keys "${help}")
string(REGEX MATCHALL "\n  [A-Za-z_]+  +" keys "${keys}")
list(TRANSFORM keys STRIP)
list(TRANSFORM keys PREPEND "-")
list(APPEND keys --help --version)
list(JOIN keys " " words)
if(commands)
  list(JOIN commands " " words)
  string(APPEND words " --help")
endif()
string(MAKE_C_IDENTIFIER ${NAME} function)
file(WRITE ${FOLDER}/${NAME}.bash "# bash completion for ${NAME}
_${function}() {
    local words=\"${words}\"
    case \"\${COMP_WORDS[1]}\" in
${cases}        *) ;;
    esac
    COMPREPLY=()
    if [[ \$COMP_CWORD -eq 1 || \"\$2\" == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W \"\$words\" -- \"\$2\")
    fi
}
complete -o default -F _${function} ${NAME}
")
