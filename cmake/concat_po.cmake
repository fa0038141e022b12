# Joins the .po files of one language into the program's catalogue.
# -DOUT=<file> -DIN=<file|file|...>
string(REPLACE "|" ";" parts "${IN}")
file(WRITE ${OUT} "")
foreach(part ${parts})
  file(READ ${part} text)
  file(APPEND ${OUT} "${text}\n")
endforeach()
