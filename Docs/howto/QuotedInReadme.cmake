# Fails unless the page shows the program as it is built. -DPAGE=... -DPROGRAM=...
file(READ ${PAGE} page)
file(READ ${PROGRAM} program)
string(FIND "${page}" "```cpp\n${program}```" at)
if(at EQUAL -1)
  message(FATAL_ERROR "${PAGE} does not show ${PROGRAM} as it stands")
endif()
