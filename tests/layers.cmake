# The floors of docs/architecture.md, checked against every include; and what every public header has to say.
find_program(ZO_PYTHON python3)
if(ZO_PYTHON)
  add_test(NAME layers.NoIncludeGoesUp
           COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/layers.py ${PROJECT_SOURCE_DIR})
  add_test(NAME contracts.EveryHeaderSpeaksOfErrorsAndThreads
           COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/contracts.py ${PROJECT_SOURCE_DIR})
endif()
