# cmake -DPYTHON= -DGENERATOR= -DCHECKED_IN= -P: the generator's output is the checked-in file, byte for byte.
execute_process(COMMAND ${PYTHON} ${GENERATOR} OUTPUT_VARIABLE made RESULT_VARIABLE status)
file(READ ${CHECKED_IN} standing)
if(NOT status EQUAL 0 OR NOT made STREQUAL standing)
  message(FATAL_ERROR "${CHECKED_IN} is not what ${GENERATOR} writes: make it again, or restore it")
endif()
