# ascii.cmake in script mode, with -DFOLDER: fails where a header in it has a byte beyond ASCII.
file(GLOB_RECURSE headers ${FOLDER}/*.h)
foreach(header ${headers})
  file(READ ${header} bytes HEX)
  string(REGEX REPLACE "(..)" "\\1 " bytes "${bytes}")
  if(bytes MATCHES "[89a-f][0-9a-f] ")
    message(SEND_ERROR "${header} has letters beyond ASCII")
  endif()
endforeach()
