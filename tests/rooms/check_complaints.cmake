# What scripts/check-includes says of a small project with one fault at a time. Run with -DCHECK=the script and
# -DSCRATCH=a folder of its own.
cmake_minimum_required(VERSION 3.25)

set(rooms [[
png    <png.h>            :
below  source/below/*     :
middle source/middle/*    : below png
above  source/above/*     : middle
]])

# expect(MESSAGE FILE TEXT ...): with these files in place of the faultless ones the script fails and says so; with an
# empty message it finds no fault.
function(expect message)
  file(REMOVE_RECURSE "${SCRATCH}")
  file(WRITE "${SCRATCH}/docs/rooms.txt" "${rooms}")
  file(WRITE "${SCRATCH}/source/below/a.h" "#include <vector>\n")
  file(WRITE "${SCRATCH}/source/middle/b.h" "#include <png.h>\n#include \"below/a.h\"\n")
  file(WRITE "${SCRATCH}/source/middle/b.cpp" "#include \"middle/b.h\"\n")
  file(WRITE "${SCRATCH}/source/above/c.cpp" "#include \"below/a.h\"\n#include \"middle/b.h\"\n")
  while(ARGN)
    list(POP_FRONT ARGN file text)
    file(WRITE "${SCRATCH}/${file}" "${text}")
  endwhile()
  execute_process(COMMAND "${CHECK}" "${SCRATCH}" RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(message STREQUAL "")
    if(NOT status EQUAL 0)
      message(FATAL_ERROR "a faultless project is refused:\n${output}")
    endif()
  else()
    string(FIND "${output}" "${message}" found)
    if(status EQUAL 0 OR found EQUAL -1)
      message(FATAL_ERROR "status ${status}; expected\n${message}\nin\n${output}")
    endif()
  endif()
endfunction()

expect("")
expect("source/below/a.h:2: includes above/d.h of above, but below may include itself alone (docs/rooms.txt:2)"
  source/below/a.h "#include <vector>\n# include \"above/d.h\"\n" source/above/d.h "\n")
expect("source/middle/b.h:1: includes ../above/d.h, which does not exist"
  source/middle/b.h "#include \"../above/d.h\"\n")
expect("source/above/c.cpp:1: includes png.h of png, but above may include itself, below, middle (docs/rooms.txt:4)"
  source/above/c.cpp "#include <png.h>\n")
expect("source/middle/b.cpp:1: the first include must be its own header, source/middle/b.h"
  source/middle/b.cpp "#include <vector>\n#include \"middle/b.h\"\n")
expect("source/other/e.h: no line of docs/rooms.txt has a room for this file"
  source/other/e.h "\n")
expect("docs/rooms.txt:5: attic has no files"
  docs/rooms.txt "${rooms}attic source/attic/* : above\n")
expect("docs/rooms.txt:2: there is no room cellar"
  docs/rooms.txt "png <png.h> :\nbelow source/below/* : cellar\nmiddle source/middle/* : below png\nabove source/above/* : middle\n")
expect("docs/rooms.txt:2: below stands above itself"
  docs/rooms.txt "png <png.h> :\nbelow source/below/* : above\nmiddle source/middle/* : below png\nabove source/above/* : middle\n")
