# cmake -DVERSION_SCRIPT= -DLIBRARY= -DDEFINITION= -P: the module definition of a DLL that exports the names of the
# version script. A definition that is right already keeps its time.
file(STRINGS ${VERSION_SCRIPT} lines REGEX "^ +[A-Za-z_0-9]+;$")
set(text "LIBRARY \"${LIBRARY}\"\nEXPORTS\n")
foreach(line ${lines})
  string(REGEX REPLACE "[ ;]" "" name "${line}")
  string(APPEND text "    ${name}\n")
endforeach()
file(WRITE ${DEFINITION} "${text}")
