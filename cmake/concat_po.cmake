# Joins the .po files of one language into the program's catalogue.
# -DOUT=<file> -DIN=<file;file;...>
file(WRITE ${OUT} "")
foreach(part ${IN})
  file(READ ${part} text)
  file(APPEND ${OUT} "${text}\n")
endforeach()
