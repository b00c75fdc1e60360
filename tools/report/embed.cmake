# Makes a C++ source of the files IN (a list of paths), one text each, named after the file:
#     cmake -DOUT=page.cpp -DIN="report.css;report.js" -P embed.cmake
set(source "#include \"tools/report/page.h\"\n\nnamespace report::page {\n")
foreach(file ${IN})
  get_filename_component(name ${file} NAME)
  string(MAKE_C_IDENTIFIER ${name} name)
  file(READ ${file} content)
  string(APPEND source "const char ${name}[] = R\"zkpage(${content})zkpage\";\n")
endforeach()
string(APPEND source "}\n")
file(WRITE ${OUT} "${source}")
