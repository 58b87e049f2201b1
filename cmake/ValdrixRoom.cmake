# One room of the house is one folder and one library. A room's link line names the rooms it may
# use, so an arrow that runs up does not link.

add_library(valdrix_options INTERFACE)
target_compile_options(valdrix_options INTERFACE -Wall -Wextra -Wconversion -Werror)
# Files that are compiled together would shadow each other's names.
if(NOT CMAKE_UNITY_BUILD)
  target_compile_options(valdrix_options INTERFACE -Wshadow)
endif()
target_include_directories(valdrix_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
# The core has words of its own for signals and slots.
target_compile_definitions(valdrix_options INTERFACE QT_NO_KEYWORDS)
if(VALDRIX_SANITIZE)
  # The sanitizers' own code makes GCC see uninitialised values inside the standard library.
  target_compile_options(valdrix_options INTERFACE
    -fsanitize=${VALDRIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(valdrix_options INTERFACE -fsanitize=${VALDRIX_SANITIZE})
endif()

# To be linked last. Under the sanitizers most of the build's time would go into the tests' own code,
# whose undefined behaviour nobody will ever meet. Some libraries ask for position-independent code
# and some for threads; all tests get both, because they share precompiled headers.
add_library(valdrix_test_options INTERFACE)
target_compile_options(valdrix_test_options INTERFACE -fPIC -pthread)
if(VALDRIX_SANITIZE)
  target_compile_options(valdrix_test_options INTERFACE -O0 -fno-sanitize=undefined)
endif()

# What must be there before the sources can be read without being built.
add_custom_target(generated_headers)

# valdrix_room(FOLDER [ROOM-OR-LIBRARY…]): the sources of src/FOLDER as library valdrix_<folder>,
# with / in the folder's name written as _.
function(valdrix_room FOLDER)
  string(REPLACE "/" "_" name ${FOLDER})
  set(target valdrix_${name})
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${FOLDER}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${FOLDER}/*.h)
  set(links ${ARGN})
  list(TRANSFORM links REPLACE "^room:(.*)$" "valdrix_\\1")
  if(sources)
    add_library(${target} STATIC ${sources} ${headers})
    target_link_libraries(${target} PUBLIC valdrix_options ${links})
  else()
    add_library(${target} INTERFACE)
    target_link_libraries(${target} INTERFACE valdrix_options ${links})
  endif()
endfunction()
